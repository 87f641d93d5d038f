#pragma once
// AudioRecorder: records mono 32-bit float samples from the system's default audio input by
// PortAudio, at a given rate, for at most five minutes. The whole buffer is made before the
// stream starts, so the audio thread only copies samples and advances an atomic count; it
// tracks the peak level for a meter. When the limit is reached the stream completes and the
// stop is handed to the main thread by a queued call (the stream must not be closed from its
// own callback).
//
// Threads: every method runs on the main (GUI) thread except the callback, which PortAudio
// calls on its audio thread. Samples are nominally -1 .. +1.
#include <QObject>
#include <QString>

#include <atomic>
#include <cstddef>
#include <vector>

class AudioRecorder : public QObject
{
    Q_OBJECT
public:
    static constexpr double kMaxSeconds = 300.0;

    explicit AudioRecorder(QObject* parent = nullptr);
    ~AudioRecorder() override;

    // Opens the default input at `sampleRate` and starts recording (the previous recording is
    // dropped). false with a message for the user when there is no input device or it refuses
    // the rate; nothing is recording then.
    bool start(double sampleRate, QString* error);
    // Stops recording and closes the input; the samples stay. Harmless when not recording.
    void stop();
    bool isRecording() const { return m_bRecording; }

    double sampleRate() const { return m_dSampleRate; }
    std::size_t recordedSamples() const { return m_nCount.load(); }
    std::size_t capacity() const { return m_samples.size(); }
    // The largest magnitude since the last call (0 .. 1 and above), and resets it.
    double takePeak();
    // The samples recorded (call after stop()).
    std::vector<float> samples() const;

    // The audio thread's work, public for the tests: appends `frames` samples, answers false
    // when the limit is reached.
    bool append(const float* input, unsigned long frames);

signals:
    // Recording ended, by stop() or at the limit; emitted on the main thread.
    void finished();

private:
    struct Stream;
    Stream* m_pStream = nullptr;
    std::vector<float> m_samples;
    std::atomic<std::size_t> m_nCount{0};
    std::atomic<float> m_fPeak{0.0f};
    double m_dSampleRate = 0.0;
    bool m_bRecording = false;
    bool m_bPortAudioReady = false;
};
