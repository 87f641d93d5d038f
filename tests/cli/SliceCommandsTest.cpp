// slice and compare as a user runs them: the shape of what the options ask for, pictures,
// refusals; compare --summary judges a copy synthesis in one line, its mel-cepstral distance the
// one the project's reference script (tools/mcd.py) computes.
#include "support/CliRunner.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace
{

// A WAVE file of a sine written by the document's own writer.
std::string sineWave(const TempDir& dir, const std::string& name, double hz, double rate, int samples)
{
    return writeWave(dir / name, signals::toFloat(signals::sine(samples, hz, rate, 0.5)), rate);
}

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

// Where the envelope peaks is checked where it is computed; here, that the options reach it.
TEST(SliceCommands, SliceRowsAndPicturesHaveTheShapeTheOptionsAskForAndBadInputIsRefused)
{
    TempDir dir;
    const std::string wav = writeVowel(dir / "a.wav", 1.0);
    std::vector<std::string> lines = linesOf(runCliOk("slice " + wav + " --at 300 --lpc").out);
    EXPECT_EQ(lines.size(), 1 + 117u); // the header, then bins of 11025 / 256 Hz up to 5000 Hz
    EXPECT_EQ(lines.at(0), "freq_hz,fft_db,lpc_db");

    lines = linesOf(runCliOk("slice " + wav + " --at 300 --window 512 --range 3000").out);
    EXPECT_EQ(lines.size(), 1 + 140u); // floor(3000 / 21.5) + 1
    EXPECT_EQ(lines.at(0), "freq_hz,fft_db");

    // Pictures: PNG by libpng at 100 pixels an inch, SVG stating its size; -o replaces.
    const std::string png = dir / "a.png", svg = dir / "a.svg";
    std::ofstream(png) << "old";
    CliResult r = runCliOk("slice " + wav + " --at 300 --lpc -o " + png);
    EXPECT_TRUE(r.out.empty());
    const std::string bytes = slurp(png);
    ASSERT_GT(bytes.size(), 24u);
    EXPECT_EQ(bytes.substr(1, 3), "PNG");
    EXPECT_EQ(bigEndian32(bytes, 16), 600u);
    EXPECT_EQ(bigEndian32(bytes, 20), 400u);
    runCliOk("slice " + wav + " --at 300 -o " + svg);
    EXPECT_NE(slurp(svg).find("width=\"6.00in\" height=\"4.00in\""), std::string::npos);

    // Times past the end, missing or bad options, outputs that cannot be written or would
    // replace the input.
    r = runCli("slice " + wav + " --at 1000");
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("past the end"), std::string::npos) << r.err;
    EXPECT_EQ(runCli("slice " + wav).exitCode, 1);                           // no --at
    EXPECT_EQ(runCli("slice " + wav + " --at 10 --window 300").exitCode, 1); // not a power of two
    EXPECT_EQ(runCli("slice " + wav + " --at 10 -o " + dir / "x.jpg").exitCode, 1);
    // Never over the input, whatever the input's name says.
    const std::string disguised = dir / "in.svg";
    std::filesystem::copy_file(wav, disguised);
    r = runCli("slice " + disguised + " --at 10 -o " + disguised);
    EXPECT_EQ(r.exitCode, 2) << r.err;
    EXPECT_EQ(slurp(disguised).substr(0, 4), "RIFF");
    r = runCli("slice " + dir / "missing.wav --at 10");
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(runCli("slice --help").exitCode, 0);
}

TEST(SliceCommands, CompareMeasuresTwoRecordingsOfOneRate)
{
    TempDir dir;
    const std::string a = sineWave(dir, "a.wav", 440.0, 11025.0, 11025);
    const std::string b = sineWave(dir, "b.wav", 1500.0, 11025.0, 5512);
    // One line of time and distance a frame, up to the shorter recording; the times and the
    // distances to the thousandth are the analysis module's (tests/python, test_compare...).
    CliResult r = runCliOk("compare " + a + " " + b);
    EXPECT_EQ(linesOf(r.out).at(0), "time_ms,distance_db");

    const std::string fast = sineWave(dir, "fast.wav", 440.0, 22050.0, 22050);
    r = runCli("compare " + a + " " + fast);
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_NE(r.err.find("a.wav"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("fast.wav"), std::string::npos) << r.err;
    EXPECT_TRUE(r.out.empty());
    EXPECT_EQ(runCli("compare " + a).exitCode, 1);
}

TEST(CompareSummary, OneLineOfFiguresItsOwnCopyPerfectAndTheReferenceMelCepstralDistance)
{
    TempDir dir;
    const std::string original = writeWave(dir / "orig.wav", utterance(110, 650, 1150, 11025, 1), 11025);
    CliResult r = runCliOk("compare " + original + " " + original + " --summary");
    EXPECT_EQ(r.out.rfind("mcd_db=0.00 level_db=0.00 f0_err_pct=0.00 f0_gross_pct=0.0 f1_err_pct=0.00 "
                          "f2_err_pct=0.00 clipped=0 covoiced=",
                          0),
              0u)
        << r.out;
    const std::string damaged = dir / "damaged.wav";
    std::ofstream(damaged, std::ios::binary) << std::string("RIFF\x10\0\0\0WAVEjunk", 16);
    r = runCli("compare " + original + " " + damaged + " --summary");
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_TRUE(r.out.empty());

    const std::string copy = writeWave(dir / "copy.wav", utterance(116, 560, 1350, 22050, 2), 22050);
    r = runCliOk("compare " + original + " " + copy + " --summary");
    ASSERT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 1) << r.out;
    std::map<std::string, std::string> f = figuresOf(r.out);
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
