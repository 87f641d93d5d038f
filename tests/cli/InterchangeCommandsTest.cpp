#include "interchange/Interchange.h"
#include "support/CliRunner.h"
#include "support/DocumentTestSupport.h"

#include <gtest/gtest.h>

#include <fstream>

namespace
{
void write(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

const char* const kTextGrid = "File type = \"ooTextFile\"\nObject class = \"TextGrid\"\n\n0\n1\n<exists>\n1\n"
                              "\"IntervalTier\"\n\"words\"\n0\n1\n2\n0\n0.4\n\"wa\"\n0.4\n1\n\"da\"\n";
} // namespace

TEST(InterchangeCommands, ImportAndExportWriteWhatTheFormatsHoldAndRefusalsAreOneLine)
{
    TempDir dir;
    write(dir / "stim.klp",
          "# hand made\ndu 50\nxx 3\n__varied_params__\nmsec f0 f1 notes\n0 1000 300 start\n"
          "40 1400 700 end of it\n");
    CliResult r = runCliOk("import " + dir / "stim.klp");
    EXPECT_NE(r.err.find("stim.klp: warning: no parameter here is named xx"), std::string::npos) << r.err;
    const std::string stk = slurp(dir / "stim.stk"); // the default output beside the input
    EXPECT_EQ(stk.substr(0, 4), "50\t1");

    // The default output exists now: kept unless --force; -o replaces.
    r = runCli("import " + dir / "stim.klp");
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(runCli("import --force " + dir / "stim.klp").exitCode, 0);

    // The import's values are the file's; export writes what the format's writer makes of the
    // document: TSV when asked, else as the extension says, "-o -" to standard output.
    MyDocument document;
    ASSERT_TRUE(openBytes(document, stk));
    EXPECT_EQ(frameValue(document, 5, Row::f0), 1400);
    runCliOk("export " + dir / "stim.stk" + " --format tsv -o " + dir / "stim.tsv");
    runCliOk("export " + dir / "stim.stk" + " -o " + dir / "again.klp");
    EXPECT_EQ(slurp(dir / "stim.tsv"), exportDocument(document, InterchangeFormat::Tsv));
    EXPECT_EQ(slurp(dir / "again.klp"), exportDocument(document, InterchangeFormat::Klp));
    EXPECT_EQ(runCli("export " + dir / "stim.stk" + " --format tsv -o -").out, slurp(dir / "stim.tsv"));

    // Refusals: one line naming the file and the line, with their exit codes.
    write(dir / "bad.klp", "du 50\n__varied_params__\nmsec f0\n0 1000\n10 x\n");
    r = runCli("import " + dir / "bad.klp");
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(r.err, "tessaphon-cli: " + dir / "bad.klp" + ": line 5: \"x\" in column 2 is not a number\n");
    EXPECT_FALSE(std::filesystem::exists(dir / "bad.stk"));
    EXPECT_EQ(runCli("import " + dir / "missing.klp").exitCode, 2);
    // Never over the input; a format that is not known; no format to be had.
    write(dir / "a.tsv", "time_ms\tf0\n0\t1000\n");
    EXPECT_EQ(runCli("import " + dir / "a.tsv" + " -o " + dir / "a.tsv").exitCode, 2);
    EXPECT_EQ(slurp(dir / "a.tsv"), "time_ms\tf0\n0\t1000\n");
    runCliOk("import " + dir / "a.tsv");
    EXPECT_EQ(runCli("export " + dir / "a.stk" + " --format csv").exitCode, 1);
    EXPECT_EQ(runCli("export " + dir / "a.stk" + " -o " + dir / "a.out").exitCode, 1);
}

TEST(InterchangeCommands, SpectrogramDrawsTheLabelStripAndSliceNamesItsSegment)
{
    TempDir dir;
    writeVowel(dir / "rec.wav", 1.0);
    write(dir / "rec.TextGrid", kTextGrid);
    runCliOk("spectrogram " + dir / "rec.wav" + " -o " + dir / "plain.png");
    CliResult r = runCliOk("spectrogram " + dir / "rec.wav" + " --labels " + dir / "rec.TextGrid" + " -o " +
                           dir / "labelled.png");
    const std::string plain = slurp(dir / "plain.png"), labelled = slurp(dir / "labelled.png");
    EXPECT_EQ(bigEndian32(labelled, 16), bigEndian32(plain, 16)); // as wide
    EXPECT_GT(bigEndian32(labelled, 20), bigEndian32(plain, 20)); // and taller by the strip
    EXPECT_LT(bigEndian32(labelled, 20), bigEndian32(plain, 20) + 40);

    // A damaged TextGrid is refused naming the file and the line; no picture is written.
    write(dir / "cut.TextGrid", std::string(kTextGrid).substr(0, 90));
    r = runCli("spectrogram " + dir / "rec.wav" + " --labels " + dir / "cut.TextGrid" + " -o " +
               dir / "x.png");
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_NE(r.err.find("cut.TextGrid: line "), std::string::npos) << r.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "x.png"));
    EXPECT_EQ(runCli("spectrogram " + dir / "rec.wav" + " --labels " + dir / "rec.TextGrid" +
                     " --tier phones -o " + dir / "x.png")
                  .exitCode,
              1);

    // The slice picture at 0.6 s names "da".
    r = runCliOk("slice " + dir / "rec.wav" + " --at 600 --labels " + dir / "rec.TextGrid" + " -o " +
                 dir / "slice.svg");
    EXPECT_NE(slurp(dir / "slice.svg").find("[da]"), std::string::npos);
}
