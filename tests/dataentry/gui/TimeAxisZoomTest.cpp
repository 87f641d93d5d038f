// Horizontal zoom of the data-entry windows, driven with real key, wheel and mouse events under
// the offscreen platform: a zoomed drag writes the frame under the pointer, fit all gives back
// the unzoomed mapping, the scroll bar follows the zoom, and the time labels never overlap. The
// plots of both windows share this mapping (DataEntryPlot); the graphical window stands for both.
#include "dataentry/gui/TimeAxisZoom.h"
#include "DataEntryTestSupport.h"
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/graphical/viewF0.h"
#include "dataentry/gui/graphical/viewFormants.h"
#include "dataentry/gui/graphical/viewOthers.h"
#include "display/gui/GraphGrids.h"
#include "support/LabelChecks.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontMetrics>
#include <QScrollBar>
#include <QTest>

#include <memory>

namespace
{

// A 6000-frame (60 s) document in the graphical window, plots 400 x 100 (F0) wide.
struct GraphicalZoom : ::testing::Test {
    MyDocument doc;
    std::unique_ptr<dataentryGraphicalController> controller;

    void SetUp() override
    {
        setTestFrames(doc, 6000);
        controller = std::make_unique<dataentryGraphicalController>(&doc, nullptr);
        showContentAt(*controller, 505, 426);
    }
    TimeAxisZoom& axis() { return *controller->timeAxis(); }
    int f0(int frame) { return frameValue(doc, frame + 1, Row::f0); }
    void key(int k) { QTest::keyClick(controller->window(), static_cast<Qt::Key>(k), Qt::ControlModifier); }
};

TEST_F(GraphicalZoom, ZoomedDragWritesTheFrameUnderThePointerAndFitAllRestoresTheMapping)
{
    viewF0& view = *controller->_viewF0();
    const int factory = f0(1500);

    for (int i = 0; i < 3; ++i)
        key(Qt::Key_Plus);
    ASSERT_DOUBLE_EQ(axis().zoom(), 8.0);
    controller->scrollBar()->setValue(1000); // the user drags the scroll bar
    ASSERT_EQ(axis().offset(), 1000);

    // x = 100 shows content pixel 1100 of 3200: frame 1100 x 6000 / 3200 = 2062.
    dragThrough(view, {{100.0, 50.0}, {100.0, 50.0}});
    EXPECT_EQ(f0(2062), 1500);
    // Untouched: the frame x = 100 shows when all fits, and the neighbours.
    for (const int frame : {1500, 2061, 2063})
        EXPECT_EQ(f0(frame), factory) << frame;
    // The three plots share the axis: the same x is the same frame in each; in the picture of the
    // whole (what the trace window reads amplitudes from) it is x = 1100 x 400 / 3200.
    EXPECT_EQ(controller->_viewOthers()->frameAt(100.0), 2062);
    EXPECT_DOUBLE_EQ(axis().fitAllX(100.0, 400), 137.5);
    EXPECT_EQ(controller->_viewFormants()->frameAt(399.0), (1000 + 399) * 6000 / 3200);

    key(Qt::Key_0);
    EXPECT_DOUBLE_EQ(axis().zoom(), 1.0);
    EXPECT_EQ(axis().offset(), 0);
    for (int x = 0; x <= 400; ++x)
        ASSERT_EQ(view.frameAt(x), x * 6000 / 400) << x;
    dragThrough(view, {{100.0, 75.0}, {100.0, 75.0}});
    EXPECT_EQ(f0(1500), 750);
}

TEST_F(GraphicalZoom, KeysAndTheWheelZoomWithinTheirLimitsAndTheScrollBarFollows)
{
    viewFormants& view = *controller->_viewFormants();
    QScrollBar& bar = *controller->scrollBar();
    EXPECT_EQ(bar.maximum(), 0);

    key(Qt::Key_Minus); // nothing is wider than all
    EXPECT_DOUBLE_EQ(axis().zoom(), 1.0);

    // Ctrl+wheel zooms around the pointer: the frame under it stays under it.
    const int before = view.frameAt(300.0);
    sendWheel(view, {300.0, 40.0}, 120, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(axis().zoom(), TimeAxisZoom::kWheelFactor);
    EXPECT_NEAR(view.frameAt(300.0), before, 15); // one pixel is 12 frames now
    EXPECT_EQ(bar.maximum(), 500 - 400);
    EXPECT_EQ(bar.pageStep(), 400);
    EXPECT_EQ(bar.value(), axis().offset());

    key(Qt::Key_Equal); // Ctrl+= is Ctrl++ without Shift
    EXPECT_DOUBLE_EQ(axis().zoom(), 2.0 * TimeAxisZoom::kWheelFactor);
    EXPECT_EQ(bar.maximum(), 1000 - 400);

    // A plain wheel is left to others; Shift+wheel scrolls.
    const int offset = axis().offset();
    sendWheel(view, {10.0, 40.0}, -120, Qt::NoModifier);
    EXPECT_EQ(axis().offset(), offset);
    sendWheel(view, {10.0, 40.0}, -120, Qt::ShiftModifier);
    EXPECT_EQ(axis().offset(), offset + 40);
    EXPECT_EQ(bar.value(), offset + 40);

    // At most 40 pixels per frame, and the last pixel is the end of the last frame.
    for (int i = 0; i < 20; ++i)
        key(Qt::Key_Plus);
    EXPECT_DOUBLE_EQ(axis().zoom(), 6000 * 40.0 / 400);
    bar.setValue(bar.maximum());
    EXPECT_EQ(view.frameAt(399.0), 5999);
    EXPECT_EQ(bar.maximum(), 240000 - 400);

    // Wheel back out, past all: exactly fit all again.
    for (int i = 0; i < 40; ++i)
        sendWheel(view, {200.0, 40.0}, -120, Qt::ControlModifier);
    EXPECT_TRUE(axis().isFitAll());
    EXPECT_EQ(axis().offset(), 0);
    EXPECT_EQ(bar.maximum(), 0);

    // A wider window keeps the zoom and the time at the left edge.
    key(Qt::Key_Plus);
    bar.setValue(200);
    const int leftFrame = view.frameAt(0.0);
    QWidget* window = controller->window();
    window->resize(window->width() + 200, window->height());
    QApplication::processEvents();
    EXPECT_DOUBLE_EQ(axis().zoom(), 2.0);
    EXPECT_EQ(bar.maximum(), 600); // the content of 2 x 600 pixels less the view's 600
    EXPECT_NEAR(view.frameAt(0.0), leftFrame, 10);
}

// The time labels among `labels` (those in ms, left to right) each start just right of the line
// of the time they name, for a plot showing startMS .. endMS across `area`, with a gap between
// neighbours; how many there are.
int expectTimesOnTheirLines(const std::vector<GridLabel>& labels, const QRect& area, double startMS,
                            double endMS)
{
    const GridLabel* previous = nullptr;
    int times = 0;
    for (const GridLabel& label : labels) {
        if (!label.text.endsWith(QStringLiteral(" ms")))
            continue;
        bool ok = false;
        const double t = label.text.chopped(3).toDouble(&ok);
        EXPECT_TRUE(ok) << label.text.toStdString();
        const double lineX = area.left() + (t - startMS) * area.width() / (endMS - startMS);
        EXPECT_NEAR(label.box.left(), lineX + 2, 1.5) << label.text.toStdString();
        if (previous) {
            EXPECT_GT(label.box.left(), previous->box.right() + 2) << label.text.toStdString();
        }
        previous = &label;
        ++times;
    }
    return times;
}

// Every zoom and scroll position, the document's time step and one far too fine for the width,
// and each amplitude track's caption: the labels of the three plots stay inside them and clear
// of each other and of the caption; the time grid's labels stay apart and each names the time
// of its line.
TEST_F(GraphicalZoom, GridLabelsAtEveryZoomStayApartAndNameTheirLines)
{
    const char* const actives[] = {"a1f", "av", "apv"};
    for (const int step : {doc.m_nSpecTimeGrid, 1}) {
        doc.m_nSpecTimeGrid = step;
        axis().fitAll();
        for (int zoomIns = 0; zoomIns < 12; ++zoomIns) {
            controller->_viewOthers()->activeParameter(actives[zoomIns % 3]);
            for (const int offset : {0, 333, 1 << 30}) {
                axis().setOffset(offset);
                for (const TrackPlotView* view : std::initializer_list<const TrackPlotView*>{
                         controller->_viewF0(), controller->_viewFormants(), controller->_viewOthers()}) {
                    const std::vector<GridLabel> labels = view->gridLabels(QFontMetrics(view->font()));
                    EXPECT_GE(labels.size(), 3u) << zoomIns;
                    const QRect caption = view->captionBox();
                    expectLabelsClear(labels, view->rect(),
                                      caption.isEmpty() ? std::vector<QRect>{} : std::vector<QRect>{caption},
                                      actives[zoomIns % 3]);
                }
                // The time grid's own labels, as the spectrogram window draws them all.
                const viewF0& f0 = *controller->_viewF0();
                const auto [start, end] = axis().visibleMS(60000.0, f0.width());
                const std::vector<GridLabel> times =
                    timeGridLabels(QFontMetrics(f0.font()), f0.rect(), start, end,
                                   axis().timeGridStep(step, 60000.0, f0.width()));
                expectLabelsClear(times, f0.rect(), {}, "time grid");
                EXPECT_GE(expectTimesOnTheirLines(times, f0.rect(), start, end), 1)
                    << "zoom " << zoomIns << ", offset " << offset;
            }
            axis().zoomIn();
        }
    }
    // The amplitude view names its active track in a caption.
    EXPECT_FALSE(controller->_viewOthers()->captionBox().isEmpty());
    // Fractions of a millisecond keep their decimals: 0.5 ms lines read "x.5 ms".
    const QRect wide(0, 0, 2000, 100);
    const std::vector<GridLabel> fine =
        timeGridLabels(QFontMetrics(controller->_viewF0()->font()), wide, 10.0, 30.0, 0.5);
    EXPECT_GT(expectTimesOnTheirLines(fine, wide, 10.0, 30.0), 0);
    EXPECT_TRUE(
        std::any_of(fine.begin(), fine.end(), [](const GridLabel& l) { return l.text.contains('.'); }));
}

} // namespace
