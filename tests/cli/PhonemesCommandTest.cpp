// tessaphon-cli phonemes as a user runs it: the document, its options, refusals, kept files.
#include "document/MyDocument.h"
#include "support/CliRunner.h"
#include "support/DocumentTestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

TEST(PhonemesCommand, WritesTheDocumentRefusesBadInputAndKeepsFiles)
{
    TempDir dir;
    const CliResult made = runCliOk("phonemes --text \"a bad bed\" --print-phonemes -o " + dir / "bad.stk");
    EXPECT_EQ(made.out, "phonemes: AX0 | B AE1 D | B EH1 D\n");
    EXPECT_EQ(made.err, "");
    MyDocument document, slow;
    ASSERT_TRUE(openBytes(document, slurp(dir / "bad.stk")));
    EXPECT_GT(document.getChannel(0)->m_nNumberofAnchors, 0);
    EXPECT_EQ(static_cast<int>(document.getChannel(0)->m_dSampleRate), 11025);

    // 22050 Hz, a slower speed and another f0 make another document.
    ASSERT_EQ(
        runCli("phonemes \"B AE1 D\" --rate 22050 --speed 0.5 --f0 200 -o " + dir / "slow.stk").exitCode, 0);
    ASSERT_TRUE(openBytes(slow, slurp(dir / "slow.stk")));
    EXPECT_EQ(static_cast<int>(slow.getChannel(0)->m_dSampleRate), 22050);
    EXPECT_EQ(slow.getChannel(0)->m_snppDataImage_Col_Row[0][Row::f0], 2000);

    // Unknown symbols: one line naming symbol and position, usage exit, nothing written.
    const CliResult unknown = runCli("phonemes \"B AE1 XX D\" -o " + dir / "x.stk");
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_NE(unknown.err.find("unknown symbol \"XX\" at position 7"), std::string::npos) << unknown.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "x.stk"));
    EXPECT_EQ(runCli("phonemes \"B AE1 D\" --text bad -o " + dir / "x.stk").exitCode, 1);
    EXPECT_EQ(runCli("phonemes \"B AE1 D\" --rate 16000 -o " + dir / "x.stk").exitCode, 1);

    // A user's table replaces the built-in one; a damaged one is named with its line.
    std::string table = slurp(std::string(TESSAPHON_SOURCE_DIR) + "/data/phonemes/american-english.tsv");
    std::ofstream(dir / "mine.tsv", std::ios::binary) << table;
    runCliOk("phonemes \"B AE1 D\" --table " + dir / "mine.tsv" + " -o " + dir / "own.stk");
    table.replace(table.find("\nAE\t"), 4, "\nAE\tæ\tvowel\tx\t");
    std::ofstream(dir / "bad.tsv", std::ios::binary) << table;
    const CliResult damaged =
        runCli("phonemes \"B AE1 D\" --table " + dir / "bad.tsv" + " -o " + dir / "x.stk");
    EXPECT_EQ(damaged.exitCode, 2);
    EXPECT_NE(damaged.err.find(dir / "bad.tsv:"), std::string::npos) << damaged.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "x.stk"));
    // Never over the table it reads.
    EXPECT_EQ(runCli("phonemes \"B AE1 D\" --table " + dir / "mine.tsv" + " -o " + dir / "mine.tsv").exitCode,
              2);
    EXPECT_EQ(slurp(dir / "mine.tsv"),
              slurp(std::string(TESSAPHON_SOURCE_DIR) + "/data/phonemes/american-english.tsv"));

    // The default output is named after the input and kept unless --force.
    const std::string cd = "cd " + dir.path.string() + " && ";
    ASSERT_EQ(runCliAfter(cd, "phonemes --text \"a bad bed\"").exitCode, 0);
    EXPECT_TRUE(std::filesystem::exists(dir / "a-bad-bed.stk"));
    EXPECT_EQ(runCliAfter(cd, "phonemes --text \"a bad bed\"").exitCode, 2);
    EXPECT_EQ(runCliAfter(cd, "phonemes --text \"a bad bed\" --force").exitCode, 0);
}

TEST(PhonemesCommand, WordsGiveTheSameDocumentWithOrWithoutTheProgramsOwnVoiceFolder)
{
    // The build lays out espeak-ng data with the American English voice alone beside the
    // program; a copy of the program without it, or with it incomplete, reads espeak-ng's own.
    TempDir dir;
    const std::string words = "\"Where were you, Anna? We were away: a year ago today!\"";
    runCliOk("phonemes --text " + words + " -o " + dir / "own.stk");
    const std::filesystem::path copy = dir.path / "bin" / "tessaphon-cli";
    std::filesystem::create_directories(copy.parent_path());
    std::filesystem::copy_file(TESSAPHON_CLI, copy);
    auto runCopy = [&](const std::string& output) {
        return std::system((copy.string() + " phonemes --text " + words + " -o " + output).c_str());
    };
    ASSERT_EQ(runCopy(dir / "system.stk"), 0);
    EXPECT_EQ(slurp(dir / "system.stk"), slurp(dir / "own.stk"));
    const std::filesystem::path partial = dir.path / "share" / "tessaphon" / "espeak-ng-data";
    std::filesystem::create_directories(partial);
    std::ofstream(partial / "phontab") << "not espeak-ng data";
    ASSERT_EQ(runCopy(dir / "partial.stk"), 0);
    EXPECT_EQ(slurp(dir / "partial.stk"), slurp(dir / "own.stk"));
}
