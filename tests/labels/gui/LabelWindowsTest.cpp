// The labels in the workbench: a TextGrid beside a recording loads with it; the label strip and
// the boundary lines of the trace window and the graphical window follow the time axis at every
// zoom; View chooses the tiers; frame headers name the boundaries; Export writes what Import
// reads back.
#include "app/DocumentWindow.h"
#include "app/WorkbenchApplication.h"
#include "dataentry/gui/TimeAxisZoom.h"
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/trace/TraceView.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "dataentry/gui/trace/viewAmplitudes.h"
#include "dataentry/gui/trace/viewPitch.h"
#include "display/gui/FFTLPCWindow.h"
#include "display/gui/PictureExport.h"
#include "display/gui/SpectrogramPitchWindow.h"
#include "display/gui/sliceView.h"
#include "document/MyDocument.h"
#include "interchange/Interchange.h"
#include "labels/TextGridFiles.h"
#include "labels/gui/DocumentLabels.h"
#include "labels/gui/LabelStripView.h"
#include "support/TestChannels.h"
#include "support/TestFiles.h"
#include "support/WorkbenchFixture.h"
#include "table/gui/ParameterTableModel.h"
#include "table/gui/mainTable.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fstream>

namespace
{

// 1.5 s of a buzz (the length of the test TextGrid) opened with the TextGrid beside it.
struct LabelWindows : ::testing::Test {
    Workbench wb;
    DocumentWindow* w = nullptr;
    void SetUp() override
    {
        std::vector<float> buzz(16538);
        for (std::size_t i = 0; i < buzz.size(); ++i)
            buzz[i] = static_cast<float>(i % 92) / 400.0f;
        std::ofstream(wb.path("rec.wav").toStdString(), std::ios::binary) << waveFileBytes(buzz, 11025);
        std::ofstream(wb.path("rec.TextGrid").toStdString(), std::ios::binary)
            << toUtf16(longTextGrid(), false);
        w = wb.app.openFile(wb.path("rec.wav"));
        ASSERT_NE(w, nullptr) << wb.app.lastAlert().toStdString();
    }
};

// The strip's boundaries lie where the views draw the frames of their times, at any zoom (the
// texts stay inside the frame the strip is given: LabelStrip.PlacesBoundariesTextsAndTicksAtEveryZoom).
void expectStripOnTheAxis(const LabelStripView& strip, const TraceView& view, const TimeAxisZoom& axis,
                          int frames, const char* where)
{
    SCOPED_TRACE(where);
    const std::vector<double> bounds = xsOf(strip.items(), LabelStripItem::Boundary, 0);
    const int offset = view.mapTo(view.window(), QPoint()).x() - strip.mapTo(strip.window(), QPoint()).x();
    std::vector<double> expected;
    for (const double seconds : {0.0, 0.25, 0.8, 1.5}) {
        // 10 ms frames over the content's width, scrolled by the offset.
        const double x =
            seconds * 100.0 * std::llround(view.width() * axis.zoom()) / frames - axis.offset() + offset;
        if (x >= 0.0 && x <= strip.width())
            expected.push_back(x);
    }
    ASSERT_EQ(bounds.size(), expected.size());
    for (std::size_t i = 0; i < bounds.size(); ++i)
        EXPECT_NEAR(bounds[i], expected[i], 1e-6);
}
} // namespace

TEST_F(LabelWindows, TraceWindowStripFollowsTheZoomAndTheTiersChosen)
{
    DocumentLabels* labels = DocumentLabels::of(w->table());
    ASSERT_TRUE(labels->hasLabels()) << "the TextGrid beside the recording loads with it";

    w->table()->_dataentryTrace();
    auto* trace = dynamic_cast<dataentryTraceContoller*>(w->table()->traceDataEntry());
    ASSERT_NE(trace, nullptr);
    trace->window()->resize(800, 400);
    auto* strip = trace->window()->findChild<LabelStripView*>();
    ASSERT_NE(strip, nullptr);
    ASSERT_FALSE(strip->isHidden());
    // Under the lowest view, as wide as the views, two rows tall.
    const QRect lower = trace->_viewAmplitudes()->geometry();
    EXPECT_EQ(strip->geometry().top(), lower.bottom() + 1);
    EXPECT_EQ(strip->geometry().left(), lower.left());
    EXPECT_EQ(strip->width(), lower.width());
    const int twoRows = strip->height();

    const int frames = w->document()->getChannel(0)->m_nColumnNum;
    TimeAxisZoom& axis = *trace->timeAxis();
    expectStripOnTheAxis(*strip, *trace->_viewPitch(), axis, frames, "fit all");
    axis.zoomBy(4.0, 100.0);
    expectStripOnTheAxis(*strip, *trace->_viewPitch(), axis, frames, "zoomed 4 x");
    axis.setOffset(axis.offset() + 300);
    expectStripOnTheAxis(*strip, *trace->_viewPitch(), axis, frames, "zoomed and scrolled");
    // The lines through the views are the strip's boundaries.
    auto* overlay = trace->window()->findChild<LabelBoundaryOverlay*>();
    ASSERT_NE(overlay, nullptr);
    const std::vector<double> lines = overlay->boundaryXs();
    const std::vector<double> bounds = xsOf(strip->items(), LabelStripItem::Boundary, 0);
    ASSERT_EQ(lines.size(), bounds.size() + xsOf(strip->items(), LabelStripItem::Tick, 1).size());
    axis.fitAll();

    // One tier hidden: one row, and the views take the room back; none: no strip.
    labels->setTierShown(1, false);
    EXPECT_LT(strip->height(), twoRows);
    EXPECT_EQ(strip->geometry().top(), trace->_viewAmplitudes()->geometry().bottom() + 1);
    labels->setTierShown(0, false);
    EXPECT_TRUE(strip->isHidden());
    EXPECT_GT(trace->_viewAmplitudes()->geometry().bottom(), lower.bottom());
}

TEST_F(LabelWindows, GraphicalAndSliceWindowsAndTableHeadersShowTheLabels)
{
    w->table()->_dataentryGraphical();
    auto* graphical = dynamic_cast<dataentryGraphicalController*>(w->table()->graphicalDataEntry());
    ASSERT_NE(graphical, nullptr);
    auto* strip = graphical->window()->findChild<LabelStripView*>();
    ASSERT_NE(strip, nullptr);
    EXPECT_FALSE(strip->isHidden());
    EXPECT_EQ(xsOf(strip->items(), LabelStripItem::Boundary, 0).size(), 4u);

    // Frame 26 (250-260 ms) holds the boundary at 0.25 s; frame 27 none.
    ParameterTableModel* model = w->table()->tableModel();
    const QString header = model->headerData(26, Qt::Horizontal, Qt::ToolTipRole).toString();
    EXPECT_TRUE(header.contains(QStringLiteral("words at 250.0 ms: say \"wa\""))) << header.toStdString();
    EXPECT_FALSE(
        model->headerData(27, Qt::Horizontal, Qt::ToolTipRole).toString().contains(QStringLiteral("at")));
    // A damaged TextGrid is refused naming the file and the line; the labels stay.
    std::ofstream(wb.path("bad.TextGrid").toStdString()) << longTextGrid().substr(0, 300);
    EXPECT_FALSE(w->loadLabelsFrom(wb.path("bad.TextGrid")));
    EXPECT_TRUE(wb.app.lastAlert().contains(QStringLiteral("bad.TextGrid, line ")))
        << wb.app.lastAlert().toStdString();
    EXPECT_EQ(DocumentLabels::of(w->table())->path(), wb.path("rec.TextGrid"));

    // The FFT/LPC window names the segments of the shown tiers its frame lies in, and follows the
    // tiers chosen.
    w->table()->selectaColumn(30); // frame 30: 290-300 ms, inside "say "wa"" (0.25-0.8 s)
    w->table()->_analysisFFTLPC();
    auto* window = qobject_cast<FFTLPCWindow*>(w->table()->fftlpcWindow());
    ASSERT_NE(window, nullptr);
    const QString title = window->view()->title();
    EXPECT_TRUE(title.startsWith(QStringLiteral("frame 30, 290-300 ms, words: say \"wa\"")))
        << title.toStdString();
    window->stepFrames(-10); // frame 20, before the first word: the empty interval names nothing
    EXPECT_EQ(window->view()->title(), QStringLiteral("frame 20, 190-200 ms"));
    window->stepFrames(10);
    DocumentLabels::of(w->table())->setTierShown(0, false);
    EXPECT_EQ(window->view()->title(), QStringLiteral("frame 30, 290-300 ms"));
}

// The spectrogram and pitch picture carries the label strip as the window shows it: the texts
// under the views and the boundaries through them; without labels the views take the picture.
TEST_F(LabelWindows, ExportedSpectrogramPictureCarriesTheLabelStripAndExportWritesItsFormat)
{
    // Export writes what the writer of the format its extension names makes of the document.
    for (const auto& [name, format] :
         {std::pair{"out.tsv", InterchangeFormat::Tsv}, {"out.klp", InterchangeFormat::Klp}}) {
        ASSERT_TRUE(w->exportTo(wb.path(name)));
        EXPECT_EQ(slurp(wb.path(name).toStdString()), exportDocument(*w->document(), format)) << name;
    }

    w->table()->_analysisSpectrogramPitchModel();
    auto* window = w->findChild<SpectrogramPitchWindow*>();
    ASSERT_NE(window, nullptr);
    QTemporaryDir dir;
    QString error;
    const auto write = [&](const QString& name) {
        const PictureExport::Draw draw = [&](QPainter& p, const QSizeF& size) {
            window->drawPicture(p, size, false);
        };
        EXPECT_TRUE(PictureExport::writePicture(dir.filePath(name), draw, QSizeF(6, 4), &error))
            << error.toStdString();
        return slurp(dir.filePath(name).toStdString());
    };
    const std::string labelled = write(QStringLiteral("labelled.svg"));
    EXPECT_NE(labelled.find("say &quot;wa&quot;"), std::string::npos);
    EXPECT_NE(labelled.find("stroke-dasharray"), std::string::npos); // the dotted boundaries

    DocumentLabels::of(w->table())->clear();
    const std::string plain = write(QStringLiteral("plain.svg"));
    EXPECT_EQ(plain.find("say &quot;wa&quot;"), std::string::npos);
}
