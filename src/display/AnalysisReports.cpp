#include "display/AnalysisReports.h"

#include "display/PitchTrackComputation.h"
#include "display/SpectrogramComputation.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace
{

// Shortest text that reads back as the same double.
void appendNumber(std::string& text, double value)
{
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    text.append(buffer, result.ptr);
}

void setPixel(RgbImage& image, int x, int y, std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    if (x < 0 || y < 0 || x >= image.width || y >= image.height)
        return;
    std::uint8_t* p = &image.rgb[(static_cast<std::size_t>(y) * image.width + x) * 3];
    p[0] = r;
    p[1] = g;
    p[2] = b;
}

} // namespace

std::string pitchTrackCsv(const PitchTrackComputation& track, double stepMS)
{
    std::string text = "time_ms,f0_hz\n";
    for (int i = 0; i < track.m_nFrameCount; ++i) {
        appendNumber(text, i * stepMS);
        text += ',';
        appendNumber(text, track.m_hdPitchFile[i]);
        text += '\n';
    }
    return text;
}

std::string formantTrackCsv(const SpectrogramComputation& spectrogram)
{
    std::string text = "column,time_ms,f1,f2,f3,f4,f5\n";
    const int columns = spectrogram.m_nDisplayRange;
    const bool haveRecords = spectrogram.m_bHaveFormants && !spectrogram.m_phsnFormants.empty();
    for (int c = 0; c < columns; ++c) {
        text += std::to_string(c);
        text += ',';
        appendNumber(text, c * (spectrogram.m_dwFileLength / columns) / spectrogram.m_dSampleRate * 1000.0);
        for (int slot = 0; slot < 5; ++slot) {
            text += ',';
            text += std::to_string(haveRecords ? spectrogram.m_phsnFormants[c][slot] : -1);
        }
        text += '\n';
    }
    return text;
}

std::array<std::uint8_t, 257> grayRamp()
{
    std::array<std::uint8_t, 257> ramp{};
    for (int i = 0; i <= 256; ++i)
        ramp[i] = static_cast<std::uint8_t>(255 - (i * 255 + 128) / 256);
    return ramp;
}

RgbImage spectrogramImage(const SpectrogramComputation& spectrogram, bool drawFormants)
{
    RgbImage image;
    if (!spectrogram.m_bHaveSpectrogram)
        return image;
    image.width = spectrogram.m_nDisplayRange;
    image.height = spectrogram.m_nDisplayVerticalRange;
    image.rgb.assign(static_cast<std::size_t>(image.width) * image.height * 3, 255);
    const auto ramp = grayRamp();
    const double range = std::max(spectrogram.m_settings.m_nSpecDynamicRange, 1);
    for (int x = 0; x < image.width; ++x) {
        const double* frame = spectrogram.frame(x);
        for (int row = 0; row < image.height; ++row) {
            const double position = std::trunc(frame[row] * 256.0 / range);
            const int index = std::isnan(position) ? 0 : static_cast<int>(std::clamp(position, 0.0, 256.0));
            setPixel(image, x, image.height - 1 - row, ramp[index], ramp[index], ramp[index]);
        }
    }
    const int frequencyRange = spectrogram.m_settings.m_nSpecfrequencyRange;
    if (!drawFormants || !spectrogram.m_bHaveFormants || frequencyRange <= 0)
        return image;
    const int records = std::min(image.width, static_cast<int>(spectrogram.m_phsnFormants.size()));
    for (int x = 0; x < records; ++x) {
        for (int slot = 0; slot < 5; ++slot) {
            const int hz = spectrogram.m_phsnFormants[x][slot];
            if (hz < 0)
                continue;
            const int row = static_cast<int>(static_cast<long long>(hz) * image.height / frequencyRange);
            for (int dy = -1; dy <= 1; ++dy)
                setPixel(image, x, image.height - 1 - (row + dy), 255, 0, 0);
        }
    }
    return image;
}
