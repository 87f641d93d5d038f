#include "stimulus/Stimulus.h"

#include "document/DocumentException.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <new>

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

} // namespace

Stimulus::Stimulus(std::vector<float> samples, int rate) : m_samples(std::move(samples)), m_nRate(rate) {}

std::vector<float> resampleSignal(const float* samples, std::size_t count, int fromRate, int toRate)
{
    if (fromRate == toRate || count == 0)
        return std::vector<float>(samples, samples + count);
    const auto length = static_cast<std::size_t>(std::llround(double(count) * toRate / fromRate));
    std::vector<float> out(length, 0.0f);
    const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
    // The very-high-quality recipe: linear phase, flat to beyond 0.9 of the lower Nyquist
    // frequency, stop band from the lower Nyquist frequency on, about 175 dB down.
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, 0);
    std::size_t done = 0;
    if (const soxr_error_t error = soxr_oneshot(fromRate, toRate, 1, samples, count, nullptr, out.data(),
                                                length, &done, &io, &quality, nullptr))
        throw DocumentException("Resampling", error);
    // The one-shot call delivers the whole delay-compensated signal; a sample it left short
    // stays silent.
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

std::int32_t quantizeSample(float sample, double gain, int bits, bool& clipped)
{
    const double scale = bits == 24 ? 8388608.0 : 32768.0;
    const double v = std::nearbyint(double(sample) * gain * scale);
    clipped = false;
    if (std::isnan(v))
        return 0;
    // Full scale itself is stored as the largest positive value without counting as clipped:
    // a peak of 0 dBFS is a level one may ask for.
    if (v > scale - 1.0) {
        clipped = v > scale;
        return static_cast<std::int32_t>(scale - 1.0);
    }
    if (v < -scale) {
        clipped = true;
        return static_cast<std::int32_t>(-scale);
    }
    return static_cast<std::int32_t>(v);
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
