#include "display/gui/GraphGrids.h"

#include "display/GridStep.h"

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

namespace
{
// The lines of a time grid: the multiples of `step` from startMS to endMS.
struct TimeLines {
    double step = 0.0;
    long long first = 0, last = -1; // line g is at the time g x step
    int decimals = 0;               // of the labels: as many as the step needs

    TimeLines(const QRect& area, double startMS, double endMS, double stepMS)
    {
        const double range = endMS - startMS;
        step = gridStep(range, area.width(), stepMS, kMinimumGap);
        if (step <= 0.0)
            return;
        first = static_cast<long long>(std::ceil(startMS / step - 1e-9));
        last = static_cast<long long>(std::floor(endMS / step + 1e-9));
        decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
    }
    double time(long long g) const { return g * step; }
    int x(const QRect& area, double startMS, double endMS, long long g) const
    {
        return area.left() + static_cast<int>((time(g) - startMS) * area.width() / (endMS - startMS));
    }
    QString label(long long g) const
    {
        return QString::number(time(g), 'f', decimals) + QStringLiteral(" ms");
    }
};

constexpr int kLabelPad = 2;   // between a line and its label
constexpr int kLabelSpace = 6; // at least between two labels
} // namespace

std::vector<GridLabel> timeGridLabels(const QFontMetrics& metrics, const QRect& area, double startMS,
                                      double endMS, double stepMS)
{
    std::vector<GridLabel> labels;
    const TimeLines lines(area, startMS, endMS, stepMS);
    if (lines.step <= 0.0)
        return labels;
    // Every labelEvery-th line (counted from time 0, so that the labels stay on their lines while
    // the view scrolls) is labelled, so that the widest label fits between two labels. The rule
    // depends on the range only, so that a partial repaint draws the same labels as a full one.
    int widest = 0;
    for (long long g = lines.first; g <= lines.last; ++g)
        widest = std::max(widest, metrics.horizontalAdvance(lines.label(g)));
    widest += kLabelPad + kLabelSpace;
    const double pixelsPerStep = lines.step * area.width() / (endMS - startMS);
    const long long labelEvery = std::max(1LL, static_cast<long long>(std::ceil(widest / pixelsPerStep)));
    for (long long g = lines.first; g <= lines.last; ++g) {
        const int x = lines.x(area, startMS, endMS, g);
        if (g == 0 || g % labelEvery != 0 || x < area.left() + widest / 2 || x + widest > area.right())
            continue;
        const QString text = lines.label(g);
        labels.push_back(
            {QRect(x + kLabelPad, area.top() + 1, metrics.horizontalAdvance(text), metrics.height()), text});
    }
    return labels;
}

void TimeGrids(QPainter& painter, const QRect& area, double startMS, double endMS, double stepMS, bool labels)
{
    const TimeLines lines(area, startMS, endMS, stepMS);
    if (lines.step <= 0.0)
        return;
    painter.save();
    const QRect painted = paintedPart(painter, area);
    painter.setPen(kGridColor);
    for (long long g = lines.first; g <= lines.last; ++g) {
        const int x = lines.x(area, startMS, endMS, g);
        if (x >= painted.left() && x <= painted.right())
            painter.drawLine(x, area.top(), x, area.bottom());
    }
    if (labels) {
        const QFontMetrics metrics(painter.font());
        painter.setPen(kLabelColor);
        for (const GridLabel& label : timeGridLabels(metrics, area, startMS, endMS, stepMS))
            if (label.box.intersects(painted))
                painter.drawText(label.box.left(), label.box.top() + metrics.ascent(), label.text);
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
