// Anchor points and their filling, the same arithmetic as the table's interpolation.
#include "phonemes/RuleTrack.h"

#include <cmath>

int RuleTrack::frameAt(double ms) const
{
    return static_cast<int>(std::lround(ms / m_nIntervalMS));
}

void RuleTrack::hold(int row, double fromMS, double toMS, int value)
{
    const int first = frameAt(fromMS);
    const int last = frameAt(toMS) - 1;
    if (last < first)
        return;
    set(row, first, value);
    set(row, last, value);
}

std::vector<int> RuleTrack::fill(int row, int frames, int fallback) const
{
    std::vector<int> values(static_cast<std::size_t>(frames), fallback);
    const std::map<int, int>& points = m_points[row];
    if (points.empty() || frames <= 0)
        return values;
    auto previous = points.end();
    for (auto it = points.begin(); it != points.end(); ++it) {
        if (it->first >= frames)
            break;
        if (previous == points.end()) {
            for (int j = 0; j <= it->first; ++j)
                values[j] = it->second;
        } else {
            const int a = previous->first, b = it->first;
            const double slope = static_cast<double>(it->second - previous->second) / (b - a);
            for (int k = 1; k < b - a; ++k)
                values[a + k] = static_cast<int>(previous->second + k * slope);
            values[b] = it->second;
        }
        previous = it;
    }
    if (previous != points.end())
        for (int j = previous->first + 1; j < frames; ++j)
            values[j] = previous->second;
    return values;
}

std::vector<std::pair<int, int>> RuleTrack::anchors(int frames) const
{
    std::vector<std::pair<int, int>> out;
    for (int row = 0; row < kParameterCount; ++row)
        for (const auto& [frame, value] : m_points[row])
            if (frame >= 0 && frame < frames)
                out.emplace_back(row, frame);
    return out;
}
