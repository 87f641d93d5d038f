// Formant tracks under one ceiling: LPC roots per frame, a path search over their assignments.
#include "copysynth/FormantTracker.h"

#include "copysynth/LpcRoots.h"
#include "copysynth/SignalTools.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{

constexpr double kPi = 3.14159265358979323846;
constexpr int kMaxCandidates = 7; // the narrowest roots kept per frame
constexpr double kWidestCandidate = 1500.0;
constexpr double kMissingCost = 1.2;     // a formant left unassigned in a frame
constexpr double kFrequencyWeight = 1.0; // distance from the reference position, relative
constexpr double kBandwidthWeight = 1.0; // bandwidth relative to frequency
constexpr double kTransitionWeight = 1.0;

using State = std::array<signed char, kTrackedFormants>; // candidate per formant, -1 = missing

// Every way to give `slots` formants increasing candidates out of `n` (when there are fewer
// candidates than formants, every way to place all of them in order).
void enumerateStates(int n, int slots, std::vector<State>& out)
{
    out.clear();
    const int used = std::min(n, slots);
    // Choose which slots are filled (combinations of `used` out of `slots`) and which
    // candidates fill them (combinations of `used` out of `n`).
    std::vector<int> slotPick(used), candPick(used);
    auto firstCombination = [](std::vector<int>& v) {
        for (std::size_t i = 0; i < v.size(); ++i)
            v[i] = static_cast<int>(i);
    };
    auto nextCombination = [](std::vector<int>& v, int total) {
        int i = static_cast<int>(v.size()) - 1;
        while (i >= 0 && v[i] == total - static_cast<int>(v.size()) + i)
            --i;
        if (i < 0)
            return false;
        ++v[i];
        for (std::size_t j = i + 1; j < v.size(); ++j)
            v[j] = v[j - 1] + 1;
        return true;
    };
    firstCombination(slotPick);
    do {
        firstCombination(candPick);
        do {
            State s;
            s.fill(-1);
            for (int i = 0; i < used; ++i)
                s[slotPick[i]] = static_cast<signed char>(candPick[i]);
            out.push_back(s);
        } while (nextCombination(candPick, n));
    } while (nextCombination(slotPick, slots));
}

} // namespace

FormantTracker::Candidates FormantTracker::candidates(const float* samples, std::size_t count, double rate,
                                                      const std::vector<double>& centres) const
{
    const double analysisRate = 2.0 * m_settings.ceiling;
    const std::vector<float> x = resampled(samples, count, rate, analysisRate);
    int order = m_settings.order > 0 ? m_settings.order
                                     : 2 + 2 * static_cast<int>(std::lround(m_settings.ceiling / 1000.0));
    order = std::clamp(order, 2, 40);
    const int length = std::max(order + 2, static_cast<int>(m_settings.windowMS / 1000.0 * analysisRate));
    std::vector<double> window(length + 1, 1.0), hamming(length), segment(length + 1), a(order + 1);
    for (int i = 0; i < length; ++i)
        hamming[i] = 0.54 - 0.46 * std::cos(2.0 * kPi * i / (length - 1));
    Candidates frames(centres.size());
    for (std::size_t f = 0; f < centres.size(); ++f) {
        windowedSegment(x.data(), x.size(), centres[f] * analysisRate, length + 1, window, segment.data());
        for (int i = 0; i < length; ++i)
            segment[i] = (segment[i + 1] - m_settings.preEmphasis * segment[i]) * hamming[i];
        if (!lpcCoefficients(segment.data(), length, order, a.data()))
            continue;
        std::vector<FormantCandidate> roots = formantCandidates(a.data(), order, analysisRate);
        roots.erase(std::remove_if(roots.begin(), roots.end(),
                                   [&](const FormantCandidate& c) {
                                       return c.bw > kWidestCandidate || c.freq > m_settings.ceiling - 50.0;
                                   }),
                    roots.end());
        if (roots.size() > static_cast<std::size_t>(kMaxCandidates)) {
            std::sort(roots.begin(), roots.end(),
                      [](const FormantCandidate& p, const FormantCandidate& q) { return p.bw < q.bw; });
            roots.resize(kMaxCandidates);
            std::sort(roots.begin(), roots.end(),
                      [](const FormantCandidate& p, const FormantCandidate& q) { return p.freq < q.freq; });
        }
        for (const FormantCandidate& c : roots)
            frames[f].push_back({c.freq, c.bw});
    }
    return frames;
}

std::vector<FormantFrame> FormantTracker::bestPath(const Candidates& frames) const
{
    const int slots = formantCount();
    const std::size_t count = frames.size();
    std::vector<std::vector<State>> states(count);
    std::vector<std::vector<double>> score(count);
    std::vector<std::vector<int>> from(count);
    for (std::size_t f = 0; f < count; ++f) {
        const auto& c = frames[f];
        enumerateStates(static_cast<int>(c.size()), slots, states[f]);
        std::vector<double> local(states[f].size(), 0.0);
        for (std::size_t s = 0; s < states[f].size(); ++s)
            for (int k = 0; k < slots; ++k) {
                const int i = states[f][s][k];
                local[s] += i < 0 ? kMissingCost
                                  : kFrequencyWeight * std::fabs(c[i][0] - reference(k)) / reference(k) +
                                        kBandwidthWeight * c[i][1] / c[i][0];
            }
        score[f].assign(states[f].size(), 0.0);
        from[f].assign(states[f].size(), 0);
        for (std::size_t s = 0; s < states[f].size(); ++s) {
            double best = f == 0 ? 0.0 : 1e300;
            for (std::size_t p = 0; f > 0 && p < states[f - 1].size(); ++p) {
                double cost = score[f - 1][p];
                for (int k = 0; k < slots && cost < best; ++k) {
                    const int i = states[f][s][k], j = states[f - 1][p][k];
                    if (i >= 0 && j >= 0) {
                        const double a = c[i][0], b = frames[f - 1][j][0];
                        cost += kTransitionWeight * std::fabs(a - b) / (0.5 * (a + b));
                    }
                }
                if (cost < best) {
                    best = cost;
                    from[f][s] = static_cast<int>(p);
                }
            }
            score[f][s] = best + local[s];
        }
    }
    std::vector<FormantFrame> path(count);
    const std::vector<int> best = tracedBack(score, from, true);
    for (std::size_t f = 0; f < count; ++f)
        for (int k = 0; k < slots; ++k) {
            const int i = states[f][best[f]][k];
            path[f].freq[k] = i >= 0 ? frames[f][i][0] : 0.0;
            path[f].bw[k] = i >= 0 ? frames[f][i][1] : 0.0;
        }
    return path;
}

double FormantTracker::roughness(const std::vector<FormantFrame>& frames,
                                 const std::vector<bool>& voiced) const
{
    double change = 0.0, misses = 0.0;
    int steps = 0, counted = 0;
    for (std::size_t f = 0; f < frames.size(); ++f) {
        if (!voiced[f])
            continue;
        for (int k = 0; k < 4; ++k) {
            ++counted;
            if (frames[f].freq[k] <= 0.0)
                misses += 1.0;
        }
        if (f == 0 || !voiced[f - 1])
            continue;
        for (int k = 0; k < 4; ++k) {
            const double a = frames[f].freq[k], b = frames[f - 1].freq[k];
            if (a > 0.0 && b > 0.0) {
                change += std::fabs(a - b) / (0.5 * (a + b));
                ++steps;
            }
        }
    }
    return (steps ? change / steps : 1.0) + 0.2 * (counted ? misses / counted : 1.0);
}

std::vector<FormantFrame> FormantTracker::path(const float* samples, std::size_t count, double rate,
                                               const std::vector<double>& centres) const
{
    return bestPath(candidates(samples, count, rate, centres));
}

FormantTrack FormantTracker::track(const float* samples, std::size_t count, double rate,
                                   const std::vector<double>& centres, const std::vector<bool>& voiced) const
{
    return track(path(samples, count, rate, centres), voiced);
}

FormantTrack FormantTracker::track(std::vector<FormantFrame> path, const std::vector<bool>& voiced) const
{
    FormantTrack result;
    result.ceiling = m_settings.ceiling;
    result.frames = std::move(path);
    result.roughness = roughness(result.frames, voiced);
    std::array<double, kTrackedFormants> fallback{};
    for (int k = 0; k < kTrackedFormants; ++k)
        fallback[k] = reference(k);
    interpolateMissing(result.frames, fallback);
    return result;
}

void interpolateMissing(std::vector<FormantFrame>& frames,
                        const std::array<double, kTrackedFormants>& fallback)
{
    const long count = static_cast<long>(frames.size());
    for (int k = 0; k < kTrackedFormants; ++k) {
        long previous = -1;
        for (long f = 0; f <= count; ++f) {
            if (f < count && frames[f].freq[k] <= 0.0)
                continue;
            // Frames previous+1 .. f-1 are missing.
            for (long g = previous + 1; g < f; ++g) {
                FormantFrame& m = frames[g];
                if (previous < 0 && f >= count) {
                    m.freq[k] = fallback[k];
                    m.bw[k] = 0.1 * fallback[k];
                } else if (previous < 0 || f >= count) {
                    const FormantFrame& h = frames[previous < 0 ? f : previous];
                    m.freq[k] = h.freq[k];
                    m.bw[k] = h.bw[k];
                } else {
                    const double t = static_cast<double>(g - previous) / (f - previous);
                    m.freq[k] = frames[previous].freq[k] + t * (frames[f].freq[k] - frames[previous].freq[k]);
                    m.bw[k] = frames[previous].bw[k] + t * (frames[f].bw[k] - frames[previous].bw[k]);
                }
            }
            previous = f;
        }
    }
}
