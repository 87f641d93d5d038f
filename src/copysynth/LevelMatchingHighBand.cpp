// The copy synthesis above 5.5 kHz, at 22050 Hz: the sixth to eighth formants only where the
// recording has energy for them.
#include "copysynth/LevelMatching.h"

#include "copysynth/SignalTools.h"

#include <algorithm>
#include <cmath>
#include <complex>

std::vector<double> LevelMatching::bandLevel(const float* x, std::size_t count, double rate, double lo,
                                             double hi) const
{
    FrameSpectrum spectrum(frameLength(1.5 * m_nInterval / 1000.0, rate));
    std::vector<double> out(m_target.centres.size());
    for (std::size_t f = 0; f < out.size(); ++f) {
        spectrum.analyse(x, count, m_target.centres[f] * rate);
        out[f] = spectrum.bandLevelDb(lo, hi, rate);
    }
    return out;
}

void LevelMatching::matchHighBand(std::vector<FrameValues>& frames) const
{
    if (m_nRate != 22050 || m_target.rate < 2.4 * kHighBandHz)
        return;
    const double top = 0.95 * std::min(m_target.rate, static_cast<double>(m_nRate)) / 2.0;
    const std::size_t n = m_target.centres.size();
    const std::vector<double> recording =
        bandLevel(m_target.samples, m_target.count, m_target.rate, kHighBandHz, top);

    // Voiced frames: the f7/f8 bandwidths whose synthesis comes closest there.
    static const int widths[] = {2000, 1000, 500, 250, 125};
    std::vector<double> bestError(n, 1e300);
    std::vector<int> chosen(n, 2000);
    for (int width : widths) {
        std::vector<FrameValues> trial = only(frames, true, false);
        for (FrameValues& v : trial)
            v[Row::b6] = v[Row::b7] = v[Row::b8] = width;
        const Rendering r = renderFrames(trial, m_nRate, m_nInterval);
        const std::vector<double> synth =
            bandLevel(r.samples.data(), r.samples.size(), m_nRate, kHighBandHz, top);
        for (std::size_t f = 0; f < n; ++f)
            if (m_target.voiced[f] && std::fabs(recording[f] - synth[f]) < bestError[f]) {
                bestError[f] = std::fabs(recording[f] - synth[f]);
                chosen[f] = width;
            }
    }
    // The voicing source itself has little left up there: what the resonances cannot raise, the
    // bypass adds from the parallel voicing (its first difference, rising with frequency); in
    // unvoiced frames it brings the frication above 5.5 kHz to the recording's level.
    for (std::size_t f = 0; f < n; ++f) {
        FrameValues& v = frames[f];
        v[Row::b6] = v[Row::b7] = v[Row::b8] = chosen[f];
        if (m_target.voiced[f]) {
            v[Row::ab] = 40;
            v[Row::apv] = std::max(v[Row::apv], 60);
        }
    }
    for (const bool voiced : {true, false})
        for (int pass = 0; pass < 2; ++pass) {
            const Rendering r = renderFrames(only(frames, voiced, !voiced), m_nRate, m_nInterval);
            const std::vector<double> synth =
                bandLevel(r.samples.data(), r.samples.size(), m_nRate, kHighBandHz, top);
            for (std::size_t f = 0; f < n; ++f) {
                FrameValues& v = frames[f];
                const int source = voiced ? Row::av : Row::af;
                if (m_target.voiced[f] != voiced || v[source] < audible(source) || synth[f] <= kSilentDb)
                    continue;
                v[Row::ab] = static_cast<int>(std::clamp(
                    std::lround(v[Row::ab] + std::clamp(recording[f] - synth[f], -30.0, 30.0)), 0L, 87L));
            }
        }
}
