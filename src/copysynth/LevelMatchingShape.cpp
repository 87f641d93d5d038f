// The copy synthesis's parallel voicing refined in spectral shape: the formant amplitudes of
// each frame moved so that its mel log spectrum comes closest to the recording's.
#include "copysynth/LevelMatching.h"

#include "copysynth/SignalTools.h"
#include "synthesis/CKlattEngine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <future>

// The parts of the parallel branch whose amplitudes a refinement moves: each a resonator (or,
// without a frequency row, the flat bypass) scaled by its amplitude row and a fixed factor, signed
// as the branch sums it, and driven by the first difference of the source or by the source.
struct LevelMatching::Part {
    int amplitudeRow = -1;
    int frequencyRow = -1; // -1: the bypass
    int bandwidthRow = -1;
    double factor = 0.0;
    double sign = 1.0;
    bool differenced = false;
};

namespace
{

constexpr int kParts = 5;
using Part = LevelMatching::Part;
using Parts = std::array<Part, kParts>;

// The voice through the parallel branch: F1 from the voicing, F2 .. F5 from its first difference.
constexpr Parts kVoiceParts = {{{Row::a1f, Row::f1, Row::b1f, 0.4, 1.0, false},
                                {Row::a2f, Row::f2, Row::b2f, 0.15, -1.0, true},
                                {Row::a3f, Row::f3, Row::b3f, 0.06, 1.0, true},
                                {Row::a4f, Row::f4, Row::b4f, 0.04, -1.0, true},
                                {Row::a5f, Row::f5, Row::b5f, 0.022, 1.0, true}}};
// Frication: F2 .. F5 and the bypass, driven by the noise itself.
constexpr Parts kFricationParts = {{{Row::a2f, Row::f2, Row::b2f, 0.15, -1.0, false},
                                    {Row::a3f, Row::f3, Row::b3f, 0.06, 1.0, false},
                                    {Row::a4f, Row::f4, Row::b4f, 0.04, -1.0, false},
                                    {Row::a5f, Row::f5, Row::b5f, 0.022, 1.0, false},
                                    {Row::ab, -1, -1, 0.05, 1.0, false}}};
constexpr double kPi = 3.14159265358979323846;
constexpr double kDbPerLog = 20.0 / 2.302585092994046; // dB of a log amplitude (0.5 ln power)
constexpr double kStepLimit = 12.0;                    // dB per pass and formant, before damping
constexpr double kDamping = 0.7;
// The level is matched over 50 ms (five frames of 10 ms): it changes more slowly than the spectral shape,
// and a shorter window would follow each frame's rounding and the periods that fall in it.
constexpr double kLevelWindowS = 0.05;
// Damping of the least squares: each formant's own share, and a floor that keeps formants that
// hardly shape the frame where they are.
constexpr double kRidge = 0.1;
constexpr double kFloor = 0.01;
constexpr int kMaxShift = 8;         // dB from the amplitude the band levels gave
constexpr double kShapeRange = 40.0; // dB: frames this far below the loudest are refined

using Matrix = std::array<std::array<double, kParts>, kMelFilters>;
using Step = std::array<double, kParts>;
// The cepstral basis filter by filter: basis[j][c - 1] = mel.basis(c, j).
using Basis = std::array<MelFrame, kMelFilters>;

Basis basisByFilter(const MelCepstrum& mel)
{
    Basis basis{};
    for (int j = 0; j < kMelFilters; ++j)
        for (int c = 1; c <= kMelCoefficients; ++c)
            basis[j][c - 1] = mel.basis(c, j);
    return basis;
}

// The delay z^-1 at every bin the mel filters read (the same for every frame).
std::vector<std::complex<double>> delays(const MelCepstrum& mel, double rate)
{
    const double t = 1.0 / rate;
    std::vector<std::complex<double>> z1(mel.filters().back().back().first + 1);
    for (std::size_t bin = mel.filters().front().front().first; bin < z1.size(); ++bin)
        z1[bin] = std::polar(1.0, -2.0 * kPi * (bin * rate / mel.fftSize()) * t);
    return z1;
}

// The first bin a mel filter reads (the delays below it are left at zero).
std::size_t firstBin(const std::vector<std::complex<double>>& z1)
{
    std::size_t bin = 0;
    while (bin < z1.size() && z1[bin] == 0.0)
        ++bin;
    return bin;
}

// Each part's response at every bin the mel filters read, as the synthesizer builds the part: a
// two-pole resonator of unit gain at 0 Hz (or the flat bypass), scaled by its amplitude and its
// fixed factor, signed.
using Responses = std::vector<std::array<std::complex<double>, kParts>>;

Responses responses(const FrameValues& v, const Parts& parts, const std::vector<std::complex<double>>& z1,
                    double rate)
{
    const double t = 1.0 / rate;
    Responses h(z1.size());
    for (int k = 0; k < kParts; ++k) {
        const Part& part = parts[k];
        double b = 0.0, c = 0.0;
        if (part.frequencyRow >= 0) {
            const double bandwidth = v[part.bandwidthRow];
            c = -std::exp(-2.0 * kPi * bandwidth * t);
            b = 2.0 * std::exp(-kPi * bandwidth * t) * std::cos(2.0 * kPi * v[part.frequencyRow] * t);
        }
        const double gain = part.sign * part.factor * CKlattEngine::DBtoLIN(v[part.amplitudeRow]);
        for (std::size_t bin = firstBin(z1); bin < z1.size(); ++bin) {
            // Products written out as the library forms them (a real minus a complex negates the
            // imaginary part): the values are finite, so its checks for infinities in every
            // complex product are not needed.
            const double zr = z1[bin].real(), zi = z1[bin].imag();
            double rr = 1.0, ri = 0.0;
            if (part.frequencyRow >= 0) {
                // The denominator never vanishes (the poles lie inside the unit circle): divided
                // plainly, without the library's guards against overflow.
                const double czr = c * zr, czi = c * zi;
                const std::complex<double> d((1.0 - b * zr) - (czr * zr - czi * zi),
                                             -(b * zi) - (czr * zi + czi * zr));
                const double g = (1.0 - b - c) / std::norm(d);
                rr = d.real() * g;
                ri = -d.imag() * g;
            }
            if (part.differenced) {
                const double er = 1.0 - zr, ei = -zi;
                const double pr = rr * er - ri * ei, pi = rr * ei + ri * er;
                rr = pr;
                ri = pi;
            }
            h[bin][k] = std::complex<double>(rr * gain, ri * gain);
        }
    }
    return h;
}

// The sum of the parts at every bin, each part moved by `moved` dB.
std::vector<std::complex<double>> sums(const Responses& h, const Step& moved)
{
    Step scale{};
    for (int k = 0; k < kParts; ++k)
        scale[k] = std::pow(10.0, moved[k] / 20.0);
    std::vector<std::complex<double>> out(h.size());
    for (std::size_t bin = 0; bin < h.size(); ++bin)
        for (int k = 0; k < kParts; ++k)
            out[bin] += h[bin][k] * scale[k];
    return out;
}

// The power each filter passes of the sum (the model's, without the source).
MelSpectrum filterPowers(const std::vector<std::complex<double>>& sum, const MelCepstrum& mel)
{
    MelSpectrum out{};
    for (int j = 0; j < kMelFilters; ++j)
        for (const auto& [bin, w] : mel.filters()[j])
            out[j] += w * std::norm(sum[bin]);
    return out;
}

// How each filter's level (dB) moves per dB of each part's amplitude, given the power each
// filter passes (`powers`, of `sum`, the parts as they are).
Matrix levelSlopes(const Responses& h, const std::vector<std::complex<double>>& sum,
                   const MelSpectrum& powers, const MelCepstrum& mel)
{
    Matrix slopes{};
    for (int j = 0; j < kMelFilters; ++j) {
        for (const auto& [bin, w] : mel.filters()[j])
            for (int k = 0; k < kParts; ++k) {
                // The real part of conj(sum) h, without the imaginary part nor the checks for
                // infinities of a whole complex product.
                const std::complex<double> s = sum[bin], p = h[bin][k];
                slopes[j][k] += w * (s.real() * p.real() + s.imag() * p.imag());
            }
        for (int k = 0; k < kParts; ++k)
            slopes[j][k] = powers[j] > 0.0 ? slopes[j][k] / powers[j] : 0.0;
    }
    return slopes;
}

// A frame whose synthesis has nothing in any filter.
bool silent(const MelSpectrum& logs)
{
    return *std::max_element(logs.begin(), logs.end()) < 0.5 * std::log(1e-9);
}

// Solves a x = y for a small symmetric positive definite a (Gaussian elimination).
Step solved(std::array<Step, kParts> a, Step y)
{
    for (int i = 0; i < kParts; ++i)
        for (int r = i + 1; r < kParts; ++r) {
            const double m = a[r][i] / a[i][i];
            for (int c = i; c < kParts; ++c)
                a[r][c] -= m * a[i][c];
            y[r] -= m * y[i];
        }
    Step x{};
    for (int i = kParts; i-- > 0;) {
        double s = y[i];
        for (int c = i + 1; c < kParts; ++c)
            s -= a[i][c] * x[c];
        x[i] = s / a[i][i];
    }
    return x;
}

// The amplitude changes (dB) that bring the synthesis's cepstrum closest to the recording's, by
// least squares on the linearised filter levels (damped, within the step limit).
Step shapeStep(const Matrix& slopes, const MelSpectrum& want, const MelSpectrum& have, const Basis& basis)
{
    MelSpectrum error{};
    for (int j = 0; j < kMelFilters; ++j)
        error[j] = (want[j] - have[j]) * kDbPerLog;
    // How each cepstral coefficient moves per dB of each part: every coefficient's sums run at
    // once, filter by filter, rather than one coefficient after another.
    std::array<MelFrame, kParts> rows{};
    MelFrame errors{};
    for (int j = 0; j < kMelFilters; ++j) {
        for (int k = 0; k < kParts; ++k) {
            const double slope = slopes[j][k];
            for (int c = 0; c < kMelCoefficients; ++c)
                rows[k][c] += slope * basis[j][c];
        }
        for (int c = 0; c < kMelCoefficients; ++c)
            errors[c] += error[j] * basis[j][c];
    }
    std::array<Step, kParts> normal{};
    Step rhs{};
    for (int c = 1; c <= kMelCoefficients; ++c) {
        Step row;
        for (int k = 0; k < kParts; ++k)
            row[k] = rows[k][c - 1];
        const double e = errors[c - 1];
        for (int k = 0; k < kParts; ++k) {
            rhs[k] += row[k] * e;
            for (int m = 0; m < kParts; ++m)
                normal[k][m] += row[k] * row[m];
        }
    }
    double trace = 0.0;
    for (int k = 0; k < kParts; ++k)
        trace += normal[k][k];
    for (int k = 0; k < kParts; ++k)
        normal[k][k] += kRidge * normal[k][k] + kFloor * trace / kParts + 1e-12;
    Step step = solved(normal, rhs);
    for (double& d : step)
        d = kDamping * std::clamp(d, -kStepLimit, kStepLimit);
    return step;
}

// The level change (dB) of the frame's synthesis when its parts move by `moved`: each filter's
// measured power (`have`, log amplitudes) scaled as the model's power in it changes from `before`.
double levelChange(const Responses& h, const MelSpectrum& before, const MelCepstrum& mel,
                   const MelSpectrum& have, const Step& moved)
{
    const MelSpectrum after = filterPowers(sums(h, moved), mel);
    double was = 0.0, will = 0.0;
    for (int j = 0; j < kMelFilters; ++j) {
        const double power = std::exp(2.0 * have[j]);
        was += power;
        if (before[j] > 0.0)
            will += power * after[j] / before[j];
    }
    return was > 0.0 && will > 0.0 ? 10.0 * std::log10(will / was) : 0.0;
}

// What one pass of a refinement reads: the frames' starting values, the recording's and the
// synthesis's mel log spectra, the filters and the delays at their bins.
struct ShapePass {
    const Parts& parts;
    const std::vector<bool>& wanted;
    const std::vector<FrameValues>& start;
    const std::vector<MelSpectrum>& recording;
    const std::vector<MelSpectrum>& synth;
    const MelCepstrum& mel;
    const Basis& basis;
    const std::vector<std::complex<double>>& z1;
    double rate;
};

// One pass over frames from .. to - 1: each frame's step reads only its own values, so the
// frames may be refined on several threads at once with the same result.
void refineFrames(std::vector<FrameValues>& frames, std::size_t from, std::size_t to, const ShapePass& p)
{
    for (std::size_t f = from; f < to; ++f) {
        if (!p.wanted[f] || silent(p.synth[f]))
            continue;
        FrameValues& v = frames[f];
        const Responses h = responses(v, p.parts, p.z1, p.rate);
        const std::vector<std::complex<double>> sum = sums(h, Step{});
        const MelSpectrum powers = filterPowers(sum, p.mel);
        const Step step = shapeStep(levelSlopes(h, sum, powers, p.mel), p.recording[f], p.synth[f], p.basis);
        const double keepLevel = -levelChange(h, powers, p.mel, p.synth[f], step);
        for (int k = 0; k < kParts; ++k) {
            const int row = p.parts[k].amplitudeRow, start = p.start[f][row];
            const int moved = static_cast<int>(std::lround(v[row] + step[k] + keepLevel));
            v[row] = std::clamp(std::clamp(moved, start - kMaxShift, start + kMaxShift), 0, 87);
        }
    }
}

// The frame that halves the wanted frames, where the second thread begins.
std::size_t middleWanted(const std::vector<bool>& wanted)
{
    const std::size_t total = std::count(wanted.begin(), wanted.end(), true);
    std::size_t seen = 0, f = 0;
    while (f < wanted.size() && 2 * seen < total)
        seen += wanted[f++] ? 1 : 0;
    return f;
}

} // namespace

// The amplitudes of `parts` in the frames marked in `wanted` moved, pass by pass, towards the
// recording's mel log spectrum; the synthesis of the voice alone (or of the noise alone) is
// measured. Each step keeps the frame's level as the model predicts it, and no amplitude moves
// more than kMaxShift dB from where it started. Each pass refines the second half of the frames
// on a thread of its own.
void LevelMatching::refineShape(std::vector<FrameValues>& frames, int passes, const Parts& parts,
                                const std::vector<bool>& wanted, bool voicing) const
{
    const MelCepstrum synthMel(m_nRate, m_dMelTop);
    const std::vector<std::complex<double>> z1 = delays(synthMel, m_nRate);
    const Basis basis = basisByFilter(synthMel);
    const std::vector<FrameValues> start = frames;
    // The recording's spectra are taken on a thread of their own while the first pass renders.
    std::future<std::vector<MelSpectrum>> analysed = std::async(std::launch::async, [this, &wanted] {
        return MelCepstrum(m_target.rate, m_dMelTop)
            .logSpectra(m_target.samples, m_target.count, m_target.centres, &wanted);
    });
    std::vector<MelSpectrum> recording;
    const std::size_t middle = middleWanted(wanted);
    for (int pass = 0; pass < passes; ++pass) {
        const Rendering r = renderFrames(only(frames, voicing, !voicing), m_nRate, m_nInterval);
        const std::vector<MelSpectrum> synth =
            synthMel.logSpectra(r.samples.data(), r.samples.size(), m_target.centres, &wanted);
        if (analysed.valid())
            recording = analysed.get();
        const ShapePass p{
            parts, wanted, start, recording, synth, synthMel, basis, z1, static_cast<double>(m_nRate)};
        std::future<void> second = std::async(std::launch::async, [&frames, &p, middle, &wanted] {
            refineFrames(frames, middle, wanted.size(), p);
        });
        refineFrames(frames, 0, middle, p);
        second.get();
    }
}

void LevelMatching::refineParallelShape(std::vector<FrameValues>& frames, int passes) const
{
    const std::size_t n = m_target.centres.size();
    std::vector<bool> wanted(n);
    for (std::size_t f = 0; f < n; ++f)
        wanted[f] = m_target.voiced[f] && frames[f][Row::apv] > 0 && frames[f][Row::av] == 0 &&
                    m_recordingLevels[f] > m_dLoudest - kShapeRange;
    // The recording's levels over kLevelWindowS do not depend on the frames' values: they are
    // taken on a thread of their own while the shape is refined.
    const std::vector<FrameValues> before = frames;
    std::future<std::vector<std::vector<double>>> want = std::async(std::launch::async, [this, &before] {
        return levelsInBands(m_target.samples, m_target.count, m_target.rate, before, wholeBand());
    });
    refineShape(frames, passes, kVoiceParts, wanted, true);
    matchParallelLevel(frames, wanted, want.get());
}

void LevelMatching::refineFricationShape(std::vector<FrameValues>& frames, int passes) const
{
    const std::size_t n = m_target.centres.size();
    std::vector<bool> wanted(n);
    for (std::size_t f = 0; f < n; ++f)
        wanted[f] = !m_target.voiced[f] && frames[f][Row::af] >= audible(Row::af) &&
                    frames[f][Row::ah] == 0 && m_recordingLevels[f] > m_dLoudest - kShapeRange;
    refineShape(frames, passes, kFricationParts, wanted, false);
}

// The band from 60 Hz to the top over kLevelWindowS around each voiced frame.
LevelMatching::BandLayout LevelMatching::wholeBand()
{
    return {kLevelWindowS, true, [](const FrameValues&, double top) {
                return std::vector<double>{60.0, top};
            }};
}

// The model keeps each frame's level only as far as its resonators predict the harmonics they
// pass: the frame's level from 60 Hz to the top, over kLevelWindowS around it, is
// brought back to the recording's by moving the five amplitudes together.
void LevelMatching::matchParallelLevel(std::vector<FrameValues>& frames, const std::vector<bool>& wanted,
                                       const std::vector<std::vector<double>>& want) const
{
    const Rendering r = renderFrames(only(frames, true, false), m_nRate, m_nInterval);
    const auto have = levelsInBands(r.samples.data(), r.samples.size(), m_nRate, frames, wholeBand());
    for (std::size_t f = 0; f < frames.size() && f < wanted.size(); ++f) {
        if (!wanted[f] || have[f][0] <= kSilentDb || want[f][0] <= kSilentDb)
            continue;
        const double d = std::clamp(want[f][0] - have[f][0], -kStepLimit, kStepLimit);
        for (const Part& part : kVoiceParts)
            frames[f][part.amplitudeRow] =
                std::clamp(static_cast<int>(std::lround(frames[f][part.amplitudeRow] + d)), 0, 87);
    }
}
