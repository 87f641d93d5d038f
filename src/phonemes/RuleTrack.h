#pragma once
// RuleTrack: the anchor points of the rows the rules drive, and their filling in the table's
// way. Between two anchors a < b the frames take value(a) + k (value(b) - value(a)) / (b - a),
// truncated toward zero; before the first anchor and after the last a row keeps the nearest
// anchor's value. A point set twice in one frame keeps the later value. One object per run.
#include "document/ParameterDefinition.h"

#include <array>
#include <map>
#include <utility>
#include <vector>

class RuleTrack
{
public:
    explicit RuleTrack(int intervalMS) : m_nIntervalMS(intervalMS) {}

    int frameAt(double ms) const;
    void set(int row, int frame, int value) { m_points[row][frame] = value; }
    void setAt(int row, double ms, int value) { set(row, frameAt(ms), value); }
    // A value held over [fromMS, toMS): anchors at its first and last frame (none when the
    // span holds no frame).
    void hold(int row, double fromMS, double toMS, int value);

    bool driven(int row) const { return !m_points[row].empty(); }
    // The row's anchor points: frame -> value.
    const std::map<int, int>& points(int row) const { return m_points[row]; }
    // The row's values over `frames` frames; an undriven row gets `fallback` throughout.
    std::vector<int> fill(int row, int frames, int fallback) const;
    // Every anchor point, (row, frame), rows in order.
    std::vector<std::pair<int, int>> anchors(int frames) const;

private:
    int m_nIntervalMS;
    std::array<std::map<int, int>, kParameterCount> m_points;
};
