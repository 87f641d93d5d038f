#include "audio/AudioRecorder.h"

#include "document/Log.h"

#include <QMetaObject>
#include <portaudio.h>

#include <algorithm>
#include <cmath>
#include <cstring>

struct AudioRecorder::Stream {
    PaStream* stream = nullptr;
};

namespace
{
int recordProc(const void* input, void*, unsigned long frameCount, const PaStreamCallbackTimeInfo*,
               PaStreamCallbackFlags, void* context)
{
    auto* recorder = static_cast<AudioRecorder*>(context);
    if (recorder->append(static_cast<const float*>(input), frameCount))
        return paContinue;
    // Full: the main thread closes the stream and says so.
    QMetaObject::invokeMethod(recorder, &AudioRecorder::stop, Qt::QueuedConnection);
    return paComplete;
}
} // namespace

AudioRecorder::AudioRecorder(QObject* parent) : QObject(parent) {}

AudioRecorder::~AudioRecorder()
{
    stop();
    if (m_bPortAudioReady)
        Pa_Terminate();
}

bool AudioRecorder::append(const float* input, unsigned long frames)
{
    const std::size_t at = m_nCount.load();
    const std::size_t room = m_samples.size() - std::min(at, m_samples.size());
    const std::size_t taken = std::min<std::size_t>(frames, room);
    float peak = m_fPeak.load();
    if (input) {
        std::memcpy(m_samples.data() + at, input, taken * sizeof(float));
        for (std::size_t i = 0; i < taken; ++i)
            peak = std::max(peak, std::fabs(input[i]));
    } // a missing input buffer (an overflow) leaves the zeros the buffer was made with
    m_fPeak = peak;
    m_nCount = at + taken;
    return taken == frames && m_nCount.load() < m_samples.size();
}

bool AudioRecorder::start(double sampleRate, QString* error)
{
    stop();
    auto fail = [error](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    if (!m_bPortAudioReady) {
        const PaError status = Pa_Initialize();
        if (status != paNoError) {
            Log::printf("Pa_Initialize=%ld\n", static_cast<long>(status));
            return fail(tr("No audio input device was found."));
        }
        m_bPortAudioReady = true;
    }
    const PaDeviceIndex device = Pa_GetDefaultInputDevice();
    if (device == paNoDevice)
        return fail(tr("No audio input device was found."));
    PaStreamParameters format{};
    format.device = device;
    format.channelCount = 1;
    format.sampleFormat = paFloat32;
    const PaDeviceInfo* info = Pa_GetDeviceInfo(device);
    format.suggestedLatency = info ? info->defaultLowInputLatency : 0.05;
    if (Pa_IsFormatSupported(&format, nullptr, sampleRate) != paFormatIsSupported)
        return fail(tr("The audio input cannot record at %1 Hz.").arg(sampleRate));

    m_samples.assign(static_cast<std::size_t>(kMaxSeconds * sampleRate), 0.0f);
    m_nCount = 0;
    m_fPeak = 0.0f;
    m_dSampleRate = sampleRate;
    m_pStream = new Stream;
    PaError status =
        Pa_OpenStream(&m_pStream->stream, &format, nullptr, sampleRate, 256, paClipOff, recordProc, this);
    if (status == paNoError)
        status = Pa_StartStream(m_pStream->stream);
    if (status != paNoError) {
        Log::printf("Pa_StartStream=%ld\n", static_cast<long>(status));
        if (m_pStream->stream)
            Pa_CloseStream(m_pStream->stream);
        delete m_pStream;
        m_pStream = nullptr;
        return fail(
            tr("The audio input could not be started: %1").arg(QString::fromUtf8(Pa_GetErrorText(status))));
    }
    m_bRecording = true;
    return true;
}

void AudioRecorder::stop()
{
    if (!m_pStream)
        return;
    Pa_StopStream(m_pStream->stream);
    Pa_CloseStream(m_pStream->stream);
    delete m_pStream;
    m_pStream = nullptr;
    m_bRecording = false;
    emit finished();
}

double AudioRecorder::takePeak()
{
    return m_fPeak.exchange(0.0f);
}

std::vector<float> AudioRecorder::samples() const
{
    const std::size_t n = std::min(m_nCount.load(), m_samples.size());
    return std::vector<float>(m_samples.begin(), m_samples.begin() + static_cast<std::ptrdiff_t>(n));
}
