#pragma once
// One hour of frames whose f1 changes from frame to frame (300 + frame % 400) and whose f2 is
// anchored in frame 250000, as read from a file, with the columns a window shows made.
#include "support/TestDocuments.h"

#include <gtest/gtest.h>

inline void openHour(MyDocument& doc)
{
    readTestFrames(doc, MyDocument::kMaxFrames, [](Channels& c) {
        for (int k = 0; k < MyDocument::kMaxFrames; ++k)
            c.m_snppDataImage_Col_Row[static_cast<std::size_t>(k)][Row::f1] =
                static_cast<std::int16_t>(300 + k % 400);
        c.m_pAnchorPosition = {Row::f2, 249999};
    });
    for (long long k = 0; k <= 40; ++k)
        ASSERT_NE(doc._dataTableDictionary.objectForKey(k * 10), nullptr);
}

// The f1 of table column `column` (frame column - 1) in that hour.
inline int hourF1(int column)
{
    return 300 + (column - 1) % 400;
}
