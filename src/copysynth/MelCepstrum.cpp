// Mel cepstra of frames for comparing a synthesis with its recording.
#include "copysynth/MelCepstrum.h"

#include "copysynth/SignalTools.h"

#include <cmath>
#include <complex>
#include <future>

namespace
{

constexpr int kFilters = kMelFilters;
constexpr double kPi = 3.14159265358979323846;

} // namespace

MelCepstrum::MelCepstrum(double rate, double topHz)
    : m_dRate(rate), m_nLength(static_cast<int>(0.025 * rate)), m_nFftSize(fftSizeFor(m_nLength)),
      m_filters(kFilters), m_dct(kMelCoefficients * kFilters)
{
    for (int c = 1; c <= kMelCoefficients; ++c)
        for (int k = 0; k < kFilters; ++k)
            m_dct[(c - 1) * kFilters + k] = std::cos(kPi / kFilters * (k + 0.5) * c) / kFilters;
    double edges[kFilters + 2];
    for (int i = 0; i < kFilters + 2; ++i)
        edges[i] = hzOfMel(melOfHz(60.0) + (melOfHz(topHz) - melOfHz(60.0)) * i / (kFilters + 1));
    for (int k = 0; k < kFilters; ++k) {
        const double lo = edges[k], centre = edges[k + 1], hi = edges[k + 2];
        for (int bin = 0; bin <= m_nFftSize / 2; ++bin) {
            const double f = bin * rate / m_nFftSize;
            const double w = std::min((f - lo) / (centre - lo), (hi - f) / (hi - centre));
            if (w > 0.0)
                m_filters[k].emplace_back(bin, w);
        }
    }
}

std::vector<MelSpectrum> MelCepstrum::logSpectra(const float* x, std::size_t count,
                                                 const std::vector<double>& centres,
                                                 const std::vector<bool>* wanted) const
{
    std::vector<std::size_t> frames;
    for (std::size_t f = 0; f < centres.size(); ++f)
        if (!wanted || (*wanted)[f])
            frames.push_back(f);
    std::vector<MelSpectrum> out(centres.size());
    // Long lists are halved, the second half taken on a thread of its own; the halves split
    // between two pairs, so that every frame shares its transform with the same partner.
    constexpr std::size_t kShared = 64;
    const std::size_t middle = frames.size() >= kShared ? frames.size() / 4 * 2 : frames.size();
    const Segment whole{x, count, centres, frames};
    std::future<void> second;
    if (middle < frames.size())
        second = std::async(std::launch::async, [this, &whole, &out, middle] {
            analyse(whole, middle, whole.frames.size(), out);
        });
    analyse(whole, 0, middle, out);
    if (second.valid())
        second.get();
    return out;
}

void MelCepstrum::analyse(const Segment& s, std::size_t from, std::size_t to,
                          std::vector<MelSpectrum>& out) const
{
    const Fft fft(m_nFftSize);
    const std::vector<double> window = hannWindow(m_nLength);
    std::vector<double> first(m_nLength), second(m_nLength);
    std::vector<double> powerFirst(m_nFftSize / 2 + 1), powerSecond(m_nFftSize / 2 + 1);
    std::vector<std::complex<double>> work(m_nFftSize);
    const std::vector<double>& centres = s.centres;
    const std::vector<std::size_t>& frames = s.frames;
    // Two frames share one transform.
    for (std::size_t i = from; i < to; i += 2) {
        windowedSegment(s.x, s.count, centres[frames[i]] * m_dRate, m_nLength, window, first.data());
        if (i + 1 < to) {
            windowedSegment(s.x, s.count, centres[frames[i + 1]] * m_dRate, m_nLength, window, second.data());
            fft.powerSpectrumPair(first.data(), second.data(), m_nLength, work.data(), powerFirst.data(),
                                  powerSecond.data());
            out[frames[i + 1]] = filterLogs(powerSecond);
        } else {
            fft.powerSpectrum(first.data(), m_nLength, work.data(), powerFirst.data());
        }
        out[frames[i]] = filterLogs(powerFirst);
    }
}

MelSpectrum MelCepstrum::filterLogs(const std::vector<double>& power) const
{
    MelSpectrum logs{};
    for (int k = 0; k < kFilters; ++k) {
        double sum = 0.0;
        for (const auto& [bin, w] : m_filters[k])
            sum += power[bin] * w;
        logs[k] = 0.5 * std::log(sum + 1e-10);
    }
    return logs;
}

double MelCepstrum::coefficient(const MelSpectrum& logs, int c) const
{
    double sum = 0.0;
    for (int k = 0; k < kFilters; ++k)
        sum += logs[k] * m_dct[(c - 1) * kFilters + k];
    return sum;
}

std::vector<MelFrame> MelCepstrum::frames(const float* x, std::size_t count,
                                          const std::vector<double>& centres,
                                          const std::vector<bool>* wanted) const
{
    const std::vector<MelSpectrum> logs = logSpectra(x, count, centres, wanted);
    std::vector<MelFrame> out(centres.size());
    for (std::size_t f = 0; f < centres.size(); ++f)
        if (!wanted || (*wanted)[f])
            for (int c = 1; c <= kMelCoefficients; ++c)
                out[f][c - 1] = coefficient(logs[f], c);
    return out;
}

double MelCepstrum::distance(const MelFrame& a, const MelFrame& b)
{
    double sum = 0.0;
    for (int c = 0; c < kMelCoefficients; ++c)
        sum += (a[c] - b[c]) * (a[c] - b[c]);
    return 10.0 / std::log(10.0) * std::sqrt(2.0 * sum);
}
