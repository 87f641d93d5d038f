#include "display/PitchTrackComputation.h"
#include "support/TestChannels.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

namespace
{

constexpr double kRate = 11025.0;

// A track of given values, ready for the cleaning steps.
PitchTrackComputation trackOf(const std::vector<double>& values)
{
    PitchTrackComputation t;
    t.m_nFrameCount = static_cast<int>(values.size());
    t.m_hdPitchFile = values;
    return t;
}

} // namespace

TEST(PitchTrackComputation, FramesWindowStepAndEdges)
{
    const auto x = signals::toFloat(signals::pulseTrain(11025, 120.0, kRate));
    const auto channel = channelOf(x, kRate);
    PitchTrackComputation t;
    ASSERT_TRUE(t.DoPitchCepstral(*channel, PitchSettings{}));
    EXPECT_EQ(t.m_nFrameCount, 99); // trunc(11025 / 110.25) - 1
    EXPECT_EQ(t.m_nWindowSamples, 385);
    ASSERT_EQ(t.m_hdPitchFile.size(), 99u);
    EXPECT_EQ(t.m_hdPitchFile.front(), 0.0);
    EXPECT_EQ(t.m_hdPitchFile.back(), 0.0);
    // Frames whose window reaches past the end analyse stale data; the others find f0.
    for (int i = 1; i < 90; ++i)
        EXPECT_NEAR(t.m_hdPitchFile[i], 120.0, 120.0 * 0.03) << "frame " << i;

    PitchSettings settings;
    settings.m_dPitchWindowLength = 100.0; // 1102 samples: cut to 92 whole ms, 1014 samples
    ASSERT_TRUE(t.DoPitchCepstral(*channel, settings));
    EXPECT_EQ(t.m_nWindowSamples, 1014);

    // Two frames: the jump pass writes nothing, the track is 0.
    const auto shortChannel = channelOf(std::vector<float>(x.begin(), x.begin() + 340), kRate);
    ASSERT_TRUE(t.DoPitchCepstral(*shortChannel, PitchSettings{}));
    EXPECT_EQ(t.m_nFrameCount, 2);
    EXPECT_EQ(t.m_hdPitchFile, (std::vector<double>{0.0, 0.0}));

    // A step below one sample, or not a number, is refused without a track.
    for (double step : {0.0, -10.0, 0.05, std::nan("")}) {
        settings.m_dPitchStepSize = step;
        EXPECT_FALSE(t.DoPitchCepstral(*channel, settings)) << step;
        EXPECT_EQ(t.m_nFrameCount, 0);
        EXPECT_FALSE(t.m_bHavePitch);
    }

    // A channel without audio has frames but no pitch.
    Channels silent;
    silent.m_dwFileLength = 2205.0;
    ASSERT_TRUE(t.DoPitchCepstral(silent, PitchSettings{}));
    EXPECT_EQ(t.m_nFrameCount, 19);
    EXPECT_EQ(t.m_hdPitchFile, std::vector<double>(19, 0.0));
}

TEST(PitchTrackComputation, JumpsAreRemovedAndTheMeanRunsForward)
{
    // Frame 3 jumps by the deviation itself: it and both neighbours go; the ends stay 0.
    const std::vector<double> raw = {100, 100, 100, 200, 100, 100, 100, 100};
    PitchTrackComputation t = trackOf(std::vector<double>(8, 0.0));
    t.removeJumps(raw, 100.0);
    EXPECT_EQ(t.m_hdPitchFile, (std::vector<double>{0, 100, 0, 0, 0, 100, 100, 0}));
    // A difference just below the deviation (truncated) is kept.
    t = trackOf(std::vector<double>(5, 0.0));
    t.removeJumps({100, 100, 199.9, 100, 100}, 100.0);
    EXPECT_EQ(t.m_hdPitchFile[2], 199.9);

    // Each mean uses the next two values before they are smoothed; a zero blocks the two
    // frames before it.
    t = trackOf({90, 120, 150, 180, 0, 240, 270, 300});
    t.smoothForward();
    EXPECT_EQ(t.m_hdPitchFile, (std::vector<double>{120, 150, 150, 180, 0, 240, 270, 300}));
    // Three frames or fewer are not smoothed.
    t = trackOf({90, 120, 150});
    t.smoothForward();
    EXPECT_EQ(t.m_hdPitchFile, (std::vector<double>{90, 120, 150}));
}

TEST(PitchTrackComputation, EnergyGate)
{
    // Four steps of 10 samples with energies 0, 1, 4 and 9 per sample.
    std::vector<float> x(40);
    for (int i = 0; i < 40; ++i)
        x[i] = static_cast<float>(i / 10);
    const auto channel = channelOf(x, kRate);
    auto gated = [&](double threshold) {
        PitchTrackComputation t = trackOf({100, 100, 100, 100});
        t.m_dStepSamples = 10.0;
        t.gateByEnergy(*channel, threshold);
        return t.m_hdPitchFile;
    };
    EXPECT_EQ(gated(0.0), (std::vector<double>{0, 100, 100, 100}));
    EXPECT_EQ(gated(50.0), (std::vector<double>{0, 0, 0, 100}));
    // At 100 % even the loudest frame goes: its energy minus the threshold is 0.
    EXPECT_EQ(gated(100.0), (std::vector<double>{0, 0, 0, 0}));
    EXPECT_EQ(gated(99.0), (std::vector<double>{0, 0, 0, 100}));
}
