#include "cli/CliRunner.h"
#include "document/MyDocument.h"
#include "support/TestChannels.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>

namespace
{

// A WAVE file of a sine written by the document's own writer.
std::string sineWave(const TempDir& dir, const std::string& name, double hz, double rate, int samples)
{
    return writeWave(dir / name, signals::toFloat(signals::sine(samples, hz, rate, 0.5)), rate);
}

struct SliceRow {
    double hz, fft, lpc;
};

std::vector<SliceRow> rowsOf(const std::string& csv, std::string* header)
{
    std::istringstream lines(csv);
    std::getline(lines, *header);
    std::vector<SliceRow> rows;
    for (std::string line; std::getline(lines, line);) {
        SliceRow r{};
        std::sscanf(line.c_str(), "%lf,%lf,%lf", &r.hz, &r.fft, &r.lpc);
        rows.push_back(r);
    }
    return rows;
}

// Frequencies of the envelope's local maxima, ascending.
std::vector<double> envelopePeaks(const std::vector<SliceRow>& rows)
{
    std::vector<double> peaks;
    for (std::size_t k = 1; k + 1 < rows.size(); ++k)
        if (rows[k].lpc > rows[k - 1].lpc && rows[k].lpc >= rows[k + 1].lpc)
            peaks.push_back(rows[k].hz);
    return peaks;
}

} // namespace

TEST(SliceCommands, SliceOfASynthesizedVowelPeaksAtItsFormants)
{
    TempDir dir;
    const std::string wav = dir / "a.wav";
    CliResult r = runCli("synth " TESSAPHON_SOURCE_DIR "/examples/vowel-a.stk -o " + wav);
    ASSERT_EQ(r.exitCode, 0) << r.err;

    r = runCli("slice " + wav + " --at 300 --lpc");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    std::string header;
    const std::vector<SliceRow> rows = rowsOf(r.out, &header);
    EXPECT_EQ(header, "freq_hz,fft_db,lpc_db");
    ASSERT_EQ(rows.size(), 117u); // bins of 11025 / 256 Hz up to 5000 Hz
    const std::vector<double> peaks = envelopePeaks(rows);
    ASSERT_GE(peaks.size(), 2u);
    EXPECT_NEAR(peaks[0], 700.0, 90.0);
    EXPECT_NEAR(peaks[1], 1220.0, 120.0);

    r = runCli("slice " + wav + " --at 300 --window 512 --range 3000");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(rowsOf(r.out, &header).size(), 140u); // floor(3000 / 21.5) + 1
    EXPECT_EQ(header, "freq_hz,fft_db");

    // Pictures: PNG by libpng at 100 pixels an inch, SVG stating its size; -o replaces.
    const std::string png = dir / "a.png", svg = dir / "a.svg";
    std::ofstream(png) << "old";
    r = runCli("slice " + wav + " --at 300 --lpc -o " + png);
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(r.out.empty());
    const std::string bytes = slurp(png);
    ASSERT_GT(bytes.size(), 24u);
    EXPECT_EQ(bytes.substr(1, 3), "PNG");
    EXPECT_EQ(std::uint8_t(bytes[18]) << 8 | std::uint8_t(bytes[19]), 600);
    EXPECT_EQ(std::uint8_t(bytes[22]) << 8 | std::uint8_t(bytes[23]), 400);
    ASSERT_EQ(runCli("slice " + wav + " --at 300 -o " + svg).exitCode, 0);
    EXPECT_NE(slurp(svg).find("width=\"6.00in\" height=\"4.00in\""), std::string::npos);
}

TEST(SliceCommands, SliceRefusesBadTimesOutputsAndOptions)
{
    TempDir dir;
    const std::string wav = sineWave(dir, "s.wav", 440.0, 11025.0, 11025);
    CliResult r = runCli("slice " + wav + " --at 1000");
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
    EXPECT_NE(r.err.find("missing.wav"), std::string::npos);
    EXPECT_EQ(runCli("slice --help").exitCode, 0);
}

TEST(SliceCommands, CompareMeasuresTwoRecordingsOfOneRate)
{
    TempDir dir;
    const std::string a = sineWave(dir, "a.wav", 440.0, 11025.0, 11025);
    const std::string b = sineWave(dir, "b.wav", 1500.0, 11025.0, 5512);
    // A recording against itself: 99 frames, every one at distance 0.
    CliResult r = runCli("compare " + a + " " + a);
    ASSERT_EQ(r.exitCode, 0) << r.err;
    int same = 0;
    for (std::size_t at = r.out.find(",0.000\n"); at != std::string::npos;
         at = r.out.find(",0.000\n", at + 1))
        ++same;
    EXPECT_EQ(same, 99) << r.out;

    // Up to the shorter one: 0.5 s holds 49 frames; a sine against another is far.
    r = runCli("compare " + a + " " + b);
    ASSERT_EQ(r.exitCode, 0) << r.err;
    std::istringstream lines(r.out);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "time_ms,distance_db");
    int frames = 0;
    double last = -1;
    while (std::getline(lines, line)) {
        double time = 0, distance = 0;
        ASSERT_EQ(std::sscanf(line.c_str(), "%lf,%lf", &time, &distance), 2) << line;
        EXPECT_EQ(time, frames * 10.0);
        EXPECT_GT(distance, 3.0);
        last = time;
        ++frames;
    }
    EXPECT_EQ(frames, 49);
    EXPECT_EQ(last, 480.0);

    const std::string fast = sineWave(dir, "fast.wav", 440.0, 22050.0, 22050);
    r = runCli("compare " + a + " " + fast);
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_NE(r.err.find("a.wav"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("fast.wav"), std::string::npos) << r.err;
    EXPECT_TRUE(r.out.empty());
    EXPECT_EQ(runCli("compare " + a).exitCode, 1);
}
