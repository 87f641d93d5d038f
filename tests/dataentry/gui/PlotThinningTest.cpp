// What the plots leave out of a drawing over a long document: nothing when each frame has a
// pixel column of its own; repeats within a column, and a line's inner vertices other than
// the lowest and highest of a column, when many frames share one.
#include "dataentry/gui/PlotThinning.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
std::vector<QPointF> vertices(const QPainterPath& path, std::vector<bool>* starts = nullptr)
{
    std::vector<QPointF> out;
    for (int i = 0; i < path.elementCount(); ++i) {
        out.emplace_back(path.elementAt(i).x, path.elementAt(i).y);
        if (starts)
            starts->push_back(path.elementAt(i).isMoveTo());
    }
    return out;
}
} // namespace

TEST(PlotThinning, PointsRepeatedInAColumnOrOutsideThePlotAreLeftOut)
{
    PointThinning points(100, 4);
    EXPECT_TRUE(points.fresh(10, 50));
    EXPECT_FALSE(points.fresh(10, 50));
    EXPECT_TRUE(points.fresh(10, 51));
    EXPECT_TRUE(points.fresh(11, 50)) << "a new column starts afresh";
    EXPECT_TRUE(points.fresh(10, 50)) << "and so does a column met again";
    EXPECT_TRUE(points.fresh(12, -5)) << "its outline still reaches the top row";
    EXPECT_FALSE(points.fresh(12, -6));
    EXPECT_TRUE(points.fresh(12, 100));
    EXPECT_FALSE(points.fresh(12, 101));
}

TEST(PlotThinning, ALineKeepsEveryVertexOfItsOwnColumnAndTheExtremesOfSharedOnes)
{
    // One vertex a column, a break, and a new run: the path of the plain drawing.
    LineThinning plain;
    plain.add({0.5, 10});
    plain.add({1.5, 20});
    plain.breakRun();
    plain.add({3.5, 30});
    plain.add({4.5, 5});
    std::vector<bool> starts;
    EXPECT_EQ(vertices(plain.path(), &starts),
              (std::vector<QPointF>{{0.5, 10}, {1.5, 20}, {3.5, 30}, {4.5, 5}}));
    EXPECT_EQ(starts, (std::vector<bool>{true, false, true, false}));

    // Many vertices in column 7: the first, the highest and lowest in their order, the last.
    LineThinning shared;
    shared.add({6.5, 50});
    for (double y : {40.0, 45.0, 90.0, 60.0, 10.0, 30.0, 35.0})
        shared.add({7.0 + y / 1000.0, y});
    shared.add({8.5, 20});
    EXPECT_EQ(vertices(shared.path()),
              (std::vector<QPointF>{{6.5, 50}, {7.04, 40}, {7.09, 90}, {7.01, 10}, {7.035, 35}, {8.5, 20}}));
}
