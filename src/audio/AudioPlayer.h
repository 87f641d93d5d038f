#pragma once
// Plays one block of mono 32-bit float samples (host byte order, sample i at byte 4 x i)
// through the system's default audio output, by PortAudio. The player never owns the
// samples: the caller keeps the buffer alive (its channel keeps the block locked) until the
// player has stopped.
//
// Threads: every method runs on the main (GUI) thread, except the render routine, which
// PortAudio calls on its audio thread. The render routine only reads the buffer and the
// settings made before start, advances the read position, and hands every stop it decides
// to the main thread by a queued call on this object (the stream must not be torn down from
// its own callback). Each stop so queued names its playback: one that arrives after a new
// playback has started is dropped, so it never silences the new one. Failures of the output are only logged
// ("AudioOutputUnitStart=%ld\n",
// ...); the player then stays stopped and says nothing to the user.
//
// Calling order used by the table: isPlaying() and stopPlay() while a previous playback
// runs, CreateDefaultAU, setDelegate, setData, setSampleRate, startPlay.
#include <QObject>

#include <atomic>
#include <chrono>
#include <cstdint>

class AudioPlayer : public QObject
{
    Q_OBJECT
public:
    explicit AudioPlayer(QObject* parent = nullptr);
    ~AudioPlayer() override;

    void setSampleRate(double rate) { sSampleRate = rate; }
    // The buffer (not owned), its length in samples and the start sample; resets the read
    // position. A start beyond 0 must come with a length shortened by the caller: the end
    // test compares with the full length (the table always starts at 0).
    void setData(const std::uint8_t* data, double lengthSamples, double startSample);
    void setDelegate(QObject* owner) { delegate = owner; }

    // Opens the default output ("FindNextComponent" when there is none). A unit still open
    // from a stopped playback is closed first.
    void CreateDefaultAU();
    // Configures the stream (float32 mono, non-interleaved) and starts it.
    void startPlay();
    // Stops the output without closing it ("stopplay").
    void stopPlay();
    // Stops and closes the output and forgets it ("stopclean"); the queued target of the
    // render routine's stop requests. Safe to call when nothing is open.
    void stopClean();
    bool isPlaying() const { return m_bIsPlaying.load() != 0; }
    void CloseDefaultAU();
    // The open output, or nullptr (a PortAudio stream once started).
    void* getOutputUnit() const;
    // Kept as the hook for a play cursor; the render routine never calls into the delegate.
    void notifyDelegateToAnimate() {}

    // Samples delivered so far, counted from the start sample (for a play cursor).
    double playedSamples() const { return m_nStartFrame.load() / 4.0; }
    double sampleRate() const { return sSampleRate; }
    double dataSize() const { return _dDataSize; }

    // The test-tone set-up that playback never uses: forces 32-bit float and logs the tone.
    int ParseArgsAndSetup(int argc, char** argv);
    // Splits `text` in place at every blank into argv (at most maxArgs entries); the count.
    static int CreateArgListFromString(char* text, char** argv, int maxArgs);

    // Marks the player playing or not without touching the output: for a render routine
    // driven by another source than the output (an offline render, the tests). Playing
    // starts a new playback, as startPlay does.
    void setPlaying(bool playing);

    // The number of the current playback: startPlay (and setPlaying(true)) begin a new one.
    // A stop the render routine requests carries the number of the playback it was rendering
    // and is dropped when a newer playback has started meanwhile.
    std::uint32_t playbackNumber() const { return m_nPlayback.load(); }

    // The render routine (public for the tests, which drive it with their own buffers):
    // fills every buffer of `buffers` (count `bufferCount`, each `byteSize` bytes) with the
    // same next bytes of the data, or requests a stop. Returns 0.
    int render(void** buffers, int bufferCount, std::uint32_t byteSize);

signals:
    // Emitted on the main thread after the player stopped and closed its output.
    void playbackStopped();

public:
    // Fields in the player's order; the test tone ones are set by init but never used.
    double sSampleRate = 22050;
    std::int32_t sNumChannels = 1;
    std::int32_t sWhichFormat = 32;
    std::uint32_t sSinWaveFrameCount = 0;
    double sAmplitude = 0.25;
    double sToneFrequency = 440;
    std::uint32_t theFormatID = 0x6c70636d; // 'lpcm'
    std::uint32_t theFormatFlags = 0;
    std::uint32_t theBytesInAPacket = 0;
    std::uint32_t theBitsPerChannel = 0;
    std::uint32_t theBytesPerFrame = 0;
    std::uint32_t theFramesPerPacket = 1;
    std::uint32_t sampleNextPrinted = 0;

private:
    void requestStopClean(std::uint32_t playback);
    void stopCleanFor(std::uint32_t playback);
    void beginPlayback();
    struct OutputUnit;
    OutputUnit* gOutputUnit = nullptr;
    const std::uint8_t* pAudioData = nullptr;
    double _dDataSize = 0;
    std::atomic<std::uint32_t> m_nStartFrame{0}; // `_nStartFrame`: bytes already delivered
    double _dStart = 0;
    QObject* delegate = nullptr;
    std::atomic<std::uint8_t> m_bIsPlaying{0};
    std::atomic<std::uint32_t> m_nPlayback{0};
    std::atomic<double> currSeconds{0}; // nanoseconds since start, despite the name
    std::chrono::steady_clock::time_point startHostTime;
    std::uint32_t _nFrameCount = 0;
    double _dPeriodMS = 0;
    bool m_bPortAudioReady = false;
};
