// compare --summary judges a copy synthesis in one line; its mel-cepstral distance is the one
// the project's reference script (tools/mcd.py) computes.
#include "cli/CliRunner.h"
#include "support/TestChannels.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace
{

// 1.2 s at `rate`: a vowel, then a quieter hiss that begins under its end.
std::vector<float> utterance(double f0, double f1, double f2, double rate, unsigned seed)
{
    const int n = static_cast<int>(rate * 1.2);
    std::vector<double> x = signals::vowel(n, f0, rate, {{f1, 80}, {f2, 120}, {2600, 200}});
    const std::vector<double> hiss = signals::noise(n, seed, 0.02);
    for (int i = 0; i < n; ++i)
        x[i] = (i < n * 3 / 4 ? 0.05 * x[i] : 0.0) + hiss[i] * (i > n / 2 ? 1.0 : 0.1);
    return signals::toFloat(x);
}

std::map<std::string, std::string> figuresOf(const std::string& line)
{
    std::map<std::string, std::string> figures;
    std::istringstream words(line);
    std::string word;
    while (words >> word)
        if (const auto eq = word.find('='); eq != std::string::npos)
            figures[word.substr(0, eq)] = word.substr(eq + 1);
    return figures;
}

} // namespace

TEST(CompareSummary, OneLineOfFiguresWithTheReferenceMelCepstralDistance)
{
    TempDir dir;
    const std::string original = writeWave(dir / "orig.wav", utterance(110, 650, 1150, 11025, 1), 11025);
    const std::string copy = writeWave(dir / "copy.wav", utterance(116, 560, 1350, 22050, 2), 22050);
    const CliResult r = runCli("compare " + original + " " + copy + " --summary");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    ASSERT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 1) << r.out;
    std::map<std::string, std::string> f = figuresOf(r.out);
    for (const char* key : {"mcd_db", "level_db", "f0_err_pct", "f0_gross_pct", "f1_err_pct", "f2_err_pct",
                            "clipped", "covoiced"})
        ASSERT_EQ(f.count(key), 1u) << key << " missing from " << r.out;
    EXPECT_EQ(f["clipped"], "0");
    EXPECT_GT(std::atof(f["mcd_db"].c_str()), 1.0);
    EXPECT_NEAR(std::atof(f["f0_err_pct"].c_str()), 100.0 * 6 / 110, 2.0);

    // The same figure from the reference script, the copy resampled there as here.
    if (std::system("/usr/bin/python3 -c 'import numpy' 2>/dev/null") != 0)
        GTEST_SKIP() << "python3-numpy is not installed";
    const std::string script = TESSAPHON_SOURCE_DIR "/tools/mcd.py";
    std::FILE* pipe = ::popen(("/usr/bin/python3 " + script + " " + original + " " + copy).c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    double reference = 0;
    int frames = 0;
    const int read = std::fscanf(pipe, "mcd %lf frames %d", &reference, &frames);
    ::pclose(pipe);
    ASSERT_EQ(read, 2);
    EXPECT_NEAR(std::atof(f["mcd_db"].c_str()), reference, 0.05);
}

TEST(CompareSummary, ItsOwnCopyIsPerfectAndBadInputIsNamed)
{
    TempDir dir;
    const std::string original = writeWave(dir / "orig.wav", utterance(110, 650, 1150, 11025, 1), 11025);
    CliResult r = runCli("compare " + original + " " + original + " --summary");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out.rfind("mcd_db=0.00 level_db=0.00 f0_err_pct=0.00 f0_gross_pct=0.0 f1_err_pct=0.00 "
                          "f2_err_pct=0.00 clipped=0 covoiced=",
                          0),
              0u)
        << r.out;

    const std::string damaged = dir / "damaged.wav";
    std::ofstream(damaged, std::ios::binary) << std::string("RIFF\x10\0\0\0WAVEjunk", 16);
    r = runCli("compare " + original + " " + damaged + " --summary");
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_NE(r.err.find("damaged.wav"), std::string::npos) << r.err;
    EXPECT_TRUE(r.out.empty());
}
