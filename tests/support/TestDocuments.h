#pragma once
// Documents for the tests, the benchmarks and the fuzz seeds: frames at the factory values with
// their table data built, and rows set to one value in every frame.
#include "document/MyDocument.h"

#include <memory>

// Gives `document` `frames` frames of `intervalMS` ms on its first `channels` channels (0: the
// synthesis, 1: the previous synthesis, 2: the model), makes its value grid (unless `withGrid`
// is false) and builds its table data.
inline void setTestFrames(MyDocument& document, int frames, int intervalMS = 10, int channels = 3,
                          bool withGrid = true)
{
    for (int ch = 0; ch < channels; ++ch) {
        Channels* c = document.getChannel(ch);
        c->m_dLengthMS = static_cast<double>(frames) * intervalMS;
        c->m_nColumnNum = frames;
    }
    document.getChannel(0)->m_nUpdateIntervalMS = intervalMS;
    if (withGrid)
        document.SetUpDataGridMemory();
    document.buildDataTableDictionary();
}

// Gives `document` `frames` frames of 10 ms as reading a parameter file gives them: `fill` sets
// the value grid (factory values until then) and the anchors of channel 0, then the table data
// is built with every column announced and none made.
template <typename Fill> void readTestFrames(MyDocument& document, int frames, Fill fill)
{
    Channels& c = *document.getChannel(0);
    c.m_dLengthMS = frames * 10.0;
    c.m_nColumnNum = frames;
    document.SetUpDataGridMemory();
    fill(c);
    document.m_bReadFile = 1;
    document.buildDataTableDictionary();
}

inline std::unique_ptr<MyDocument> makeTestDocument(int frames, int intervalMS = 10, int channels = 3)
{
    auto document = std::make_unique<MyDocument>();
    setTestFrames(*document, frames, intervalMS, channels);
    return document;
}

inline void setRowValue(MyDocument& document, int row, int value)
{
    const long long interval = document.updateInterval();
    for (int frame = 1; frame <= document.getChannel(0)->m_nColumnNum; ++frame)
        document._dataTableDictionary.cellAt(frame * interval, row)->set_nValue(value);
}
