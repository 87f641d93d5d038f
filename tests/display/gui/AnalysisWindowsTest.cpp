// The analysis windows under the offscreen platform: what they computed, not their pixels.
#include "support/TestSignals.h"
namespace testsignals = signals; // before Qt's `signals` keyword

#include "display/gui/FFTLPCWindow.h"
#include "display/gui/PictureExport.h"
#include "display/gui/SpectrogramPitchWindow.h"
#include "display/gui/pitchView.h"
#include "display/gui/sliceView.h"
#include "display/gui/spectrogramView.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "support/DocumentTestSupport.h"
#include "support/LabelChecks.h"
#include "support/TestChannels.h"
#include "support/TestFiles.h"
#include "table/gui/mainTable.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace
{
constexpr double kRate = 11025.0;

// examples/vowel-a.stk (F1 700, F2 1220 Hz, f0 about 120 Hz) synthesized, in a table.
struct AnalysisWindows : ::testing::Test {
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    SpectrogramPitchWindow* spectrogramWindow = nullptr; // the last the table's command opened

    void SetUp() override
    {
        ASSERT_TRUE(openBytes(doc, slurp(TESSAPHON_SOURCE_DIR "/examples/vowel-a.stk")))
            << doc.lastReadError();
        Log::setSink([](const std::string&) {});
        doc.Synthesize();
        Log::setSink({});
        table = std::make_unique<mainTable>(&doc);
        mainTable::setAnalysisWindowFactories(
            [](mainTable* t, double start) -> QWidget* { return new FFTLPCWindow(t, start, nullptr); },
            [this](mainTable* t, int channel) -> QWidget* {
                return spectrogramWindow = new SpectrogramPitchWindow(t, channel, nullptr);
            });
    }

    // Replaces a channel's samples by a sine of amplitude 0.5.
    void setSine(int channel, double hz, int samples)
    {
        setSamples(*doc.getChannel(channel), testsignals::toFloat(testsignals::sine(samples, hz, kRate, 0.5)),
                   kRate);
        doc.getChannel(channel)->m_dLengthMS = samples * 1000.0 / kRate;
    }
};

using testsignals::median;
} // namespace

TEST_F(AnalysisWindows, FFTLPCCommandStartsAtTheSelectedFrameAndStepsByFrames)
{
    const Channels& c = *doc.getChannel(0);
    table->selectaColumn(1);
    EXPECT_EQ(table->FFTLPCStartSample(), -1.0); // the first frame cannot be analysed
    table->_analysisFFTLPC();
    EXPECT_EQ(table->fftlpcWindow(), nullptr);

    table->selectaColumn(5);
    table->_analysisFFTLPC();
    auto* window = qobject_cast<FFTLPCWindow*>(table->fftlpcWindow());
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("FFT/LPC:: ")));
    EXPECT_EQ(window->startSample(), std::trunc(4 * c.m_dwFileLength / c.m_nColumnNum));

    // Right and Left step one frame; the ends hold.
    QTest::keyClick(window, Qt::Key_Right);
    EXPECT_EQ(window->startSample(), std::trunc(5 * c.m_dwFileLength / c.m_nColumnNum));
    QTest::keyClick(window, Qt::Key_Left);
    QTest::keyClick(window, Qt::Key_Left);
    EXPECT_EQ(window->startSample(), std::trunc(3 * c.m_dwFileLength / c.m_nColumnNum));
    window->stepFrames(-1000);
    EXPECT_EQ(window->startSample(), 0.0);
    window->stepFrames(100000);
    EXPECT_EQ(window->frameOf(window->startSample()), c.m_nColumnNum);

    // A second command closes the first window: one per document.
    QPointer<QWidget> first = window;
    table->_analysisFFTLPC();
    EXPECT_TRUE(first.isNull());
    EXPECT_NE(table->fftlpcWindow(), nullptr);
    delete table->fftlpcWindow();
}

TEST_F(AnalysisWindows, SliceOfASinePeaksAtItAndTheModelIsLaidOver)
{
    setSine(0, 440.0, 11025);
    FFTLPCWindow window(table.get(), 2000, nullptr);
    const SliceComputation& own = window.view()->synthesisSlice();
    EXPECT_NEAR(own.peakFrequency(), 440.0, 8.0);
    EXPECT_FALSE(window.view()->modelSlice().has_value());

    setSine(2, 1000.0, 11025);
    window.recompute();
    ASSERT_TRUE(window.view()->modelSlice().has_value());
    EXPECT_NEAR(window.view()->modelSlice()->peakFrequency(), 1000.0, 8.0);
    EXPECT_NEAR(window.view()->synthesisSlice().peakFrequency(), 440.0, 8.0);
    EXPECT_GT(SlicePlot::distance(own, *window.view()->modelSlice(), 5000), 3.0);

    // A new synthesis of the table is followed.
    doc.getChannel(0)->m_hData.reset();
    table->synthesizeIfNeeded();
    EXPECT_GT(std::abs(window.view()->synthesisSlice().peakFrequency() - 440.0), 20.0);
}

TEST_F(AnalysisWindows, SpectrogramWindowFindsTheVowelAndItsPitch)
{
    table->_analysisSpectrogramPitch();
    SpectrogramPitchWindow* window = spectrogramWindow;
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("Spectrogram and Pitch of table data:: ")));
    QSignalSpy ready(window->spectrogram(), &spectrogramView::pictureReady);
    ASSERT_TRUE(ready.wait(10000));
    const SpectrogramWorker::Result* result = window->spectrogram()->result();
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->width, window->spectrogram()->plotArea().width());
    // The synthesis of the table is analysed (the formants' own figures: CopySynthesisFigures).
    std::vector<double> f1, voiced;
    for (const FormantRecord& r : result->computation.m_phsnFormants)
        if (r[0] > 0)
            f1.push_back(r[0]);
    ASSERT_GT(f1.size(), result->computation.m_phsnFormants.size() / 2);
    EXPECT_NEAR(median(f1), 700.0, 80.0);
    for (double hz : window->pitch()->track().m_hdPitchFile)
        if (hz > 0)
            voiced.push_back(hz);
    EXPECT_NEAR(median(voiced), 120.0, 10.0);

    // A resize is recomputed for the new size once it settles.
    window->resize(window->width() - 200, window->height());
    ASSERT_TRUE(ready.wait(10000));
    EXPECT_EQ(window->spectrogram()->result()->width, window->spectrogram()->plotArea().width());

    // Clicking sets the time cursor and moves the document's FFT/LPC window there.
    table->selectaColumn(3);
    table->_analysisFFTLPC();
    auto* slice = qobject_cast<FFTLPCWindow*>(table->fftlpcWindow());
    ASSERT_NE(slice, nullptr);
    const QRect area = window->spectrogram()->plotArea();
    QTest::mouseClick(window->spectrogram(), Qt::LeftButton, {},
                      QPoint(area.left() + area.width() / 2, area.center().y()));
    const double ms = doc.getChannel(0)->m_dLengthMS / 2.0;
    EXPECT_NEAR(window->spectrogram()->cursorMS(), ms, 2.0 * doc.getChannel(0)->m_dLengthMS / area.width());
    EXPECT_NEAR(slice->startSample() / kRate * 1000.0, window->spectrogram()->cursorMS(), 0.2);
    delete slice;
    delete window;
}

TEST_F(AnalysisWindows, AxisLabelsStayInTheWindowAndClearOfEachOther)
{
    // Ten seconds: the pitch axis ends on a five-digit label at the right edge.
    setSine(2, 200.0, static_cast<int>(10.0 * kRate));
    SpectrogramPitchWindow window(table.get(), 2, nullptr);
    window.show();
    for (const int width : {1000, 733, 420}) {
        window.resize(width, 560);
        QApplication::processEvents();
        const spectrogramView& spectrogram = *window.spectrogram();
        const pitchView& pitch = *window.pitch();
        const QFontMetrics metrics(pitch.font());
        const QRect pitchArea = pitch.plotArea();
        const std::vector<GridLabel> times = pitch.timeAxisLabels(metrics, pitchArea);
        ASSERT_GE(times.size(), 2u) << width;
        expectLabelsClear(times, pitch.rect(), {}, "pitch time axis");
        EXPECT_EQ(times.front().box.left(), pitchArea.left()) << width;
        EXPECT_LE(times.back().box.right(), pitchArea.right()) << width;
        EXPECT_EQ(times.back().text.toStdString(), "10000") << width; // moved in, not left out

        // The frequency labels stand in the strip left of the plot, not over the picture.
        const QRect area = spectrogram.plotArea();
        const double range = doc.m_nSpecfrequencyRange;
        const std::vector<GridLabel> hz = valueGridLabels(metrics, area, 0.0, range, doc.m_nSpecFrequencyGrid,
                                                          range, QStringLiteral("Hz"), ValueLabels::Outside);
        ASSERT_GE(hz.size(), 3u) << width;
        expectLabelsClear(hz, spectrogram.rect(), {area}, "frequency axis");
        EXPECT_TRUE(hz.back().text.endsWith(QStringLiteral(" Hz")));
    }
}

TEST_F(AnalysisWindows, PicturesAreWrittenAtTheSetSizeWithTextInPoints)
{
    setSine(0, 440.0, 11025);
    FFTLPCWindow window(table.get(), 1000, nullptr);
    QTemporaryDir dir;
    QString error;
    // Text in a PNG is laid out in points like the SVG and PDF pictures, then scaled with the
    // picture: the same letters take the same share of the picture in every format.
    const QString sample = QStringLiteral("distance 9.7 dB, 2000 Hz");
    std::map<QString, QSizeF> textBox;
    QString name;
    const PictureExport::Draw draw = [&](QPainter& p, const QSizeF& size) {
        const QFontMetricsF metrics(p.font(), p.device());
        textBox[name] = QSizeF(metrics.horizontalAdvance(sample), metrics.height());
        window.view()->drawPicture(p, size, SlicePlotStyle::fromDocument(doc, false));
    };
    for (const QSizeF inches : {QSizeF(6, 4), QSizeF(3, 2)}) {
        for (const char* file : {"p.svg", "p.png", "p.pdf"}) {
            name = file;
            ASSERT_TRUE(PictureExport::writePicture(dir.filePath(name), draw, inches, &error))
                << error.toStdString();
        }
        const QSizeF svg = textBox[QStringLiteral("p.svg")];
        EXPECT_GT(svg.height(), 8.0);
        EXPECT_LT(svg.height(), 16.0);
        for (const QString& other : {QStringLiteral("p.png"), QStringLiteral("p.pdf")}) {
            EXPECT_NEAR(textBox[other].height(), svg.height(), 0.15 * svg.height()) << other.toStdString();
            EXPECT_NEAR(textBox[other].width(), svg.width(), 0.15 * svg.width()) << other.toStdString();
            // The sample line fits well inside a picture three inches wide.
            EXPECT_LT(textBox[other].width(), 0.6 * inches.width() * 72.0) << other.toStdString();
        }
    }
    // The file still says its resolution, so viewers show it at its size in inches.
    EXPECT_NEAR(QImage(dir.filePath(QStringLiteral("p.png"))).dotsPerMeterX() * 0.0254,
                PictureExport::kPngPixelsPerInch, 0.5);

    const QSizeF inches = PictureExport::sizeInInches(15.24, 10.16, false); // centimetres
    ASSERT_TRUE(PictureExport::writePicture(dir.filePath("s.svg"), draw, inches, &error))
        << error.toStdString();
    QSvgRenderer svg(dir.filePath("s.svg"));
    ASSERT_TRUE(svg.isValid());
    EXPECT_EQ(svg.viewBoxF(), QRectF(0, 0, 432, 288));
    EXPECT_NE(slurp(dir.filePath("s.svg").toStdString()).find("width=\"152.4mm\" height=\"101.6mm\""),
              std::string::npos);

    ASSERT_TRUE(PictureExport::writePicture(dir.filePath("s.pdf"), draw, inches, &error));
    const std::string pdf = slurp(dir.filePath("s.pdf").toStdString());
    EXPECT_EQ(pdf.substr(0, 4), "%PDF");
    EXPECT_NE(pdf.find("/MediaBox [0 0 432.000000 288.000000]"), std::string::npos);

    ASSERT_TRUE(PictureExport::writePicture(dir.filePath("s.PNG"), draw, QSizeF(4, 3), &error));
    EXPECT_EQ(QImage(dir.filePath("s.PNG")).size(), QSize(600, 450));
    EXPECT_FALSE(PictureExport::writePicture(dir.filePath("s.gif"), draw, inches, &error));
    EXPECT_FALSE(PictureExport::writePicture(dir.filePath("missing/s.png"), draw, inches, &error));
}
