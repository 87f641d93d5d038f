#include "display/gui/GraphGrids.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
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

// The part of the area the painter may still change: a repaint of a narrow strip skips the
// lines and labels outside it.
QRect paintedPart(const QPainter& painter, const QRect& area)
{
    return painter.hasClipping() ? area & painter.clipBoundingRect().toAlignedRect() : area;
}
} // namespace

void TimeGrids(QPainter& painter, const QRect& area, double startMS, double endMS, double stepMS, bool labels)
{
    const double range = endMS - startMS;
    const double step = gridStep(range, area.width(), stepMS, kMinimumGap);
    if (step <= 0.0)
        return;
    painter.save();
    const QFontMetrics metrics(painter.font());
    const QRect painted = paintedPart(painter, area);
    // Every labelEvery-th line is labelled, so that the widest label fits between two labels
    // (a fixed rule, so that a partial repaint draws the same labels as a full one).
    const double pixelsPerStep = step * area.width() / range;
    const int widest = metrics.horizontalAdvance(numberText(endMS)) + 6;
    const int labelEvery = std::max(1, static_cast<int>(std::ceil(widest / pixelsPerStep)));
    const long long lines = static_cast<long long>(std::floor(range / step + 1e-9));
    for (long long j = 0; j <= lines; ++j) {
        const double t = startMS + j * step;
        const int x = area.left() + static_cast<int>((t - startMS) * area.width() / range);
        // A label reaches right of its line; lines that touch nothing painted are skipped.
        if (x < painted.left() - widest || x > painted.right())
            continue;
        painter.setPen(kGridColor);
        painter.drawLine(x, area.top(), x, area.bottom());
        // The left edge is left to the value labels.
        if (!labels || j == 0 || j % labelEvery != 0 || x + widest > area.right())
            continue;
        painter.setPen(kLabelColor);
        painter.drawText(x + 2, area.top() + metrics.ascent() + 1, numberText(t));
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
    const double pixelsPerStep = drawnStep * area.height() / fullScale;
    const int labelEvery = std::max(1, static_cast<int>(std::ceil(metrics.height() / pixelsPerStep)));
    // The lines up to the top edge; the last labelled one also carries the unit.
    const long long lines =
        static_cast<long long>(std::floor(std::min(high - low, fullScale) / drawnStep + 1e-9));
    long long lastLabelled = -1;
    for (long long j = 0; j <= lines; ++j)
        if (j % labelEvery == 0 && low + j * drawnStep <= fullScale &&
            area.bottom() - (low + j * drawnStep) * area.height() / fullScale - metrics.ascent() >=
                area.top())
            lastLabelled = j;
    for (long long j = 0; j <= lines; ++j) {
        const double v = low + j * drawnStep;
        const int y = area.bottom() - static_cast<int>(v * area.height() / fullScale);
        if (y < area.top())
            break;
        painter.setPen(kGridColor);
        painter.drawLine(area.left(), y, area.right(), y);
        if (j % labelEvery != 0 || j > lastLabelled)
            continue;
        QString text = numberText(v);
        if (j == lastLabelled && !label.isEmpty())
            text += QLatin1Char(' ') + label;
        painter.setPen(kLabelColor);
        painter.drawText(area.left() + 2, y - 2, text);
    }
    painter.restore();
}
