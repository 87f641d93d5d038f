#include "display/AnalysisReports.h"
#include "analysis/TestSignals.h"
#include "display/PitchTrackComputation.h"
#include "display/SpectrogramComputation.h"
#include "display/TestChannels.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(AnalysisReports, PitchAndFormantCsv)
{
    PitchTrackComputation track;
    track.m_nFrameCount = 3;
    track.m_hdPitchFile = {0.0, 123.5, 100.22727272727273};
    EXPECT_EQ(pitchTrackCsv(track, 12.5), "time_ms,f0_hz\n0,0\n12.5,123.5\n25,100.22727272727273\n");

    // 22050 samples at 11025 Hz over 100 columns: column c starts at c x 20 ms.
    const auto channel = channelOf(signals::toFloat(signals::noise(22050, 2, 0.2)), 11025.0);
    SpectrogramComputation s;
    s.m_settings.m_nSpecLPCNumberofCoefficients = 14;
    ASSERT_TRUE(s.compute(*channel, 100, 32));
    s.m_phsnFormants[3] = FormantRecord{512, 1500, -1, -1, -1, 0};
    const std::string csv = formantTrackCsv(s);
    std::istringstream lines(csv);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "column,time_ms,f1,f2,f3,f4,f5");
    int count = 0;
    while (std::getline(lines, line)) {
        if (count == 3) {
            EXPECT_EQ(line, "3,60,512,1500,-1,-1,-1");
        }
        ++count;
    }
    EXPECT_EQ(count, 100);

    // Without formant records every slot reads -1.
    s.m_settings.m_bSpecDrawFormantTracking = false;
    ASSERT_TRUE(s.compute(*channel, 10, 32));
    EXPECT_NE(formantTrackCsv(s).find("\n3,600,-1,-1,-1,-1,-1\n"), std::string::npos);
}

TEST(AnalysisReports, SpectrogramImageIsUpright)
{
    const auto ramp = grayRamp();
    EXPECT_EQ(ramp[0], 255);
    EXPECT_EQ(ramp[256], 0);
    for (int i = 1; i <= 256; ++i)
        ASSERT_LE(ramp[i], ramp[i - 1]);

    // A 1000 Hz sine: the darkest pixel of a middle column sits 1000/5000 of the way up.
    const auto channel = channelOf(signals::toFloat(signals::sine(11025, 1000.0, 11025.0, 0.5)), 11025.0);
    SpectrogramSettings settings;
    settings.m_dPreEmphasis = 0.0;
    SpectrogramComputation s(settings);
    ASSERT_TRUE(s.compute(*channel, 40, 100));
    const RgbImage plain = spectrogramImage(s, false);
    ASSERT_EQ(plain.width, 40);
    ASSERT_EQ(plain.height, 100);
    ASSERT_EQ(plain.rgb.size(), 40u * 100u * 3u);
    int darkestY = 0;
    for (int y = 0; y < 100; ++y)
        if (plain.rgb[(y * 40 + 20) * 3] < plain.rgb[(darkestY * 40 + 20) * 3])
            darkestY = y;
    EXPECT_NEAR(darkestY, 99 - 20, 1);
    EXPECT_LE(plain.rgb[(darkestY * 40 + 20) * 3], 2); // the loudest levels are black

    // Formant marks in red at their frequency, three pixels tall.
    for (auto& record : s.m_phsnFormants)
        record = FormantRecord{2500, -1, -1, -1, -1, 0};
    const RgbImage marked = spectrogramImage(s, true);
    const std::uint8_t* p = &marked.rgb[((99 - 50) * 40 + 7) * 3];
    EXPECT_EQ(p[0], 255);
    EXPECT_EQ(p[1], 0);
    EXPECT_EQ(p[2], 0);
    EXPECT_TRUE(spectrogramImage(SpectrogramComputation{}, true).rgb.empty());
}
