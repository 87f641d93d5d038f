#include "labels/LabelStrip.h"

#include <algorithm>
#include <cmath>

namespace
{
const PlotColor kBackground{246, 244, 232};
const PlotColor kRule{150, 150, 150};
const PlotColor kBoundary{30, 60, 170};
const PlotColor kTick{190, 30, 30};
const PlotColor kInk{0, 0, 0};

// Room left between a text and the lines on either side of it.
double margin(const PlotCanvas& canvas)
{
    return std::max(2.0, std::round(canvas.textAscent() / 3.0));
}

bool blank(const std::string& text)
{
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

// A text centred at x on the baseline of strip row `row`.
LabelStripItem textItem(const PlotCanvas& canvas, const LabelStripFrame& frame, std::size_t row, double x,
                        std::string shown)
{
    const double baseline =
        frame.top + LabelStrip::rowHeight(canvas) * static_cast<double>(row + 1) - margin(canvas) - 1.0;
    const double w = canvas.textWidth(shown);
    return {LabelStripItem::Text, row, x, x - w / 2.0, x + w / 2.0, baseline - canvas.textAscent(), baseline,
            std::move(shown)};
}

LabelStripItem lineItem(LabelStripItem::Kind kind, std::size_t row, double x)
{
    return {kind, row, x, 0.0, 0.0, 0.0, 0.0, {}};
}
} // namespace

double LabelStripFrame::xOf(double seconds) const
{
    const double span = endSeconds - startSeconds;
    return span > 0.0 ? left + (seconds - startSeconds) / span * width : left;
}

LabelStrip::LabelStrip(const TextGrid& grid, std::vector<std::size_t> tiers)
{
    for (const std::size_t t : tiers)
        if (t < grid.tiers.size())
            m_tiers.push_back(grid.tiers[t]);
}

double LabelStrip::rowHeight(const PlotCanvas& canvas)
{
    return std::ceil(canvas.textAscent()) + 2.0 * margin(canvas) + 2.0;
}

std::string LabelStrip::elide(const PlotCanvas& canvas, const std::string& text, double room)
{
    if (canvas.textWidth(text) <= room)
        return text;
    static const std::string dots = "...";
    if (canvas.textWidth(dots) > room)
        return {};
    // The longest start, in whole characters, that fits with the dots: widths grow with length.
    std::vector<std::size_t> cuts{0};
    for (std::size_t i = 1; i < text.size(); ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80)
            cuts.push_back(i);
    std::size_t low = 0, high = cuts.size() - 1;
    while (low < high) {
        const std::size_t mid = (low + high + 1) / 2;
        if (canvas.textWidth(text.substr(0, cuts[mid]) + dots) <= room)
            low = mid;
        else
            high = mid - 1;
    }
    return text.substr(0, cuts[low]) + dots;
}

void LabelStrip::layoutIntervals(const PlotCanvas& canvas, const LabelStripFrame& frame, std::size_t row,
                                 const LabelTier& tier, std::vector<LabelStripItem>& items) const
{
    const double right = frame.left + frame.width;
    auto it = std::lower_bound(tier.intervals.begin(), tier.intervals.end(), frame.startSeconds,
                               [](const LabelInterval& i, double t) { return i.xmax < t; });
    for (; it != tier.intervals.end() && it->xmin <= frame.endSeconds; ++it) {
        const double x0 = frame.xOf(it->xmin);
        const double x1 = frame.xOf(it->xmax);
        if (x0 >= frame.left && x0 <= right)
            items.push_back(lineItem(LabelStripItem::Boundary, row, x0));
        if (blank(it->text))
            continue;
        // Centred in the part that shows, so that a zoomed-in segment keeps its text in view.
        const double a = std::max(x0, frame.left), b = std::min(x1, right);
        std::string shown = elide(canvas, it->text, b - a - 2.0 * margin(canvas));
        if (!shown.empty())
            items.push_back(textItem(canvas, frame, row, (a + b) / 2.0, std::move(shown)));
    }
    if (!tier.intervals.empty()) {
        const double x = frame.xOf(tier.intervals.back().xmax);
        if (x >= frame.left && x <= right)
            items.push_back(lineItem(LabelStripItem::Boundary, row, x));
    }
}

void LabelStrip::layoutPoints(const PlotCanvas& canvas, const LabelStripFrame& frame, std::size_t row,
                              const LabelTier& tier, std::vector<LabelStripItem>& items) const
{
    const double right = frame.left + frame.width;
    const auto& points = tier.points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double x = frame.xOf(points[i].time);
        if (x < frame.left || x > right)
            continue;
        items.push_back(lineItem(LabelStripItem::Tick, row, x));
        // A point's text is centred on its tick and may take half the way to each neighbour.
        double half = std::min(x - frame.left, right - x);
        if (i > 0)
            half = std::min(half, (x - frame.xOf(points[i - 1].time)) / 2.0);
        if (i + 1 < points.size())
            half = std::min(half, (frame.xOf(points[i + 1].time) - x) / 2.0);
        std::string shown = elide(canvas, points[i].text, 2.0 * (half - margin(canvas) / 2.0));
        if (!blank(shown))
            items.push_back(textItem(canvas, frame, row, x, std::move(shown)));
    }
}

std::vector<LabelStripItem> LabelStrip::layout(const PlotCanvas& canvas, const LabelStripFrame& frame) const
{
    std::vector<LabelStripItem> items;
    if (!(frame.endSeconds > frame.startSeconds) || !(frame.width > 0.0))
        return items;
    for (std::size_t row = 0; row < m_tiers.size(); ++row) {
        if (m_tiers[row].isPointTier)
            layoutPoints(canvas, frame, row, m_tiers[row], items);
        else
            layoutIntervals(canvas, frame, row, m_tiers[row], items);
    }
    return items;
}

void LabelStrip::draw(PlotCanvas& canvas, const LabelStripFrame& frame) const
{
    const double h = rowHeight(canvas);
    canvas.fillRect(frame.left, frame.top, frame.width, h * static_cast<double>(rows()), kBackground);
    for (std::size_t row = 0; row < rows(); ++row) {
        const double y = frame.top + h * static_cast<double>(row);
        canvas.line(frame.left, y, frame.left + frame.width, y, kRule, 1.0);
    }
    for (const LabelStripItem& item : layout(canvas, frame)) {
        const double top = frame.top + h * static_cast<double>(item.row);
        if (item.kind == LabelStripItem::Boundary)
            canvas.line(item.x, top, item.x, top + h, kBoundary, 1.0);
        else if (item.kind == LabelStripItem::Tick)
            canvas.line(item.x, top, item.x, top + h / 3.0, kTick, 1.0);
        else
            canvas.text(item.x, item.bottom, item.text, kInk, TextAnchor::Centre);
    }
}

std::vector<double> LabelStrip::boundaryXs(const LabelStripFrame& frame) const
{
    std::vector<double> xs;
    if (!(frame.endSeconds > frame.startSeconds))
        return xs;
    const auto add = [&](double seconds) {
        const double x = frame.xOf(seconds);
        if (x >= frame.left && x <= frame.left + frame.width)
            xs.push_back(x);
    };
    for (const LabelTier& tier : m_tiers) {
        for (const LabelInterval& interval : tier.intervals)
            add(interval.xmin);
        if (!tier.intervals.empty())
            add(tier.intervals.back().xmax);
        for (const LabelPoint& point : tier.points)
            add(point.time);
    }
    std::sort(xs.begin(), xs.end());
    xs.erase(std::unique(xs.begin(), xs.end()), xs.end());
    return xs;
}
