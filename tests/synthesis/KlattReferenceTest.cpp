// The optimized engine against the plain transcription of the equations (KlattReference),
// sample for sample, on noise-free frames: aspiration, frication and breathiness off, so the
// noise generator and its process-wide memory do not matter. Only this comparison sees a wrong
// gain factor, table entry, tilt or low-pass coefficient, or a slip in the engine's blocks and
// pipelined cascade: the property tests of KlattEngineTest.cpp hold through all of them.
#include "KlattReference.h"
#include "SynthesisTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

struct DriverSetUp {
    const char* name;
    int model;
    int rate;
    int cascade;
    int samplesPerFrame;
};

// The synthesis driver's three set-ups.
const DriverSetUp kDriverRuns[] = {
    {"11025 Hz, 5 cascade formants", 1, 11025, 5, 110},
    {"22050 Hz, 8 cascade formants", 1, 22050, 8, 220},
    {"all parallel", 2, 11025, 5, 110},
};

// A noise-free utterance that walks through the equations' branches: pitch and formant
// glides, tilt, parallel voicing and amplitudes, the nasal pair, unvoiced frames, the voicing
// and gain thresholds, open phases cut from both sides, clipping and out-of-range dB.
std::vector<klatt_frame_t> noiseFreeUtterance()
{
    std::vector<klatt_frame_t> frames;
    klatt_frame_t f = quietFactoryFrame();
    f.f6 = 4200; // reached by the 8-formant cascade and the parallel F6
    f.a6f = 40;
    for (int i = 0; i < 12; ++i) { // a glide in pitch and formants, period boundaries drift
        f.f0 = 1000 + 37 * i;
        f.f1 = 300 + 40 * i;
        f.f2 = 2200 - 60 * i;
        f.b1 = 60 + 5 * i;
        f.f8 = 7000 - 100 * i;
        f.f7 = 6000 - 90 * i;
        frames.push_back(f);
    }
    f.tl = 12; // tilt, parallel voicing, every parallel amplitude and the bypass
    f.apv = 50;
    f.a1f = 60, f.a2f = 55, f.a3f = 50, f.a4f = 45, f.a5f = 40, f.a6f = 35, f.anv = 45, f.ab = 35;
    frames.insert(frames.end(), 4, f);
    f.fnz = 450, f.bnz = 120, f.fnp = 260, f.bnp = 70; // nasal pole and zero apart
    frames.insert(frames.end(), 3, f);
    f.fnz = 0; // a zero at 1 Hz
    frames.push_back(f);
    f.fnz = -40;
    frames.push_back(f);
    f.f0 = 0; // unvoiced: the parallel branch rings out
    frames.insert(frames.end(), 3, f);
    f.f0 = 1200;
    f.av = 19; // no voicing in the cascade
    frames.insert(frames.end(), 2, f);
    f.av = 20, f.apv = 0, f.tl = 0;
    frames.push_back(f);
    f.av = 60, f.gain = 0; // gain 0 plays at 54 dB
    frames.insert(frames.end(), 2, f);
    f.gain = 3;
    frames.push_back(f);
    f.gain = 95; // beyond the table: silent
    frames.push_back(f);
    f.gain = 60, f.oq = 5; // open phase raised to its minimum
    frames.insert(frames.end(), 2, f);
    f.f0 = 5000, f.oq = 65; // 500 Hz: the open phase is cut to the period
    frames.insert(frames.end(), 3, f);
    f.f0 = 500, f.oq = 40; // 50 Hz: periods span frames
    frames.insert(frames.end(), 5, f);
    f.f0 = 1300, f.av = 80, f.gain = 87, f.apv = 70; // loud enough to clip
    frames.insert(frames.end(), 3, f);
    f.av = 95, f.ab = -3, f.gain = 60, f.apv = 0; // dB outside 0..87 give no gain
    frames.insert(frames.end(), 2, f);
    return frames;
}

klatt_global_t runOf(const DriverSetUp& run, int source = 2, int select = 0)
{
    klatt_global_t g = preparedRun(run.rate, run.cascade, run.samplesPerFrame, source);
    g.model = static_cast<std::uint8_t>(run.model);
    g.output_select = static_cast<std::uint8_t>(select);
    return g;
}

std::vector<int> referenceRun(const klatt_global_t& g, const std::vector<klatt_frame_t>& frames,
                              int skewSign = 1)
{
    KlattReference reference(g, skewSign);
    std::vector<int> out;
    for (const klatt_frame_t& f : frames) {
        const std::vector<int> samples = reference.frame(f);
        out.insert(out.end(), samples.begin(), samples.end());
    }
    return out;
}

// Empty when equal; otherwise where the first difference lies.
std::string firstDifference(const std::vector<int>& engine, const std::vector<int>& reference,
                            int samplesPerFrame)
{
    for (std::size_t i = 0; i < engine.size(); ++i)
        if (engine[i] != reference[i])
            return "sample " + std::to_string(i) + " (frame " + std::to_string(i / samplesPerFrame) +
                   "): engine " + std::to_string(engine[i]) + ", reference " + std::to_string(reference[i]);
    return {};
}

// Empty when the engine gives the reference's samples.
std::string mismatch(klatt_global_t g, const std::vector<klatt_frame_t>& frames)
{
    const std::vector<int> reference = referenceRun(g, frames);
    return firstDifference(runFrames(g, frames), reference, g.samples_per_frame);
}

} // namespace

TEST(KlattReference, EngineMatchesForEverySetUpSourceAndInternalSignal)
{
    const std::vector<klatt_frame_t> frames = noiseFreeUtterance();
    for (const DriverSetUp& run : kDriverRuns) {
        // The normal output and the taps on voice, cascade source, parallel source, bypass and
        // parallel excitation.
        for (int source : {1, 2, 3})
            for (int select : {0, 1, 4, 5, 6, 7})
                EXPECT_EQ(mismatch(runOf(run, source, select), frames), "")
                    << run.name << ", source " << source << ", output " << select;

        // The utterance is not trivially quiet: the comparison sees voicing, silence and clipping.
        const std::vector<int> reference = referenceRun(runOf(run), frames);
        EXPECT_EQ(*std::max_element(reference.begin(), reference.end()), 32767) << run.name;
        EXPECT_GT(std::count(reference.begin(), reference.end(), 0), 100) << run.name;
        EXPECT_GT(std::count_if(reference.begin(), reference.end(), [](int v) { return v != 0; }), 2000)
            << run.name;
    }
}

TEST(KlattReference, EngineMatchesWithSkewAndOtherFrameSizes)
{
    // Skew lengthens and shortens alternate periods; its sign carries over between runs in the
    // engine, so the reference is run from both starting signs and one must match throughout.
    std::vector<klatt_frame_t> frames = noiseFreeUtterance();
    for (std::size_t i = 0; i < frames.size(); ++i)
        frames[i].skew = i < 10 ? 30 : i < 20 ? 400 /* cut to the closed phase */ : 12;
    for (const DriverSetUp& run : kDriverRuns) {
        klatt_global_t g = runOf(run);
        const std::vector<int> lengthened = referenceRun(g, frames, 1),
                               shortened = referenceRun(g, frames, -1);
        const std::vector<int> engine = runFrames(g, frames);
        EXPECT_TRUE(engine == lengthened || engine == shortened)
            << run.name << ": " << firstDifference(engine, lengthened, run.samplesPerFrame);
    }

    // Frames of 1, 7 and 333 samples: every period boundary falls somewhere else.
    frames = noiseFreeUtterance();
    for (int samplesPerFrame : {1, 7, 333}) {
        DriverSetUp run = kDriverRuns[1];
        run.samplesPerFrame = samplesPerFrame;
        EXPECT_EQ(mismatch(runOf(run), frames), "") << samplesPerFrame;
    }
}

TEST(KlattReference, EngineMatchesOnRandomNoiseFreeUtterances)
{
    // Every parameter drawn within its editing limits (aspiration, frication and breathiness
    // off), frame after frame: the engine's rearranged sums must never round to another sample.
    std::srand(4321);
    auto within = [](int row) {
        const ParameterFactoryRow& p = kFactoryParameters[row];
        return p.minValue + std::rand() % (p.maxValue - p.minValue + 1);
    };
    std::vector<klatt_frame_t> frames(1500);
    for (klatt_frame_t& f : frames) {
        for (int row = 0; row < klatt_frame_t::kFieldCount; ++row)
            f[row] = within(row);
        f.ah = f.af = f.atu = 0;
        f.skew = 0; // its alternating sign carries over between the engine's runs
        if (std::rand() % 8 == 0)
            f.f0 = 0;
    }
    for (const DriverSetUp& run : kDriverRuns)
        for (int source : {1, 2, 3})
            EXPECT_EQ(mismatch(runOf(run, source), frames), "") << run.name << ", source " << source;
}

TEST(KlattReference, PulseShapesAndTheSampledSourceAreThePublishedOnes)
{
    // The natural pulse's shape constant is 1920000 / open^2 rounded down, one more in 21 places.
    int raised = 0;
    for (int open = 40; open <= 263; ++open) {
        const int below = 1920000 / (open * open);
        const int shape = CKlattEngine::B0[open - 40];
        EXPECT_TRUE(shape == below || shape == below + 1) << open;
        raised += shape == below + 1;
    }
    EXPECT_EQ(raised, 21);
    const std::int32_t start[5] = {-310, -400, 530, 356, 224};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(CKlattEngine::natural_samples[i], start[i]) << i;
    const auto [low, high] =
        std::minmax_element(CKlattEngine::natural_samples, CKlattEngine::natural_samples + 100);
    EXPECT_EQ(*low, -2449);
    EXPECT_EQ(*high, 770);
}
