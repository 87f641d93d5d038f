// The copy synthesis's parallel voicing refined in spectral shape: the formant amplitudes of
// each frame moved so that its mel log spectrum comes closest to the recording's.
#include "copysynth/LevelMatching.h"

#include "copysynth/SignalTools.h"
#include "synthesis/CKlattEngine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>

namespace
{

constexpr int kFormants = 5;
constexpr int kAmplitudeRows[kFormants] = {Row::a1f, Row::a2f, Row::a3f, Row::a4f, Row::a5f};
constexpr int kFrequencyRows[kFormants] = {Row::f1, Row::f2, Row::f3, Row::f4, Row::f5};
constexpr int kBandwidthRows[kFormants] = {Row::b1f, Row::b2f, Row::b3f, Row::b4f, Row::b5f};
// The parallel branch's fixed scale of each formant and its sign in the sum; F2 and up take the
// first difference of the source.
constexpr double kFactor[kFormants] = {0.4, 0.15, 0.06, 0.04, 0.022};
constexpr double kSign[kFormants] = {1.0, -1.0, 1.0, -1.0, 1.0};
constexpr double kPi = 3.14159265358979323846;
constexpr double kDbPerLog = 20.0 / 2.302585092994046; // dB of a log amplitude (0.5 ln power)
constexpr double kStepLimit = 12.0;                    // dB per pass and formant, before damping
constexpr double kDamping = 0.7;
// Damping of the least squares: each formant's own share, and a floor that keeps formants that
// hardly shape the frame where they are.
constexpr double kRidge = 0.1;
constexpr double kFloor = 0.01;
constexpr int kMaxShift = 8; // dB from the amplitude the band levels gave

using Matrix = std::array<std::array<double, kFormants>, kMelFilters>;
using Step = std::array<double, kFormants>;

// The response at `hz` of one formant of the parallel branch as the synthesizer builds it: a
// two-pole resonator of unit gain at 0 Hz, scaled by its amplitude and its fixed factor, signed.
std::complex<double> formantResponse(const FrameValues& v, int k, double hz, double rate)
{
    const double t = 1.0 / rate;
    const double c = -std::exp(-2.0 * kPi * v[kBandwidthRows[k]] * t);
    const double b =
        2.0 * std::exp(-kPi * v[kBandwidthRows[k]] * t) * std::cos(2.0 * kPi * v[kFrequencyRows[k]] * t);
    const std::complex<double> z1 = std::polar(1.0, -2.0 * kPi * hz * t);
    std::complex<double> h = (1.0 - b - c) / (1.0 - b * z1 - c * z1 * z1);
    if (k > 0)
        h *= 1.0 - z1;
    return h * (kSign[k] * kFactor[k] * CKlattEngine::DBtoLIN(v[kAmplitudeRows[k]]));
}

// Each formant's response at every bin the mel filters read.
using Responses = std::vector<std::array<std::complex<double>, kFormants>>;

Responses responses(const FrameValues& v, const MelCepstrum& mel, double rate)
{
    const int bins = mel.filters().back().back().first + 1;
    Responses h(bins);
    for (int bin = mel.filters().front().front().first; bin < bins; ++bin)
        for (int k = 0; k < kFormants; ++k)
            h[bin][k] = formantResponse(v, k, bin * rate / mel.fftSize(), rate);
    return h;
}

// The power each filter passes with every formant moved by `moved` dB (the model's, without the
// source).
MelSpectrum filterPowers(const Responses& h, const MelCepstrum& mel, const Step& moved)
{
    Step scale{};
    for (int k = 0; k < kFormants; ++k)
        scale[k] = std::pow(10.0, moved[k] / 20.0);
    MelSpectrum out{};
    for (int j = 0; j < kMelFilters; ++j)
        for (const auto& [bin, w] : mel.filters()[j]) {
            std::complex<double> sum = 0.0;
            for (int k = 0; k < kFormants; ++k)
                sum += h[bin][k] * scale[k];
            out[j] += w * std::norm(sum);
        }
    return out;
}

// How each filter's level (dB) moves per dB of each formant amplitude.
Matrix levelSlopes(const Responses& h, const MelCepstrum& mel)
{
    Matrix slopes{};
    for (int j = 0; j < kMelFilters; ++j) {
        double total = 0.0;
        for (const auto& [bin, w] : mel.filters()[j]) {
            std::complex<double> sum = 0.0;
            for (int k = 0; k < kFormants; ++k)
                sum += h[bin][k];
            total += w * std::norm(sum);
            for (int k = 0; k < kFormants; ++k)
                slopes[j][k] += w * std::real(std::conj(sum) * h[bin][k]);
        }
        for (int k = 0; k < kFormants; ++k)
            slopes[j][k] = total > 0.0 ? slopes[j][k] / total : 0.0;
    }
    return slopes;
}

// Solves a x = y for a small symmetric positive definite a (Gaussian elimination).
Step solved(std::array<Step, kFormants> a, Step y)
{
    for (int i = 0; i < kFormants; ++i)
        for (int r = i + 1; r < kFormants; ++r) {
            const double m = a[r][i] / a[i][i];
            for (int c = i; c < kFormants; ++c)
                a[r][c] -= m * a[i][c];
            y[r] -= m * y[i];
        }
    Step x{};
    for (int i = kFormants; i-- > 0;) {
        double s = y[i];
        for (int c = i + 1; c < kFormants; ++c)
            s -= a[i][c] * x[c];
        x[i] = s / a[i][i];
    }
    return x;
}

// The amplitude changes (dB) that bring the synthesis's cepstrum closest to the recording's, by
// least squares on the linearised filter levels (damped, within the step limit).
Step shapeStep(const Matrix& slopes, const MelSpectrum& want, const MelSpectrum& have, const MelCepstrum& mel)
{
    MelSpectrum error{};
    for (int j = 0; j < kMelFilters; ++j)
        error[j] = (want[j] - have[j]) * kDbPerLog;
    std::array<Step, kFormants> normal{};
    Step rhs{};
    for (int c = 1; c <= kMelCoefficients; ++c) {
        Step row{};
        for (int k = 0; k < kFormants; ++k) {
            MelSpectrum column{};
            for (int j = 0; j < kMelFilters; ++j)
                column[j] = slopes[j][k];
            row[k] = mel.coefficient(column, c);
        }
        const double e = mel.coefficient(error, c);
        for (int k = 0; k < kFormants; ++k) {
            rhs[k] += row[k] * e;
            for (int m = 0; m < kFormants; ++m)
                normal[k][m] += row[k] * row[m];
        }
    }
    double trace = 0.0;
    for (int k = 0; k < kFormants; ++k)
        trace += normal[k][k];
    for (int k = 0; k < kFormants; ++k)
        normal[k][k] += kRidge * normal[k][k] + kFloor * trace / kFormants + 1e-12;
    Step step = solved(normal, rhs);
    for (double& d : step)
        d = kDamping * std::clamp(d, -kStepLimit, kStepLimit);
    return step;
}

// The level change (dB) of the frame's synthesis when its formants move by `moved`: each filter's
// measured power (`have`, log amplitudes) scaled as the model's power in it changes.
double levelChange(const Responses& h, const MelCepstrum& mel, const MelSpectrum& have, const Step& moved)
{
    const MelSpectrum before = filterPowers(h, mel, Step{});
    const MelSpectrum after = filterPowers(h, mel, moved);
    double was = 0.0, will = 0.0;
    for (int j = 0; j < kMelFilters; ++j) {
        const double power = std::exp(2.0 * have[j]);
        was += power;
        if (before[j] > 0.0)
            will += power * after[j] / before[j];
    }
    return was > 0.0 && will > 0.0 ? 10.0 * std::log10(will / was) : 0.0;
}

} // namespace

void LevelMatching::refineParallelShape(std::vector<FrameValues>& frames, int passes) const
{
    const std::size_t n = m_target.centres.size();
    std::vector<bool> wanted(n);
    for (std::size_t f = 0; f < n; ++f)
        wanted[f] = m_target.voiced[f] && frames[f][Row::apv] > 0 && frames[f][Row::av] == 0 &&
                    m_recordingLevels[f] > m_dLoudest - 40.0;
    const MelCepstrum synthMel(m_nRate, m_dMelTop);
    const std::vector<FrameValues> start = frames;
    const std::vector<MelSpectrum> recording =
        MelCepstrum(m_target.rate, m_dMelTop)
            .logSpectra(m_target.samples, m_target.count, m_target.centres, &wanted);
    for (int pass = 0; pass < passes; ++pass) {
        const Rendering r = renderFrames(only(frames, true, false), m_nRate, m_nInterval);
        const std::vector<MelSpectrum> synth =
            synthMel.logSpectra(r.samples.data(), r.samples.size(), m_target.centres, &wanted);
        const std::vector<double> levels = levelsOf(r);
        for (std::size_t f = 0; f < n; ++f) {
            if (!wanted[f] || levels[f] <= kSilentDb)
                continue;
            FrameValues& v = frames[f];
            const Responses h = responses(v, synthMel, m_nRate);
            const Step step = shapeStep(levelSlopes(h, synthMel), recording[f], synth[f], synthMel);
            // All five move together by what keeps the frame's level.
            const double keepLevel = -levelChange(h, synthMel, synth[f], step);
            for (int k = 0; k < kFormants; ++k) {
                const int from = start[f][kAmplitudeRows[k]];
                const int moved = static_cast<int>(std::lround(v[kAmplitudeRows[k]] + step[k] + keepLevel));
                v[kAmplitudeRows[k]] =
                    std::clamp(std::clamp(moved, from - kMaxShift, from + kMaxShift), 0, 87);
            }
        }
    }
}
