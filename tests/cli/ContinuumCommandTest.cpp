// continuum and batch synth as a user runs them: files, bytes, manifest, refusals.
#include "CliRunner.h"

#include "document/MyDocument.h"
#include "support/TestDocuments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace
{

// Saves a document of `frames` frames of 10 ms whose f2 is `f2` and f0 `f0` (tenths of Hz).
void saveDocument(const std::string& path, int frames, int f2, int f0 = 1000)
{
    auto made = makeTestDocument(frames);
    MyDocument& document = *made;
    setRowValue(document, Row::f2, f2);
    setRowValue(document, Row::f0, f0);
    std::string error;
    ASSERT_TRUE(document.writeSafelyToURL(path, "stk", &error)) << error;
}

std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> result;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        result.push_back(line);
    return result;
}

} // namespace

TEST(CliContinuum, StepsWavesAndManifestInTheDefaultFolder)
{
    TempDir dir;
    saveDocument(dir / "ba.stk", 30, 1200, 1000);
    saveDocument(dir / "da.stk", 30, 2200, 1200);
    CliResult made = runCli("continuum " + dir / "ba.stk " + dir / "da.stk" + " --steps 3 --scale bark -j 2");
    ASSERT_EQ(made.exitCode, 0) << made.err;
    EXPECT_EQ(made.err, "");
    const std::string folder = dir / "ba-continuum";
    EXPECT_EQ(lines(slurp(folder + "/manifest.csv")),
              (std::vector<std::string>{
                  "step,weight,document,wave,f0,f2", "1,0,ba_1.stk,ba_1.wav,1000.000,1200.000",
                  "2,0.5,ba_2.stk,ba_2.wav,1100.000,1632.000", "3,1,ba_3.stk,ba_3.wav,1200.000,2200.000"}));
    // Each WAVE file is what synth makes of its document.
    for (const char* step : {"ba_1", "ba_2", "ba_3"}) {
        const std::string document = folder + "/" + step + ".stk";
        ASSERT_EQ(runCli("synth " + document + " -o " + dir / "single.wav").exitCode, 0) << step;
        EXPECT_TRUE(slurp(folder + "/" + step + ".wav") == slurp(dir / "single.wav")) << step;
    }

    // Again without --force: the existing files are kept and named.
    std::ofstream(folder + "/ba_2.wav") << "listened to yesterday";
    CliResult again = runCli("continuum " + dir / "ba.stk " + dir / "da.stk" + " --steps 3");
    EXPECT_EQ(again.exitCode, 2);
    EXPECT_NE(again.err.find("ba_1.stk"), std::string::npos) << again.err;
    EXPECT_EQ(slurp(folder + "/ba_2.wav"), "listened to yesterday");
    // An explicit folder, documents only, chosen rows.
    CliResult chosen = runCli("continuum " + dir / "ba.stk " + dir / "da.stk" +
                              " --steps 2 --rows f2 --no-wav -o " + dir / "only-f2");
    ASSERT_EQ(chosen.exitCode, 0) << chosen.err;
    EXPECT_EQ(lines(slurp(dir / "only-f2/manifest.csv"))[2], "2,1,ba_2.stk,,2200.000");
    EXPECT_FALSE(std::filesystem::exists(dir / "only-f2/ba_2.wav"));
}

TEST(CliContinuum, RefusesDocumentsOfDifferentLengthsAndBadOptions)
{
    TempDir dir;
    saveDocument(dir / "a.stk", 30, 1200);
    saveDocument(dir / "b.stk", 25, 2200);
    CliResult r = runCli("continuum " + dir / "a.stk " + dir / "b.stk" + " --steps 5");
    EXPECT_EQ(r.exitCode, 2);
    ASSERT_EQ(lines(r.err).size(), 1u) << r.err;
    for (const std::string& part :
         {dir / "a.stk", dir / "b.stk", std::string("30 frames"), std::string("25 frames")})
        EXPECT_NE(r.err.find(part), std::string::npos) << part << " in " << r.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "a-continuum"));

    saveDocument(dir / "c.stk", 30, 2200);
    for (const std::string& bad : {std::string(" --steps 1"), std::string(" --steps 3 --scale octave"),
                                   std::string(" --steps 3 --rows f1,zz"), std::string("")})
        EXPECT_EQ(runCli("continuum " + dir / "a.stk " + dir / "c.stk" + bad).exitCode, 1) << bad;
}

TEST(CliBatchSynth, IdenticalBytesAndFailuresAmongSuccesses)
{
    TempDir dir;
    std::filesystem::create_directories(dir.path / "out");
    std::string inputs;
    for (int i = 0; i < 5; ++i) {
        const std::string name = dir / ("s" + std::to_string(i) + ".stk");
        saveDocument(name, 40 + i * 7, 1000 + i * 300, 900 + i * 100);
        inputs += " " + name;
    }
    std::ofstream(dir / "broken.stk") << "not a document\r\n";
    CliResult batch = runCli("synth -j 2 --out-dir " + dir / "out" + inputs + " " + dir / "broken.stk " +
                             dir / "missing.stk");
    EXPECT_EQ(batch.exitCode, 2);
    const std::vector<std::string> errors = lines(batch.err);
    ASSERT_EQ(errors.size(), 2u) << batch.err;
    EXPECT_EQ(std::count_if(errors.begin(), errors.end(),
                            [](const std::string& l) { return l.find("broken.stk") != std::string::npos; }),
              1);
    EXPECT_EQ(std::count_if(errors.begin(), errors.end(),
                            [](const std::string& l) { return l.find("missing.stk") != std::string::npos; }),
              1);
    for (int i = 0; i < 5; ++i) {
        const std::string stem = "s" + std::to_string(i);
        ASSERT_EQ(runCli("synth " + dir / (stem + ".stk")).exitCode, 0) << stem;
        const std::string single = slurp(dir / (stem + ".wav"));
        ASSERT_GT(single.size(), 44u);
        EXPECT_TRUE(slurp(dir / ("out/" + stem + ".wav")) == single) << stem;
    }
    // One job gives the same bytes; a rerun keeps what exists unless --force.
    std::filesystem::remove_all(dir.path / "out");
    std::filesystem::create_directories(dir.path / "out");
    ASSERT_EQ(runCli("synth -j 1 --out-dir " + dir / "out" + inputs).exitCode, 0);
    EXPECT_TRUE(slurp(dir / "out/s3.wav") == slurp(dir / "s3.wav"));
    CliResult rerun = runCli("synth --out-dir " + dir / "out" + inputs);
    EXPECT_EQ(rerun.exitCode, 2);
    EXPECT_EQ(lines(rerun.err).size(), 5u) << rerun.err;
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
    const std::vector<std::string> refused = lines(clash.err);
    ASSERT_EQ(refused.size(), 2u) << clash.err;
    EXPECT_EQ(
        std::count_if(refused.begin(), refused.end(),
                      [](const std::string& l) { return l.find("also the output of") != std::string::npos; }),
        1)
        << clash.err;
    EXPECT_TRUE(slurp(dir / "out/s1.wav") == slurp(dir / "s1.wav"));
    EXPECT_TRUE(slurp(dir / "out/rec.wav") == slurp(dir / "s3.wav"));
}
