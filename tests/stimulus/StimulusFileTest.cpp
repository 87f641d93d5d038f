// Stimulus files as other programs read them (libsndfile): sample values, widths, formats,
// the figures against the files, refusals.
#include "support/AudioFileProbe.h"
#include "support/SignalProbe.h"
#include "support/TestFiles.h"
#include "support/TestSignals.h"

#include "document/DocumentException.h"
#include "stimulus/PendingStimuli.h"
#include "stimulus/StimulusFile.h"
#include "stimulus/StimulusOutputFile.h"

#include <gtest/gtest.h>

TEST(StimulusFile, WaveAndFlacAtBothWidthsHoldTheQuantizedSamplesExactly)
{
    TempDir folder;
    // Odd sample count, both signs, values that need all 24 bits.
    const std::vector<float> x = {0.0f, 0.5f, -0.5f, 0.123456789f, -0.99999f, 1e-6f, 0.25f};
    for (const char* format : {"wav", "flac"})
        for (const int bits : {16, 24}) {
            StimulusOutput output;
            ASSERT_TRUE(output.set("format", format, nullptr));
            ASSERT_TRUE(output.set("bits", std::to_string(bits), nullptr));
            const std::string path = folder / (std::string("x") + output.extension());
            const StimulusFigures figures = writeStimulus(path, Stimulus(x, 48000), 0.0, output);
            const probe::AudioFile r = probe::readAudioFile(path);
            ASSERT_EQ(r.info.frames, 7) << format << bits;
            EXPECT_EQ(r.info.samplerate, 48000);
            EXPECT_EQ(r.info.format & SF_FORMAT_SUBMASK, bits == 24 ? SF_FORMAT_PCM_24 : SF_FORMAT_PCM_16);
            EXPECT_EQ(r.info.format & SF_FORMAT_TYPEMASK,
                      std::string(format) == "flac" ? SF_FORMAT_FLAC : SF_FORMAT_WAV);
            const double scale = bits == 24 ? 8388608.0 : 32768.0;
            for (std::size_t i = 0; i < x.size(); ++i)
                EXPECT_EQ(r.values[i] >> (32 - bits), std::lrint(x[i] * scale)) << format << bits << " " << i;
            // To the sample (the other figures: the clipping and command-line tests).
            EXPECT_NEAR(figures.durationMS, 7000.0 / 48000, 1e-9);
        }
    // The 24-bit WAVE header as other programs expect it: RIFF size = file size - 8, and the 21
    // data bytes get a pad byte.
    const std::string wave = slurp(folder / "x.wav");
    ASSERT_EQ(wave.size(), 44u + 21u + 1u);
    const std::string expected(
        "RIFF\x3a\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x80\xbb\0\0\x80\x32\x02\0\x03\0\x18\0data\x15\0\0\0",
        44);
    EXPECT_EQ(wave.substr(0, 44), expected);
}

// (Refused unless allowed, naming the file and writing nothing: SaveAudio.WritesTheSynthesis...)
TEST(StimulusFile, AnAllowedClippingGainCountsTheSamplesAtTheLimits)
{
    TempDir folder;
    const std::vector<float> x =
        signals::toFloat(signals::sine(2000, 300, 11025, 0.5)); // peak -6 dBFS, RMS -9 dBFS
    StimulusOutput output;
    ASSERT_TRUE(output.set("normalize", "rms:-1", nullptr)); // +8 dB: the peak goes to +2 dBFS
    ASSERT_TRUE(output.set("allow-clip", "", nullptr));
    const StimulusFigures figures = saveStimulus(folder / "loud.wav", x.data(), x.size(), 11025, output);
    EXPECT_GT(figures.clipped, 100);
    EXPECT_NEAR(figures.gainDb, 8.0, 0.05);
    const probe::AudioFile r = probe::readAudioFile(folder / "loud.wav");
    long long atLimit = 0;
    for (const int v : r.values)
        atLimit += (v >> 16) == 32767 || (v >> 16) == -32768 ? 1 : 0;
    EXPECT_EQ(atLimit, figures.clipped);
}

TEST(StimulusFile, PlainFiguresCountTheWrappedSamplesAndPendingStimuliComeBackWhole)
{
    const std::vector<float> x = {0.5f, 1.0f, -1.0f, 0.0f};
    const StimulusFigures plain = plainFigures(x.data(), x.size(), 11025);
    EXPECT_EQ(plain.clipped, 1); // +1.0 is written as -32768
    EXPECT_NEAR(plain.peakDb, 0.0, 1e-9);
    EXPECT_EQ(plain.gainDb, 0.0);

    PendingStimuli pending;
    pending.keep(3, Stimulus(x, 22050));
    const Stimulus back = pending.take(3);
    EXPECT_EQ(back.samples(), x);
    EXPECT_EQ(back.rate(), 22050);
    EXPECT_THROW(pending.take(3), DocumentException); // taken once
}

TEST(StimulusOutputFile, SettingsRoundTripAndADamagedFileChangesNothing)
{
    StimulusOutput o;
    const std::pair<const char*, const char*> options[] = {
        {"rate", "48000"}, {"normalize", "peak:-1.5"}, {"allow-clip", ""}, {"ramp", "7.5"}, {"pad", "10,20"},
        {"bits", "24"},    {"format", "flac"}};
    for (const auto& [name, value] : options)
        ASSERT_TRUE(o.set(name, value, nullptr)) << name;
    StimulusOutput back;
    ASSERT_TRUE(StimulusOutputFile::decode(StimulusOutputFile::encode(o), back));
    EXPECT_EQ(back.commandLine(), o.commandLine()); // it names every setting
    // The defaults written out read back as plain output: Save Audio keeps its own bytes.
    StimulusOutput plain;
    ASSERT_TRUE(StimulusOutputFile::decode(StimulusOutputFile::encode(StimulusOutput{}), plain));
    EXPECT_TRUE(plain.plain());
    for (const char* damaged : {"rate 44100\nbits 12\n", "speed 2\n", "normalize loud\n"}) {
        StimulusOutput kept = back;
        EXPECT_FALSE(StimulusOutputFile::decode(damaged, kept)) << damaged;
        EXPECT_EQ(kept.commandLine(), back.commandLine()) << damaged;
    }
    // Without a place for the file: plain output, and storing says why it cannot.
    StimulusOutputFile::setDefaultPath("");
    EXPECT_TRUE(StimulusOutputFile::load().plain());
    std::string why;
    EXPECT_FALSE(StimulusOutputFile::store(o, &why));
    EXPECT_FALSE(why.empty());
}
