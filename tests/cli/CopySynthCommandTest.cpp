// tessaphon-cli copysynth run as a user runs it: the document it writes, the files it refuses,
// and what it says about a damaged, empty or silent recording.
#include "support/CliRunner.h"
#include "support/DocumentTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

TEST(CopySynthCommand, WritesADocumentOfTheRecordingsLengthAndRefusesWhatItCannotRead)
{
    TempDir dir;
    const std::string wav = writeVowel(dir / "vowel.wav", 1.0, 0.2);
    const std::string recording = slurp(wav);
    CliResult r = runCliOk("copysynth " + wav);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, ""); // quiet on success, no bar when not on a terminal
    // Its values are the workbench's, byte for byte: CopySynthesisWindow.TheButtonApplies...
    MyDocument document, high;
    ASSERT_TRUE(openBytes(document, slurp(dir / "vowel.stk")));
    EXPECT_EQ(document.getChannel(0)->m_nColumnNum, 100);
    EXPECT_EQ(document.synthesisSampleRate(), 11025);

    // The default output exists now: kept unless --force; -o names another one.
    r = runCli("copysynth " + wav);
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(runCli("copysynth " + wav + " --force").exitCode, 0);
    runCliOk("copysynth " + wav + " --rate 22050 -o " + (dir / "high.stk"));
    ASSERT_TRUE(openBytes(high, slurp(dir / "high.stk")));
    EXPECT_EQ(high.synthesisSampleRate(), 22050);
    EXPECT_EQ(runCli("copysynth " + wav + " -o " + wav).exitCode, 2); // never over its input
    EXPECT_EQ(slurp(wav), recording);

    // Damaged, empty and missing recordings: one line naming the file, nothing written.
    const std::string damaged = dir / "damaged.wav";
    std::ofstream(damaged, std::ios::binary) << recording.substr(0, 30);
    const std::string empty = writeWave(dir / "empty.wav", {}, 11025.0);
    for (const std::string& path : {damaged, empty, dir / "missing.wav"}) {
        r = runCli("copysynth " + path + " -o " + (dir / "out.stk"));
        EXPECT_EQ(r.exitCode, 2) << path;
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
        EXPECT_NE(r.err.find(path), std::string::npos) << r.err;
        EXPECT_FALSE(std::filesystem::exists(dir / "out.stk"));
    }
    // A silent one is said to be silent; bad options are usage errors.
    const std::string silent = writeWave(dir / "silent.wav", std::vector<float>(5000, 0.0f), 11025.0);
    r = runCli("copysynth " + silent);
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_NE(r.err.find("silent"), std::string::npos) << r.err;
    EXPECT_EQ(runCli("copysynth " + silent + " --rate 16000 --force").exitCode, 1);
    EXPECT_EQ(runCli("copysynth " + silent + " --pitch-low 300 --pitch-high 100 --force").exitCode, 1);
}
