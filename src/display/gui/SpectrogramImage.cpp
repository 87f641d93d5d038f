#include "display/gui/SpectrogramImage.h"

#include "display/SpectrogramComputation.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

void SpectrogramImage::SetColors()
{
    for (int i = 0; i < kRampSize; ++i) {
        // A gamma below one darkens the middle of the range: the weaker formants stay visible
        // at the default dynamic range without turning the floor grey.
        const double t = std::pow(i / 256.0, 0.75);
        const int grey = 255 - static_cast<int>(std::lround(t * 255.0));
        m_ramp[static_cast<std::size_t>(i)] = qRgb(grey, grey, grey);
    }
}

void SpectrogramImage::DrawSpectrogramBMP(QImage& image, const SpectrogramComputation& levels, int columns,
                                          int rows, int dynamicRange) const
{
    if (image.isNull())
        return;
    if (image.depth() != 32)
        image = image.convertToFormat(QImage::Format_RGB32);
    image.fill(m_ramp[0]);
    {
        QPainter frame(&image);
        frame.setPen(QColor(Qt::black));
        frame.drawRect(image.rect().adjusted(0, 0, -1, -1));
    }
    columns = std::min(columns, static_cast<int>(levels.m_nDisplayRange));
    rows = std::min(rows, static_cast<int>(levels.m_nDisplayVerticalRange));
    if (columns <= 0 || rows <= 0 || levels.m_phdDataFile.empty())
        return;
    const int width = image.width();
    const int height = image.height();
    const double sx = static_cast<double>(width) / columns;
    const double sy = static_cast<double>(height) / rows;
    const int p = std::max(static_cast<int>(sx), 1);
    // The image row of every value row, worked out once for all columns: -1 for a row that
    // falls outside the image. Pixels are written straight into the image's lines, which are
    // 32-bit words in this format.
    std::vector<QRgb*> line(static_cast<std::size_t>(rows), nullptr);
    for (int y = 0; y < rows; ++y) {
        const int py = height - (static_cast<int>(sy * y) + p);
        if (py >= 0 && py < height)
            line[static_cast<std::size_t>(y)] = reinterpret_cast<QRgb*>(image.scanLine(py));
    }
    std::vector<int> column(static_cast<std::size_t>(columns), -1);
    for (int x = 0; x < columns; ++x) {
        const int px = static_cast<int>(sx * x) + p;
        if (px >= 0 && px < width)
            column[static_cast<std::size_t>(x)] = px;
    }
    // Columns are taken a band at a time and the band is written row by row: the pixels of a
    // band's row share a cache line, where writing whole columns would touch one line per pixel.
    constexpr int kBand = 16;
    for (int x0 = 0; x0 < columns; x0 += kBand) {
        const int x1 = std::min(columns, x0 + kBand);
        for (int y = 0; y < rows; ++y) {
            QRgb* pixels = line[static_cast<std::size_t>(y)];
            if (!pixels)
                continue;
            for (int x = x0; x < x1; ++x)
                if (const int px = column[static_cast<std::size_t>(x)]; px >= 0)
                    pixels[px] =
                        m_ramp[static_cast<std::size_t>(rampPosition(levels.frame(x)[y], dynamicRange))];
        }
    }
}

QImage SpectrogramImage::DrawImage(const SpectrogramComputation& levels) const
{
    if (!levels.m_bHaveSpectrogram || levels.m_nDisplayRange <= 0 || levels.m_nDisplayVerticalRange <= 0)
        return {};
    QImage image(levels.m_nDisplayRange, levels.m_nDisplayVerticalRange, QImage::Format_RGB32);
    DrawSpectrogramBMP(image, levels, levels.m_nDisplayRange, levels.m_nDisplayVerticalRange,
                       levels.m_settings.m_nSpecDynamicRange);
    return image;
}
