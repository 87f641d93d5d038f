// Voicing and f0 by autocorrelation candidates and a path search.
#include "copysynth/PitchTracker.h"

#include "copysynth/SignalTools.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace
{

constexpr int kMaxCandidates = 6; // voiced candidates kept per frame
constexpr double kHalfLagShare = 0.8;
constexpr double kSubharmonicPenalty = 0.15;
constexpr double kEdgeCorrelation = 0.6; // a voiced stretch's edge frames repeat at least this well
constexpr std::size_t kEdgeFrames = 3;   // frames checked at each edge

// The candidates are searched at about 5.5 kHz, which is ample for the lags of speech; the lag
// chosen is then refined on the signal at its own rate.
constexpr double kSearchRate = 5600.0;

// Normalized cross-correlation of `length` samples from `start` with the same `lag` samples later.
double correlationAt(const float* x, std::size_t count, long start, int length, int lag)
{
    double xy = 0.0, xx = 0.0, yy = 0.0;
    for (int i = 0; i < length; ++i) {
        const long a = start + i, b = start + i + lag;
        const double u = (a >= 0 && a < static_cast<long>(count)) ? x[a] : 0.0;
        const double v = (b >= 0 && b < static_cast<long>(count)) ? x[b] : 0.0;
        xy += u * v;
        xx += u * u;
        yy += v * v;
    }
    return xx > 0.0 && yy > 0.0 ? xy / std::sqrt(xx * yy) : 0.0;
}

// The chosen period refined on the full-rate signal: the best whole lag near the estimate,
// then a parabola through it and its neighbours.
double refinedF0(const float* x, std::size_t count, double rate, double centre, double f0)
{
    const double period = rate / f0;
    const int length = static_cast<int>(std::lround(std::max(period * 2.0, 0.02 * rate)));
    const long start = static_cast<long>(std::lround(centre - (length + period) / 2.0));
    const int guess = static_cast<int>(std::lround(period));
    int best = guess;
    double bestR = -2.0;
    double r[7];
    for (int d = -3; d <= 3; ++d) {
        const int lag = guess + d;
        r[d + 3] = lag >= 2 ? correlationAt(x, count, start, length, lag) : -2.0;
        if (r[d + 3] > bestR && d > -3 && d < 3) {
            bestR = r[d + 3];
            best = lag;
        }
    }
    const int k = best - guess + 3;
    const double a = r[k - 1], b = r[k], c = r[k + 1];
    const double denominator = a - 2.0 * b + c;
    const double shift = denominator < 0.0 ? std::clamp(0.5 * (a - c) / denominator, -0.5, 0.5) : 0.0;
    return rate / (best + shift);
}

} // namespace

// A frame's stretch with its mean removed, Hann-windowed; answers its peak magnitude.
double PitchTracker::prepareFrame(const std::vector<float>& x, double centre,
                                  const std::vector<double>& window, double* segment)
{
    const int length = static_cast<int>(window.size());
    windowedSegment(x.data(), x.size(), centre, length, std::vector<double>(length, 1.0), segment);
    double mean = 0.0, peak = 0.0;
    for (int i = 0; i < length; ++i)
        mean += segment[i];
    mean /= length;
    for (int i = 0; i < length; ++i) {
        peak = std::max(peak, std::fabs(segment[i] - mean));
        segment[i] = (segment[i] - mean) * window[i];
    }
    return peak;
}

// The voiced candidates of one frame from its autocorrelation r and the window's, best first.
std::vector<PitchTracker::Candidate> PitchTracker::peaks(const std::vector<double>& r,
                                                         const std::vector<double>& windowR, double rate,
                                                         int minLag, int maxLag) const
{
    std::vector<Candidate> voiced;
    if (r[0] <= 0.0)
        return voiced;
    const double vt = m_settings.voicingThreshold;
    auto norm = [&](int t) { return r[t] / r[0] / std::max(windowR[t] / windowR[0], 1e-6); };
    for (int t = minLag; t <= maxLag; ++t) {
        const double a = norm(t - 1), b = norm(t), c = norm(t + 1);
        if (!(b > a && b >= c) || b < 0.5 * vt)
            continue;
        const double denominator = a - 2.0 * b + c;
        const double shift = denominator < 0.0 ? std::clamp(0.5 * (a - c) / denominator, -0.5, 0.5) : 0.0;
        const double peak = std::min(1.0, b - 0.25 * (a - c) * shift);
        const double f0 = rate / (t + shift);
        if (f0 >= m_settings.lowHz && f0 <= m_settings.highHz)
            voiced.push_back({f0, peak + m_settings.octaveCost * std::log2(f0 / m_settings.lowHz), peak});
    }
    // A period made of two nearly equal halves (alternating periods, a strong second harmonic)
    // correlates best at the double lag: when the half lag correlates almost as well, the
    // longer period is taken for a subharmonic.
    for (Candidate& c : voiced)
        for (const Candidate& d : voiced)
            if (std::fabs(d.f0 / (2.0 * c.f0) - 1.0) < 0.05 && d.r >= kHalfLagShare * c.r)
                c.strength -= kSubharmonicPenalty;
    std::sort(voiced.begin(), voiced.end(),
              [](const Candidate& p, const Candidate& q) { return p.strength > q.strength; });
    if (voiced.size() > static_cast<std::size_t>(kMaxCandidates))
        voiced.resize(kMaxCandidates);
    return voiced;
}

std::vector<std::vector<PitchTracker::Candidate>>
PitchTracker::candidates(const float* samples, std::size_t count, double rate,
                         const std::vector<double>& centres) const
{
    const double searchRate = rate > kSearchRate * 1.5 ? rate / std::floor(rate / kSearchRate) : rate;
    const std::vector<float> x = resampled(samples, count, rate, searchRate);
    const int minLag = std::max(2, static_cast<int>(std::floor(searchRate / m_settings.highHz)));
    const int maxLag = static_cast<int>(std::ceil(searchRate / m_settings.lowHz));
    const double windowS =
        m_settings.windowMS > 0.0 ? m_settings.windowMS / 1000.0 : std::max(3.0 / m_settings.lowHz, 0.02);
    const int length = std::max(static_cast<int>(windowS * searchRate), 2 * maxLag + 4);
    const Fft fft(fftSizeFor(length + maxLag + 2));
    const std::vector<double> window = hannWindow(length);
    std::vector<std::complex<double>> work(fft.size());
    std::vector<double> windowR(maxLag + 2), ra(maxLag + 2), rb(maxLag + 2);
    fft.autocorrelationPair(window.data(), window.data(), length, work.data(), maxLag + 2, windowR.data(),
                            rb.data());
    double globalPeak = 0.0;
    for (float v : x)
        globalPeak = std::max(globalPeak, static_cast<double>(std::fabs(v)));

    const double vt = m_settings.voicingThreshold;
    std::vector<std::vector<Candidate>> frames(centres.size());
    std::vector<double> a(length), b(length, 0.0);
    for (std::size_t f = 0; f < centres.size(); f += 2) {
        const bool pair = f + 1 < centres.size();
        const double peaks2[2] = {prepareFrame(x, centres[f] * searchRate, window, a.data()),
                                  pair ? prepareFrame(x, centres[f + 1] * searchRate, window, b.data())
                                       : 0.0};
        fft.autocorrelationPair(a.data(), b.data(), length, work.data(), maxLag + 2, ra.data(), rb.data());
        for (int k = 0; k < (pair ? 2 : 1); ++k) {
            const double relative = globalPeak > 0.0 ? peaks2[k] / globalPeak : 0.0;
            std::vector<Candidate>& list = frames[f + k];
            list.push_back(
                {0.0, vt + std::max(0.0, 2.0 - relative / (m_settings.silenceThreshold / (1.0 + vt))), 0.0});
            const std::vector<Candidate> voiced =
                peaks(k == 0 ? ra : rb, windowR, searchRate, minLag, maxLag);
            list.insert(list.end(), voiced.begin(), voiced.end());
        }
    }
    return frames;
}

std::vector<PitchFrame> PitchTracker::bestPath(const std::vector<std::vector<Candidate>>& frames) const
{
    const std::size_t count = frames.size();
    std::vector<std::vector<double>> score(count);
    std::vector<std::vector<int>> from(count);
    auto transition = [&](const Candidate& a, const Candidate& b) {
        if (a.f0 <= 0.0 && b.f0 <= 0.0)
            return 0.0;
        if (a.f0 <= 0.0 || b.f0 <= 0.0)
            return m_settings.voicedUnvoicedCost;
        return m_settings.octaveJumpCost * std::fabs(std::log2(a.f0 / b.f0));
    };
    for (std::size_t f = 0; f < count; ++f) {
        const auto& now = frames[f];
        score[f].assign(now.size(), 0.0);
        from[f].assign(now.size(), 0);
        for (std::size_t j = 0; j < now.size(); ++j) {
            double best = f == 0 ? 0.0 : -1e300;
            if (f > 0) {
                const auto& before = frames[f - 1];
                for (std::size_t i = 0; i < before.size(); ++i) {
                    const double s = score[f - 1][i] - transition(before[i], now[j]);
                    if (s > best) {
                        best = s;
                        from[f][j] = static_cast<int>(i);
                    }
                }
            }
            score[f][j] = best + now[j].strength;
        }
    }
    std::vector<PitchFrame> path(count);
    const std::vector<int> best = tracedBack(score, from, false);
    for (std::size_t f = 0; f < count; ++f) {
        const Candidate& c = frames[f][best[f]];
        path[f] = {c.f0, c.f0 > 0.0 ? c.r : 0.0};
    }
    return path;
}

// The long window that finds the pitch also hears voicing a few frames before it starts and
// after it ends. The first and last frames of each voiced stretch are checked again with a
// window of one period and a half around their centre: those that do not repeat themselves
// are unvoiced.
void trimVoicingEdges(const float* x, std::size_t count, double rate, const std::vector<double>& centres,
                      std::vector<PitchFrame>& path)
{
    auto periodic = [&](std::size_t f) {
        const double period = rate / path[f].f0;
        const int length = static_cast<int>(std::lround(1.5 * period));
        const long start = static_cast<long>(std::lround(centres[f] * rate - (length + period) / 2.0));
        double best = -1.0;
        for (int d = -2; d <= 2; ++d)
            best = std::max(
                best, correlationAt(x, count, start, length, static_cast<int>(std::lround(period)) + d));
        return best >= kEdgeCorrelation;
    };
    const std::size_t n = path.size();
    for (std::size_t f = 0; f < n; ++f) {
        if (path[f].f0 <= 0.0 || (f > 0 && path[f - 1].f0 > 0.0))
            continue;
        std::size_t end = f;
        while (end < n && path[end].f0 > 0.0)
            ++end;
        for (std::size_t g = f; g < std::min(end, f + kEdgeFrames) && !periodic(g); ++g)
            path[g] = {};
        for (std::size_t g = end; g-- > f && g + kEdgeFrames >= end && path[g].f0 > 0.0 && !periodic(g);)
            path[g] = {};
        f = end;
    }
}

// A voicing decision that lasts a single frame between two of the other kind is taken for a
// slip of the path: a lone unvoiced frame inside voicing is voiced at its neighbours' mean
// pitch, a lone voiced frame between unvoiced ones is unvoiced.
void mergeLoneFrames(std::vector<PitchFrame>& path)
{
    for (std::size_t f = 1; f + 1 < path.size(); ++f) {
        const bool before = path[f - 1].f0 > 0.0, after = path[f + 1].f0 > 0.0, now = path[f].f0 > 0.0;
        if (before && after && !now)
            path[f] = {std::sqrt(path[f - 1].f0 * path[f + 1].f0),
                       std::min(path[f - 1].strength, path[f + 1].strength)};
        else if (!before && !after && now)
            path[f] = {};
    }
}

std::vector<PitchFrame> PitchTracker::track(const float* samples, std::size_t count, double rate,
                                            const std::vector<double>& centres) const
{
    std::vector<PitchFrame> path = bestPath(candidates(samples, count, rate, centres));
    mergeLoneFrames(path);
    trimVoicingEdges(samples, count, rate, centres, path);
    for (std::size_t f = 0; f < path.size(); ++f)
        if (path[f].f0 > 0.0)
            path[f].f0 = std::clamp(refinedF0(samples, count, rate, centres[f] * rate, path[f].f0),
                                    m_settings.lowHz, m_settings.highHz);
    return path;
}
