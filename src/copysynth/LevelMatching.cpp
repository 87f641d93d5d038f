// Analysis by synthesis of the copy synthesis's amplitudes.
#include "copysynth/LevelMatching.h"

#include "copysynth/SignalTools.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <future>

namespace
{

constexpr double kLevelWindowS = 0.02; // levels are compared over 20 ms
constexpr int kMinGain = 4;            // `gain` of 3 or less means 57 to the synthesizer
constexpr double kPeakLimit =
    0.89; // the loudest sample, of full scale: 1 dB below, as the noise of another run differs
constexpr int kFricationBands = 4; // a2f .. a5f
constexpr double kPauseDb = 55.0;  // unvoiced frames this far below the loudest are pauses
// Share of a frame's level error corrected per pass: neighbouring frames share their windows
// and a voicing change waits for the next period, so full corrections would overshoot.
constexpr double kDamping = 0.7;

int clampDb(double v, int low = 0, int high = 87)
{
    return static_cast<int>(std::clamp(std::lround(v), static_cast<long>(low), static_cast<long>(high)));
}

double median(std::vector<double> v)
{
    if (v.empty())
        return 0.0;
    std::nth_element(v.begin(), v.begin() + v.size() / 2, v.end());
    return v[v.size() / 2];
}

} // namespace

// The frames with some sources switched off.
std::vector<FrameValues> LevelMatching::only(std::vector<FrameValues> frames, bool voicing, bool noise)
{
    for (FrameValues& f : frames) {
        if (!voicing) {
            f[Row::av] = 0;
            f[Row::apv] = 0;
        }
        if (!noise) {
            f[Row::af] = 0;
            f[Row::ah] = 0;
            f[Row::atu] = 0;
        }
    }
    return frames;
}

std::vector<double> frameLevels(const float* x, std::size_t count, double rate,
                                const std::vector<double>& centres, double windowS)
{
    const int length = std::max(2, static_cast<int>(windowS * rate));
    const std::vector<double> window = hannWindow(length);
    double energy = 0.0;
    for (double w : window)
        energy += w * w;
    std::vector<double> segment(length), out(centres.size());
    for (std::size_t f = 0; f < centres.size(); ++f) {
        windowedSegment(x, count, centres[f] * rate, length, window, segment.data());
        double sum = 0.0;
        for (double v : segment)
            sum += v * v;
        out[f] = levelDb(sum / energy);
    }
    return out;
}

LevelMatching::LevelMatching(const LevelTarget& target, int outputRate, int intervalMS)
    : m_target(target), m_nRate(outputRate), m_nInterval(intervalMS), m_dWindow(kLevelWindowS)
{
    m_recordingLevels = frameLevels(target.samples, target.count, target.rate, target.centres, m_dWindow);
    m_dMelTop = std::min({target.rate / 2.0, outputRate / 2.0, 5000.0});
    m_dLoudest = m_recordingLevels.empty()
                     ? 0.0
                     : *std::max_element(m_recordingLevels.begin(), m_recordingLevels.end());
    // The spectral comparison looks at every other loud voiced frame: it chooses settings for the
    // whole utterance, and half the frames choose as well as all of them.
    m_loudVoiced.resize(target.centres.size());
    for (std::size_t f = 0; f < m_loudVoiced.size(); ++f)
        m_loudVoiced[f] = target.voiced[f] && m_recordingLevels[f] > m_dLoudest - 30.0 && f % 2 == 0;
    m_recordingCepstra = MelCepstrum(target.rate, m_dMelTop)
                             .frames(target.samples, target.count, target.centres, &m_loudVoiced);
}

double LevelMatching::spectralDistance(const std::vector<FrameValues>& frames) const
{
    const Rendering r = renderFrames(only(frames, true, false), m_nRate, m_nInterval);
    const std::vector<MelFrame> synth =
        MelCepstrum(m_nRate, m_dMelTop)
            .frames(r.samples.data(), r.samples.size(), m_target.centres, &m_loudVoiced);
    double sum = 0.0;
    int n = 0;
    for (std::size_t f = 0; f < synth.size(); ++f)
        if (m_loudVoiced[f]) {
            sum += MelCepstrum::distance(m_recordingCepstra[f], synth[f]);
            ++n;
        }
    return n ? sum / n : 0.0;
}

std::vector<double> LevelMatching::levelsOf(const Rendering& r) const
{
    return frameLevels(r.samples.data(), r.samples.size(), m_nRate, m_target.centres, m_dWindow);
}

// av varies from frame to frame as the corrections go; a voice whose periods alternate in
// strength sounds rough and reads as half its pitch. Each voiced frame takes the mean of itself
// and its voiced neighbours.
void LevelMatching::smoothVoicing(std::vector<FrameValues>& frames) const
{
    const std::size_t n = m_target.centres.size();
    std::vector<int> av(n);
    for (std::size_t f = 0; f < n; ++f)
        av[f] = frames[f][Row::av];
    for (std::size_t f = 0; f < n; ++f) {
        if (!m_target.voiced[f] || av[f] < audible(Row::av))
            continue;
        double sum = 0.0;
        int count = 0;
        for (std::size_t g = f > 0 ? f - 1 : 0; g <= std::min(n - 1, f + 1); ++g)
            if (m_target.voiced[g] && av[g] >= audible(Row::av)) {
                sum += av[g];
                ++count;
            }
        frames[f][Row::av] = static_cast<int>(std::lround(sum / count));
    }
}

void LevelMatching::matchVoicing(std::vector<FrameValues>& frames, int passes) const
{
    const std::size_t n = m_target.centres.size();
    for (int pass = 0; pass < passes; ++pass) {
        const std::vector<double> synth =
            levelsOf(renderFrames(only(frames, true, false), m_nRate, m_nInterval));
        std::vector<double> differences;
        for (std::size_t f = 0; f < n; ++f)
            if (m_target.voiced[f] && synth[f] > kSilentDb)
                differences.push_back(m_recordingLevels[f] - synth[f]);
        if (pass == 0 && !differences.empty()) {
            // The overall offset goes into `gain`, so that av keeps its usual range.
            const int gain = frames[0][Row::gain];
            const int newGain = clampDb(gain + median(differences), kMinGain);
            for (FrameValues& v : frames)
                v[Row::gain] = newGain;
            continue;
        }
        // A voicing change waits for the next period, which may start in a neighbouring frame:
        // the corrections are averaged over three voiced frames so that no frame's av drifts.
        std::vector<double> error(n, 0.0);
        for (std::size_t f = 0; f < n; ++f)
            if (m_target.voiced[f] && synth[f] > kSilentDb)
                error[f] = std::clamp(m_recordingLevels[f] - synth[f], -20.0, 20.0);
        for (std::size_t f = 0; f < n; ++f) {
            if (!m_target.voiced[f] || synth[f] <= kSilentDb)
                continue;
            double sum = 0.0;
            int count = 0;
            for (std::size_t g = f > 0 ? f - 1 : 0; g <= std::min(n - 1, f + 1); ++g)
                if (m_target.voiced[g] && synth[g] > kSilentDb) {
                    sum += error[g];
                    ++count;
                }
            frames[f][Row::av] =
                clampDb(frames[f][Row::av] + kDamping * (0.5 * error[f] + 0.5 * sum / count));
        }
    }
}

int LevelMatching::frameLength(double seconds, double rate)
{
    return std::max(8, static_cast<int>(seconds * rate));
}

std::vector<std::vector<double>> LevelMatching::levelsInBands(const float* x, std::size_t count, double rate,
                                                              const std::vector<FrameValues>& frames,
                                                              const BandLayout& layout) const
{
    FrameSpectrum spectrum(frameLength(layout.windowS, rate));
    // The bands end at 5.5 kHz: above it the sixth to eighth formants take over.
    const double top = std::min({rate, m_target.rate, static_cast<double>(m_nRate), 2.0 * kHighBandHz}) / 2.0;
    std::vector<std::size_t> chosen;
    for (std::size_t f = 0; f < m_target.centres.size(); ++f)
        if (m_target.voiced[f] == layout.voiced)
            chosen.push_back(f);
    std::vector<std::vector<double>> out(m_target.centres.size());
    const auto read = [&](std::size_t f, bool second) {
        const std::vector<double> edges = layout.edges(frames[f], top);
        out[f].resize(edges.size() - 1);
        for (std::size_t b = 0; b + 1 < edges.size(); ++b)
            out[f][b] = spectrum.bandLevelDb(edges[b], edges[b + 1], rate, second);
    };
    // Two frames share one transform.
    for (std::size_t i = 0; i < chosen.size(); i += 2) {
        if (i + 1 < chosen.size()) {
            spectrum.analysePair(x, count, m_target.centres[chosen[i]] * rate,
                                 m_target.centres[chosen[i + 1]] * rate);
            read(chosen[i + 1], true);
        } else {
            spectrum.analyse(x, count, m_target.centres[chosen[i]] * rate);
        }
        read(chosen[i], false);
    }
    return out;
}

std::vector<std::vector<double>> LevelMatching::bandLevels(const float* x, std::size_t count, double rate,
                                                           const std::vector<FrameValues>& frames,
                                                           bool voiced) const
{
    // A frame's own stretch only: a longer window would hear the loud voiced neighbours of a
    // short unvoiced stretch and ask the frication for their level.
    const BandLayout layout{1.5 * m_nInterval / 1000.0, voiced, [](const FrameValues& v, double top) {
                                return std::vector<double>{
                                    0.5 * (v[Row::f1] + v[Row::f2]), 0.5 * (v[Row::f2] + v[Row::f3]),
                                    0.5 * (v[Row::f3] + v[Row::f4]), 0.5 * (v[Row::f4] + v[Row::f5]), top};
                            }};
    return levelsInBands(x, count, rate, frames, layout);
}

void LevelMatching::matchFrication(std::vector<FrameValues>& frames, int passes) const
{
    static const int rows[kFricationBands] = {Row::a2f, Row::a3f, Row::a4f, Row::a5f};
    for (std::size_t f = 0; f < m_target.centres.size(); ++f)
        if (!m_target.voiced[f]) {
            // Stretches far below the loudest are pauses: no noise there.
            const bool pause = m_recordingLevels[f] < m_dLoudest - kPauseDb;
            frames[f][Row::af] = pause ? 0 : 60;
            for (int row : rows)
                frames[f][row] = pause ? 0 : 60;
        }
    const auto recording = bandLevels(m_target.samples, m_target.count, m_target.rate, frames, false);
    for (int pass = 0; pass < passes; ++pass) {
        const Rendering r = renderFrames(only(frames, false, true), m_nRate, m_nInterval);
        const auto synth = bandLevels(r.samples.data(), r.samples.size(), m_nRate, frames, false);
        for (std::size_t f = 0; f < m_target.centres.size(); ++f) {
            if (m_target.voiced[f] || frames[f][Row::af] == 0)
                continue;
            for (int b = 0; b < kFricationBands; ++b) {
                int& value = frames[f][rows[b]];
                if (synth[f][b] > kSilentDb)
                    value = clampDb(value + std::clamp(recording[f][b] - synth[f][b], -40.0, 40.0));
            }
        }
    }
}

// The cascade's voicing may fall short of the recording around the fourth and fifth formants
// (a voice with more high harmonics than the synthesizer's source). Voicing through the
// parallel F4 and F5 (apv, a4f, a5f) makes up what is missing there: its level is measured
// alone once, and each voiced frame's a4f and a5f are set to add the missing power.
void LevelMatching::matchVoicedBalance(std::vector<FrameValues>& frames) const
{
    constexpr int kProbe = 60;
    constexpr int bands[2] = {2, 3}; // of bandLevels: around f4 and above
    constexpr int rows[2] = {Row::a4f, Row::a5f};
    std::vector<FrameValues> probe = only(frames, false, false);
    for (std::size_t f = 0; f < m_target.centres.size(); ++f)
        if (m_target.voiced[f]) {
            FrameValues& v = probe[f];
            v[Row::apv] = kProbe;
            v[Row::a1f] = v[Row::a2f] = v[Row::a3f] = 0;
            v[Row::a4f] = v[Row::a5f] = kProbe;
        }
    // The parallel branch alone is synthesized and measured on a thread of its own meanwhile.
    std::future<std::vector<std::vector<double>>> aloneLevels =
        std::async(std::launch::async, [this, &probe] {
            const Rendering parallel = renderFrames(probe, m_nRate, m_nInterval);
            return bandLevels(parallel.samples.data(), parallel.samples.size(), m_nRate, probe, true);
        });
    const auto recording = bandLevels(m_target.samples, m_target.count, m_target.rate, frames, true);
    const Rendering cascade = renderFrames(only(frames, true, false), m_nRate, m_nInterval);
    const auto synth = bandLevels(cascade.samples.data(), cascade.samples.size(), m_nRate, frames, true);
    const auto alone = aloneLevels.get();
    for (std::size_t f = 0; f < m_target.centres.size(); ++f) {
        if (!m_target.voiced[f])
            continue;
        FrameValues& v = frames[f];
        v[Row::a1f] = v[Row::a2f] = v[Row::a3f] = 0;
        bool used = false;
        for (int k = 0; k < 2; ++k) {
            const double want = recording[f][bands[k]], have = synth[f][bands[k]];
            const double missing =
                want > have + 1.0
                    ? 10.0 * std::log10(std::pow(10.0, want / 10.0) - std::pow(10.0, have / 10.0))
                    : kSilentDb;
            v[rows[k]] = missing > kSilentDb && alone[f][bands[k]] > kSilentDb
                             ? clampDb(kProbe + missing - alone[f][bands[k]])
                             : 0;
            used = used || v[rows[k]] >= audible(Row::af);
        }
        v[Row::apv] = used ? kProbe : 0;
    }
}

void LevelMatching::matchTotal(std::vector<FrameValues>& frames, int passes) const
{
    for (int pass = 0; pass < passes; ++pass) {
        const std::vector<double> synth = levelsOf(renderFrames(frames, m_nRate, m_nInterval));
        for (std::size_t f = 0; f < m_target.centres.size(); ++f) {
            if (synth[f] <= kSilentDb)
                continue;
            const double d = kDamping * std::clamp(m_recordingLevels[f] - synth[f], -20.0, 20.0);
            FrameValues& v = frames[f];
            const int row = m_target.voiced[f] ? Row::av : Row::af;
            if (v[row] > 0)
                v[row] = clampDb(v[row] + d);
        }
    }
}

// Frames whose synthesis overshoots (a resonance ringing up as the formants move) are
// turned down where they overshoot, so that one loud spot does not lower the whole utterance;
// `gain` comes down only for what that cannot mend.
double LevelMatching::limitPeak(std::vector<FrameValues>& frames) const
{
    double peak = 0.0;
    for (int attempt = 0; attempt < 10; ++attempt) {
        const Rendering r = renderFrames(frames, m_nRate, m_nInterval);
        peak = r.peak;
        if (peak <= kPeakLimit)
            break;
        if (attempt < 6) {
            // A frame's voicing takes effect at the next period start, which may fall in the
            // following frame: each frame comes down by the larger overshoot of itself and the
            // frame after it.
            const std::size_t n = r.framePeaks.size();
            for (std::size_t f = 0; f < n; ++f) {
                const double framePeak = std::max(r.framePeaks[f], f + 1 < n ? r.framePeaks[f + 1] : 0.0);
                if (framePeak <= kPeakLimit * 0.98)
                    continue;
                const int lower =
                    std::max(1, static_cast<int>(std::ceil(20.0 * std::log10(framePeak / kPeakLimit))));
                // A frame without sources of its own rings on from the frames before it.
                for (std::size_t g = f, back = 0; back < 3; --g, ++back) {
                    bool lowered = false;
                    for (int row : {Row::av, Row::apv, Row::af, Row::ah})
                        if (frames[g][row] >= audible(row)) {
                            frames[g][row] = std::max(0, frames[g][row] - lower);
                            lowered = true;
                        }
                    if (lowered || g == 0)
                        break;
                }
            }
            continue;
        }
        if (frames[0][Row::gain] <= kMinGain)
            break;
        const int lower = std::max(1, static_cast<int>(std::ceil(20.0 * std::log10(peak / kPeakLimit))));
        const int gain = std::max(kMinGain, frames[0][Row::gain] - lower);
        for (FrameValues& v : frames)
            v[Row::gain] = gain;
    }
    return peak;
}
