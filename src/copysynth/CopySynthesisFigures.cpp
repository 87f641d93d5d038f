#include "copysynth/CopySynthesisFigures.h"

#include "copysynth/MelCepstralDistance.h"
#include "document/Channels.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace
{

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
// Rows of the formant analysis: the formant command's default height.
constexpr int kFormantRows = 256;
// Largest sample a 16-bit file holds.
constexpr double kFullScale = 32767.0 / 32768.0;

double median(std::vector<double> v)
{
    if (v.empty())
        return kNaN;
    const std::size_t half = v.size() / 2;
    std::nth_element(v.begin(), v.begin() + half, v.end());
    if (v.size() % 2 == 1)
        return v[half];
    const double upper = v[half];
    return (*std::max_element(v.begin(), v.begin() + half) + upper) / 2.0;
}

// A channel holding n samples of x at `sampleRate`, for the analyses that read channels.
std::unique_ptr<Channels> channelOf(const float* x, std::size_t n, double sampleRate)
{
    auto channel = std::make_unique<Channels>();
    channel->m_hData = MemoryBlock::newHandleClear(std::max<std::size_t>(n, 1) * sizeof(float));
    if (!channel->m_hData)
        throw std::bad_alloc();
    if (n > 0)
        std::memcpy(channel->m_hData->bytes(), x, n * sizeof(float));
    channel->m_dSampleRate = sampleRate;
    channel->m_dwFileLength = static_cast<double>(n);
    channel->m_dLengthMS = n * 1000.0 / sampleRate;
    return channel;
}

double relativeError(double measured, double reference)
{
    return std::fabs(measured - reference) / reference;
}

void appendFigure(std::string& line, const char* key, double value, const char* format)
{
    char text[64];
    if (std::isnan(value))
        std::snprintf(text, sizeof text, "%s%s=nan", line.empty() ? "" : " ", key);
    else {
        char number[32];
        std::snprintf(number, sizeof number, format, value);
        std::snprintf(text, sizeof text, "%s%s=%s", line.empty() ? "" : " ", key, number);
    }
    line += text;
}

} // namespace

std::vector<float> CopySynthesisFigures::resampleLinear(const float* x, std::size_t n, double from, double to)
{
    if (from == to || n == 0)
        return std::vector<float>(x, x + n);
    const auto count = static_cast<std::size_t>(static_cast<double>(n) * to / from);
    std::vector<float> out(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double position = static_cast<double>(i) / to * from;
        const auto k = static_cast<std::size_t>(position);
        if (k + 1 >= n) {
            out[i] = x[n - 1];
            continue;
        }
        const double fraction = position - static_cast<double>(k);
        out[i] = static_cast<float>(x[k] + (static_cast<double>(x[k + 1]) - x[k]) * fraction);
    }
    return out;
}

double CopySynthesisFigures::levelDifference(const float* a, const float* b, std::size_t n, double sampleRate,
                                             int& frames)
{
    frames = 0;
    const auto length = static_cast<std::size_t>(kLevelFrameMS / 1000.0 * sampleRate);
    if (length == 0 || n < length)
        return kNaN;
    const std::size_t count = n / length;
    std::vector<double> la(count), lb(count);
    for (std::size_t f = 0; f < count; ++f) {
        double sa = 0.0, sb = 0.0;
        for (std::size_t i = f * length; i < (f + 1) * length; ++i) {
            sa += static_cast<double>(a[i]) * a[i];
            sb += static_cast<double>(b[i]) * b[i];
        }
        la[f] = 10.0 * std::log10(sa / length + 1e-12);
        lb[f] = 10.0 * std::log10(sb / length + 1e-12);
    }
    const double loudest = *std::max_element(la.begin(), la.end());
    std::vector<double> differences;
    for (std::size_t f = 0; f < count; ++f)
        if (la[f] > loudest - kLevelFloorDB)
            differences.push_back(std::fabs(la[f] - lb[f]));
    frames = static_cast<int>(differences.size());
    return median(std::move(differences));
}

std::int64_t CopySynthesisFigures::clippedSamples(const float* x, std::size_t n)
{
    return std::count_if(x, x + n, [](float v) { return v >= kFullScale || v <= -1.0; });
}

void CopySynthesisFigures::measurePitchAndFormants(const Channels& original, const Channels& synthesis,
                                                   const PitchSettings& pitch,
                                                   const SpectrogramSettings& spectrogram)
{
    PitchTrackComputation pa, pb;
    pa.DoPitchCepstral(original, pitch);
    pb.DoPitchCepstral(synthesis, pitch);
    const int frames = std::min(pa.m_nFrameCount, pb.m_nFrameCount);
    SpectrogramSettings settings = spectrogram;
    settings.m_bSpecDrawFormantTracking = true;
    SpectrogramComputation fa(settings), fb(settings);
    const bool formants = frames > 0 && fa.compute(original, frames, kFormantRows) &&
                          fb.compute(synthesis, frames, kFormantRows) && fa.m_bHaveFormants &&
                          fb.m_bHaveFormants;
    std::vector<double> f0, f1, f2;
    for (int i = 0; i < frames; ++i) {
        const double reference = pa.m_hdPitchFile[i], measured = pb.m_hdPitchFile[i];
        if (reference <= 0.0 || measured <= 0.0)
            continue;
        f0.push_back(relativeError(measured, reference));
        if (!formants)
            continue;
        const FormantRecord& ra = fa.m_phsnFormants[i];
        const FormantRecord& rb = fb.m_phsnFormants[i];
        if (ra[0] > 0 && rb[0] > 0)
            f1.push_back(relativeError(rb[0], ra[0]));
        if (ra[1] > 0 && rb[1] > 0)
            f2.push_back(relativeError(rb[1], ra[1]));
    }
    m_nCoVoicedFrames = static_cast<int>(f0.size());
    const auto gross = std::count_if(f0.begin(), f0.end(), [](double e) { return e > kGrossError; });
    m_dF0GrossPercent = f0.empty() ? kNaN : 100.0 * static_cast<double>(gross) / f0.size();
    m_dF0ErrorPercent = 100.0 * median(std::move(f0));
    m_dF1ErrorPercent = 100.0 * median(std::move(f1));
    m_dF2ErrorPercent = 100.0 * median(std::move(f2));
}

CopySynthesisFigures CopySynthesisFigures::measure(const Channels& original, const Channels& synthesis,
                                                   const PitchSettings& pitch,
                                                   const SpectrogramSettings& spectrogram)
{
    CopySynthesisFigures f;
    const double rate = original.m_dSampleRate;
    const float* a = original.samples();
    const std::size_t na = a ? original.sampleCount() : 0;
    const float* s = synthesis.samples();
    const std::size_t ns = s ? synthesis.sampleCount() : 0;
    f.m_nClippedSamples = clippedSamples(s, ns);
    const std::vector<float> b = resampleLinear(s, ns, synthesis.m_dSampleRate, rate);
    const std::size_t n = std::min(na, b.size());

    const MelCepstralDistance::Result mcd =
        MelCepstralDistance::compute(a, b.data(), n, rate, kCepstralFloorDB);
    f.m_dMelCepstralDistanceDB = mcd.distanceDB;
    f.m_nCepstralFrames = mcd.frames;
    f.m_dLevelDifferenceDB = levelDifference(a, b.data(), n, rate, f.m_nLevelFrames);
    const auto ca = channelOf(a, n, rate);
    const auto cb = channelOf(b.data(), n, rate);
    f.measurePitchAndFormants(*ca, *cb, pitch, spectrogram);
    return f;
}

std::string CopySynthesisFigures::summaryLine() const
{
    std::string line;
    appendFigure(line, "mcd_db", m_dMelCepstralDistanceDB, "%.2f");
    appendFigure(line, "level_db", m_dLevelDifferenceDB, "%.2f");
    appendFigure(line, "f0_err_pct", m_dF0ErrorPercent, "%.2f");
    appendFigure(line, "f0_gross_pct", m_dF0GrossPercent, "%.1f");
    appendFigure(line, "f1_err_pct", m_dF1ErrorPercent, "%.2f");
    appendFigure(line, "f2_err_pct", m_dF2ErrorPercent, "%.2f");
    appendFigure(line, "clipped", static_cast<double>(m_nClippedSamples), "%.0f");
    appendFigure(line, "covoiced", m_nCoVoicedFrames, "%.0f");
    return line;
}
