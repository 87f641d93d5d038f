// The copy synthesis's interface: what it refuses, silence, cancelling, the same result every
// time, and the document it makes.
#include "copysynth/CopySynthesisFixture.h"
#include "document/MyDocument.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

using namespace copytest;

namespace
{

std::vector<float> vowel(int frames)
{
    std::vector<FrameValues> list;
    for (int c = 0; c < frames; ++c)
        list.push_back(vowelFrame(120.0 + (c % 20), 60));
    return render(list);
}

} // namespace

TEST(CopySynthesis, RefusesWhatItCannotAnalyse)
{
    const std::vector<float> samples = vowel(20);
    const auto refuses = [&](std::size_t count, double rate, CopySynthesisOptions o) {
        EXPECT_THROW(copySynthesize(samples.data(), count, rate, o), std::invalid_argument);
    };
    refuses(0, kRate, {});
    refuses(15, kRate, {}); // shorter than two frames
    refuses(samples.size(), 4000.0, {});
    refuses(samples.size(), std::nan(""), {});
    refuses(samples.size(), kRate, {.outputRate = 16000});
    refuses(samples.size(), kRate, {.pitchLowHz = 400.0, .pitchHighHz = 100.0});
    refuses(samples.size(), kRate, {.intervalMS = 0});
    refuses(samples.size(), kRate, {.maxFormantHz = 100.0});
}

TEST(CopySynthesis, SilentRecordingGivesASilentDocument)
{
    const std::vector<float> silence(11025, 0.0f);
    const CopySynthesisResult r = estimate(silence);
    ASSERT_EQ(r.frames.size(), 100u);
    for (const FrameValues& v : r.frames)
        for (int row : {Row::av, Row::ah, Row::af, Row::apv, Row::ab})
            EXPECT_EQ(v[row], 0);
    EXPECT_EQ(copySynthesisSummary(r.report), "the recording is silent: the document is silent");
    EXPECT_EQ(renderFrames(r.frames, r.sampleRate, r.intervalMS).peak, 0.0);
}

// The same recording gives the same values every time, whatever synthesis ran in between, and
// the document made from them saves the same bytes as one the result was applied to.
TEST(CopySynthesis, SameInputSameDocument)
{
    const std::vector<float> samples = vowel(50);
    const CopySynthesisResult a = estimate(samples);
    render(std::vector<FrameValues>(30, vowelFrame(200.0, 70))); // moves the synthesizer's state
    const CopySynthesisResult b = estimate(samples);
    EXPECT_EQ(a.frames, b.frames);

    const auto made = copySynthesisDocument(a);
    MyDocument applied;
    ASSERT_TRUE(applied.setModelSamples(samples, kRate));
    applied.saveUndo();
    applyCopySynthesis(b, applied);
    applied.saveRedo();
    EXPECT_EQ(made->parameterDocumentText(true), applied.parameterDocumentText(true));
    const Channels& grid = *made->getChannel(0);
    EXPECT_EQ(grid.m_nColumnNum, static_cast<int>(a.frames.size()));
    EXPECT_EQ(grid.m_nUpdateIntervalMS, 10);
    EXPECT_EQ(made->synthesisSampleRate(), 11025);
    EXPECT_EQ(grid.m_snppDataImage_Col_Row[7][Row::f0], a.frames[7][Row::f0]);

    // Undo brings back the document as it was, one step.
    applied.doUndo();
    EXPECT_NE(applied.parameterDocumentText(true), made->parameterDocumentText(true));
}

// Estimations on several threads at once (each of which synthesizes on threads of its own)
// give the values of one alone, whose progress rises to 1; one cancelled while its ceilings are
// judged, and one cancelled after the pitch, stop there and give no frames.
TEST(CopySynthesis, ConcurrentEstimationsAgreeWithOneAloneAndProgressRisesUntilCancelled)
{
    const std::vector<float> samples = vowel(40);
    std::vector<double> seen;
    const CopySynthesisResult alone =
        copySynthesize(samples.data(), samples.size(), kRate, {}, [&](double d) {
            seen.push_back(d);
            return true;
        });
    ASSERT_GE(seen.size(), 3u);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_DOUBLE_EQ(seen.back(), 1.0);
    EXPECT_FALSE(alone.cancelled);
    // Cancelled at the given progress call: it stops there, with no frames.
    const auto cancelledAt = [&samples](int last) {
        int calls = 0;
        const CopySynthesisResult r =
            copySynthesize(samples.data(), samples.size(), kRate, {}, [&](double) { return ++calls < last; });
        EXPECT_TRUE(r.cancelled) << last;
        EXPECT_TRUE(r.frames.empty()) << last;
        EXPECT_EQ(calls, last);
    };
    std::vector<CopySynthesisResult> results(3);
    std::vector<std::thread> threads;
    for (CopySynthesisResult& r : results)
        threads.emplace_back([&samples, &r] { r = estimate(samples); });
    cancelledAt(3);
    for (std::thread& t : threads)
        t.join();
    for (const CopySynthesisResult& r : results) {
        EXPECT_EQ(r.frames, alone.frames);
        EXPECT_EQ(r.report.maxFormantHz, alone.report.maxFormantHz);
    }
    cancelledAt(2);
}

// At 22050 Hz the sixth to eighth formants are in use (so the document synthesizes at that rate)
// and stay above the fifth (at 11025 Hz they are not: SameInputSameDocument).
TEST(CopySynthesis, HighFormantsOnlyAt22050)
{
    const std::vector<float> samples = vowel(40);
    CopySynthesisOptions o;
    o.outputRate = 22050;
    const CopySynthesisResult high = estimate(samples, o);
    EXPECT_EQ(high.sampleRate, 22050);
    EXPECT_TRUE(high.report.highFormants);
    EXPECT_EQ(copySynthesisDocument(high)->synthesisSampleRate(), 22050);
    for (const FrameValues& v : high.frames) {
        EXPECT_GE(v[Row::f6], v[Row::f5] + 200);
        EXPECT_GT(v[Row::f7], v[Row::f6]);
        EXPECT_GT(v[Row::f8], v[Row::f7]);
    }
    const Rendering out = renderFrames(high.frames, 22050, 10);
    EXPECT_EQ(out.clippedSamples, 0);
}
