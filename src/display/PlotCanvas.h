#pragma once
// PlotCanvas: what a plot needs of a drawing surface, so that one layout serves the screen,
// the exported pictures, the printer and the command-line tool. Coordinates are the canvas's
// own units (pixels on screen, points in vector files), x to the right, y downward.
// Implementations: SvgCanvas and RasterCanvas here, the painter canvas of the GUI.
// A canvas is used by one thread at a time.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

struct PlotColor {
    std::uint8_t r = 0, g = 0, b = 0;
};

enum class TextAnchor { Left, Centre, Right };

class PlotCanvas
{
public:
    virtual ~PlotCanvas() = default;

    virtual void fillRect(double x, double y, double width, double height, PlotColor color) = 0;
    virtual void strokeRect(double x, double y, double width, double height, PlotColor color) = 0;
    virtual void line(double x1, double y1, double x2, double y2, PlotColor color, double width) = 0;
    // An open line through the points; dashed for the second curve of a black-and-white plot.
    virtual void polyline(const std::vector<std::pair<double, double>>& points, PlotColor color, double width,
                          bool dashed) = 0;
    // One line of text whose baseline starts (Left), is centred (Centre) or ends (Right) at x.
    virtual void text(double x, double baseline, const std::string& text, PlotColor color,
                      TextAnchor anchor) = 0;
    virtual double textWidth(const std::string& text) const = 0;
    // Ascent of the canvas's font: the height of digits and capitals above the baseline.
    virtual double textAscent() const = 0;

protected:
    // Where a line of text anchored at x starts, for canvases that place text by its left end.
    double textLeft(double x, const std::string& text, TextAnchor anchor) const
    {
        if (anchor == TextAnchor::Centre)
            return x - textWidth(text) / 2.0;
        if (anchor == TextAnchor::Right)
            return x - textWidth(text);
        return x;
    }
};
