#pragma once
// Play After Each Stroke: which part of the utterance a released stroke plays. The frames a
// stroke went over (table columns, 1-based) are gathered while it is drawn; on release an
// utterance of kWholeUpToMS or less is played whole, a longer one from kMarginMS before the
// stroke's first frame to kMarginMS after its last. Standard library only; main thread.
#include <algorithm>
#include <utility>

class StrokeSpan
{
public:
    void reset() { m_first = m_last = -1; }
    void add(int column)
    {
        m_first = m_first < 0 ? column : std::min(m_first, column);
        m_last = std::max(m_last, column);
    }
    bool empty() const { return m_first < 0; }
    int first() const { return m_first; }
    int last() const { return m_last; }

private:
    int m_first = -1;
    int m_last = -1;
};

struct StrokePlayback {
    static constexpr double kWholeUpToMS = 3000.0;
    static constexpr int kMarginMS = 300;

    // The table columns to play after a stroke over `stroke` in an utterance of `lengthMS`
    // and `frames` frames of `intervalMS`; (0, 0) plays the whole utterance, (-1, -1) nothing
    // (an empty stroke).
    static std::pair<int, int> columns(double lengthMS, int intervalMS, int frames, const StrokeSpan& stroke)
    {
        if (stroke.empty() || frames < 1)
            return {-1, -1};
        if (lengthMS <= kWholeUpToMS)
            return {0, 0};
        const int margin = (kMarginMS + std::max(intervalMS, 1) - 1) / std::max(intervalMS, 1);
        return {std::clamp(stroke.first() - margin, 1, frames),
                std::clamp(stroke.last() + margin, 1, frames)};
    }
};
