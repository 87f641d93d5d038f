#include "display/SvgCanvas.h"

#include <cstdio>

namespace
{
std::string colorText(PlotColor c)
{
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", c.r, c.g, c.b);
    return text;
}

std::string number(double v)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", v);
    return text;
}

std::string escaped(const std::string& text)
{
    std::string out;
    for (char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
    return out;
}
} // namespace

SvgCanvas::SvgCanvas(double width, double height, double fontSize)
    : m_dWidth(width), m_dHeight(height), m_dFontSize(fontSize)
{
}

void SvgCanvas::fillRect(double x, double y, double width, double height, PlotColor color)
{
    m_body << "<rect x=\"" << number(x) << "\" y=\"" << number(y) << "\" width=\"" << number(width)
           << "\" height=\"" << number(height) << "\" fill=\"" << colorText(color) << "\"/>\n";
}

void SvgCanvas::strokeRect(double x, double y, double width, double height, PlotColor color)
{
    m_body << "<rect x=\"" << number(x) << "\" y=\"" << number(y) << "\" width=\"" << number(width)
           << "\" height=\"" << number(height) << "\" fill=\"none\" stroke=\"" << colorText(color)
           << "\"/>\n";
}

void SvgCanvas::line(double x1, double y1, double x2, double y2, PlotColor color, double width)
{
    m_body << "<line x1=\"" << number(x1) << "\" y1=\"" << number(y1) << "\" x2=\"" << number(x2)
           << "\" y2=\"" << number(y2) << "\" stroke=\"" << colorText(color) << "\" stroke-width=\""
           << number(width) << "\"/>\n";
}

void SvgCanvas::polyline(const std::vector<std::pair<double, double>>& points, PlotColor color, double width,
                         bool dashed)
{
    if (points.empty())
        return;
    m_body << "<polyline fill=\"none\" stroke=\"" << colorText(color) << "\" stroke-width=\"" << number(width)
           << "\" stroke-linejoin=\"round\"" << (dashed ? " stroke-dasharray=\"4 2\"" : "") << " points=\"";
    for (const auto& [x, y] : points)
        m_body << number(x) << ',' << number(y) << ' ';
    m_body << "\"/>\n";
}

void SvgCanvas::text(double x, double baseline, const std::string& text, PlotColor color, TextAnchor anchor)
{
    const char* anchorText = anchor == TextAnchor::Left     ? "start"
                             : anchor == TextAnchor::Centre ? "middle"
                                                            : "end";
    m_body << "<text x=\"" << number(x) << "\" y=\"" << number(baseline) << "\" fill=\"" << colorText(color)
           << "\" text-anchor=\"" << anchorText << "\">" << escaped(text) << "</text>\n";
}

double SvgCanvas::textWidth(const std::string& text) const
{
    return static_cast<double>(text.size()) * m_dFontSize * 0.55;
}

std::string SvgCanvas::document() const
{
    std::ostringstream out;
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        << "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" width=\"" << number(m_dWidth / 72.0)
        << "in\" height=\"" << number(m_dHeight / 72.0) << "in\" viewBox=\"0 0 " << number(m_dWidth) << ' '
        << number(m_dHeight) << "\" font-family=\"sans-serif\" font-size=\"" << number(m_dFontSize) << "\">\n"
        << m_body.str() << "</svg>\n";
    return out.str();
}
