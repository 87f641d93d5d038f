#include "labels/LabelStrip.h"
#include "display/RasterCanvas.h"
#include "labels/TextGridFiles.h"
#include "labels/TextGridReader.h"

#include <gtest/gtest.h>

namespace
{
// Every text inside the strip's width and its row, no two texts meeting, no boundary through one.
void expectTextsClear(const std::vector<LabelStripItem>& items, const LabelStripFrame& frame,
                      double rowHeight)
{
    for (std::size_t i = 0; i < items.size(); ++i) {
        const LabelStripItem& a = items[i];
        if (a.kind != LabelStripItem::Text)
            continue;
        EXPECT_GE(a.left, frame.left) << a.text;
        EXPECT_LE(a.right, frame.left + frame.width) << a.text;
        EXPECT_GE(a.top, frame.top + rowHeight * a.row) << a.text;
        EXPECT_LE(a.bottom, frame.top + rowHeight * (a.row + 1)) << a.text;
        for (std::size_t j = 0; j < items.size(); ++j) {
            const LabelStripItem& b = items[j];
            if (j == i || b.row != a.row)
                continue;
            if (b.kind == LabelStripItem::Text) {
                EXPECT_TRUE(a.right <= b.left || b.right <= a.left) << a.text << " meets " << b.text;
            } else if (b.kind == LabelStripItem::Boundary) {
                EXPECT_FALSE(b.x > a.left && b.x < a.right) << "a boundary runs through " << a.text;
            }
        }
    }
}
} // namespace

TEST(LabelStrip, PlacesBoundariesTextsAndTicksAtEveryZoom)
{
    RasterCanvas canvas(800, 100);
    const LabelStrip strip(read(longTextGrid()), {0, 1});
    const double h = LabelStrip::rowHeight(canvas);
    // The whole 1.5 s over 600 px: 400 px per second.
    LabelStripFrame whole{100.0, 600.0, 10.0, 0.0, 1.5};
    auto items = strip.layout(canvas, whole);
    EXPECT_EQ(xsOf(items, LabelStripItem::Boundary, 0), (std::vector<double>{100.0, 200.0, 420.0, 700.0}));
    // The empty interval draws no text.
    EXPECT_EQ(xsOf(items, LabelStripItem::Text, 0), (std::vector<double>{310.0, 560.0}));
    EXPECT_EQ(itemsOf(items, LabelStripItem::Text, 0).at(0).text, "say \"wa\"");
    EXPECT_EQ(xsOf(items, LabelStripItem::Tick, 1), (std::vector<double>{260.0, 580.0}));
    EXPECT_EQ(itemsOf(items, LabelStripItem::Text, 1).size(), 2u);
    expectTextsClear(items, whole, h);
    // Points closer than their texts are wide: each text takes at most half the way to a neighbour.
    TextGrid close = read(longTextGrid());
    close.tiers[1].points = {{0.4, "accented"}, {0.5, "accented"}, {0.6, "accented"}};
    expectTextsClear(LabelStrip(close, {1}).layout(canvas, whole), whole, h);

    // Zoomed in on 0.5 .. 1.0 s over the same width: 1200 px per second. The second interval
    // starts before the view, so its text is centred in the part that shows.
    LabelStripFrame zoomed{100.0, 600.0, 10.0, 0.5, 1.0};
    items = strip.layout(canvas, zoomed);
    const std::vector<double> bounds = xsOf(items, LabelStripItem::Boundary, 0);
    ASSERT_EQ(bounds.size(), 1u);
    EXPECT_DOUBLE_EQ(bounds[0], 100.0 + 0.3 * 1200.0);
    const std::vector<double> texts = xsOf(items, LabelStripItem::Text, 0);
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_DOUBLE_EQ(texts[0], (100.0 + 460.0) / 2.0);
    EXPECT_DOUBLE_EQ(texts[1], (460.0 + 700.0) / 2.0);
    EXPECT_TRUE(itemsOf(items, LabelStripItem::Tick, 1).empty()); // 0.4 and 1.2 s are both outside
    expectTextsClear(items, zoomed, h);

    // Zoomed out to 40 px for the whole: the texts are shortened or left out, never overlapping.
    LabelStripFrame narrow{0.0, 40.0, 0.0, 0.0, 1.5};
    items = strip.layout(canvas, narrow);
    EXPECT_EQ(itemsOf(items, LabelStripItem::Boundary, 0).size(), 4u);
    for (const LabelStripItem& t : itemsOf(items, LabelStripItem::Text, 0))
        EXPECT_NE(t.text, "say \"wa\"");
    expectTextsClear(items, narrow, h);
    EXPECT_EQ(strip.boundaryXs(whole).size(), 6u); // 0, 0.25, 0.8, 1.5 and the two points
}

TEST(LabelStrip, ShortensTextsInWholeCharacters)
{
    RasterCanvas canvas(10, 10);
    const double w = canvas.textWidth("a");
    EXPECT_EQ(LabelStrip::elide(canvas, "abcdef", 100.0 * w), "abcdef");
    EXPECT_EQ(LabelStrip::elide(canvas, "abcdef", canvas.textWidth("ab...")), "ab...");
    EXPECT_EQ(LabelStrip::elide(canvas, "abcdef", canvas.textWidth("ab...") - 1.0), "a...");
    EXPECT_EQ(LabelStrip::elide(canvas, "abcdef", canvas.textWidth("...") - 1.0), "");
    // "ɛ" is two bytes: never cut between them.
    const std::string ten = "ɛɛɛɛɛɛɛɛɛɛ";
    const std::string shown = LabelStrip::elide(canvas, ten, 6.0 * w);
    EXPECT_EQ(shown.size() % 2, 1u) << shown; // whole two-byte characters plus three dots
    EXPECT_EQ(shown.substr(shown.size() - 3), "...");
}

TEST(LabelStrip, DrawsIntoTheCanvasWhereItsLayoutSays)
{
    RasterCanvas canvas(300, 60);
    const LabelStrip strip(read(longTextGrid()), {1, 0, 7}); // tiers in any order; a missing one is left out
    ASSERT_EQ(strip.rows(), 2u);
    const LabelStripFrame frame{0.0, 300.0, 5.0, 0.0, 1.5};
    strip.draw(canvas, frame);
    const double h = LabelStrip::rowHeight(canvas);
    // The boundary at 0.25 s (x = 50) in the second row is drawn in its colour; the strip's
    // background between boundaries is not white; below the strip the canvas is untouched.
    const PlotColor line = canvas.pixel(50, static_cast<int>(5.0 + 1.5 * h));
    EXPECT_GT(line.b, line.r);
    const PlotColor background = canvas.pixel(45, static_cast<int>(5.0 + 0.9 * h));
    EXPECT_FALSE(background.r == 255 && background.g == 255 && background.b == 255);
    const PlotColor below = canvas.pixel(45, static_cast<int>(5.0 + 2.0 * h + 2.0));
    EXPECT_TRUE(below.r == 255 && below.g == 255 && below.b == 255);
}
