#include "copysynth/MelCepstralDistance.h"

#include "analysis/SpectrumSupport.h"
#include "copysynth/SignalTools.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace
{

constexpr int kMaxTransformOrder = 13;
constexpr double kLowestFilterHz = 60.0;
constexpr double kHighestFilterHz = 5000.0;

// One triangular filter: its weights over bins first .. first + weights.size() - 1.
struct MelFilter {
    int first = 0;
    std::vector<double> weights;
};

std::vector<MelFilter> melFilters(int transformLength, double sampleRate)
{
    constexpr int kEdges = MelCepstralDistance::kFilters + 2;
    const double top = std::min(sampleRate / 2.0, kHighestFilterHz);
    const double low = melOfHz(kLowestFilterHz), step = (melOfHz(top) - low) / (kEdges - 1);
    std::array<double, kEdges> edge{};
    for (int i = 0; i < kEdges; ++i)
        edge[i] = hzOfMel(i == kEdges - 1 ? melOfHz(top) : low + i * step);
    const int bins = transformLength / 2 + 1;
    std::vector<MelFilter> filters(MelCepstralDistance::kFilters);
    for (int k = 0; k < MelCepstralDistance::kFilters; ++k) {
        const double l = edge[k], c = edge[k + 1], u = edge[k + 2];
        MelFilter& f = filters[k];
        f.first = bins;
        for (int b = 0; b < bins; ++b) {
            const double hz = b * sampleRate / transformLength;
            const double w = std::min((hz - l) / (c - l), (u - hz) / (u - c));
            if (w <= 0.0)
                continue;
            if (f.weights.empty())
                f.first = b;
            f.weights.resize(static_cast<std::size_t>(b - f.first + 1), 0.0);
            f.weights.back() = w;
        }
    }
    return filters;
}

// Coefficients 0 .. 24 and the level in dB of every frame of one recording.
class MelCepstra
{
public:
    MelCepstra(double sampleRate, std::size_t n)
        : m_window(static_cast<int>(0.025 * sampleRate)), m_hop(static_cast<int>(0.005 * sampleRate))
    {
        m_order = spectrum::transformOrder(std::max(m_window, 1));
        if (m_window < 1 || m_hop < 1 || m_order > kMaxTransformOrder || n <= std::size_t(m_window))
            return;
        m_frames = static_cast<int>((n - m_window - 1) / m_hop + 1);
        m_length = 1 << m_order;
        m_filters = melFilters(m_length, sampleRate);
        m_hann.resize(m_window, 1.0);
        for (int i = 0; m_window > 1 && i < m_window; ++i)
            m_hann[i] = 0.5 - 0.5 * std::cos(2.0 * M_PI * i / (m_window - 1));
    }

    int frames() const { return m_frames; }

    // Fills cepstrum[0 .. 24] of frame j and answers its level.
    double frame(const float* x, int j, double* cepstrum)
    {
        m_buffer.assign(m_length, 0.0);
        const float* start = x + static_cast<std::size_t>(j) * m_hop;
        for (int i = 0; i < m_window; ++i)
            m_buffer[i] = start[i] * m_hann[i];
        const int bins = m_length / 2 + 1;
        m_re.resize(bins);
        m_im.resize(bins);
        spectrum::realSpectrum(m_buffer.data(), m_order, m_re.data(), m_im.data());
        double total = 0.0;
        for (int b = 0; b < bins; ++b) {
            m_re[b] = m_re[b] * m_re[b] + m_im[b] * m_im[b];
            total += m_re[b];
        }
        std::array<double, MelCepstralDistance::kFilters> logAmplitude{};
        for (int k = 0; k < MelCepstralDistance::kFilters; ++k) {
            double sum = 0.0;
            const MelFilter& f = m_filters[k];
            for (std::size_t w = 0; w < f.weights.size(); ++w)
                sum += m_re[f.first + w] * f.weights[w];
            logAmplitude[k] = 0.5 * std::log(sum + 1e-10);
        }
        for (int c = 0; c <= MelCepstralDistance::kCoefficients; ++c) {
            double sum = 0.0;
            for (int k = 0; k < MelCepstralDistance::kFilters; ++k)
                sum += logAmplitude[k] * std::cos(M_PI / MelCepstralDistance::kFilters * (k + 0.5) * c);
            cepstrum[c] = sum / MelCepstralDistance::kFilters;
        }
        return 10.0 * std::log10(total + 1e-12);
    }

private:
    int m_window, m_hop, m_order = 0, m_length = 0, m_frames = 0;
    std::vector<MelFilter> m_filters;
    std::vector<double> m_hann, m_buffer, m_re, m_im;
};

} // namespace

MelCepstralDistance::Result MelCepstralDistance::compute(const float* a, const float* b, std::size_t n,
                                                         double sampleRate, double floorDB)
{
    Result result{std::numeric_limits<double>::quiet_NaN(), 0};
    MelCepstra analysis(sampleRate, n);
    const int frames = analysis.frames();
    if (frames <= 0)
        return result;
    constexpr int kStride = kCoefficients + 1;
    std::vector<double> ca(static_cast<std::size_t>(frames) * kStride), cb(ca.size()), level(frames);
    for (int j = 0; j < frames; ++j) {
        level[j] = analysis.frame(a, j, &ca[static_cast<std::size_t>(j) * kStride]);
        analysis.frame(b, j, &cb[static_cast<std::size_t>(j) * kStride]);
    }
    const double loudest = *std::max_element(level.begin(), level.end());
    double sum = 0.0;
    for (int j = 0; j < frames; ++j) {
        if (!(level[j] > loudest - floorDB))
            continue;
        double squares = 0.0;
        for (int c = 1; c <= kCoefficients; ++c) {
            const double d =
                ca[static_cast<std::size_t>(j) * kStride + c] - cb[static_cast<std::size_t>(j) * kStride + c];
            squares += d * d;
        }
        sum += 10.0 / std::log(10.0) * std::sqrt(2.0 * squares);
        ++result.frames;
    }
    if (result.frames > 0)
        result.distanceDB = sum / result.frames;
    return result;
}
