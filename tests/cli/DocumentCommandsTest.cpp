#include "CliRunner.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace
{
std::map<std::string, std::string> parseInfo(const std::string& text)
{
    std::map<std::string, std::string> info;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        const auto colon = line.find(": ");
        if (colon != std::string::npos)
            info[line.substr(0, colon)] = line.substr(colon + 2);
        else if (!line.empty() && line.back() == ':')
            info[line.substr(0, line.size() - 1)] = "";
    }
    return info;
}
} // namespace

TEST(CliDocumentCommands, NewThenInfoThenSynth)
{
    TempDir dir;
    CliResult made = runCli("new --length 500 --interval 5 -o " + dir / "u.stk");
    ASSERT_EQ(made.exitCode, 0) << made.err;
    EXPECT_TRUE(made.out.empty()); // results only; nothing to report

    CliResult info = runCli("info " + dir / "u.stk");
    ASSERT_EQ(info.exitCode, 0) << info.err;
    auto fields = parseInfo(info.out);
    EXPECT_EQ(fields["type"], "stk");
    EXPECT_EQ(fields["length_ms"], "500");
    EXPECT_EQ(fields["interval_ms"], "5");
    EXPECT_EQ(fields["frames"], "100");
    EXPECT_EQ(fields["sample_rate"], "11025");
    EXPECT_EQ(fields["cascade"], "1");
    EXPECT_EQ(fields["anchors"], "0");
    EXPECT_EQ(fields["selected"].substr(0, 15), "f0 av ah af tl ");
    EXPECT_EQ(fields["selected"].find("f6"), std::string::npos);

    // Default output: the input with the extension .wav; the core's log lines stay off stdout.
    CliResult synth = runCli("synth " + dir / "u.stk");
    ASSERT_EQ(synth.exitCode, 0) << synth.err;
    EXPECT_TRUE(synth.out.empty());
    CliResult wave = runCli("info " + dir / "u.wav");
    ASSERT_EQ(wave.exitCode, 0) << wave.err;
    fields = parseInfo(wave.out);
    EXPECT_EQ(fields["type"], "wave");
    EXPECT_EQ(fields["format"], "1");
    EXPECT_EQ(fields["channels"], "1");
    EXPECT_EQ(fields["bits"], "16");
    EXPECT_EQ(fields["sample_rate"], "11025");
    EXPECT_EQ(fields["samples"], "5512"); // 11025 x 0.5 s, truncated
}

TEST(CliDocumentCommands, ShippedExamplesSynthesize)
{
    TempDir dir;
    for (const char* name : {"vowel-a", "ba"}) {
        const std::string input = std::string(TESSAPHON_SOURCE_DIR) + "/examples/" + name + ".stk";
        CliResult synth = runCli("synth " + input + " -o " + dir / "out.wav");
        ASSERT_EQ(synth.exitCode, 0) << name << ": " << synth.err;
        const std::string wave = slurp(dir / "out.wav");
        ASSERT_GT(wave.size(), 48u);
        // Not silent, and not clipped into the wrap-around.
        int peak = 0;
        for (std::size_t i = 48; i + 1 < wave.size(); i += 2) {
            const int v = static_cast<std::int16_t>(std::uint8_t(wave[i]) | std::uint8_t(wave[i + 1]) << 8);
            peak = std::max(peak, std::abs(v));
        }
        EXPECT_GT(peak, 1000) << name;
        EXPECT_LT(peak, 32000) << name;
    }
}

TEST(CliDocumentCommands, ErrorsHaveTheirExitCodesAndOneLine)
{
    TempDir dir;
    EXPECT_EQ(runCli("").exitCode, 1);
    EXPECT_EQ(runCli("frobnicate").exitCode, 1);
    EXPECT_EQ(runCli("new --interval 0 -o " + dir / "x.stk").exitCode, 1);
    EXPECT_EQ(runCli("new").exitCode, 1); // -o is required

    CliResult missing = runCli("info " + dir / "nothing.stk");
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_NE(missing.err.find("nothing.stk"), std::string::npos);
    EXPECT_EQ(std::count(missing.err.begin(), missing.err.end(), '\n'), 1);

    {
        std::FILE* f = std::fopen((dir / "junk.stk").c_str(), "wb");
        std::fputs("this is not a document\r\n", f);
        std::fclose(f);
    }
    CliResult junk = runCli("synth " + dir / "junk.stk");
    EXPECT_EQ(junk.exitCode, 2);
    EXPECT_NE(junk.err.find("junk.stk"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir / "junk.wav"));

    EXPECT_EQ(runCli("synth --help").exitCode, 0);
}
