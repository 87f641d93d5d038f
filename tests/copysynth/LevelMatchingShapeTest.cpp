// The parallel branch's amplitudes refined in spectral shape against signals whose amplitudes are
// known: amplitudes set off from the truth come back to it.
#include "copysynth/CopySynthesisFixture.h"
#include "copysynth/LevelMatching.h"
#include "copysynth/MelCepstralDistance.h"

#include <gtest/gtest.h>

using namespace copytest;

namespace
{

constexpr int kFrames = 40;

// 40 steady frames of `truth`, and the same with the amplitude rows `rows` moved by `off`.
struct Trial {
    std::vector<FrameValues> truth, start;
};

Trial steady(const FrameValues& truth, const std::vector<int>& rows, const std::vector<int>& off)
{
    FrameValues start = truth;
    for (std::size_t k = 0; k < rows.size(); ++k)
        start[rows[k]] += off[k];
    return {std::vector<FrameValues>(kFrames, truth), std::vector<FrameValues>(kFrames, start)};
}

LevelTarget targetOf(const std::vector<float>& signal, bool voiced)
{
    LevelTarget target{signal.data(), signal.size(), static_cast<double>(kRate), {}, {}};
    for (int c = 0; c + 1 < kFrames; ++c) {
        target.centres.push_back((c * kInterval + kInterval / 2.0) / 1000.0);
        target.voiced.push_back(voiced);
    }
    return target;
}

// Mean absolute error of row `row` against the truth, relative to row `reference` (the level is
// the refinement's to keep, not to find), over the steady frames.
double relativeError(const Trial& t, int row, int reference)
{
    double error = 0.0;
    for (int c = 5; c < kFrames - 5; ++c)
        error +=
            std::fabs((t.start[c][row] - t.start[c][reference]) - (t.truth[c][row] - t.truth[c][reference]));
    return error / (kFrames - 10);
}

} // namespace

TEST(LevelMatchingShape, MisjudgedVoiceAmplitudesComeBackToTheSignals)
{
    const std::vector<int> rows = {Row::a1f, Row::a2f, Row::a3f, Row::a4f, Row::a5f};
    const std::vector<int> bandwidths = {Row::b1f, Row::b2f, Row::b3f, Row::b4f, Row::b5f};
    FrameValues v = vowelFrame(115.0, 0, {550, 1400, 2450, 3300, 3900});
    v[Row::apv] = 60;
    const int amplitudes[5] = {55, 68, 45, 52, 38};
    for (int k = 0; k < 5; ++k) {
        v[rows[k]] = amplitudes[k];
        v[bandwidths[k]] = 60 + 30 * k;
    }
    // The strongest formant is right, so the frame's level is too.
    const std::vector<int> off = {0, 0, 6, -5, 4};
    Trial t = steady(v, rows, off);
    const std::vector<float> signal = render(t.truth);
    const LevelTarget target = targetOf(signal, true);
    const LevelMatching matching(target, kRate, kInterval);
    const double before = matching.spectralDistance(t.start);
    matching.refineParallelShape(t.start, 4);
    EXPECT_LT(matching.spectralDistance(t.start), 0.5 * before);
    for (int k = 1; k < 5; ++k)
        EXPECT_LT(relativeError(t, rows[k], Row::a1f), std::max(1.5, 0.4 * std::abs(off[k])))
            << "formant " << k + 1;
    EXPECT_EQ(t.start[10][Row::apv], 60);
}

// Frication through F2 .. F5 and the bypass: its noise is shaped by the same amplitudes. F2 is
// weak here, so the bypass is what fills the valleys: the spectral distance to the signal, the
// strongest formant and the bypass come back (the bypass only if the refinement gives it the
// synthesizer's factor).
TEST(LevelMatchingShape, MisjudgedFricationShapeComesBackToTheSignals)
{
    const std::vector<int> rows = {Row::a2f, Row::a3f, Row::a4f, Row::a5f, Row::ab};
    FrameValues v = vowelFrame(115.0, 0, {550, 1400, 2450, 3300, 3900});
    v[Row::af] = 60;
    const int amplitudes[5] = {30, 55, 62, 58, 60};
    for (int k = 0; k < 5; ++k)
        v[rows[k]] = amplitudes[k];
    Trial t = steady(v, rows, {6, 0, -5, 0, 6});
    const std::vector<float> signal = render(t.truth);
    const LevelTarget target = targetOf(signal, false);
    const LevelMatching matching(target, kRate, kInterval);
    const auto distance = [&](const std::vector<FrameValues>& frames) {
        const std::vector<float> x = render(frames);
        return MelCepstralDistance::compute(signal.data(), x.data(), std::min(x.size(), signal.size()), kRate)
            .distanceDB;
    };
    const double before = distance(t.start);
    matching.refineFricationShape(t.start, 3);
    EXPECT_LT(distance(t.start), 0.5 * before);
    EXPECT_LT(relativeError(t, Row::a4f, Row::a3f), 1.5);
    EXPECT_LT(relativeError(t, Row::ab, Row::a3f), 1.0);
    EXPECT_EQ(t.start[10][Row::af], 60);
}
