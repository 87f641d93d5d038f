// The estimate of signals whose parameters are known: the synthesizer's own output, copy
// synthesized, gives back its f0, formants and levels.
#include "copysynth/CopySynthesisFixture.h"
#include "copysynth/FormantRows.h"
#include "copysynth/MelCepstralDistance.h"

#include <gtest/gtest.h>

using namespace copytest;

namespace
{

double relativeError(double estimate, double truth)
{
    return std::fabs(estimate - truth) / truth;
}

// Voiced through the cascade (av) or through the parallel branch (apv).
bool voiced(const FrameValues& v)
{
    return v[Row::av] > 0 || v[Row::apv] > 0;
}

// Frames [first, last) of the result that are voiced.
int voicedFrames(const CopySynthesisResult& r, int first, int last)
{
    int n = 0;
    for (int c = first; c < last; ++c)
        n += voiced(r.frames[c]);
    return n;
}

} // namespace

// A steady vowel with a falling pitch: f0 within 1 %, f1 .. f3 within 6 %, every frame voiced,
// the synthesis of the estimate at the recording's level without clipping.
TEST(CopySynthesisSignals, VowelGivesBackItsPitchFormantsAndLevel)
{
    std::vector<FrameValues> frames;
    for (int c = 0; c < 80; ++c)
        frames.push_back(vowelFrame(130.0 - 0.4 * c, 60));
    const std::vector<float> input = render(frames);
    const CopySynthesisResult r = estimate(input);
    // 79 frames of 110 samples last 788 ms: 78 columns of 10 ms.
    ASSERT_EQ(r.frames.size(), 78u);
    const int rows[3] = {Row::f1, Row::f2, Row::f3};
    for (int c = 5; c < 70; ++c) {
        SCOPED_TRACE(c);
        ASSERT_TRUE(voiced(r.frames[c]));
        // Column c is heard from c x 10 ms on, the input's frame k from k x 110 samples on.
        const int k = static_cast<int>((c + 0.5) * 11.025 / 11.0);
        EXPECT_LT(relativeError(r.frames[c][Row::f0], frames[k][Row::f0]), 0.01);
        for (int row : rows)
            EXPECT_LT(relativeError(r.frames[c][row], frames[c][row]), 0.06) << "row " << row;
    }
    const Rendering out = renderFrames(r.frames, r.sampleRate, r.intervalMS);
    EXPECT_EQ(out.clippedSamples, 0);
    EXPECT_LT(medianLevelError(input, out.samples), 2.0);
    EXPECT_GT(r.report.voicedShare, 0.9);
}

// Two formants closer than the analysis can part (f2 and f3 220 Hz apart) and a fourth missing
// from a low ceiling: every frame keeps its formants in order, 200 Hz apart, none at a row's
// minimum.
TEST(CopySynthesisSignals, FormantsMissingFromTheAnalysisAreFilledInOrder)
{
    const std::vector<FrameValues> frames(60, vowelFrame(110.0, 60, {300, 2000, 2220, 3400, 4300}));
    CopySynthesisOptions options;
    options.maxFormantHz = 3500.0;
    const CopySynthesisResult r = estimate(render(frames), options);
    for (const FrameValues& v : r.frames) {
        const int f[5] = {v[Row::f1], v[Row::f2], v[Row::f3], v[Row::f4], v[Row::f5]};
        for (int k = 1; k < 5; ++k)
            EXPECT_GE(f[k], f[k - 1] + 200);
        EXPECT_GT(f[2], kFactoryParameters[Row::f3].minValue);
        EXPECT_LE(f[4], kFactoryParameters[Row::f5].maxValue);
        EXPECT_NEAR(v[Row::f1], 300, 30);
    }
    // Bandwidths beyond what voices show are kept within 40 Hz and each formant's own limit; at
    // 22050 Hz a fifth formant near the top stays 200 Hz below the sixth.
    for (const auto& [bw, kept] : {std::pair{10.0, std::array{40, 40, 40, 40, 40}},
                                   std::pair{3000.0, std::array{400, 500, 700, 900, 1000}}}) {
        FormantTrack track;
        track.frames.assign(1, FormantFrame{{500, 1500, 2500, 3500, 4990}, {bw, bw, bw, bw, bw}});
        std::vector<FrameValues> rows(1);
        setFormants(rows, track, 22050);
        EXPECT_LE(rows[0][Row::f5], rows[0][Row::f6] - 200);
        EXPECT_EQ((std::array{rows[0][Row::b1], rows[0][Row::b2], rows[0][Row::b3], rows[0][Row::b4],
                              rows[0][Row::b5]}),
                  kept);
    }
}

// A voice whose period alternates (skew) and whose second harmonic is strong invites halving or
// doubling the pitch: the track stays within 5 % of the truth in every voiced frame.
TEST(CopySynthesisSignals, NoOctaveJumps)
{
    std::vector<FrameValues> frames;
    for (int c = 0; c < 100; ++c) {
        FrameValues v = vowelFrame(100.0 + c, 60, {250, 2200, 2900, 3500, 4200}); // F1 near 2 x f0
        v[Row::skew] = 6;
        frames.push_back(v);
    }
    const CopySynthesisResult r = estimate(render(frames));
    for (int c = 5; c < 95; ++c) {
        SCOPED_TRACE(c);
        ASSERT_TRUE(voiced(r.frames[c]));
        EXPECT_LT(relativeError(r.frames[c][Row::f0], frames[c][Row::f0]), 0.05);
    }
}

// Vowel, fricative (noise through the parallel branch), silence, vowel: the voicing decision
// changes on the right frames (within one), the fricative is frication and the silence silent.
TEST(CopySynthesisSignals, FricativeAndSilenceKeepTheirPlaces)
{
    FrameValues fricative = vowelFrame(120.0, 0, {400, 1600, 2600, 3300, 3750});
    fricative[Row::af] = 60;
    fricative[Row::a3f] = 50;
    fricative[Row::a4f] = 55;
    fricative[Row::a5f] = 60;
    std::vector<FrameValues> frames(40, vowelFrame(120.0, 60));
    frames.insert(frames.end(), 20, fricative);
    frames.insert(frames.end(), 30, vowelFrame(120.0, 0));
    frames.insert(frames.end(), 40, vowelFrame(120.0, 60));
    const std::vector<float> input = render(frames);
    const CopySynthesisResult r = estimate(input);
    EXPECT_EQ(voicedFrames(r, 2, 39), 37);
    EXPECT_EQ(voicedFrames(r, 42, 59), 0);
    EXPECT_EQ(voicedFrames(r, 62, 89), 0);
    EXPECT_EQ(voicedFrames(r, 92, 128), 36);
    for (int c = 43; c < 58; ++c)
        EXPECT_GT(r.frames[c][Row::af], 30) << c;
    for (int c = 62; c < 88; ++c)
        EXPECT_EQ(r.frames[c][Row::af], 0) << c;
    const Rendering out = renderFrames(r.frames, r.sampleRate, r.intervalMS);
    EXPECT_LT(medianLevelError(input, out.samples), 2.5);
}

// A vowel at full scale, its peaks rounded as a recorder's limiter leaves them, so that a copy
// at its level clips unless the copy's peaks are brought down. The estimate's synthesis stays
// below full scale and no frame is louder than the recording's loudest.
TEST(CopySynthesisSignals, LoudVowelDoesNotClip)
{
    std::vector<float> input =
        render(std::vector<FrameValues>(60, vowelFrame(120.0, 60, {300, 800, 2500, 3300, 3750})));
    float peak = 0.0f;
    for (float x : input)
        peak = std::max(peak, std::fabs(x));
    for (float& x : input)
        x = 0.99f * std::tanh(x / peak) / std::tanh(1.0f);
    const CopySynthesisResult r = estimate(input);
    const Rendering out = renderFrames(r.frames, r.sampleRate, r.intervalMS);
    EXPECT_LT(out.peak, 1.0); // so no sample is clipped
    const std::vector<double> in = levels(input, kRate), synth = levels(out.samples, kRate);
    EXPECT_LE(*std::max_element(synth.begin(), synth.end()), *std::max_element(in.begin(), in.end()) + 1.0);
    EXPECT_LT(medianLevelError(input, out.samples), 2.5);
}

// A voice whose formant peaks stand in heights no cascade gives them (f2 20 dB above f1, the
// upper ones weak), made with the parallel branch: the copy voices it through the parallel
// branch too, and comes closer in spectral shape than the same frames voiced by the cascade.
TEST(CopySynthesisSignals, PeaksTheCascadeCannotShapeGoThroughTheParallelBranch)
{
    FrameValues v = vowelFrame(120.0, 0, {500, 1500, 2500, 3300, 3750});
    v[Row::apv] = 60;
    v[Row::a1f] = 50;
    v[Row::a2f] = 75;
    v[Row::a3f] = 45;
    v[Row::a4f] = 35;
    v[Row::a5f] = 30;
    const std::vector<float> input = render(std::vector<FrameValues>(60, v));
    const CopySynthesisResult r = estimate(input);
    EXPECT_TRUE(r.report.parallelVoicing);
    int parallel = 0;
    for (std::size_t c = 5; c + 5 < r.frames.size(); ++c)
        parallel += r.frames[c][Row::av] == 0 && r.frames[c][Row::apv] > 0 &&
                    r.frames[c][Row::a2f] > r.frames[c][Row::a1f];
    EXPECT_GT(parallel, static_cast<int>(r.frames.size()) - 15);

    const Rendering out = renderFrames(r.frames, r.sampleRate, r.intervalMS);
    const std::size_t n = std::min(input.size(), out.samples.size());
    const double distance =
        MelCepstralDistance::compute(input.data(), out.samples.data(), n, kRate).distanceDB;
    std::vector<FrameValues> cascade = r.frames;
    for (FrameValues& v : cascade)
        if (v[Row::apv] > 0) {
            v[Row::av] = 60;
            v[Row::apv] = 0;
        }
    const Rendering viaCascade = renderFrames(cascade, r.sampleRate, r.intervalMS);
    EXPECT_LT(distance, 3.0);
    EXPECT_LT(distance + 1.0,
              MelCepstralDistance::compute(input.data(), viaCascade.samples.data(), n, kRate).distanceDB);
    EXPECT_EQ(out.clippedSamples, 0);
    EXPECT_LT(medianLevelError(input, out.samples), 2.0);
}
