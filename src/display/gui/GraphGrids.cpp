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
        const QFontMetrics metrics(painter.font(), painter.device());
        painter.setPen(kLabelColor);
        for (const GridLabel& label : timeGridLabels(metrics, area, startMS, endMS, stepMS))
            if (label.box.intersects(painted))
                painter.drawText(label.box.left(), label.box.top() + metrics.ascent(), label.text);
    }
    painter.restore();
}

namespace
{
// The horizontal lines of a value grid: low + j x step for j = 0 .. count, those within the area.
struct ValueLines {
    double step = 0.0;
    long long count = -1;

    ValueLines(const QRect& area, double low, double high, double stepValue, double fullScale)
    {
        if (!(fullScale > 0.0) || high < low)
            return;
        step = gridStep(fullScale, area.height(), stepValue, kMinimumGap);
        if (step <= 0.0)
            return;
        count = static_cast<long long>(std::floor(std::min(high - low, fullScale) / step + 1e-9));
    }
    static int y(const QRect& area, double value, double fullScale)
    {
        return area.bottom() - static_cast<int>(value * area.height() / fullScale);
    }
};

constexpr int kOutsideGap = 4; // between an outside label and the area's edge
} // namespace

std::vector<GridLabel> valueGridLabels(const QFontMetrics& metrics, const QRect& area, double low,
                                       double high, double step, double fullScale, const QString& unit,
                                       ValueLabels where)
{
    std::vector<GridLabel> labels;
    const ValueLines lines(area, low, high, step, fullScale);
    if (where == ValueLabels::None || lines.count < 0)
        return labels;
    const double pixelsPerStep = lines.step * area.height() / fullScale;
    const int labelEvery = std::max(1, static_cast<int>(std::ceil(metrics.height() / pixelsPerStep)));
    for (long long j = 0; j <= lines.count; j += labelEvery) {
        const double v = low + j * lines.step;
        const int y = ValueLines::y(area, v, fullScale);
        if (v > fullScale || y < area.top())
            break;
        const QString text = numberText(v);
        const int width = metrics.horizontalAdvance(text);
        QRect box;
        if (where == ValueLabels::Inside) {
            box = QRect(area.left() + 2, y - 2 - metrics.ascent(), width, metrics.height());
            if (box.top() < area.top())
                break;
        } else {
            const int top =
                std::clamp(y - metrics.height() / 2, area.top(), area.bottom() + 1 - metrics.height());
            box = QRect(area.left() - kOutsideGap - width, top, width, metrics.height());
        }
        labels.push_back({box, text});
    }
    // The topmost label carries the unit; inside the area it grows to the right, outside it
    // to the left.
    if (!labels.empty() && !unit.isEmpty()) {
        GridLabel& top = labels.back();
        top.text += QLatin1Char(' ') + unit;
        const int width = metrics.horizontalAdvance(top.text);
        if (where == ValueLabels::Inside)
            top.box.setWidth(width);
        else
            top.box.setLeft(top.box.right() + 1 - width);
    }
    return labels;
}

void keepClearLabels(const std::vector<GridLabel>& labels, const QRect& bounds, std::vector<QRect>& taken,
                     std::vector<GridLabel>& kept)
{
    for (const GridLabel& label : labels) {
        if (!bounds.contains(label.box))
            continue;
        if (std::any_of(taken.begin(), taken.end(), [&](const QRect& r) { return r.intersects(label.box); }))
            continue;
        taken.push_back(label.box);
        kept.push_back(label);
    }
}

std::vector<GridLabel> plotLabels(const QFontMetrics& metrics, const QRect& area, const ValueGrid& grid,
                                  const std::optional<TimeSpan>& times, const QRect& caption)
{
    std::vector<GridLabel> kept;
    std::vector<QRect> taken;
    if (!caption.isEmpty())
        taken.push_back(caption);
    keepClearLabels(valueGridLabels(metrics, area, grid.low, grid.high, grid.step, grid.fullScale, grid.label,
                                    ValueLabels::Inside),
                    area, taken, kept);
    if (times)
        keepClearLabels(timeGridLabels(metrics, area, times->startMS, times->endMS, times->stepMS), area,
                        taken, kept);
    return kept;
}

void DrawGridLabels(QPainter& painter, const std::vector<GridLabel>& labels, bool backed)
{
    if (labels.empty())
        return;
    painter.save();
    const QFontMetrics metrics(painter.font(), painter.device());
    const QRectF clip = painter.hasClipping() ? painter.clipBoundingRect() : QRectF();
    for (const GridLabel& label : labels) {
        if (!clip.isNull() && !clip.intersects(label.box))
            continue;
        if (backed)
            painter.fillRect(label.box.adjusted(-1, 0, 1, 0), QColor(255, 255, 255, 200));
        painter.setPen(kLabelColor);
        painter.drawText(label.box.left(), label.box.top() + metrics.ascent(), label.text);
    }
    painter.restore();
}

void DrawAnyGrid(QPainter& painter, const QRect& area, double low, double high, double step, double fullScale,
                 const QString& label, ValueLabels where)
{
    const ValueLines lines(area, low, high, step, fullScale);
    if (lines.count < 0)
        return;
    painter.save();
    painter.setPen(kGridColor);
    for (long long j = 0; j <= lines.count; ++j) {
        const int y = ValueLines::y(area, low + j * lines.step, fullScale);
        if (y < area.top())
            break;
        painter.drawLine(area.left(), y, area.right(), y);
    }
    painter.restore();
    const QFontMetrics metrics(painter.font(), painter.device());
    DrawGridLabels(painter, valueGridLabels(metrics, area, low, high, step, fullScale, label, where), false);
}
