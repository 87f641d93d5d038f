// The parallel voicing's spectral shape refined against a signal whose formant amplitudes are
// known: amplitudes set off from the truth come back to it.
#include "copysynth/CopySynthesisFixture.h"
#include "copysynth/LevelMatching.h"

#include <gtest/gtest.h>

using namespace copytest;

TEST(LevelMatchingShape, MisjudgedFormantAmplitudesComeBackToTheSignals)
{
    constexpr int kRows[5] = {Row::a1f, Row::a2f, Row::a3f, Row::a4f, Row::a5f};
    constexpr int kTruth[5] = {55, 68, 45, 52, 38};
    // The strongest formant is right, so the frame's level, which the refinement keeps, is too.
    constexpr int kOff[5] = {0, 0, 6, -5, 4};
    std::vector<FrameValues> truth, frames;
    for (int c = 0; c < 40; ++c) {
        FrameValues v = vowelFrame(115.0, 0, {550, 1400, 2450, 3300, 3900});
        v[Row::apv] = 60;
        const int bandwidths[5] = {Row::b1f, Row::b2f, Row::b3f, Row::b4f, Row::b5f};
        for (int k = 0; k < 5; ++k) {
            v[kRows[k]] = kTruth[k];
            v[bandwidths[k]] = 60 + 30 * k;
        }
        truth.push_back(v);
        for (int k = 0; k < 5; ++k)
            v[kRows[k]] += kOff[k];
        frames.push_back(v);
    }
    const std::vector<float> signal = render(truth);
    LevelTarget target{signal.data(), signal.size(), static_cast<double>(kRate), {}, {}};
    for (std::size_t c = 0; c + 1 < frames.size(); ++c) {
        target.centres.push_back((c * kInterval + kInterval / 2.0) / 1000.0);
        target.voiced.push_back(true);
    }
    const LevelMatching matching(target, kRate, kInterval);
    const double before = matching.spectralDistance(frames);
    matching.refineParallelShape(frames, 4);
    EXPECT_LT(matching.spectralDistance(frames), 0.5 * before);
    // The level is kept, so each amplitude is judged against the first formant's: on average
    // over the steady frames, each misjudged one has come most of the way back.
    for (int k = 1; k < 5; ++k) {
        double error = 0.0;
        for (int c = 5; c < 35; ++c)
            error += std::fabs((frames[c][kRows[k]] - frames[c][Row::a1f]) - (kTruth[k] - kTruth[0])) / 30.0;
        EXPECT_LT(error, std::max(1.5, 0.4 * std::abs(kOff[k]))) << "formant " << k + 1;
    }
    EXPECT_EQ(frames[10][Row::apv], 60);
}
