// Horizontal zoom of the data-entry windows, driven with real key, wheel and mouse events under
// the offscreen platform: a zoomed drag writes the frame under the pointer, fit all gives back
// the unzoomed mapping, the scroll bar follows the zoom, and the time labels never overlap.
#include "dataentry/gui/TimeAxisZoom.h"
#include "DataEntryTestSupport.h"
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/graphical/viewF0.h"
#include "dataentry/gui/graphical/viewFormants.h"
#include "dataentry/gui/graphical/viewOthers.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "dataentry/gui/trace/viewAmplitudes.h"
#include "dataentry/gui/trace/viewPitch.h"
#include "dataentry/gui/trace/viewSpectrogram.h"
#include "display/gui/GraphGrids.h"
#include "support/LabelChecks.h"
#include "table/gui/mainTable.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontMetrics>
#include <QScrollBar>
#include <QTest>

#include <cmath>
#include <memory>

namespace
{

// Press, move and release at one point.
void click(QWidget& view, QPointF at)
{
    dragThrough(view, {at, at});
}

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
    int f0(int frame) const
    {
        return doc._dataTableDictionary.cellAt((frame + 1) * 10LL, Row::f0)->_nValue();
    }
    void key(int k) { QTest::keyClick(controller->window(), static_cast<Qt::Key>(k), Qt::ControlModifier); }
};

TEST_F(GraphicalZoom, ZoomedDragWritesTheFrameUnderThePointerAndFitAllRestoresTheMapping)
{
    viewF0& view = *controller->_viewF0();
    ASSERT_EQ(view.width(), 400);
    ASSERT_EQ(view.height(), 100);
    const int factory = f0(1500);

    key(Qt::Key_Plus);
    key(Qt::Key_Plus);
    key(Qt::Key_Plus);
    ASSERT_DOUBLE_EQ(axis().zoom(), 8.0);
    controller->scrollBar()->setValue(1000); // the user drags the scroll bar
    ASSERT_EQ(axis().offset(), 1000);

    // x = 100 shows content pixel 1100 of 3200: frame 1100 x 6000 / 3200 = 2062.
    click(view, {100.0, 50.0});
    EXPECT_EQ(f0(2062), 1500);
    EXPECT_EQ(f0(1500), factory); // the frame x = 100 shows when all fits is untouched
    EXPECT_EQ(f0(2061), factory);
    EXPECT_EQ(f0(2063), factory);
    // The three plots share the axis: the same x is the same frame in each.
    EXPECT_EQ(controller->_viewOthers()->frameAt(100.0), 2062);
    EXPECT_EQ(controller->_viewFormants()->frameAt(399.0), (1000 + 399) * 6000 / 3200);

    key(Qt::Key_0);
    EXPECT_DOUBLE_EQ(axis().zoom(), 1.0);
    EXPECT_EQ(axis().offset(), 0);
    for (int x = 0; x <= 400; ++x)
        ASSERT_EQ(view.frameAt(x), x * 6000 / 400) << x;
    click(view, {100.0, 75.0});
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
    EXPECT_EQ(view.width(), 600);
    EXPECT_DOUBLE_EQ(axis().zoom(), 2.0);
    EXPECT_EQ(bar.maximum(), 600);
    EXPECT_NEAR(view.frameAt(0.0), leftFrame, 10);
}

// Label rectangles of a time grid never overlap, and each names the time of its line in ms.
void expectReadableLabels(const QFontMetrics& metrics, const QRect& area, double start, double end,
                          double step)
{
    const std::vector<GridLabel> labels = timeGridLabels(metrics, area, start, end, step);
    ASSERT_FALSE(labels.empty()) << start << " .. " << end;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const GridLabel& label = labels[i];
        ASSERT_TRUE(label.text.endsWith(QStringLiteral(" ms"))) << label.text.toStdString();
        EXPECT_TRUE(area.contains(label.box)) << label.text.toStdString();
        bool ok = false;
        const double t = label.text.chopped(3).toDouble(&ok);
        ASSERT_TRUE(ok) << label.text.toStdString();
        // The label starts just right of the line at its time.
        const double lineX = area.left() + (t - start) * area.width() / (end - start);
        EXPECT_NEAR(label.box.left(), lineX + 2, 1.5) << label.text.toStdString();
        if (i > 0) {
            EXPECT_GT(label.box.left(), labels[i - 1].box.right() + 2)
                << labels[i - 1].text.toStdString() << " / " << label.text.toStdString();
        }
    }
}

TEST_F(GraphicalZoom, TimeLabelsAtEveryZoomAreApartAndCarryTheirUnit)
{
    const viewF0& view = *controller->_viewF0();
    const QFontMetrics metrics(view.font());
    const QRect area = view.rect();
    // The default step of the document, and one far too fine for the width.
    for (const double step : {static_cast<double>(doc.m_nSpecTimeGrid), 1.0}) {
        axis().fitAll();
        for (int zoomIns = 0; zoomIns < 12; ++zoomIns) {
            for (const int offset : {0, 333, 1 << 30}) {
                axis().setOffset(offset);
                const auto [start, end] = axis().visibleMS(60000.0, view.width());
                expectReadableLabels(metrics, area, start, end,
                                     axis().timeGridStep(step, 60000.0, view.width()));
            }
            axis().zoomIn();
        }
    }
    // Fractions of a millisecond keep their decimals: 0.5 ms lines read "x.5 ms".
    const QRect wide(0, 0, 2000, 100);
    expectReadableLabels(metrics, wide, 10.0, 30.0, 0.5);
    const std::vector<GridLabel> fine = timeGridLabels(metrics, wide, 10.0, 30.0, 0.5);
    EXPECT_TRUE(
        std::any_of(fine.begin(), fine.end(), [](const GridLabel& l) { return l.text.contains('.'); }));
}

TEST_F(GraphicalZoom, GridLabelsStayClearOfEachOtherAndOfTheCaption)
{
    for (const char* active : {"a1f", "av", "apv"}) {
        controller->_viewOthers()->activeParameter(active);
        for (const int zoomIns : {0, 3}) {
            axis().fitAll();
            for (int z = 0; z < zoomIns; ++z)
                axis().zoomIn();
            for (const TrackPlotView* view : std::initializer_list<const TrackPlotView*>{
                     controller->_viewF0(), controller->_viewFormants(), controller->_viewOthers()}) {
                const std::vector<GridLabel> labels = view->gridLabels(QFontMetrics(view->font()));
                EXPECT_GE(labels.size(), 3u) << active;
                const QRect caption = view->captionBox();
                expectLabelsClear(labels, view->rect(),
                                  caption.isEmpty() ? std::vector<QRect>{} : std::vector<QRect>{caption},
                                  active);
            }
        }
    }
    // The amplitude view names its active track in a caption.
    EXPECT_FALSE(controller->_viewOthers()->captionBox().isEmpty());
}

// The trace window on a 2 s model recording: 200 columns, views 695 wide.
struct TraceZoom : ::testing::Test {
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    std::unique_ptr<dataentryTraceContoller> controller;

    void SetUp() override
    {
        setTestFrames(doc, 200);
        table = std::make_unique<mainTable>(&doc);
        controller = std::make_unique<dataentryTraceContoller>(&doc, table.get());
        controller->window()->show();
        QApplication::processEvents();
    }
    int value(int column, int row) const { return cellValue(doc, column, row); }
};

TEST_F(TraceZoom, ZoomedDragsWriteTheColumnUnderThePointerInEveryView)
{
    viewPitch& pitch = *controller->_viewPitch();
    viewAmplitudes& amplitudes = *controller->_viewAmplitudes();
    TimeAxisZoom& axis = *controller->timeAxis();
    ASSERT_EQ(pitch.width(), 695);

    sendWheel(*controller->_viewSpectrogram(), {100.0, 50.0}, 3 * 120, Qt::ControlModifier);
    ASSERT_FALSE(axis.isFitAll());
    QTest::keyClick(controller->window(), Qt::Key_Plus, Qt::ControlModifier);
    controller->scrollBar()->setValue(900);
    const long long content = axis.contentWidth(695);
    EXPECT_EQ(controller->scrollBar()->maximum(), content - 695);
    ASSERT_EQ(axis.offset(), 900);

    const int expected = static_cast<int>((50 + 900) * 200 / content);
    ASSERT_NE(expected, 50 * 200 / 695);
    click(pitch, {50.0, pitch.height() / 2.0});
    EXPECT_EQ(value(expected + 1, Row::f0), 1500);
    EXPECT_NE(value(50 * 200 / 695 + 1, Row::f0), 1500);

    controller->actionTrace(dataentryTraceContoller::AV);
    const int right = static_cast<int>((690 + 900) * 200 / content);
    click(amplitudes, {690.0, 0.0});
    EXPECT_EQ(value(right + 1, Row::av),
              std::min(90, doc._dataTableDictionary.cellAt(10, Row::av)->_nMaxValue()));

    // Fit all: the views map as before the zoom.
    QTest::keyClick(controller->window(), Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(controller->scrollBar()->maximum(), 0);
    for (int x = 0; x < 695; x += 7)
        ASSERT_EQ(amplitudes.columnAt(x), x * 200 / 695) << x;
}

TEST_F(TraceZoom, ZoomedInTheVisibleStretchIsComputedAgainAtScreenResolution)
{
    // A 2 s recording: a 500 Hz tone, louder in its second half.
    std::vector<float> samples(22050);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>((i < 11025 ? 0.1 : 0.4) * std::sin(2.0 * M_PI * 500.0 * i / 11025.0));
    setSamples(*doc.getChannel(2), samples, 11025.0);
    controller->analysisSettingsChanged();
    viewSpectrogram& view = *controller->_viewSpectrogram();
    ASSERT_TRUE(waitFor([&] { return !view.isComputing() && view.getHandle(); }));
    EXPECT_EQ(view.zoomedResult(), nullptr) << "nothing of its own at fit all";

    TimeAxisZoom& axis = *controller->timeAxis();
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(controller->window(), Qt::Key_Plus, Qt::ControlModifier);
    controller->scrollBar()->setValue(2000);
    ASSERT_FALSE(axis.isFitAll());
    EXPECT_NE(view.getHandle(), nullptr) << "the whole picture stays, stretched, until the stretch is ready";
    ASSERT_TRUE(waitFor([&] { return view.zoomedResult() != nullptr && !view.isComputingZoomed(); }));
    const auto [first, last] = axis.visibleMS(2000.0, view.width());
    EXPECT_NEAR(view.zoomedMS().first, first, 0.2);
    EXPECT_NEAR(view.zoomedMS().second, last, 0.2);
    const SpectrogramWorker::Result& zoomed = *view.zoomedResult();
    EXPECT_EQ(zoomed.width, view.width()) << "one analysis frame per pixel column of the stretch";
    EXPECT_EQ(zoomed.computation.m_nDisplayRange, view.width());
    EXPECT_FALSE(zoomed.image.isNull());

    // Fit all shows the whole recording's picture again.
    QTest::keyClick(controller->window(), Qt::Key_0, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] { return view.zoomedResult() == nullptr; }));
}

} // namespace
