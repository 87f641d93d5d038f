#include "display/SliceComputation.h"
#include "display/GridStep.h"
#include "display/RasterCanvas.h"
#include "display/SlicePlot.h"
#include "display/SpectralComparison.h"
#include "display/SvgCanvas.h"
#include "support/TestChannels.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{
constexpr double kRate = 11025.0;

using signals::toFloat;

// Five formants below 4000 Hz: an envelope of half its LPC order cannot show them all.
std::vector<float> vowelSamples(int n, double f1, double f2)
{
    return toFloat(
        signals::vowel(n, 120.0, kRate, {{f1, 80}, {f2, 100}, {2600, 150}, {3300, 150}, {3800, 150}}), 0.02);
}

// Frequencies of the local maxima of `levels`, ascending.
std::vector<double> peaksOf(const SliceComputation& s, const std::vector<double>& levels)
{
    std::vector<double> peaks;
    for (std::size_t k = 1; k + 1 < levels.size(); ++k)
        if (levels[k] > levels[k - 1] && levels[k] >= levels[k + 1])
            peaks.push_back(s.m_dFrequency[k]);
    return peaks;
}
} // namespace

TEST(SliceComputation, SinePeaksAtItsFrequencyAndLevel)
{
    // Half full scale: -6 dB re full scale, within the Hamming window's scalloping loss.
    const std::vector<float> x = toFloat(signals::sine(4000, 440.0, kRate, 0.5));
    SliceComputation slice;
    ASSERT_TRUE(slice.compute(x.data(), x.size(), kRate, 1000));
    EXPECT_EQ(slice.m_nTransformLength, 256);
    EXPECT_EQ(slice.m_nAppliedSamples, 253); // 23 ms
    EXPECT_EQ(slice.m_nWindows, 10);
    EXPECT_NEAR(slice.peakFrequency(), 440.0, 8.0);
    const double peak = *std::max_element(slice.m_dFFT.begin(), slice.m_dFFT.end());
    EXPECT_NEAR(peak, -6.02, 1.6);
    // Bins of rate / 256 Hz from 0 up to the 5000 Hz range.
    ASSERT_EQ(slice.m_dFrequency.size(), slice.m_dFFT.size());
    EXPECT_EQ(slice.m_dFrequency.size(), 117u);
    EXPECT_DOUBLE_EQ(slice.m_dFrequency[10], 10 * kRate / 256);
    // The envelope lies on the spectrum at its peak and peaks there too.
    ASSERT_EQ(slice.m_dLPC.size(), slice.m_dFFT.size());
    const auto top = std::max_element(slice.m_dLPC.begin(), slice.m_dLPC.end()) - slice.m_dLPC.begin();
    EXPECT_NEAR(slice.m_dFrequency[top], 440.0, 45.0);
    EXPECT_NEAR(slice.m_dLPC[top], peak, 6.0);
}

TEST(SliceComputation, VowelEnvelopeFindsTheFormantsAndSettingsApply)
{
    const std::vector<float> x = vowelSamples(8000, 700.0, 1220.0);
    SliceSettings settings;
    settings.m_nFFTWindowLength = 512;
    settings.m_nFFTAppliedWindowLength = 46;
    settings.m_nFFTfrequencyRange = 4000;
    SliceComputation slice(settings);
    ASSERT_TRUE(slice.compute(x.data(), x.size(), kRate, 3000));
    EXPECT_EQ(slice.m_nTransformLength, 512);
    EXPECT_LE(slice.m_dFrequency.back(), 4000.0);
    EXPECT_GT(slice.m_dFrequency.back(), 4000.0 - kRate / 512);
    const std::vector<double> peaks = peaksOf(slice, slice.m_dLPC);
    ASSERT_GE(peaks.size(), 3u);
    EXPECT_NEAR(peaks[0], 700.0, 60.0);
    EXPECT_NEAR(peaks[1], 1220.0, 80.0);
    EXPECT_NEAR(peaks[2], 2600.0, 120.0);
}

TEST(SliceComputation, SilenceEndsAndBadInput)
{
    std::vector<float> x(3000, 0.0f);
    SliceComputation slice;
    ASSERT_TRUE(slice.compute(x.data(), x.size(), kRate, 100));
    EXPECT_TRUE(slice.m_bSilent);
    EXPECT_TRUE(slice.m_dLPC.empty());
    for (double v : slice.m_dFFT)
        EXPECT_LT(v, -100.0);

    // The last sample: the windows run past the end and read silence there.
    x = toFloat(signals::sine(3000, 1000.0, kRate, 0.5));
    ASSERT_TRUE(slice.compute(x.data(), x.size(), kRate, 2999));
    EXPECT_FALSE(slice.m_bSilent);
    ASSERT_TRUE(slice.compute(x.data(), x.size(), kRate, 2990.7));
    EXPECT_EQ(slice.m_dStartSample, 2990.0);

    EXPECT_FALSE(slice.compute(x.data(), x.size(), kRate, 3000));
    EXPECT_TRUE(slice.m_dFFT.empty());
    EXPECT_FALSE(slice.compute(x.data(), x.size(), kRate, -1));
    EXPECT_FALSE(slice.compute(x.data(), x.size(), 0.0, 0));
    EXPECT_FALSE(slice.compute(nullptr, 0, kRate, 0));
    EXPECT_EQ(slice.peakFrequency(), 0.0);

    // Odd settings are brought within what the analysis takes.
    SliceSettings odd;
    odd.m_nFFTWindowLength = 100000;
    odd.m_nFFTAppliedWindowLength = 5000;
    odd.m_nFFTAverageStepSize = 0;
    odd.m_nLPCNumberofCoefficients = 1000;
    odd.m_nFFTfrequencyRange = 99999;
    SliceComputation big(odd);
    ASSERT_TRUE(big.compute(x.data(), x.size(), kRate, 0));
    EXPECT_EQ(big.m_nTransformLength, 8192);
    EXPECT_EQ(big.m_nWindows, 1);
    EXPECT_EQ(big.m_dFFT.size(), 4096u);
}

TEST(SpectralDistance, EnvelopesAreComparedByShapeOnly)
{
    EXPECT_DOUBLE_EQ(envelopeDistance({1, 2, 3}, {11, 12, 13}), 0.0); // loudness costs nothing
    EXPECT_DOUBLE_EQ(envelopeDistance({0, 2}, {0, 0}), 1.0);
    EXPECT_DOUBLE_EQ(envelopeDistance({}, {}), 0.0);
    // Different grids: b is interpolated onto a's frequencies up to the top.
    EXPECT_NEAR(envelopeDistance({0, 100, 200}, {0, 10, 20}, {0, 50, 100, 150, 200, 250},
                                 {0, 5, 10, 15, 20, 99}, 200),
                0.0, 1e-12);
    EXPECT_NEAR(envelopeDistance({0, 100, 200}, {0, 0, 0}, {0, 200}, {0, 20}, 1000), std::sqrt(200.0 / 3.0),
                1e-9);
}

TEST(RecordingComparison, SameIsZeroDifferentVowelsAreFarAndQuietFramesAreSkipped)
{
    std::vector<float> a = vowelSamples(11025, 700.0, 1220.0);
    std::fill(a.begin() + 5000, a.begin() + 6000, 0.0f); // 100 ms of silence
    const auto ca = channelOf(a, kRate);
    RecordingComparison same;
    ASSERT_TRUE(same.compare(*ca, *ca));
    // Frames every 10 ms while a window and one sample fit: trunc((11025 - 129) / 110.25) + 1.
    EXPECT_EQ(same.m_nFramesWalked, 99);
    EXPECT_EQ(same.m_frames.size(), 99u - 8u); // the frames wholly within the silence are gone
    for (const FrameDistance& f : same.m_frames) {
        EXPECT_EQ(f.distanceDB, 0.0);
        EXPECT_FALSE(f.timeMS >= 460.0 && f.timeMS <= 530.0) << f.timeMS;
    }
    EXPECT_EQ(same.meanDistance(), 0.0);

    // A louder copy is the same shape; another vowel, cut shorter, is far.
    std::vector<float> louder(a);
    for (float& v : louder)
        v *= 3.0f;
    RecordingComparison loud;
    loud.compare(*ca, *channelOf(louder, kRate));
    EXPECT_LT(loud.meanDistance(), 0.01);
    const auto other = channelOf(vowelSamples(5000, 300.0, 2300.0), kRate);
    RecordingComparison far;
    ASSERT_TRUE(far.compare(*ca, *other));
    EXPECT_EQ(far.m_nFramesWalked, 45);
    EXPECT_GT(far.meanDistance(), 5.0);

    RecordingComparison rates;
    EXPECT_FALSE(rates.compare(*ca, *channelOf(a, 22050.0)));
    EXPECT_TRUE(std::isnan(rates.meanDistance()));
}

TEST(SlicePlot, PictureMapsTheSpectrumOntoItsAxes)
{
    const std::vector<float> x = toFloat(signals::sine(4000, 1500.0, kRate, 0.5));
    SliceComputation slice;
    ASSERT_TRUE(slice.compute(x.data(), x.size(), kRate, 0));
    SlicePlotStyle style;
    style.m_bFFTDrawLPC = false;
    RasterCanvas canvas(600, 400);
    const SlicePlotFrame f = SlicePlot::draw(canvas, 600, 400, style, slice, nullptr, "title", "a", "b");
    EXPECT_NEAR(f.frequencyAt(f.left + f.width / 2), 2500.0, 1e-9);
    EXPECT_NEAR(f.levelAt(f.top + f.height), -80.0, 1e-9);
    // The highest pixel of the spectrum's colour inside the plot lies over 1500 Hz at about -6 dB.
    int bestX = -1, bestY = 10000;
    for (int y = static_cast<int>(f.top) + 1; y < f.top + f.height - 1 && bestX < 0; ++y)
        for (int xx = static_cast<int>(f.left) + 1; xx < f.left + f.width - 1; ++xx) {
            const PlotColor c = canvas.pixel(xx, y);
            if (c.b > 150 && c.r < 100) {
                bestX = xx;
                bestY = y;
                break;
            }
        }
    ASSERT_GE(bestX, 0);
    EXPECT_NEAR(f.frequencyAt(bestX), 1500.0, 50.0);
    EXPECT_NEAR(f.levelAt(bestY), -6.0, 2.5);

    // With a model laid over, the picture states their distance.
    SvgCanvas svg(432, 288);
    SlicePlot::draw(svg, 432, 288, style, slice, &slice, "t", "synthesis", "model");
    EXPECT_NE(svg.document().find("distance 0.0 dB"), std::string::npos);
    EXPECT_EQ(gridStep(5000, 500, 1000, 6), 1000);
    EXPECT_EQ(gridStep(5000, 50, 100, 6), 1000);
}
