#include "audio/AudioPlayer.h"

#include "document/Log.h"

#include <QMetaObject>
#include <portaudio.h>

#include <cstring>

// The open default output: the device chosen by CreateDefaultAU and, from startPlay on, the
// stream PortAudio pulls the samples through.
struct AudioPlayer::OutputUnit {
    PaDeviceIndex device = paNoDevice;
    PaStream* stream = nullptr;
};

namespace
{
// Frames per render request: fixed, so that the end-of-data rule always sees whole requests.
constexpr unsigned long kFramesPerRequest = 512;

// A status as four characters, the way the output's failure lines show codes.
std::string fourCharacters(long status)
{
    const auto code = static_cast<std::uint32_t>(status);
    std::string text(4, ' ');
    for (int i = 0; i < 4; ++i) {
        const char c = static_cast<char>((code >> (8 * (3 - i))) & 0xff);
        text[i] = (c >= 32 && c < 127) ? c : '.';
    }
    return text;
}

int AudioOutProc(const void*, void* output, unsigned long frameCount, const PaStreamCallbackTimeInfo*,
                 PaStreamCallbackFlags, void* context)
{
    auto* player = static_cast<AudioPlayer*>(context);
    // Non-interleaved mono: `output` is the list of channel buffers, here one.
    return player->render(static_cast<void**>(output), player->sNumChannels,
                          static_cast<std::uint32_t>(frameCount * sizeof(float)));
}
} // namespace

AudioPlayer::AudioPlayer(QObject* parent) : QObject(parent) {}

AudioPlayer::~AudioPlayer()
{
    stopClean();
    CloseDefaultAU();
    if (m_bPortAudioReady)
        Pa_Terminate();
}

void AudioPlayer::setData(const std::uint8_t* data, double lengthSamples, double startSample)
{
    pAudioData = data;
    _dDataSize = lengthSamples;
    _dStart = startSample;
    m_nStartFrame = 0;
}

void AudioPlayer::CreateDefaultAU()
{
    CloseDefaultAU();
    if (!m_bPortAudioReady) {
        const PaError status = Pa_Initialize();
        if (status != paNoError) {
            Log::printf("Pa_Initialize=%ld\n", static_cast<long>(status));
            Log::line("FindNextComponent");
            return;
        }
        m_bPortAudioReady = true;
    }
    const PaDeviceIndex device = Pa_GetDefaultOutputDevice();
    if (device == paNoDevice) {
        Log::line("FindNextComponent");
        return;
    }
    gOutputUnit = new OutputUnit{device, nullptr};
}

void AudioPlayer::startPlay()
{
    theFormatFlags = 41; // floating point, packed, non-interleaved
    theBytesInAPacket = 4;
    theBytesPerFrame = 4;
    theBitsPerChannel = 32;
    if (!gOutputUnit)
        return;

    PaStreamParameters format{};
    format.device = gOutputUnit->device;
    format.channelCount = sNumChannels;
    format.sampleFormat = paFloat32 | paNonInterleaved;
    const PaDeviceInfo* info = Pa_GetDeviceInfo(gOutputUnit->device);
    format.suggestedLatency = info ? info->defaultLowOutputLatency : 0.05;
    PaError status = Pa_IsFormatSupported(nullptr, &format, sSampleRate);
    if (status != paFormatIsSupported) {
        Log::printf("AudioUnitSetProperty-SF=%4.4s, %ld\n", fourCharacters(status).c_str(),
                    static_cast<long>(status));
        return;
    }
    status = Pa_OpenStream(&gOutputUnit->stream, nullptr, &format, sSampleRate, kFramesPerRequest, paClipOff,
                           AudioOutProc, this);
    if (status != paNoError) {
        gOutputUnit->stream = nullptr;
        Log::printf("AudioUnitInitialize=%ld\n", static_cast<long>(status));
        return;
    }
    const PaStreamInfo* streamInfo = Pa_GetStreamInfo(gOutputUnit->stream);
    if (!streamInfo) {
        Log::printf("AudioUnitSetProperty-GF=%4.4s, %ld\n", fourCharacters(-1).c_str(), -1L);
        return;
    }
    _nFrameCount = 0;
    _dPeriodMS = 0;
    startHostTime = std::chrono::steady_clock::now();
    // Set before the stream starts: the first request may come at once.
    beginPlayback();
    status = Pa_StartStream(gOutputUnit->stream);
    if (status != paNoError) {
        m_bIsPlaying = 0;
        Log::printf("AudioOutputUnitStart=%ld\n", static_cast<long>(status));
    }
    // The event loop keeps running on its own: nothing to spin here.
}

void AudioPlayer::stopPlay()
{
    Log::line("stopplay");
    m_bIsPlaying = 0;
    if (gOutputUnit && gOutputUnit->stream)
        Pa_StopStream(gOutputUnit->stream);
}

void AudioPlayer::stopClean()
{
    m_bIsPlaying = 0;
    if (!gOutputUnit)
        return;
    if (gOutputUnit->stream) {
        Pa_StopStream(gOutputUnit->stream);
        const PaError status = Pa_CloseStream(gOutputUnit->stream);
        if (status != paNoError) {
            Log::printf("AudioUnitUninitialize=%hd\n", static_cast<short>(status));
            return; // the unit is kept
        }
        gOutputUnit->stream = nullptr;
    }
    delete gOutputUnit;
    gOutputUnit = nullptr;
    Log::line("stopclean");
    emit playbackStopped();
}

void AudioPlayer::CloseDefaultAU()
{
    if (!gOutputUnit)
        return;
    if (gOutputUnit->stream) {
        Pa_StopStream(gOutputUnit->stream);
        Pa_CloseStream(gOutputUnit->stream);
    }
    delete gOutputUnit;
    gOutputUnit = nullptr;
}

void* AudioPlayer::getOutputUnit() const
{
    return gOutputUnit ? gOutputUnit->stream : nullptr;
}

void AudioPlayer::setPlaying(bool playing)
{
    if (playing)
        beginPlayback();
    else
        m_bIsPlaying = 0;
}

void AudioPlayer::beginPlayback()
{
    // The number changes before the flag is set: a render request that sees the new flag
    // also names the new playback.
    ++m_nPlayback;
    m_bIsPlaying = 1;
}

void AudioPlayer::requestStopClean(std::uint32_t playback)
{
    QMetaObject::invokeMethod(
        this, [this, playback] { stopCleanFor(playback); }, Qt::QueuedConnection);
}

void AudioPlayer::stopCleanFor(std::uint32_t playback)
{
    if (playback != m_nPlayback.load())
        return; // queued for a playback that has since been replaced
    stopClean();
}

int AudioPlayer::render(void** buffers, int bufferCount, std::uint32_t byteSize)
{
    // Read before the flag: a playback started after this point has a higher number.
    const std::uint32_t playback = m_nPlayback.load();
    if (!m_bIsPlaying) {
        Log::line("deleting playing");
        requestStopClean(playback);
        for (int i = 0; i < bufferCount; ++i)
            std::memset(buffers[i], 0, byteSize); // silence until the main thread stops us
        return 0;
    }
    currSeconds = static_cast<double>(static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() - startHostTime)
            .count()));

    const std::uint64_t end = static_cast<std::uint64_t>(m_nStartFrame.load()) + byteSize;
    // Only whole requests are played: a last request that would run past the data is
    // dropped, so up to one request of samples at the end is never heard. An end exactly at
    // the data's size is still played.
    if (static_cast<double>(end) > _dDataSize * 4.0) {
        requestStopClean(playback);
        Log::line("stop in proc");
        for (int i = 0; i < bufferCount; ++i)
            std::memset(buffers[i], 0, byteSize);
        return 0;
    }
    const std::uint8_t* source = pAudioData + 4 * static_cast<std::int64_t>(_dStart) + m_nStartFrame.load();
    for (int i = 0; i < bufferCount; ++i)
        std::memcpy(buffers[i], source, byteSize);
    m_nStartFrame = static_cast<std::uint32_t>(end);
    return 0;
}

int AudioPlayer::ParseArgsAndSetup(int, char**)
{
    sWhichFormat = 32;
    Log::printf("generating sin wave at %f Hz, %f amplitude\n", sToneFrequency, sAmplitude);
    switch (sWhichFormat) {
    case 16:
        theFormatFlags = 44;
        theBytesInAPacket = theBytesPerFrame = 2;
        theBitsPerChannel = 16;
        return 0;
    case 24:
        theFormatFlags = 36;
        theBytesInAPacket = theBytesPerFrame = 4;
        theBitsPerChannel = 24;
        return 0;
    case 32:
        theFormatFlags = 41;
        theBytesInAPacket = theBytesPerFrame = 4;
        theBitsPerChannel = 32;
        return 0;
    default:
        Log::line("unknown format");
        return -1;
    }
}

int AudioPlayer::CreateArgListFromString(char* text, char** argv, int maxArgs)
{
    int count = 0;
    char* p = text;
    while (p && *p && count < maxArgs) {
        while (*p == ' ')
            *p++ = '\0';
        if (!*p)
            break;
        argv[count++] = p;
        while (*p && *p != ' ')
            ++p;
    }
    return count;
}
