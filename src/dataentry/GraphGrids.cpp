#include "dataentry/GraphGrids.h"

#include <QFontMetrics>
#include <QPainter>

#include <cmath>

namespace
{
constexpr double kMinimumGap = 8.0; // pixels between two grid lines at the least
const QColor kGridColor(200, 200, 200);
const QColor kLabelColor(90, 90, 90);

QString numberText(double value)
{
    return QString::number(value, 'g', 6);
}
} // namespace

double gridStep(double range, double pixels, double step, double minimumGap)
{
    if (!(range > 0.0) || !(pixels > 0.0) || !std::isfinite(range))
        return 0.0;
    if (step > 0.0 && std::isfinite(step) && step * pixels / range >= minimumGap)
        return step;
    // The smallest 1-2-5 step whose lines are at least minimumGap apart.
    const double least = range * minimumGap / pixels;
    double decade = std::pow(10.0, std::floor(std::log10(least)));
    for (;;) {
        for (double factor : {1.0, 2.0, 5.0})
            if (factor * decade >= least)
                return factor * decade;
        decade *= 10.0;
    }
}

void TimeGrids(QPainter& painter, const QRect& area, double startMS, double endMS, double stepMS, bool labels)
{
    const double range = endMS - startMS;
    const double step = gridStep(range, area.width(), stepMS, kMinimumGap);
    if (step <= 0.0)
        return;
    painter.save();
    const QFontMetrics metrics(painter.font());
    double lastLabelRight = -1e9;
    for (double t = startMS; t <= endMS + 1e-9; t += step) {
        const int x = area.left() + static_cast<int>((t - startMS) * area.width() / range);
        painter.setPen(kGridColor);
        painter.drawLine(x, area.top(), x, area.bottom());
        if (!labels)
            continue;
        // Labels that would overlap the previous one are left out.
        const QString text = numberText(t);
        const int textWidth = metrics.horizontalAdvance(text);
        if (x + 2 <= lastLabelRight || x + 2 + textWidth > area.right())
            continue;
        painter.setPen(kLabelColor);
        painter.drawText(x + 2, area.top() + metrics.ascent() + 1, text);
        lastLabelRight = x + 2 + textWidth + 4;
    }
    painter.restore();
}

void DrawAnyGrid(QPainter& painter, const QRect& area, double low, double high, double step, double fullScale,
                 const QString& label)
{
    if (!(fullScale > 0.0) || high < low)
        return;
    const double drawnStep = gridStep(fullScale, area.height(), step, kMinimumGap);
    if (drawnStep <= 0.0)
        return;
    painter.save();
    const QFontMetrics metrics(painter.font());
    const int textGap = metrics.height();
    int lastLabelY = area.bottom() + textGap;
    int topLabelY = -1;
    double topValue = 0.0;
    for (double v = low; v <= high + 1e-9; v += drawnStep) {
        const int y = area.bottom() - static_cast<int>(v * area.height() / fullScale);
        if (y < area.top())
            break;
        painter.setPen(kGridColor);
        painter.drawLine(area.left(), y, area.right(), y);
        if (lastLabelY - y < textGap || y - metrics.ascent() < area.top())
            continue;
        painter.setPen(kLabelColor);
        painter.drawText(area.left() + 2, y - 2, numberText(v));
        lastLabelY = y;
        topLabelY = y;
        topValue = v;
    }
    if (topLabelY >= 0 && !label.isEmpty()) {
        painter.setPen(kLabelColor);
        const int x = area.left() + 2 + metrics.horizontalAdvance(numberText(topValue)) + 3;
        painter.drawText(x, topLabelY - 2, label);
    }
    painter.restore();
}
