#include "support/CliRunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <vector>

namespace
{
// Checks the "key: value" lines of `info` against the expected fields.
void expectInfo(const std::string& text, const std::map<std::string, std::string>& expected)
{
    std::map<std::string, std::string> info;
    for (const std::string& line : linesOf(text))
        if (const auto colon = line.find(": "); colon != std::string::npos)
            info[line.substr(0, colon)] = line.substr(colon + 2);
    for (const auto& [key, value] : expected)
        EXPECT_EQ(info[key], value) << key;
}

// The lines of `text` that contain `word`.
std::vector<std::string> linesWith(const std::string& text, const std::string& word)
{
    std::vector<std::string> found;
    for (const std::string& line : linesOf(text))
        if (line.find(word) != std::string::npos)
            found.push_back(line);
    return found;
}
} // namespace

TEST(CliDocumentCommands, NewThenInfoThenSynth)
{
    TempDir dir;
    CliResult made = runCliOk("new --length 500 --interval 5 -o " + dir / "u.stk");
    EXPECT_TRUE(made.out.empty()); // results only; nothing to report

    CliResult info = runCliOk("info " + dir / "u.stk");
    expectInfo(info.out, {{"type", "stk"},
                          {"length_ms", "500"},
                          {"interval_ms", "5"},
                          {"frames", "100"},
                          {"sample_rate", "11025"},
                          {"cascade", "1"},
                          {"anchors", "0"}});
    EXPECT_NE(info.out.find("\nselected: f0 av ah af tl "), std::string::npos) << info.out;
    EXPECT_EQ(info.out.find(" f6"), std::string::npos);

    // Default output: the input with the extension .wav; quiet on success, the core's log lines
    // only with --verbose (which may stand after the command's own arguments), never on stdout.
    CliResult synth = runCliOk("synth " + dir / "u.stk");
    EXPECT_EQ(synth.out, "");
    EXPECT_EQ(synth.err, "");
    CliResult verbose = runCliOk("synth " + dir / "u.stk" + " --force --verbose");
    EXPECT_NE(verbose.err.find("synthesize"), std::string::npos) << verbose.err;
    EXPECT_EQ(verbose.out, "");
    CliResult wave = runCliOk("info " + dir / "u.wav");
    // 11025 x 0.5 s, truncated.
    expectInfo(wave.out, {{"type", "wave"},
                          {"format", "1"},
                          {"channels", "1"},
                          {"bits", "16"},
                          {"sample_rate", "11025"},
                          {"samples", "5512"}});
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

// Values the table cannot hold, a document cut short and a synthesis that clips: one warning line
// each, the work done all the same; a whole document in range says nothing.
TEST(CliDocumentCommands, ClampedValuesTruncationAndClippingAreOneWarningEach)
{
    TempDir dir;
    runCliOk("new --length 300 -o " + dir / "u.stk");
    // Every frame: an f0 too large for the table, voicing and gain at their maximum. The last four
    // value lines dropped: 26 of 30 frames are left.
    saveTestDocument(dir / "loud.stk", 30, {{Row::f0, 99999}, {Row::av, 87}, {Row::gain, 87}});
    std::string text = slurp(dir / "loud.stk");
    for (int i = 0; i < 4; ++i)
        text.erase(text.rfind("\r\n", text.size() - 3) + 2);
    std::ofstream(dir / "loud.stk", std::ios::binary) << text;

    CliResult info = runCliOk("info " + dir / "loud.stk");
    expectInfo(info.out, {{"frames", "30"}, {"frames_in_file", "26"}, {"clamped_values", "26"}});
    EXPECT_EQ(linesOf(info.err).size(), 2u) << info.err;
    EXPECT_EQ(linesWith(info.err, "loud.stk").size(), 2u) << info.err; // each names the file
    EXPECT_EQ(linesWith(info.err, "26 values").size(), 1u) << info.err;
    EXPECT_EQ(linesWith(info.err, "26 of 30").size(), 1u) << info.err;
    CliResult whole = runCli("info " + dir / "u.stk");
    expectInfo(whole.out, {{"frames_in_file", "30"}, {"clamped_values", "0"}});
    EXPECT_TRUE(whole.err.empty()) << whole.err;

    // The synthesis is written all the same (exit 0), with one line about its clipping.
    CliResult synth = runCliOk("synth " + dir / "loud.stk" + " -o " + dir / "loud.wav");
    EXPECT_TRUE(synth.out.empty());
    EXPECT_EQ(linesWith(synth.err, "26 of 30").size(), 1u) << synth.err;
    const auto clipped = linesWith(synth.err, "samples clipped (peak ");
    ASSERT_EQ(clipped.size(), 1u) << synth.err;
    EXPECT_NE(clipped[0].find("loud.wav: warning: "), std::string::npos) << clipped[0];
    EXPECT_GT(slurp(dir / "loud.wav").size(), 48u + 2 * 3000);
}

TEST(CliBatchSynth, IdenticalBytesAndFailuresAmongSuccesses)
{
    TempDir dir;
    std::filesystem::create_directories(dir.path / "out");
    std::string inputs;
    for (int i = 0; i < 5; ++i) {
        const std::string name = dir / ("s" + std::to_string(i) + ".stk");
        saveTestDocument(name, 40 + i * 7, {{Row::f2, 1000 + i * 300}, {Row::f0, 900 + i * 100}});
        inputs += " " + name;
    }
    std::ofstream(dir / "broken.stk") << "not a document\r\n";
    CliResult batch = runCli("synth -j 2 --out-dir " + dir / "out" + inputs + " " + dir / "broken.stk " +
                             dir / "missing.stk");
    EXPECT_EQ(batch.exitCode, 2);
    ASSERT_EQ(linesOf(batch.err).size(), 2u) << batch.err;
    EXPECT_EQ(linesWith(batch.err, "broken.stk").size(), 1u) << batch.err;
    EXPECT_EQ(linesWith(batch.err, "missing.stk").size(), 1u) << batch.err;
    for (int i = 0; i < 5; ++i) {
        const std::string stem = "s" + std::to_string(i);
        runCliOk("synth " + dir / (stem + ".stk"));
        const std::string single = slurp(dir / (stem + ".wav"));
        ASSERT_GT(single.size(), 44u);
        EXPECT_TRUE(slurp(dir / ("out/" + stem + ".wav")) == single) << stem;
    }
    // One job gives the same bytes; a rerun keeps what exists unless --force.
    std::filesystem::remove_all(dir.path / "out");
    std::filesystem::create_directories(dir.path / "out");
    runCliOk("synth -j 1 --out-dir " + dir / "out" + inputs);
    EXPECT_TRUE(slurp(dir / "out/s3.wav") == slurp(dir / "s3.wav"));
    CliResult rerun = runCli("synth --out-dir " + dir / "out" + inputs);
    EXPECT_EQ(rerun.exitCode, 2);
    EXPECT_EQ(linesOf(rerun.err).size(), 5u) << rerun.err;
    EXPECT_EQ(runCli("synth --force --out-dir " + dir / "out" + inputs).exitCode, 0);
    EXPECT_EQ(runCli("synth -o " + dir / "x.wav" + inputs).exitCode, 1) << "one -o for several documents";

    // Two documents of one name in different folders would share an output: the first is written,
    // the second refused; a recording among the inputs is never written over by its own synthesis.
    std::filesystem::create_directories(dir.path / "sub");
    std::filesystem::copy_file(dir / "s4.stk", dir / "sub/s1.stk");
    std::filesystem::copy_file(dir / "s3.wav", dir / "out/rec.wav");
    CliResult clash = runCli("synth --force --out-dir " + dir / "out " + dir / "s1.stk " +
                             dir / "sub/s1.stk " + dir / "out/rec.wav");
    EXPECT_EQ(clash.exitCode, 2);
    ASSERT_EQ(linesOf(clash.err).size(), 2u) << clash.err;
    EXPECT_EQ(linesWith(clash.err, "also the output of").size(), 1u) << clash.err;
    EXPECT_TRUE(slurp(dir / "out/s1.wav") == slurp(dir / "s1.wav"));
    EXPECT_TRUE(slurp(dir / "out/rec.wav") == slurp(dir / "s3.wav"));
}
