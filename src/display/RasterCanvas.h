#pragma once
// RasterCanvas: a PlotCanvas on an RGB image (white to begin with), for the PNG pictures of the
// command-line tool, which draws without the GUI toolkit. Lines are one pixel wide per unit of
// width, without smoothing; text uses the 5 x 7 bitmap font. One canvas unit is one pixel.
#include "display/AnalysisReports.h"
#include "display/PlotCanvas.h"

class RasterCanvas : public PlotCanvas
{
public:
    // A width or height below 1 gives an empty image that every drawing call leaves alone.
    RasterCanvas(int width, int height);

    void fillRect(double x, double y, double width, double height, PlotColor color) override;
    void strokeRect(double x, double y, double width, double height, PlotColor color) override;
    void line(double x1, double y1, double x2, double y2, PlotColor color, double width) override;
    void polyline(const std::vector<std::pair<double, double>>& points, PlotColor color, double width,
                  bool dashed) override;
    void text(double x, double baseline, const std::string& text, PlotColor color,
              TextAnchor anchor) override;
    double textWidth(const std::string& text) const override;
    double textAscent() const override;

    const RgbImage& image() const { return m_image; }
    // The pixel at (x, y); white outside the image.
    PlotColor pixel(int x, int y) const;

private:
    void plot(int x, int y, PlotColor color);
    // A one-pixel line; `dash` counts pixels along a dashed polyline (nullptr: solid).
    void thinLine(double x1, double y1, double x2, double y2, PlotColor color, int* dash);
    RgbImage m_image;
};
