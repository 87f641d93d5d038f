#pragma once
// Checks shared by the tests of labelled plots: every label inside its bounds, none meeting
// another label or one of the boxes that stand in the plot (a caption).
#include "display/gui/GraphGrids.h"

#include <gtest/gtest.h>

#include <vector>

inline void expectLabelsClear(const std::vector<GridLabel>& labels, const QRect& bounds,
                              const std::vector<QRect>& standing, const char* where)
{
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const GridLabel& a = labels[i];
        EXPECT_FALSE(a.box.isEmpty()) << where << ": " << a.text.toStdString();
        EXPECT_TRUE(bounds.contains(a.box)) << where << ": " << a.text.toStdString() << " leaves the plot";
        for (const QRect& box : standing)
            EXPECT_FALSE(a.box.intersects(box))
                << where << ": " << a.text.toStdString() << " under the caption";
        for (std::size_t j = i + 1; j < labels.size(); ++j)
            EXPECT_FALSE(a.box.intersects(labels[j].box))
                << where << ": " << a.text.toStdString() << " meets " << labels[j].text.toStdString();
    }
}
