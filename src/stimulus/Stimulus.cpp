#include "stimulus/Stimulus.h"

#include "document/DocumentException.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <mutex>
#include <new>
#include <utility>

namespace
{

constexpr double kPi = 3.14159265358979323846;

std::size_t msToSamples(double ms, int rate)
{
    return static_cast<std::size_t>(std::llround(ms * rate / 1000.0));
}

double toDb(double power)
{
    return power > 0.0 ? 10.0 * std::log10(power) : -std::numeric_limits<double>::infinity();
}

// Feeds the resampler in pieces: its internal buffers stay small (fewer fresh pages to fault
// in), which makes it about a third faster than one call for the whole signal, with the same
// output to the bit.
void runResampler(soxr_t resampler, const float* samples, std::size_t count, std::vector<float>& out)
{
    constexpr std::size_t kPiece = 1024;
    std::size_t read = 0, written = 0;
    while (read < count && written < out.size()) {
        std::size_t consumed = 0, produced = 0;
        const soxr_error_t error =
            soxr_process(resampler, samples + read, std::min(kPiece, count - read), &consumed,
                         out.data() + written, out.size() - written, &produced);
        if (error)
            throw DocumentException("Resampling", error);
        read += consumed;
        written += produced;
    }
    // The end of the input: the filter's tail. Samples it leaves short stay silent.
    while (written < out.size()) {
        std::size_t produced = 0;
        if (const soxr_error_t error = soxr_process(resampler, nullptr, 0, nullptr, out.data() + written,
                                                    out.size() - written, &produced))
            throw DocumentException("Resampling", error);
        if (produced == 0)
            break;
        written += produced;
    }
}

} // namespace

Stimulus::Stimulus(std::vector<float> samples, int rate) : m_samples(std::move(samples)), m_nRate(rate) {}

namespace
{

soxr_t makeResampler(int fromRate, int toRate)
{
    const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
    // The very-high-quality recipe: linear phase, flat to beyond 0.9 of the lower Nyquist
    // frequency, stop band from the lower Nyquist frequency on, about 175 dB down.
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, 0);
    // One thread: the library's worker threads cost more to start than a stimulus takes, and
    // batches already run a process per core.
    const soxr_runtime_spec_t runtime = soxr_runtime_spec(1);
    soxr_error_t error = nullptr;
    const soxr_t resampler = soxr_create(fromRate, toRate, 1, &error, &io, &quality, &runtime);
    if (!resampler)
        throw DocumentException("Resampling", error ? error : "the resampler could not be made");
    return resampler;
}

// Resamplers made ahead of use (their filters designed), each good for one signal in each
// process that holds a copy: worker processes forked after prepareResampler() inherit them.
struct SpareResampler {
    int from = 0, to = 0;
    soxr_t resampler = nullptr;
};
// The spares a process never took go with it at its end.
struct SpareResamplers : std::vector<SpareResampler> {
    ~SpareResamplers()
    {
        for (SpareResampler& spare : *this)
            if (spare.resampler)
                soxr_delete(spare.resampler);
    }
};
std::mutex g_spareMutex;
SpareResamplers g_spares;

soxr_t takeResampler(int fromRate, int toRate)
{
    {
        const std::lock_guard lock(g_spareMutex);
        for (SpareResampler& spare : g_spares)
            if (spare.from == fromRate && spare.to == toRate && spare.resampler)
                return std::exchange(spare.resampler, nullptr);
    }
    return makeResampler(fromRate, toRate);
}

} // namespace

void prepareResampler(int fromRate, int toRate)
{
    if (fromRate == toRate || fromRate <= 0 || toRate <= 0)
        return;
    const std::lock_guard lock(g_spareMutex);
    for (const SpareResampler& spare : g_spares)
        if (spare.from == fromRate && spare.to == toRate && spare.resampler)
            return;
    g_spares.push_back({fromRate, toRate, makeResampler(fromRate, toRate)});
}

std::vector<float> resampleSignal(const float* samples, std::size_t count, int fromRate, int toRate)
{
    if (fromRate == toRate || count == 0)
        return std::vector<float>(samples, samples + count);
    const auto length = static_cast<std::size_t>(std::llround(double(count) * toRate / fromRate));
    std::vector<float> out(length, 0.0f);
    const soxr_t resampler = takeResampler(fromRate, toRate);
    try {
        runResampler(resampler, samples, count, out);
    } catch (...) {
        soxr_delete(resampler);
        throw;
    }
    soxr_delete(resampler);
    return out;
}

void applyRamps(std::vector<float>& samples, std::size_t rampSamples)
{
    const std::size_t n = std::min(rampSamples, samples.size() / 2);
    for (std::size_t i = 0; i < n; ++i) {
        // 0 at the outermost sample, rising to just below 1 where the ramp meets the signal.
        const auto w = static_cast<float>(0.5 - 0.5 * std::cos(kPi * double(i) / double(n)));
        samples[i] *= w;
        samples[samples.size() - 1 - i] *= w;
    }
}

Stimulus Stimulus::prepare(const float* samples, std::size_t count, int rate, const StimulusOutput& output)
{
    const int outRate = output.rate != 0 ? output.rate : rate;
    try {
        std::vector<float> signal = resampleSignal(samples, count, rate, outRate);
        applyRamps(signal, msToSamples(output.rampMS, outRate));
        const std::size_t before = msToSamples(output.padBeforeMS, outRate);
        const std::size_t after = msToSamples(output.padAfterMS, outRate);
        if (before + after > 0) {
            std::vector<float> padded(before + signal.size() + after, 0.0f);
            std::copy(signal.begin(), signal.end(), padded.begin() + static_cast<std::ptrdiff_t>(before));
            signal.swap(padded);
        }
        return Stimulus(std::move(signal), outRate);
    } catch (const std::bad_alloc&) {
        throw DocumentException::memoryError();
    } catch (const std::length_error&) {
        throw DocumentException::memoryError();
    }
}

double Stimulus::durationMS() const
{
    return m_nRate > 0 ? double(m_samples.size()) * 1000.0 / m_nRate : 0.0;
}

StimulusLevels Stimulus::levels() const
{
    StimulusLevels levels;
    double sum = 0.0;
    for (const float s : m_samples) {
        sum += double(s) * s;
        levels.lowest = std::min(levels.lowest, s);
        levels.highest = std::max(levels.highest, s);
    }
    levels.rmsDb = toDb(m_samples.empty() ? 0.0 : sum / double(m_samples.size()));
    const double peak = std::max(-double(levels.lowest), double(levels.highest));
    levels.peakDb = toDb(peak * peak);
    return levels;
}

double levelGainDb(const StimulusOutput& output, const StimulusLevels& levels)
{
    if (output.level == StimulusOutput::Level::Unchanged)
        return 0.0;
    const double now = output.level == StimulusOutput::Level::Rms ? levels.rmsDb : levels.peakDb;
    return std::isfinite(now) ? output.levelDb - now : 0.0;
}

double commonGainDb(const std::vector<double>& ownGainsDb)
{
    if (ownGainsDb.empty())
        return 0.0;
    return *std::min_element(ownGainsDb.begin(), ownGainsDb.end());
}

bool gainClips(const StimulusLevels& levels, double gainDb, int bits)
{
    const double gain = std::pow(10.0, gainDb / 20.0);
    bool low = false, high = false;
    quantizeSample(levels.lowest, gain, bits, low);
    quantizeSample(levels.highest, gain, bits, high);
    return low || high;
}

std::string clipRefusal(const StimulusOutput& output, const StimulusLevels& levels, double gainDb)
{
    char text[256];
    std::snprintf(text, sizeof text,
                  "a gain of %+.2f dB for --normalize %s would clip (peak %+.2f dBFS); lower the level, "
                  "or give --allow-clip to write it limited",
                  gainDb, output.normalizeText().c_str(), levels.peakDb + gainDb);
    return text;
}
