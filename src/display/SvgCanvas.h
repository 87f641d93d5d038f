#pragma once
// SvgCanvas: a PlotCanvas that writes an SVG document. The canvas is width x height points and
// the document states its physical size (width and height in inches), so that programs that
// place it (a word processor, a browser printing it) keep the size. Text uses a sans-serif
// font of `fontSize` points; its width is estimated (0.55 em a character), good enough for
// placing labels.
#include "display/PlotCanvas.h"

#include <sstream>

class SvgCanvas : public PlotCanvas
{
public:
    SvgCanvas(double width, double height, double fontSize = 9.0);

    void fillRect(double x, double y, double width, double height, PlotColor color) override;
    void strokeRect(double x, double y, double width, double height, PlotColor color) override;
    void line(double x1, double y1, double x2, double y2, PlotColor color, double width) override;
    void polyline(const std::vector<std::pair<double, double>>& points, PlotColor color, double width,
                  bool dashed) override;
    void text(double x, double baseline, const std::string& text, PlotColor color,
              TextAnchor anchor) override;
    double textWidth(const std::string& text) const override;
    double textAscent() const override { return m_dFontSize * 0.72; }

    // The whole document (the body drawn so far, closed).
    std::string document() const;

private:
    double m_dWidth, m_dHeight, m_dFontSize;
    std::ostringstream m_body;
};
