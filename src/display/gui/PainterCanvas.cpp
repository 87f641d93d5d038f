#include "display/gui/PainterCanvas.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>

namespace
{
QColor qColor(PlotColor c)
{
    return QColor(c.r, c.g, c.b);
}
} // namespace

void PainterCanvas::fillRect(double x, double y, double width, double height, PlotColor color)
{
    m_painter.fillRect(QRectF(x, y, width, height), qColor(color));
}

void PainterCanvas::strokeRect(double x, double y, double width, double height, PlotColor color)
{
    m_painter.setPen(QPen(qColor(color), 1.0));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawRect(QRectF(x, y, width, height));
}

void PainterCanvas::line(double x1, double y1, double x2, double y2, PlotColor color, double width)
{
    m_painter.setPen(QPen(qColor(color), width));
    m_painter.drawLine(QPointF(x1, y1), QPointF(x2, y2));
}

void PainterCanvas::polyline(const std::vector<std::pair<double, double>>& points, PlotColor color,
                             double width, bool dashed)
{
    QPolygonF polygon;
    polygon.reserve(static_cast<int>(points.size()));
    for (const auto& [x, y] : points)
        polygon << QPointF(x, y);
    QPen pen(qColor(color), width, dashed ? Qt::DashLine : Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    m_painter.setPen(pen);
    m_painter.drawPolyline(polygon);
}

void PainterCanvas::text(double x, double baseline, const std::string& text, PlotColor color,
                         TextAnchor anchor)
{
    const QString string = QString::fromStdString(text);
    const double left = textLeft(x, text, anchor);
    m_painter.setPen(qColor(color));
    m_painter.drawText(QPointF(left, baseline), string);
}

double PainterCanvas::textWidth(const std::string& text) const
{
    return QFontMetricsF(m_painter.font(), m_painter.device())
        .horizontalAdvance(QString::fromStdString(text));
}

double PainterCanvas::textAscent() const
{
    return QFontMetricsF(m_painter.font(), m_painter.device()).capHeight() + 1.0;
}
