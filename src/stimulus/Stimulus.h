#pragma once
// One stimulus on its way to a file: the synthesized samples resampled to the output rate, with
// their ramps and silence, before the gain. Owns its samples (32-bit floats, full scale +-1).
// The level and gain rules live here too, so that one file and a batch of files sharing one
// gain decide alike. Any thread; an object is used by one thread at a time.
// Allocation failure throws DocumentException::memoryError(); a resampler failure throws
// DocumentException("Resampling", reason).
#include "stimulus/StimulusOutput.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

// What the gain rules need to know of a prepared stimulus: its RMS and peak in dB re full scale
// (-infinity for silence) and its extreme samples.
struct StimulusLevels {
    double rmsDb = 0.0;
    double peakDb = 0.0;
    float lowest = 0.0f;
    float highest = 0.0f;
};

class Stimulus
{
public:
    Stimulus() = default;
    Stimulus(std::vector<float> samples, int rate);

    // Resamples `count` samples at `rate` Hz to the output's rate (a very-high-quality
    // linear-phase resampler; the length becomes round(count * out / in)), puts raised-cosine
    // ramps on both ends (each at most half the signal), then the silence before and after.
    static Stimulus prepare(const float* samples, std::size_t count, int rate, const StimulusOutput& output);

    const std::vector<float>& samples() const { return m_samples; }
    int rate() const { return m_nRate; }
    double durationMS() const;
    StimulusLevels levels() const;

private:
    std::vector<float> m_samples;
    int m_nRate = 0;
};

// The resampled signal alone: `count` samples from `fromRate` to `toRate` Hz.
std::vector<float> resampleSignal(const float* samples, std::size_t count, int fromRate, int toRate);
// Makes a resampler for the pair of rates ahead of time, so that worker processes forked
// afterwards each find its filter designed: the next resampleSignal() for these rates in each
// process uses it (once). Throws like resampleSignal().
void prepareResampler(int fromRate, int toRate);
// Raised-cosine onset and offset of `rampSamples` each (cut to half the signal), in place.
void applyRamps(std::vector<float>& samples, std::size_t rampSamples);

// The gain in dB that brings a stimulus of these levels to the output's level; 0 when the
// output keeps the level, or when the stimulus is silent.
double levelGainDb(const StimulusOutput& output, const StimulusLevels& levels);
// The gain of a set of files sharing one gain: the smallest of their own gains, so that the
// loudest file reaches the level and the others keep their distance below it.
double commonGainDb(const std::vector<double>& ownGainsDb);

// One sample scaled by `gain` (linear) into the integer range of `bits`, rounded to nearest;
// `clipped` is set when it lay beyond full scale and was limited (+full scale itself becomes the
// largest positive value unclipped).
// Inline: it runs once for every sample written.
inline std::int32_t quantizeSample(float sample, double gain, int bits, bool& clipped)
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
// Whether the gain would clip any sample, judged on the extremes alone: quantizing is monotonic,
// so the extremes clip whenever any sample does.
bool gainClips(const StimulusLevels& levels, double gainDb, int bits);
// The message for a refused gain: what it was for and what it would do.
std::string clipRefusal(const StimulusOutput& output, const StimulusLevels& levels, double gainDb);
