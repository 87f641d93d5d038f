// The figures of a copy synthesis on generated signals whose answers are known: identical,
// scaled, detuned, octave-wrong and clipped copies of a vowel.
#include "copysynth/CopySynthesisFigures.h"
#include "copysynth/MelCepstralDistance.h"
#include "copysynth/MelCepstrum.h"
#include "support/TestChannels.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

constexpr double kRate = 11025.0;

std::vector<float> vowelOf(double f0, double f1, double f2, double rate = kRate, double gain = 0.05)
{
    const auto n = static_cast<int>(rate); // one second
    return signals::toFloat(signals::vowel(n, f0, rate, {{f1, 80}, {f2, 100}, {2500, 150}}), gain);
}

// The same vowel as a sum of its harmonics below 4 kHz, so that it is one signal at any rate.
std::vector<float> harmonicVowel(double rate)
{
    std::vector<float> x(static_cast<std::size_t>(rate));
    for (double f = 120.0; f < 4000.0; f += 120.0) {
        const double amplitude = 0.02 / (1.0 + std::pow((f - 600.0) / 80.0, 2)) +
                                 0.01 / (1.0 + std::pow((f - 1300.0) / 100.0, 2)) + 0.001;
        for (std::size_t i = 0; i < x.size(); ++i)
            x[i] += static_cast<float>(amplitude * std::sin(2.0 * M_PI * f * i / rate));
    }
    return x;
}

CopySynthesisFigures figuresOf(const std::vector<float>& original, const std::vector<float>& synthesis,
                               double synthesisRate = kRate)
{
    MyDocument settings;
    settings.setAnalysisDefaults(kRate);
    const auto a = channelOf(original, kRate);
    const auto b = channelOf(synthesis, synthesisRate);
    return CopySynthesisFigures::measure(*a, *b, PitchSettings::fromDocument(settings),
                                         SpectrogramSettings::fromDocument(settings));
}

} // namespace

TEST(MelCepstralDistance, ZeroForTheSameEnvelopeWhateverTheLevelAndQuietFramesLeftOut)
{
    const std::vector<float> a = vowelOf(120, 600, 1200);
    // 25 ms = 275 samples every 55 samples, starting while a whole frame and one more sample fit.
    MelCepstralDistance::Result r = MelCepstralDistance::compute(a.data(), a.data(), a.size(), kRate);
    EXPECT_EQ(r.frames, 196);
    EXPECT_EQ(r.distanceDB, 0.0);

    // A level change moves only c0, which is left out.
    const std::vector<float> louder = vowelOf(120, 600, 1200, kRate, 0.2);
    r = MelCepstralDistance::compute(a.data(), louder.data(), a.size(), kRate);
    EXPECT_NEAR(r.distanceDB, 0.0, 0.01);

    // Another vowel is far; the distance is symmetric in the envelopes.
    const std::vector<float> other = vowelOf(120, 300, 2200);
    const double ab = MelCepstralDistance::compute(a.data(), other.data(), a.size(), kRate).distanceDB;
    const double ba = MelCepstralDistance::compute(other.data(), a.data(), a.size(), kRate).distanceDB;
    EXPECT_GT(ab, 3.0);
    EXPECT_NEAR(ab, ba, 0.5);

    // The second half of the original 60 dB down: its frames do not count, whatever the copy
    // holds there.
    std::vector<float> halfQuiet(a);
    for (std::size_t i = a.size() / 2; i < a.size(); ++i)
        halfQuiet[i] *= 0.001f;
    r = MelCepstralDistance::compute(halfQuiet.data(), other.data(), a.size(), kRate, 80.0);
    EXPECT_EQ(r.frames, 196);
    r = MelCepstralDistance::compute(halfQuiet.data(), other.data(), a.size(), kRate, 40.0);
    EXPECT_GE(r.frames, 95);
    EXPECT_LE(r.frames, 100);

    // Shorter than one frame and one sample: nothing to measure.
    r = MelCepstralDistance::compute(a.data(), a.data(), 275, kRate);
    EXPECT_EQ(r.frames, 0);
    EXPECT_TRUE(std::isnan(r.distanceDB));
}

// Frames are analysed two to a transform; each must read as it does alone.
TEST(MelCepstrum, FramesReadInPairsAsAlone)
{
    // Two vowels, half a second each; each pair of frames straddles the change.
    std::vector<float> a = vowelOf(130, 500, 1700);
    const std::vector<float> b = vowelOf(210, 300, 2300);
    std::copy(b.begin() + b.size() / 2, b.end(), a.begin() + a.size() / 2);
    const std::vector<double> centres = {0.2, 0.7, 0.3, 0.8, 0.45};
    const MelCepstrum mel(kRate, 5000.0);
    const std::vector<MelSpectrum> together = mel.logSpectra(a.data(), a.size(), centres);
    for (std::size_t f = 0; f < centres.size(); ++f) {
        std::vector<bool> only(centres.size(), false);
        only[f] = true;
        const MelSpectrum alone = mel.logSpectra(a.data(), a.size(), centres, &only)[f];
        for (int k = 0; k < kMelFilters; ++k)
            EXPECT_NEAR(together[f][k], alone[k], 1e-9) << "frame " << f << " filter " << k;
    }
}

TEST(CopySynthesisFigures, ResamplingAndLevelsMeasureWhatTheyShould)
{
    // A ramp at 22050 Hz read at 11025 Hz keeps every other sample; past the end the last holds.
    std::vector<float> ramp(9);
    for (std::size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<float>(i);
    EXPECT_EQ(CopySynthesisFigures::resampleLinear(ramp.data(), 9, 22050, 11025),
              (std::vector<float>{0, 2, 4, 6}));
    const std::vector<float> up = CopySynthesisFigures::resampleLinear(ramp.data(), 3, 11025, 22050);
    EXPECT_EQ(up, (std::vector<float>{0, 0.5f, 1, 1.5f, 2, 2}));

    // Half the amplitude is 6.02 dB down in every frame; silent frames of the original do not count.
    std::vector<float> a = vowelOf(120, 600, 1200);
    const std::vector<float> b = vowelOf(120, 600, 1200, kRate, 0.025);
    std::fill(a.begin() + 5 * 220, a.begin() + 10 * 220, 0.0f);
    int frames = 0;
    EXPECT_NEAR(CopySynthesisFigures::levelDifference(a.data(), b.data(), a.size(), kRate, frames), 6.02,
                0.01);
    EXPECT_EQ(frames, 50 - 5); // 20 ms = 220 samples: 50 whole frames in a second
}

TEST(CopySynthesisFigures, ClippedSamplesAreThoseAtFullScaleInTheFile)
{
    // A sine 1.5 times full scale limited to the 16-bit range as the synthesizer limits it,
    // written as 16 bits and read back.
    std::vector<float> loud = signals::toFloat(signals::sine(11025, 200.0, kRate, 1.5));
    std::int64_t beyond = 0;
    for (float& v : loud) {
        beyond += v > 32767.0f / 32768.0f || v < -1.0f;
        v = std::clamp(v, -1.0f, 32767.0f / 32768.0f);
    }
    ASSERT_GT(beyond, 1000);
    MyDocument reader;
    ASSERT_EQ(reader.Read_WAVE_FileType(waveFileBytes(loud, kRate)), 0);
    const Channels& back = *reader.getChannel(2);
    ASSERT_EQ(back.sampleCount(), loud.size());
    const std::vector<float> readBack(back.samples(), back.samples() + back.sampleCount());
    EXPECT_EQ(figuresOf(readBack, readBack).m_nClippedSamples, beyond); // the copy's figure

    const std::vector<float> safe = signals::toFloat(signals::sine(11025, 200.0, kRate, 0.99));
    EXPECT_EQ(CopySynthesisFigures::clippedSamples(safe.data(), safe.size()), 0);
}

TEST(CopySynthesisFigures, PitchAndFormantErrorsOfDetunedCopies)
{
    const std::vector<float> original = vowelOf(120, 600, 1300);
    // 5 % sharp: f0 off by about 5 %, no gross error, formants where they were.
    CopySynthesisFigures sharp = figuresOf(original, vowelOf(126, 600, 1300));
    EXPECT_NEAR(sharp.m_dF0ErrorPercent, 5.0, 1.5);
    EXPECT_EQ(sharp.m_dF0GrossPercent, 0.0);
    EXPECT_LT(sharp.m_dF1ErrorPercent, 4.0);

    // An octave up: every co-voiced frame is a gross error.
    CopySynthesisFigures octave = figuresOf(original, vowelOf(240, 600, 1300));
    EXPECT_GT(octave.m_dF0GrossPercent, 90.0);

    // F1 15 % high, F2 unchanged.
    CopySynthesisFigures open = figuresOf(original, vowelOf(120, 690, 1300));
    EXPECT_NEAR(open.m_dF1ErrorPercent, 15.0, 5.0);
    EXPECT_LT(open.m_dF2ErrorPercent, 4.0);
}

TEST(CopySynthesisFigures, ASynthesisAtAnotherRateOrLengthIsBroughtToTheOriginal)
{
    // The same vowel made at 22050 Hz and 0.2 s longer measures as the same vowel.
    const std::vector<float> slow = harmonicVowel(kRate);
    std::vector<float> fast = harmonicVowel(22050.0);
    fast.resize(fast.size() + 4410, 0.5f);
    const CopySynthesisFigures f = figuresOf(slow, fast, 22050.0);
    EXPECT_NEAR(f.m_dMelCepstralDistanceDB, 0.0, 0.01);
    EXPECT_NEAR(f.m_dLevelDifferenceDB, 0.0, 0.01);
    EXPECT_GT(f.m_nCoVoicedFrames, 80);
    EXPECT_NEAR(f.m_dF0ErrorPercent, 0.0, 0.01);
    EXPECT_NEAR(f.m_dF1ErrorPercent, 0.0, 0.01);
    const std::vector<float> original = vowelOf(120, 600, 1300);

    // A silent synthesis: levels far off, no co-voiced frame, so no pitch or formant figure.
    const CopySynthesisFigures silent = figuresOf(original, std::vector<float>(original.size(), 0.0f));
    EXPECT_GT(silent.m_dLevelDifferenceDB, 60.0);
    EXPECT_EQ(silent.m_nCoVoicedFrames, 0);
    EXPECT_TRUE(std::isnan(silent.m_dF0ErrorPercent));
    const std::string line = silent.summaryLine();
    EXPECT_NE(
        line.find(" f0_err_pct=nan f0_gross_pct=nan f1_err_pct=nan f2_err_pct=nan clipped=0 covoiced=0"),
        std::string::npos)
        << line;
    EXPECT_EQ(line.rfind("mcd_db=", 0), 0u) << line;
}
