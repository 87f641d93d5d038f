// The resampler, the ramps, the silence and the gain rules, measured on generated signals.
#include "support/SignalProbe.h"
#include "support/TestSignals.h"

#include "document/DocumentException.h"
#include "stimulus/Stimulus.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(StimulusResampling, SinesKeepLevelFrequencyAndLengthWithoutImages)
{
    const int from = 11025, to = 44100;
    const std::size_t count = 11025; // one second
    for (const double frequency : {100.0, 440.0, 1000.0, 2500.0, 4000.0, 4500.0}) {
        const std::vector<float> in = signals::toFloat(signals::sine(count, frequency, from, 0.5));
        const std::vector<float> out = resampleSignal(in.data(), in.size(), from, to);
        ASSERT_EQ(out.size(), 44100u) << frequency; // the same duration, to the sample
        // Level of the steady part (the filter's edges left aside) within 0.5 dB.
        EXPECT_NEAR(probe::rmsDb(out, 4000, 40000), probe::rmsDb(in, 1000, 10000), 0.5) << frequency;
        // To the last samples: the filter's tail is flushed, not left silent.
        EXPECT_NEAR(probe::rmsDb(out, 43600, 44100), probe::rmsDb(in, 1000, 10000), 0.5) << frequency;
        const std::vector<double> power = probe::powerSpectrum(out, 8000, 8192);
        const double binHz = double(to) / 8192;
        const auto peak = std::max_element(power.begin(), power.end()) - power.begin();
        EXPECT_NEAR(double(peak) * binHz, frequency, 2 * binHz) << frequency;
        double image = 0.0;
        for (std::size_t k = static_cast<std::size_t>(5700 / binHz); k < power.size(); ++k)
            image = std::max(image, power[k]);
        EXPECT_LT(probe::db(image) - probe::db(power[peak]), -70.0) << frequency;
    }
    // Other ratios: the length follows the rate, rounded.
    const std::vector<float> in = signals::toFloat(signals::sine(2205, 300, 22050, 0.3));
    EXPECT_EQ(resampleSignal(in.data(), in.size(), 22050, 48000).size(), 4800u);
    EXPECT_EQ(resampleSignal(in.data(), 1001, 22050, 8000).size(), 363u);
    EXPECT_EQ(resampleSignal(in.data(), in.size(), 22050, 22050), in);
}

TEST(StimulusShaping, RampsAtBothEndsThenSilenceAroundThem)
{
    const std::vector<float> ones(1000, 1.0f);
    StimulusOutput output;
    output.rampMS = 10.0; // 110 samples at 11025 Hz
    output.padBeforeMS = 20.0;
    output.padAfterMS = 5.0;
    const Stimulus s = Stimulus::prepare(ones.data(), ones.size(), 11025, output);
    const std::vector<float>& x = s.samples();
    const std::size_t before = 221, after = 55, ramp = 110;
    ASSERT_EQ(x.size(), before + 1000 + after);
    EXPECT_NEAR(s.durationMS(), (before + 1000 + after) * 1000.0 / 11025, 1e-9);
    EXPECT_TRUE(std::all_of(x.begin(), x.begin() + before, [](float v) { return v == 0.0f; }));
    EXPECT_TRUE(std::all_of(x.end() - after, x.end(), [](float v) { return v == 0.0f; }));
    const float* body = x.data() + before;
    EXPECT_EQ(body[0], 0.0f);
    EXPECT_EQ(body[999], 0.0f);
    for (std::size_t i = 1; i < ramp; ++i) {
        EXPECT_GT(body[i], body[i - 1]) << i;         // rising onset
        EXPECT_FLOAT_EQ(body[i], body[999 - i]) << i; // the offset mirrors it
    }
    EXPECT_NEAR(body[ramp / 2], 0.5f, 1e-6); // half way up at half the ramp: a raised cosine
    EXPECT_TRUE(std::all_of(body + ramp, body + 1000 - ramp, [](float v) { return v == 1.0f; }));

    // A ramp longer than half the signal is cut to half of it; nothing is left unramped.
    std::vector<float> shortOnes(10, 1.0f);
    applyRamps(shortOnes, 1000);
    EXPECT_EQ(shortOnes[0], 0.0f);
    EXPECT_EQ(shortOnes[9], 0.0f);
    EXPECT_LT(shortOnes[4], 1.0f);
}

TEST(StimulusGain, LevelRulesSharedGainAndClipping)
{
    const std::vector<float> quiet = signals::toFloat(signals::sine(11025, 500, 11025, 0.1));
    const std::vector<float> loud = signals::toFloat(signals::sine(11025, 500, 11025, 0.4));
    const StimulusLevels q = Stimulus(quiet, 11025).levels();
    const StimulusLevels l = Stimulus(loud, 11025).levels();
    EXPECT_NEAR(q.rmsDb, 20 * std::log10(0.1 / std::sqrt(2.0)), 0.01);
    EXPECT_NEAR(q.peakDb, -20.0, 0.01);

    StimulusOutput output;
    EXPECT_EQ(levelGainDb(output, q), 0.0); // the level is kept unless asked
    ASSERT_TRUE(output.set("normalize", "rms:-20", nullptr));
    EXPECT_NEAR(levelGainDb(output, q), -20.0 - q.rmsDb, 1e-9);
    ASSERT_TRUE(output.set("normalize", "peak:-1", nullptr));
    EXPECT_NEAR(levelGainDb(output, l), -1.0 - 20 * std::log10(0.4), 0.01);
    // One gain for several files: the loudest decides, so it reaches the level and the quiet one
    // stays 12 dB below.
    const double common = commonGainDb({levelGainDb(output, q), levelGainDb(output, l)});
    EXPECT_NEAR(common, levelGainDb(output, l), 1e-12);
    // Silence has no level to bring anywhere: no gain.
    const std::vector<float> silence(100, 0.0f);
    EXPECT_EQ(levelGainDb(output, Stimulus(silence, 11025).levels()), 0.0);

    // Clipping is decided at the extremes as the quantizer decides it.
    bool clipped = false;
    EXPECT_EQ(quantizeSample(1.0f, 1.0, 16, clipped), 32767); // 0 dBFS is allowed
    EXPECT_FALSE(clipped);
    EXPECT_EQ(quantizeSample(1.0001f, 1.0, 16, clipped), 32767);
    EXPECT_TRUE(clipped);
    EXPECT_EQ(quantizeSample(-1.0001f, 1.0, 16, clipped), -32768);
    EXPECT_TRUE(clipped);
    EXPECT_EQ(quantizeSample(-1.0f, 1.0, 24, clipped), -8388608);
    EXPECT_FALSE(clipped);
    EXPECT_EQ(quantizeSample(0.25f, 2.0, 16, clipped), 16384);
    EXPECT_FALSE(gainClips(l, 7.9, 16));
    EXPECT_TRUE(gainClips(l, 8.0, 16));
    const std::vector<float> skewed = {-0.6f, 0.3f}; // +6 dB clips the negative extreme only
    EXPECT_TRUE(gainClips(Stimulus(skewed, 11025).levels(), 6.0, 16));
    const std::string why = clipRefusal(output, l, 8.0);
    EXPECT_NE(why.find("+8.00 dB"), std::string::npos) << why;
    EXPECT_NE(why.find("--allow-clip"), std::string::npos) << why;
}

TEST(StimulusOutputOptions, ParsedFromTheirTextAndRefusedWhole)
{
    StimulusOutput o;
    EXPECT_TRUE(o.plain());
    std::string error;
    const std::pair<const char*, const char*> options[] = {
        {"rate", "44100"}, {"normalize", "rms:-23"}, {"same-gain", ""}, {"ramp", "10"},
        {"pad", "50,100"}, {"bits", "24"},           {"format", "flac"}};
    for (const auto& [name, value] : options)
        ASSERT_TRUE(o.set(name, value, &error)) << name << ": " << error;
    // The command line names every field; the summary says it in words.
    EXPECT_FALSE(o.plain());
    EXPECT_STREQ(o.extension(), ".flac");
    EXPECT_EQ(o.commandLine(), "--rate 44100 --normalize rms:-23 --same-gain --ramp 10 --pad 50,100 "
                               "--bits 24 --format flac");
    EXPECT_EQ(o.summary(), "44100 Hz, RMS -23 dBFS (one gain for all), 10 ms ramps, 50/100 ms silence, "
                           "24-bit FLAC");
    ASSERT_TRUE(o.set("pad", "20", &error));
    EXPECT_EQ(o.padAfterMS, 20.0);

    const StimulusOutput before = o;
    const std::pair<const char*, const char*> refused[] = {
        {"rate", "7999"},     {"rate", "192001"},       {"rate", "44100.5"},    {"rate", "44k"},
        {"normalize", "rms"}, {"normalize", "loud:-3"}, {"normalize", "rms:3"}, {"normalize", "peak:x"},
        {"ramp", "-1"},       {"pad", "10,"},           {"pad", "1,2,3"},       {"bits", "8"},
        {"format", "mp3"},    {"same-gain", "maybe"},   {"speed", "2"}};
    for (const auto& [name, value] : refused) {
        error.clear();
        EXPECT_FALSE(o.set(name, value, &error)) << name << " " << value;
        EXPECT_FALSE(error.empty()) << name;
        EXPECT_EQ(o.commandLine(), before.commandLine()) << name << " " << value;
    }
    // An option given with its default value still asks for the stimulus path.
    StimulusOutput explicitBits;
    ASSERT_TRUE(explicitBits.set("bits", "16", nullptr));
    EXPECT_FALSE(explicitBits.plain());
    EXPECT_EQ(explicitBits.commandLine(), "--bits 16");
}
