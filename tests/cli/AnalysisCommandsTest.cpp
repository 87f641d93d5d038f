#include "support/CliRunner.h"
#include "support/DocumentTestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

// The numbers of the pitch and formant tracks are checked where they are computed; here only
// that the commands reach those computations with their options and print the right shape.
TEST(AnalysisCommands, TracksAndImageHaveTheShapeTheOptionsAskForAndBadInputIsRefused)
{
    TempDir dir;
    const std::string wav = writeVowel(dir / "vowel.wav", 2.0);
    // A header, then a row a frame (its times and values: tests/python, test_pitch_agrees...).
    std::vector<std::string> lines = linesOf(runCliOk("pitch " + wav).out);
    EXPECT_EQ(lines.at(0), "time_ms,f0_hz");
    EXPECT_EQ(linesOf(runCliOk("pitch " + wav + " --step 5 --window 30").out).size(), 1 + 399u);

    lines = linesOf(runCliOk("formants " + wav + " --columns 50 --rows 128").out);
    ASSERT_EQ(lines.size(), 1 + 50u);
    EXPECT_EQ(std::stod(lines.back()), 49.0);
    EXPECT_EQ(lines[0], "column,time_ms,f1,f2,f3,f4,f5");

    // The PNG signature and IHDR size other programs read; formant marks change the pixels.
    const std::string plain = dir / "plain.png", marked = dir / "marked.png";
    CliResult r = runCliOk("spectrogram " + wav + " -o " + plain);
    EXPECT_TRUE(r.out.empty());
    std::string png = slurp(plain);
    ASSERT_GT(png.size(), 33u);
    EXPECT_EQ(png.substr(0, 16), std::string("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16));
    EXPECT_EQ(bigEndian32(png, 16), 500u);
    EXPECT_EQ(bigEndian32(png, 20), 256u);
    runCliOk("spectrogram " + wav + " --columns 120 --rows 80 --formants -o " + marked);
    runCli("spectrogram " + wav + " --columns 120 --rows 80 -o " + plain);
    png = slurp(marked);
    EXPECT_EQ(bigEndian32(png, 16), 120u);
    EXPECT_EQ(bigEndian32(png, 20), 80u);
    EXPECT_NE(slurp(plain), png);

    // A document without a recording, and options out of range, are refused.
    const std::string stk = dir / "doc.stk";
    saveTestDocument(stk, 20, {});
    r = runCli("formants " + stk);
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_NE(r.err.find("model utterance"), std::string::npos) << r.err;

    EXPECT_EQ(runCli("spectrogram " + wav).exitCode, 1); // no output named
    EXPECT_EQ(runCli("formants " + wav + " --rows 0").exitCode, 1);
    EXPECT_EQ(runCli("pitch " + wav + " --step 0.01").exitCode, 1); // below one sample
    r = runCli("pitch " + wav + " --low 500 --high 50");            // an upside-down range
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("--low"), std::string::npos) << r.err;
    EXPECT_EQ(r.out, "");
}

TEST(AnalysisCommands, TraceWritesTheRecordingsDocumentAndKeepsFiles)
{
    TempDir dir;
    const std::string wav = writeVowel(dir / "vowel.wav", 2.0);
    CliResult r = runCliOk("trace " + wav);
    EXPECT_TRUE(r.out.empty());
    // The values entered are checked where the entry is made and, byte for byte, against the
    // trace window's Enter All Data; here only that a document of the recording's frames is written.
    const std::string stk = (dir / "vowel.stk");
    MyDocument document;
    ASSERT_TRUE(openBytes(document, slurp(stk))) << document.lastReadError();
    ASSERT_EQ(document.getChannel(0)->m_nColumnNum, 200);

    // The existing default output is kept without --force; -o and --force write.
    const std::string before = slurp(stk);
    r = runCli("trace " + wav + " --columns 100");
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(slurp(stk), before);
    runCliOk("trace " + wav + " --force");
    EXPECT_EQ(slurp(stk), before); // the same analysis gives the same document
    runCliOk("trace " + wav + " --columns 100 -o " + (dir / "narrow.stk"));
    EXPECT_NE(slurp(dir / "narrow.stk"), before);

    // A pitch step that does not fit the grid, and a damaged recording.
    r = runCli("trace " + wav + " --pitch-step 5 -o " + (dir / "step.stk"));
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_NE(r.err.find("Error in entering data values"), std::string::npos) << r.err;
    std::ofstream(dir / "bad.wav", std::ios::binary) << "RIFF\x10\0\0\0WAVEjunk";
    r = runCli("trace " + (dir / "bad.wav"));
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_FALSE(std::filesystem::exists(dir / "bad.stk"));
}
