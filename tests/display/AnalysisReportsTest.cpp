#include "display/AnalysisReports.h"
#include "display/PitchTrackComputation.h"
#include "display/SpectrogramComputation.h"
#include "support/TestChannels.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(AnalysisReports, PitchAndFormantCsv)
{
    PitchTrackComputation track;
    track.m_nFrameCount = 3;
    track.m_hdPitchFile = {0.0, 123.5, 100.22727272727273};
    EXPECT_EQ(pitchTrackCsv(track, 12.5), "time_ms,f0_hz\n0,0\n12.5,123.5\n25,100.22727272727273\n");

    // 44100 samples at 22050 Hz over 100 columns: column c starts at c x 20 ms.
    const auto channel = channelOf(signals::toFloat(signals::noise(44100, 2, 0.2)), 22050.0);
    SpectrogramComputation s;
    s.m_settings.m_nSpecLPCNumberofCoefficients = 14;
    ASSERT_TRUE(s.compute(*channel, 100, 32));
    s.m_phsnFormants[3] = FormantRecord{512, 1500, -1, -1, -1, 0};
    const std::string csv = formantTrackCsv(s);
    EXPECT_EQ(csv.rfind("column,time_ms,f1,f2,f3,f4,f5\n0,0,", 0), 0u) << csv.substr(0, 80);
    EXPECT_NE(csv.find("\n3,60,512,1500,-1,-1,-1\n"), std::string::npos);
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 101);

    // Without formant records every slot reads -1.
    s.m_settings.m_bSpecDrawFormantTracking = false;
    ASSERT_TRUE(s.compute(*channel, 10, 32));
    EXPECT_NE(formantTrackCsv(s).find("\n3,600,-1,-1,-1,-1,-1\n"), std::string::npos);
}

TEST(AnalysisReports, SpectrogramImageIsUprightWithRedFormantMarks)
{
    const auto ramp = grayRamp();
    EXPECT_EQ(ramp[0], 255);
    EXPECT_EQ(ramp[256], 0);
    for (int i = 1; i <= 256; ++i)
        ASSERT_LE(ramp[i], ramp[i - 1]);

    // 40 columns of 100 rows (5000 Hz, 50 dB): the full range in row 20 of column 20, half of
    // it in row 70 of column 5, below zero in row 0 of column 6; row 0 is the bottom line.
    SpectrogramComputation s;
    s.SetupDisplay(40, 100, 11025.0);
    s.GetStorage();
    s.m_bHaveSpectrogram = s.m_bHaveFormants = true;
    s.frame(20)[20] = 50.0;
    s.frame(5)[70] = 25.0;
    s.frame(6)[0] = -3.0;
    const RgbImage plain = spectrogramImage(s, false);
    ASSERT_EQ(plain.width, 40);
    ASSERT_EQ(plain.height, 100);
    ASSERT_EQ(plain.rgb.size(), 40u * 100u * 3u);
    auto pixel = [](const RgbImage& image, int x, int y) { return &image.rgb[(y * image.width + x) * 3]; };
    EXPECT_EQ(pixel(plain, 20, 79)[0], 0);
    EXPECT_EQ(pixel(plain, 5, 29)[0], ramp[128]);
    EXPECT_EQ(pixel(plain, 6, 99)[0], 255);
    EXPECT_EQ(pixel(plain, 20, 20)[0], 255);

    // Formant marks in red at their frequency, three pixels tall.
    for (auto& record : s.m_phsnFormants)
        record = FormantRecord{2500, -1, -1, -1, -1, 0};
    const RgbImage marked = spectrogramImage(s, true);
    for (int y : {48, 49, 50})
        EXPECT_EQ(std::vector<std::uint8_t>(pixel(marked, 7, y), pixel(marked, 7, y) + 3),
                  (std::vector<std::uint8_t>{255, 0, 0}))
            << y;
    EXPECT_EQ(pixel(marked, 7, 47)[1], 255);
    EXPECT_TRUE(spectrogramImage(SpectrogramComputation{}, true).rgb.empty());
}
