#pragma once
// PainterCanvas: a PlotCanvas on a QPainter, so that the slice picture drawn on screen is the
// one exported as PNG, SVG or PDF and printed. Canvas units are the painter's logical units
// (pixels on screen, points in exported pictures). Main thread only (painting).
#include "display/PlotCanvas.h"

class QPainter;

class PainterCanvas : public PlotCanvas
{
public:
    explicit PainterCanvas(QPainter& painter) : m_painter(painter) {}

    void fillRect(double x, double y, double width, double height, PlotColor color) override;
    void strokeRect(double x, double y, double width, double height, PlotColor color) override;
    void line(double x1, double y1, double x2, double y2, PlotColor color, double width) override;
    void polyline(const std::vector<std::pair<double, double>>& points, PlotColor color, double width,
                  bool dashed) override;
    void text(double x, double baseline, const std::string& text, PlotColor color,
              TextAnchor anchor) override;
    double textWidth(const std::string& text) const override;
    double textAscent() const override;

private:
    QPainter& m_painter;
};
