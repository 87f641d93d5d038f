#pragma once
// TextGrid: the segments of a recording as an annotation program keeps them, one or more tiers
// over a common time span. An interval tier cuts the span into intervals that each carry a text
// (often empty); a point tier marks single instants with a text. Times are in seconds, as the
// files hold them; texts are UTF-8. A TextGrid is a plain value: made by readTextGrid (complete
// or not at all) and then only read, from any thread.
#include <string>
#include <vector>

struct LabelInterval {
    double xmin = 0.0;
    double xmax = 0.0;
    std::string text;
};

struct LabelPoint {
    double time = 0.0;
    std::string text;
};

struct LabelTier {
    std::string name;
    bool isPointTier = false;
    double xmin = 0.0;
    double xmax = 0.0;
    std::vector<LabelInterval> intervals; // interval tiers, in time order
    std::vector<LabelPoint> points;       // point tiers, in time order
};

struct TextGrid {
    double xmin = 0.0;
    double xmax = 0.0;
    std::vector<LabelTier> tiers;

    bool empty() const { return tiers.empty(); }
    // The interval of tier `tier` that holds `seconds` (an interval owns its start, not its end,
    // except the last, which owns both), or nullptr outside the tier or for a point tier.
    const LabelInterval* intervalAt(std::size_t tier, double seconds) const;
    // The text of the first interval tier's interval that holds `seconds` and has a text that is
    // not blank; empty when none does. For naming "the segment this time falls in".
    std::string segmentAt(double seconds) const;
};
