// continuum as a user runs it: files, bytes, manifest, refusals.
#include "support/CliRunner.h"

#include <gtest/gtest.h>

#include <fstream>

TEST(CliContinuum, StepsWavesAndManifestInTheDefaultFolderAndRefusals)
{
    TempDir dir;
    saveTestDocument(dir / "ba.stk", 30, {{Row::f2, 1200}, {Row::f0, 1000}});
    saveTestDocument(dir / "da.stk", 30, {{Row::f2, 2200}, {Row::f0, 1200}});
    CliResult made =
        runCliOk("continuum " + dir / "ba.stk " + dir / "da.stk" + " --steps 3 --scale bark -j 2");
    EXPECT_EQ(made.err, "");
    const std::string folder = dir / "ba-continuum";
    EXPECT_EQ(linesOf(slurp(folder + "/manifest.csv")),
              (std::vector<std::string>{
                  "step,weight,document,wave,f0,f2", "1,0,ba_1.stk,ba_1.wav,1000.000,1200.000",
                  "2,0.5,ba_2.stk,ba_2.wav,1100.000,1632.000", "3,1,ba_3.stk,ba_3.wav,1200.000,2200.000"}));
    // Each WAVE file is what synth makes of its document.
    for (const char* step : {"ba_1", "ba_2", "ba_3"}) {
        const std::string document = folder + "/" + step + ".stk";
        runCliOk("synth " + document + " -o " + dir / "single.wav");
        EXPECT_TRUE(slurp(folder + "/" + step + ".wav") == slurp(dir / "single.wav")) << step;
    }

    // Again without --force: the existing files are kept and named.
    std::ofstream(folder + "/ba_2.wav") << "listened to yesterday";
    CliResult again = runCli("continuum " + dir / "ba.stk " + dir / "da.stk" + " --steps 3");
    EXPECT_EQ(again.exitCode, 2);
    EXPECT_NE(again.err.find("ba_1.stk"), std::string::npos) << again.err;
    EXPECT_EQ(slurp(folder + "/ba_2.wav"), "listened to yesterday");
    // An explicit folder, documents only, chosen rows.
    CliResult chosen = runCliOk("continuum " + dir / "ba.stk " + dir / "da.stk" +
                                " --steps 2 --rows f2 --no-wav -o " + dir / "only-f2");
    EXPECT_EQ(linesOf(slurp(dir / "only-f2/manifest.csv"))[2], "2,1,ba_2.stk,,2200.000");
    EXPECT_FALSE(std::filesystem::exists(dir / "only-f2/ba_2.wav"));

    // Documents of different lengths: one line naming both and their lengths, nothing written.
    saveTestDocument(dir / "short.stk", 25, {{Row::f2, 2200}});
    CliResult r =
        runCli("continuum " + dir / "ba.stk " + dir / "short.stk" + " --steps 5 -o " + dir / "refused");
    EXPECT_EQ(r.exitCode, 2);
    ASSERT_EQ(linesOf(r.err).size(), 1u) << r.err;
    for (const std::string& part :
         {dir / "ba.stk", dir / "short.stk", std::string("30 frames"), std::string("25 frames")})
        EXPECT_NE(r.err.find(part), std::string::npos) << part << " in " << r.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "refused"));
    for (const std::string& bad : {std::string(" --steps 1"), std::string(" --steps 3 --scale octave"),
                                   std::string(" --steps 3 --rows f1,zz"), std::string("")})
        EXPECT_EQ(runCli("continuum " + dir / "ba.stk " + dir / "da.stk" + bad).exitCode, 1) << bad;
}
