#include "display/RasterCanvas.h"

#include "display/BitmapFont.h"

#include <algorithm>
#include <cmath>

namespace
{
// Dashes of a dashed line: so many pixels drawn, then so many left out.
constexpr int kDashOn = 6;
constexpr int kDashOff = 3;
} // namespace

RasterCanvas::RasterCanvas(int width, int height)
{
    if (width < 1 || height < 1)
        return;
    m_image.width = width;
    m_image.height = height;
    m_image.rgb.assign(static_cast<std::size_t>(width) * height * 3, 255);
}

void RasterCanvas::plot(int x, int y, PlotColor color)
{
    if (x < 0 || y < 0 || x >= m_image.width || y >= m_image.height)
        return;
    std::uint8_t* p = &m_image.rgb[(static_cast<std::size_t>(y) * m_image.width + x) * 3];
    p[0] = color.r;
    p[1] = color.g;
    p[2] = color.b;
}

PlotColor RasterCanvas::pixel(int x, int y) const
{
    if (x < 0 || y < 0 || x >= m_image.width || y >= m_image.height)
        return {255, 255, 255};
    const std::uint8_t* p = &m_image.rgb[(static_cast<std::size_t>(y) * m_image.width + x) * 3];
    return {p[0], p[1], p[2]};
}

void RasterCanvas::fillRect(double x, double y, double width, double height, PlotColor color)
{
    const int left = std::max(0, static_cast<int>(std::lround(x)));
    const int top = std::max(0, static_cast<int>(std::lround(y)));
    const int right = std::min(m_image.width, static_cast<int>(std::lround(x + width)));
    const int bottom = std::min(m_image.height, static_cast<int>(std::lround(y + height)));
    for (int yy = top; yy < bottom; ++yy)
        for (int xx = left; xx < right; ++xx)
            plot(xx, yy, color);
}

void RasterCanvas::strokeRect(double x, double y, double width, double height, PlotColor color)
{
    line(x, y, x + width, y, color, 1.0);
    line(x + width, y, x + width, y + height, color, 1.0);
    line(x + width, y + height, x, y + height, color, 1.0);
    line(x, y + height, x, y, color, 1.0);
}

void RasterCanvas::thinLine(double x1, double y1, double x2, double y2, PlotColor color, int* dash)
{
    if (!std::isfinite(x1) || !std::isfinite(y1) || !std::isfinite(x2) || !std::isfinite(y2))
        return;
    // Far-off points are pulled in: a line never needs more steps than the image is large.
    const double limit = 4.0 * (m_image.width + m_image.height) + 16.0;
    auto near = [limit](double v) { return std::clamp(v, -limit, limit); };
    int x = static_cast<int>(std::lround(near(x1))), y = static_cast<int>(std::lround(near(y1)));
    const int xEnd = static_cast<int>(std::lround(near(x2))), yEnd = static_cast<int>(std::lround(near(y2)));
    const int dx = std::abs(xEnd - x), dy = -std::abs(yEnd - y);
    const int sx = x < xEnd ? 1 : -1, sy = y < yEnd ? 1 : -1;
    int error = dx + dy;
    for (;;) {
        if (!dash || (*dash)++ % (kDashOn + kDashOff) < kDashOn)
            plot(x, y, color);
        if (x == xEnd && y == yEnd)
            break;
        const int twice = 2 * error;
        if (twice >= dy) {
            error += dy;
            x += sx;
        }
        if (twice <= dx) {
            error += dx;
            y += sy;
        }
    }
}

void RasterCanvas::line(double x1, double y1, double x2, double y2, PlotColor color, double width)
{
    // Wider lines are drawn as neighbouring one-pixel lines across the line's direction.
    const int strokes = std::max(1, static_cast<int>(std::lround(width)));
    const bool steep = std::abs(y2 - y1) > std::abs(x2 - x1);
    for (int s = 0; s < strokes; ++s) {
        const double o = s - (strokes - 1) / 2.0;
        thinLine(x1 + (steep ? o : 0), y1 + (steep ? 0 : o), x2 + (steep ? o : 0), y2 + (steep ? 0 : o),
                 color, nullptr);
    }
}

void RasterCanvas::polyline(const std::vector<std::pair<double, double>>& points, PlotColor color,
                            double width, bool dashed)
{
    if (!dashed) {
        for (std::size_t i = 1; i < points.size(); ++i)
            line(points[i - 1].first, points[i - 1].second, points[i].first, points[i].second, color, width);
        return;
    }
    int dash = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        thinLine(points[i - 1].first, points[i - 1].second, points[i].first, points[i].second, color, &dash);
}

void RasterCanvas::text(double x, double baseline, const std::string& text, PlotColor color,
                        TextAnchor anchor)
{
    const double left = textLeft(x, text, anchor);
    const int top = static_cast<int>(std::lround(baseline)) - kGlyphHeight + 1;
    int column = static_cast<int>(std::lround(left));
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = nextCodePoint(text, i);
        if (isCombiningMark(c))
            continue;
        if (const std::uint8_t* rows = glyphRows(c))
            for (int r = 0; r < kGlyphHeight; ++r)
                for (int b = 0; b < kGlyphWidth; ++b)
                    if (rows[r] & (0x10 >> b))
                        plot(column + b, top + r, color);
        column += kGlyphAdvance;
    }
}

double RasterCanvas::textWidth(const std::string& text) const
{
    const int columns = textColumns(text);
    return columns == 0 ? 0.0 : static_cast<double>(columns) * kGlyphAdvance - 1.0;
}

double RasterCanvas::textAscent() const
{
    return kGlyphHeight;
}
