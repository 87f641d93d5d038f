// The output options of synth and continuum as a user runs them, the files checked from
// outside (libsndfile): rates, levels, ramps, figures in the manifests, refusals, new folders.
#include "support/AudioFileProbe.h"
#include "support/CliRunner.h"
#include "support/SignalProbe.h"

#include <gtest/gtest.h>

using Audio = probe::AudioFile;
using probe::readAudioFile;

TEST(CliStimulusOutput, ContinuumWithOneGainRampsAndFiguresInANewFolder)
{
    TempDir dir;
    saveTestDocument(dir / "a.stk", 40, {{Row::f2, 1100}, {Row::av, 50}});
    saveTestDocument(dir / "b.stk", 40, {{Row::f2, 1900}, {Row::av, 60}});
    const std::string folder = dir / "new/deeper/steps";
    CliResult r = runCliOk("continuum " + dir / "a.stk " + dir / "b.stk" +
                           " --steps 4 --rows f2,av --rate 48000 --normalize rms:-20 --same-gain --ramp 10 "
                           "--pad 5,20 -j 2 --out-dir " +
                           folder);
    const auto rows = readCsv(folder + "/manifest.csv");
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(linesOf(slurp(folder + "/manifest.csv")).at(0),
              "step,weight,document,wave,f2,av,name,duration_ms,rate,rms_db,peak_db,clipped,gain_db");
    double loudest = -1e9;
    for (const auto& row : rows) {
        const Audio a = readAudioFile(folder + "/" + row.at("name"));
        ASSERT_EQ(a.info.samplerate, 48000) << row.at("name");
        EXPECT_NEAR(std::stod(row.at("duration_ms")), 400.0 + 25.0, 1.0);
        // Each step's figures on its own row (the figures of one file: StimulusFileTest.cpp).
        const double rms = probe::rmsDb(a.samples, 0, a.samples.size());
        EXPECT_NEAR(std::stod(row.at("rms_db")), rms, 0.01);
        EXPECT_EQ(row.at("gain_db"), rows.front().at("gain_db")); // one gain for all
        loudest = std::max(loudest, rms);
        // 5 ms of silence, then a ramp from zero; 20 ms of silence at the end.
        EXPECT_EQ(a.samples[239], 0.0f);
        EXPECT_LT(std::fabs(a.samples[241]), 0.001f);
        EXPECT_EQ(a.samples[a.samples.size() - 960], 0.0f);
    }
    EXPECT_NEAR(loudest, -20.0, 0.1); // the loudest step reaches the level
    // The quieter end keeps its distance: av 50 against av 60.
    EXPECT_LT(std::stod(rows.front().at("rms_db")), std::stod(rows.back().at("rms_db")) - 5.0);
}

TEST(CliStimulusOutput, BatchManifestFlacAndEachFileAtItsOwnLevel)
{
    TempDir dir;
    saveTestDocument(dir / "a.stk", 30, {{Row::f2, 1100}, {Row::av, 50}});
    saveTestDocument(dir / "b.stk", 50, {{Row::f2, 1900}, {Row::av, 60}});
    CliResult r = runCliOk("synth " + dir / "a.stk " + dir / "b.stk" +
                           " --normalize peak:-1 --format flac --bits 24 --rate 22050 -j 2 --out-dir " +
                           dir / "flac" + " --manifest " + dir / "m.csv");
    const auto rows = readCsv(dir / "m.csv");
    ASSERT_EQ(rows.size(), 2u);
    for (const auto& row : rows) {
        const Audio a = readAudioFile(row.at("name"));
        EXPECT_EQ(a.info.format, SF_FORMAT_FLAC | SF_FORMAT_PCM_24) << row.at("name");
        EXPECT_NEAR(std::stod(row.at("peak_db")), -1.0, 0.01);
        // Resampled, the same length in time: 30 and 50 frames of 10 ms.
        EXPECT_EQ(row.at("rate"), "22050");
        EXPECT_NEAR(a.samples.size() / 22.05, &row == &rows[0] ? 300.0 : 500.0, 0.1) << row.at("name");
    }
    EXPECT_EQ(rows[0].at("document"), dir / "a.stk");
    EXPECT_NE(rows[0].at("gain_db"), rows[1].at("gain_db"));

    // Plain output with a manifest: the WAVE bytes are synth's own, the figures describe them.
    runCliOk("synth " + dir / "a.stk");
    r = runCliOk("synth " + dir / "a.stk --out-dir " + dir / "plain --manifest " + dir / "p.csv");
    EXPECT_TRUE(slurp(dir / "plain/a.wav") == slurp(dir / "a.wav"));
    const Audio plain = readAudioFile(dir / "a.wav");
    EXPECT_NEAR(std::stod(readCsv(dir / "p.csv")[0].at("rms_db")),
                probe::rmsDb(plain.samples, 0, plain.samples.size()), 0.01);
}

TEST(CliStimulusOutput, ClippingGainsAndBadValuesAreRefusedBeforeAnythingIsWritten)
{
    TempDir dir;
    saveTestDocument(dir / "a.stk", 30, {{Row::f2, 1100}, {Row::av, 40}});
    saveTestDocument(dir / "b.stk", 30, {{Row::f2, 1900}, {Row::av, 60}});
    // The quiet file decides nothing with one gain; alone, each is brought to -3 dBFS RMS, which
    // clips a voiced sound.
    CliResult single = runCli("synth " + dir / "a.stk --normalize rms:-3");
    EXPECT_EQ(single.exitCode, 2);
    EXPECT_NE(single.err.find(dir / "a.wav"), std::string::npos) << single.err;
    EXPECT_NE(single.err.find("--allow-clip"), std::string::npos) << single.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "a.wav"));
    CliResult shared = runCli("continuum " + dir / "a.stk " + dir / "b.stk" +
                              " --steps 3 --normalize rms:-3 --same-gain -o " + dir / "c");
    EXPECT_EQ(shared.exitCode, 2);
    EXPECT_NE(shared.err.find("one gain for all files"), std::string::npos) << shared.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "c/a_1.wav"));
    EXPECT_FALSE(std::filesystem::exists(dir / "c/manifest.csv"));
    CliResult allowed = runCli("synth " + dir / "a.stk --normalize rms:-3 --allow-clip");
    EXPECT_EQ(allowed.exitCode, 0) << allowed.err;
    EXPECT_NE(allowed.err.find("samples clipped"), std::string::npos) << allowed.err;

    for (const std::string bad : {"--rate 7000", "--rate 44.1k", "--normalize loud", "--normalize rms:+3",
                                  "--ramp -5", "--pad 1,2,3", "--bits 32", "--format mp3"}) {
        CliResult r = runCli("synth " + dir / "b.stk " + bad + " -o " + dir / "bad.wav");
        EXPECT_EQ(r.exitCode, 1) << bad;
        EXPECT_NE(r.err.find(bad.substr(0, bad.find(' '))), std::string::npos) << bad << ": " << r.err;
    }
    EXPECT_FALSE(std::filesystem::exists(dir / "bad.wav"));
}
