#include "display/SpectrogramComputation.h"
#include "document/MyDocument.h"
#include "support/TestChannels.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{

constexpr double kRate = 11025.0;

SpectrogramSettings defaults()
{
    MyDocument document;
    document.setAnalysisDefaults(kRate);
    return SpectrogramSettings::fromDocument(document);
}

} // namespace

TEST(SpectrogramComputation, SineLevelsAndAmplitudeUnderAPoint)
{
    const auto channel = channelOf(signals::toFloat(signals::sine(11025, 1000.0, kRate, 0.5)), kRate);
    SpectrogramSettings settings = defaults();
    settings.m_dPreEmphasis = 0.0;
    SpectrogramComputation s(settings);
    ASSERT_TRUE(s.compute(*channel, 60, 200));
    double loudest = 0.0;
    for (int i = 10; i < 50; ++i) {
        const double* frame = s.frame(i);
        const int peakRow = static_cast<int>(std::max_element(frame, frame + 200) - frame);
        EXPECT_NEAR(peakRow, 40, 1) << i; // 1000 Hz of 5000 over 200 rows
        loudest = std::max(loudest, frame[peakRow]);
    }
    EXPECT_DOUBLE_EQ(loudest, 50.0);

    // The display is 600 x 400 units: row 40 of 200 is 80 units up, column 30 of 60 is 300 in.
    EXPECT_NEAR(s.GetSpectrogramAmplitue(400.0, 600.0, 50, 90.0, 80, 300), 90.0 - 50.0 + s.level(30, 40),
                1e-9);
    EXPECT_GT(s.GetSpectrogramAmplitue(400.0, 600.0, 50, 90.0, 80, 300), 85.0);
    EXPECT_LT(s.GetSpectrogramAmplitue(400.0, 600.0, 50, 90.0, 300, 300), 60.0);
    // Points outside the display read the nearest stored level; a zero extent reads 0.
    EXPECT_EQ(s.GetSpectrogramAmplitue(400.0, 600.0, 50, 90.0, -20, 5000),
              std::clamp(90.0 - 50.0 + s.level(59, 0), 0.0, 90.0));
    EXPECT_EQ(s.GetSpectrogramAmplitue(0.0, 600.0, 50, 90.0, 80, 300), 0.0);
    SpectrogramComputation empty;
    EXPECT_EQ(empty.GetSpectrogramAmplitue(400.0, 600.0, 50, 90.0, 80, 300), 0.0);
}

TEST(SpectrogramComputation, EdgesNarrowDisplaysAndTheDoubledSubtractionNearTheEnd)
{
    const auto channel = channelOf(signals::toFloat(signals::noise(2000, 4, 0.3)), kRate);
    SpectrogramComputation s(defaults());
    ASSERT_TRUE(s.compute(*channel, 100, 64));
    // Column 94 starts at 1880: 1880 + 138 > 2000, so it copies below 2000 - 1880 = 120, that
    // is nothing, and analyses the zeros it was given: below the range, all 0.
    auto columnMax = [&](int i) { return *std::max_element(s.frame(i), s.frame(i) + 64); };
    EXPECT_GT(columnMax(93), 0.0);
    for (int i = 94; i < 100; ++i)
        EXPECT_EQ(columnMax(i), 0.0) << i;
    // Silent columns show no formants in slots 1 to 4.
    for (int slot = 0; slot < 4; ++slot)
        EXPECT_EQ(s.m_phsnFormants[97][slot], -1);

    // 20 columns or fewer: no maximum, every level is lifted by ten million.
    SpectrogramComputation narrow(defaults());
    ASSERT_TRUE(narrow.compute(*channel, 20, 32));
    for (int i = 0; i < 20; ++i)
        ASSERT_GT(*std::min_element(narrow.frame(i), narrow.frame(i) + 32), 9.0e6);
}

TEST(SpectrogramComputation, FormantSlotsAreGatedAndPacked)
{
    const RootRecord roots{.formantCount = 5,
                           .frequency = {300.0, 500.0, 500.0, 2400.0, 3000.0},
                           .bandwidth = {100.0, 300.0, 200.0, 1300.0, 90.0}};
    FormantRecord record{};
    record[5] = 7;
    SpectrogramComputation::packFormants(&roots, record);
    // 500 Hz with 300 Hz is out (300.5 x 2 > 500.5), 500 with 200 in; no gaps.
    EXPECT_EQ(record, (FormantRecord{300, 500, 3000, -1, -1, 7}));
    SpectrogramComputation::packFormants(nullptr, record);
    EXPECT_EQ(record, (FormantRecord{-1, -1, -1, -1, -1, 7}));

    // A column whose loudest level is below 30 % of the range loses slots 0 to 3, not slot 4.
    SpectrogramComputation s(defaults());
    s.SetupDisplay(30, 10, kRate);
    s.GetStorage();
    EXPECT_EQ(s.m_nAllocatedStorageAmount, 30); // a formant record per column
    s.frame(3)[5] = 14.9;
    s.frame(4)[5] = 15.0;
    for (auto& r : s.m_phsnFormants)
        r = FormantRecord{1, 2, 3, 4, 5, 0};
    s.gateQuietColumns();
    EXPECT_EQ(s.m_phsnFormants[3], (FormantRecord{-1, -1, -1, -1, 5, 0}));
    EXPECT_EQ(s.m_phsnFormants[4], (FormantRecord{1, 2, 3, 4, 5, 0}));
}

TEST(SpectrogramComputation, TheFirstFormantOfAHighPitchedIIsFound)
{
    // At f0 200 Hz the first formant of /i/ lies between the first two harmonics: the LPC finds it
    // only with its pre-emphasis, its window and its full order (without, slot 0 holds F2).
    const auto x = signals::vowel(11025, 200.0, kRate, {{300, 60}, {2300, 100}, {3000, 150}});
    SpectrogramComputation s(defaults());
    ASSERT_TRUE(s.compute(*channelOf(signals::toFloat(x, 0.05), kRate), 100, 100));
    std::vector<double> f1;
    for (int i = 10; i < 90; ++i)
        f1.push_back(s.m_phsnFormants[i][0]);
    EXPECT_NEAR(signals::median(f1), 300.0, 150.0);
}

TEST(SpectrogramComputation, TrackingOffCancelAndBadInput)
{
    const auto x = signals::toFloat(signals::noise(5000, 6, 0.2));
    const auto channel = channelOf(x, kRate);
    SpectrogramSettings off = defaults();
    off.m_bSpecDrawFormantTracking = false;
    SpectrogramComputation s(off);
    ASSERT_TRUE(s.compute(*channel, 50, 40));
    EXPECT_TRUE(s.m_phsnFormants.empty());
    EXPECT_EQ(s.m_nAllocatedStorageAmount, 0);
    EXPECT_FALSE(s.m_bHaveFormants);

    std::atomic<bool> cancel{true};
    SpectrogramComputation cancelled(defaults());
    EXPECT_FALSE(cancelled.compute(*channel, 50, 40, &cancel));
    EXPECT_FALSE(cancelled.m_bHaveSpectrogram);

    SpectrogramComputation bad(defaults());
    EXPECT_FALSE(bad.compute(*channel, 50, -3));
    bad.SetupDisplay(50, 40, kRate);
    bad.GetStorage();
    bad.SetupDisplay(500, 40, kRate); // storage of the old size
    EXPECT_FALSE(bad.DoSpectrogram(*channel));

    // A length beyond the samples held: nothing past the block is read.
    auto lying = channelOf(x, kRate);
    lying->m_dwFileLength = 1.0e9;
    EXPECT_TRUE(bad.compute(*lying, 50, 40));
    lying->m_dwFileLength = std::nan("");
    lying->m_dSampleRate = std::nan("");
    EXPECT_TRUE(bad.compute(*lying, 50, 40));

    // Without audio the frames hold zeros: every level reads 0 dB, the range after normalizing.
    Channels silent;
    silent.m_dwFileLength = 3000.0;
    SpectrogramComputation none(defaults());
    ASSERT_TRUE(none.compute(silent, 40, 16));
    EXPECT_EQ(none.level(20, 3), 50.0);
}

TEST(SpectrogramComputation, ConcurrentComputationsEqualSerialOnes)
{
    std::unique_ptr<Channels> channels[2];
    SpectrogramComputation serial[2], parallel[2];
    std::thread threads[2];
    for (int i = 0; i < 2; ++i) {
        const double f0 = 110.0 + 70.0 * i, f1 = 600.0 + 300.0 * i;
        channels[i] = channelOf(signals::toFloat(signals::vowel(8000, f0, kRate, {{f1, 90.0}}), 0.05), kRate);
        serial[i].m_settings = parallel[i].m_settings = defaults();
        serial[i].compute(*channels[i], 80, 100);
    }
    for (int i = 0; i < 2; ++i)
        threads[i] = std::thread([&, i] { parallel[i].compute(*channels[i], 80, 100); });
    for (int i = 0; i < 2; ++i) {
        threads[i].join();
        EXPECT_EQ(parallel[i].m_phdDataFile, serial[i].m_phdDataFile);
        EXPECT_EQ(parallel[i].m_phsnFormants, serial[i].m_phsnFormants);
    }
}
