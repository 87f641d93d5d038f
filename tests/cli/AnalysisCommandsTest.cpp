#include "analysis/TestSignals.h"
#include "cli/CliRunner.h"
#include "document/MyDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

namespace
{

constexpr double kRate = 11025.0;

// A 16-bit WAVE file of the samples, written by the document's own writer.
void writeWave(const std::string& path, const std::vector<float>& samples)
{
    MyDocument document;
    Channels* c = document.getChannel(0);
    c->m_hData = MemoryBlock::newHandleClear(samples.size() * sizeof(float));
    std::memcpy(c->m_hData->bytes(), samples.data(), samples.size() * sizeof(float));
    c->m_dSampleRate = kRate;
    c->m_dwFileLength = static_cast<double>(samples.size());
    std::ofstream(path, std::ios::binary) << document.save_Wave_FileType();
}

std::string vowelWave(const TempDir& dir, double f0)
{
    const std::string path = dir / "vowel.wav";
    writeWave(path,
              signals::toFloat(
                  signals::vowel(22050, f0, kRate, {{700.0, 130.0}, {1220.0, 70.0}, {2600.0, 160.0}}), 0.05));
    return path;
}

std::vector<std::vector<double>> csvRows(const std::string& text, std::string* header)
{
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, *header);
    std::vector<std::vector<double>> rows;
    while (std::getline(lines, line)) {
        std::vector<double> row;
        std::istringstream fields(line);
        std::string field;
        while (std::getline(fields, field, ','))
            row.push_back(std::stod(field));
        rows.push_back(row);
    }
    return rows;
}

std::uint32_t bigEndian32(const std::string& bytes, std::size_t at)
{
    return (std::uint32_t(std::uint8_t(bytes[at])) << 24) |
           (std::uint32_t(std::uint8_t(bytes[at + 1])) << 16) |
           (std::uint32_t(std::uint8_t(bytes[at + 2])) << 8) | std::uint32_t(std::uint8_t(bytes[at + 3]));
}

} // namespace

TEST(AnalysisCommands, PitchAndFormantTracksOfAVowel)
{
    TempDir dir;
    const std::string wav = vowelWave(dir, 120.0);
    std::string header;
    CliResult r = runCli("pitch " + wav);
    ASSERT_EQ(r.exitCode, 0) << r.err;
    auto rows = csvRows(r.out, &header);
    EXPECT_EQ(header, "time_ms,f0_hz");
    ASSERT_EQ(rows.size(), 199u); // trunc(22050 / 110.25) - 1
    std::vector<double> f0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ASSERT_EQ(rows[i][0], i * 10.0);
        if (i >= 2 && i < 180)
            f0.push_back(rows[i][1]);
    }
    EXPECT_NEAR(*std::min_element(f0.begin(), f0.end()), 120.0, 3.6);
    EXPECT_NEAR(*std::max_element(f0.begin(), f0.end()), 120.0, 3.6);
    // Options reach the computation: a shorter step doubles the frames.
    r = runCli("pitch " + wav + " --step 5 --window 30");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(csvRows(r.out, &header).size(), 399u);

    r = runCli("formants " + wav + " --columns 50 --rows 128");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    rows = csvRows(r.out, &header);
    EXPECT_EQ(header, "column,time_ms,f1,f2,f3,f4,f5");
    ASSERT_EQ(rows.size(), 50u);
    std::vector<double> f1, f2;
    for (std::size_t c = 5; c < 45; ++c) {
        EXPECT_NEAR(rows[c][1], c * (22050.0 / 50.0) / kRate * 1000.0, 1e-9);
        f1.push_back(rows[c][2]);
        f2.push_back(rows[c][3]);
    }
    EXPECT_NEAR(signals::median(f1), 700.0, 56.0);
    EXPECT_NEAR(signals::median(f2), 1220.0, 61.0);
}

TEST(AnalysisCommands, SpectrogramImage)
{
    TempDir dir;
    const std::string wav = vowelWave(dir, 120.0);
    const std::string plain = dir / "plain.png", marked = dir / "marked.png";
    CliResult r = runCli("spectrogram " + wav + " -o " + plain);
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(r.out.empty());
    std::string png = slurp(plain);
    ASSERT_GT(png.size(), 33u);
    EXPECT_EQ(png.substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
    EXPECT_EQ(png.substr(12, 4), "IHDR");
    EXPECT_EQ(bigEndian32(png, 16), 500u);
    EXPECT_EQ(bigEndian32(png, 20), 256u);

    // Columns and rows set the image size; formant tracks change it.
    r = runCli("spectrogram " + wav + " --columns 120 --rows 80 --formants -o " + marked);
    ASSERT_EQ(r.exitCode, 0) << r.err;
    png = slurp(marked);
    EXPECT_EQ(bigEndian32(png, 16), 120u);
    EXPECT_EQ(bigEndian32(png, 20), 80u);
    r = runCli("spectrogram " + wav + " --columns 120 --rows 80 -o " + plain);
    EXPECT_NE(slurp(plain), png);
}

TEST(AnalysisCommands, BadInputAndUsage)
{
    TempDir dir;
    const std::string garbage = dir / "garbage.wav";
    std::ofstream(garbage) << "not audio at all\n";
    for (const std::string& command :
         std::vector<std::string>{"pitch", "formants", "spectrogram -o " + dir / "x.png"}) {
        CliResult r = runCli(command + " " + dir / "missing.wav");
        EXPECT_EQ(r.exitCode, 2) << command;
        EXPECT_TRUE(r.out.empty());
        EXPECT_NE(r.err.find("missing.wav"), std::string::npos) << r.err;
        r = runCli(command + " " + garbage);
        EXPECT_EQ(r.exitCode, 2) << command;
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    }
    // A parameter document has no recording to analyse.
    const std::string stk = dir / "doc.stk";
    MyDocument document;
    document.SetUpDataGridMemory();
    document.buildDataTableDictionary();
    std::string error;
    ASSERT_TRUE(document.writeSafelyToURL(stk, "stk", &error)) << error;
    CliResult r = runCli("formants " + stk);
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_NE(r.err.find("model utterance"), std::string::npos) << r.err;

    const std::string wav = vowelWave(dir, 150.0);
    EXPECT_EQ(runCli("spectrogram " + wav).exitCode, 1); // no output named
    EXPECT_EQ(runCli("formants " + wav + " --rows 0").exitCode, 1);
    EXPECT_EQ(runCli("pitch " + wav + " --step 0.01").exitCode, 1); // below one sample
    EXPECT_FALSE(std::filesystem::exists(dir / "x.png"));
}
