#include "labels/TextGrid.h"

#include <algorithm>

const LabelInterval* TextGrid::intervalAt(std::size_t tier, double seconds) const
{
    if (tier >= tiers.size())
        return nullptr;
    const std::vector<LabelInterval>& intervals = tiers[tier].intervals;
    if (intervals.empty() || seconds < intervals.front().xmin || seconds > intervals.back().xmax)
        return nullptr;
    // The first interval that ends after the time: intervals are in order and touch.
    auto it = std::upper_bound(intervals.begin(), intervals.end(), seconds,
                               [](double t, const LabelInterval& i) { return t < i.xmax; });
    if (it == intervals.end())
        return &intervals.back();
    return seconds >= it->xmin ? &*it : nullptr;
}

std::string TextGrid::segmentAt(double seconds) const
{
    for (std::size_t t = 0; t < tiers.size(); ++t) {
        if (tiers[t].isPointTier)
            continue;
        const LabelInterval* interval = intervalAt(t, seconds);
        if (interval && interval->text.find_first_not_of(" \t\r\n") != std::string::npos)
            return interval->text;
    }
    return {};
}
