#include "interchange/DocumentImport.h"

#include "document/MyDocument.h"

#include <algorithm>
#include <cmath>

namespace
{
int frameCount(const TimedParameters& p, int interval)
{
    double length = p.lengthMS;
    if (length < 0.0) {
        if (p.times.empty())
            throw InterchangeError{0, "the file states no length (du) and has no time points"};
        length = p.times.back() + interval;
    }
    if (length > MyDocument::kMaxLengthMS || length / interval > MyDocument::kMaxFrames)
        throw InterchangeError{0, "the utterance is longer than a document takes (one hour)"};
    const int frames = static_cast<int>(length / interval);
    if (frames < 1)
        throw InterchangeError{0, "the utterance is shorter than one frame of " + std::to_string(interval) +
                                      " ms"};
    return frames;
}

// Writes the value into the grid cell, rounded and clamped to the row's limits.
void store(GridColumn& column, const ParameterDefinition& record, int row, double value,
           std::int64_t& clamped)
{
    const double rounded = std::round(value);
    const double limited = std::clamp(rounded, double(record.nMinValue), double(record.nMaxValue));
    if (limited != rounded)
        ++clamped;
    column[row] = static_cast<std::int16_t>(limited);
}

// The varied columns at time t: `point` is the last time point at or before t (kept between
// calls, times only grow).
double variedValue(const TimedParameters& p, std::size_t column, double t, std::size_t point)
{
    const std::vector<double>& times = p.times;
    if (t <= times.front())
        return p.values.front()[column];
    if (point + 1 >= times.size())
        return p.values.back()[column];
    const double span = times[point + 1] - times[point];
    const double w = span > 0.0 ? (t - times[point]) / span : 1.0;
    return (1.0 - w) * p.values[point][column] + w * p.values[point + 1][column];
}
} // namespace

std::unique_ptr<MyDocument> documentFromTimedParameters(const TimedParameters& p)
{
    auto document = std::make_unique<MyDocument>();
    Channels& c = *document->getChannel(0);
    const int interval = p.intervalMS > 0 ? p.intervalMS : document->updateInterval();
    const int frames = frameCount(p, interval);
    for (int ch = 0; ch < 3; ++ch) {
        Channels* channel = document->getChannel(ch);
        channel->m_nUpdateIntervalMS = interval;
        channel->m_nColumnNum = frames;
        channel->m_dLengthMS = static_cast<double>(frames) * interval;
    }
    document->SetUpDataGridMemory();
    std::int64_t clamped = 0;
    std::size_t point = 0;
    for (int k = 0; k < frames; ++k) {
        GridColumn& column = c.m_snppDataImage_Col_Row[static_cast<std::size_t>(k)];
        for (const TimedParameters::Constant& constant : p.constants)
            store(column, c.m_Parameters[constant.row], constant.row, constant.value, clamped);
        if (p.times.empty())
            continue;
        const double t = static_cast<double>(k) * interval;
        while (point + 1 < p.times.size() && p.times[point + 1] <= t)
            ++point;
        for (std::size_t j = 0; j < p.columnRows.size(); ++j) {
            const int row = p.columnRows[j];
            store(column, c.m_Parameters[row], row, variedValue(p, j, t, point), clamped);
        }
    }
    c.m_bHaveData = 1;
    c.m_bSynthesize = 1;
    document->m_nClampedValues = clamped;
    document->noteFramesRead(frames, frames);
    document->m_bReadFile = 1;
    document->buildDataTableDictionary();
    return document;
}
