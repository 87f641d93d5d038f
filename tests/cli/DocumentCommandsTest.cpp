#include "CliRunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

namespace
{
// Checks the "key: value" lines of `info` against the expected fields.
void expectInfo(const std::string& text, const std::map<std::string, std::string>& expected)
{
    std::map<std::string, std::string> info;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (const auto colon = line.find(": "); colon != std::string::npos)
            info[line.substr(0, colon)] = line.substr(colon + 2);
    for (const auto& [key, value] : expected)
        EXPECT_EQ(info[key], value) << key;
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
    expectInfo(info.out, {{"type", "stk"},
                          {"length_ms", "500"},
                          {"interval_ms", "5"},
                          {"frames", "100"},
                          {"sample_rate", "11025"},
                          {"cascade", "1"},
                          {"anchors", "0"}});
    EXPECT_NE(info.out.find("\nselected: f0 av ah af tl "), std::string::npos) << info.out;
    EXPECT_EQ(info.out.find(" f6"), std::string::npos);

    // Default output: the input with the extension .wav; the core's log lines stay off stdout.
    CliResult synth = runCli("synth " + dir / "u.stk");
    ASSERT_EQ(synth.exitCode, 0) << synth.err;
    EXPECT_TRUE(synth.out.empty());
    CliResult wave = runCli("info " + dir / "u.wav");
    ASSERT_EQ(wave.exitCode, 0) << wave.err;
    // 11025 x 0.5 s, truncated.
    expectInfo(wave.out, {{"type", "wave"},
                          {"format", "1"},
                          {"channels", "1"},
                          {"bits", "16"},
                          {"sample_rate", "11025"},
                          {"samples", "5512"}});
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
    // Usage errors exit 1, input errors 2 with one line naming the file; all commands read
    // their input through the same loader, so one command stands for all.
    TempDir dir;
    for (const std::string& usage :
         std::vector<std::string>{"", "frobnicate", "new", "new --interval 0 -o " + dir / "x.stk"})
        EXPECT_EQ(runCli(usage).exitCode, 1) << usage;

    std::ofstream(dir / "junk.stk") << "this is not a document\r\n";
    for (const char* name : {"nothing.stk", "junk.stk"}) {
        CliResult r = runCli("synth " + dir / name);
        EXPECT_EQ(r.exitCode, 2) << name;
        EXPECT_TRUE(r.out.empty());
        EXPECT_NE(r.err.find(name), std::string::npos) << r.err;
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    }
    EXPECT_FALSE(std::filesystem::exists(dir / "junk.wav"));
    EXPECT_EQ(runCli("synth --help").exitCode, 0);
}

TEST(CliDocumentCommands, ATruncatedDocumentIsReadWithOneWarning)
{
    TempDir dir;
    ASSERT_EQ(runCli("new --length 100 -o " + dir / "cut.stk").exitCode, 0);
    // Drop the last four value lines: six of ten frames are left.
    std::string text = slurp(dir / "cut.stk");
    for (int i = 0; i < 4; ++i)
        text.erase(text.rfind("\r\n", text.size() - 3) + 2);
    std::ofstream(dir / "cut.stk", std::ios::binary) << text;

    CliResult info = runCli("info " + dir / "cut.stk");
    ASSERT_EQ(info.exitCode, 0) << info.err;
    expectInfo(info.out, {{"frames", "10"}, {"frames_in_file", "6"}});
    EXPECT_EQ(std::count(info.err.begin(), info.err.end(), '\n'), 1) << info.err;
    EXPECT_NE(info.err.find("cut.stk"), std::string::npos) << info.err;
    EXPECT_NE(info.err.find("6 of 10"), std::string::npos) << info.err;

    CliResult synth = runCli("synth " + dir / "cut.stk");
    EXPECT_EQ(synth.exitCode, 0) << "a warning does not change the exit status";
    EXPECT_NE(synth.err.find("6 of 10"), std::string::npos) << synth.err;

    // A whole document says nothing.
    ASSERT_EQ(runCli("new --length 100 -o " + dir / "whole.stk").exitCode, 0);
    CliResult whole = runCli("info " + dir / "whole.stk");
    expectInfo(whole.out, {{"frames", "10"}, {"frames_in_file", "10"}});
    EXPECT_TRUE(whole.err.empty()) << whole.err;
}
