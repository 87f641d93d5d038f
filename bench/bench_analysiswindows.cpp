// The analysis windows on ten seconds of synthesized running vowels (examples/moving-vowels.stk
// at 11025 Hz) as the model of a document, driving the real widgets offscreen (wall time):
//  - the spectrogram and pitch window: from the command (the window made and shown) to the
//    first complete picture with the spectrogram at 1000 x 400 pixels (target: 120 ms);
//  - the same window's recomputation after a resize has settled (target: 60 ms; the short
//    wait for the resize to settle is not counted);
//  - the FFT/LPC window: one Right-arrow step, slices recomputed and repainted (target: 10 ms);
//  - the pieces of a picture on their own (CPU time): the spectrogram image of a finished
//    computation, and the pitch track of the recording drawn into a 1000 x 120 plot.
#include "GuiBenchMain.h"
#include "display/gui/AnalysisTracks.h"
#include "display/gui/FFTLPCWindow.h"
#include "display/gui/SpectrogramImage.h"
#include "display/gui/SpectrogramPitchWindow.h"
#include "display/gui/pitchView.h"
#include "display/gui/spectrogramView.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPainter>
#include <QSignalSpy>
#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>

namespace
{
// The document: moving-vowels synthesized, then its synthesis copied into the model channel.
std::unique_ptr<MyDocument> recording()
{
    auto doc = std::make_unique<MyDocument>();
    std::ifstream in(TESSAPHON_SOURCE_DIR "/examples/moving-vowels.stk", std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    int error = 0;
    if (!doc->readFromData(bytes.str(), "stk", &error))
        return nullptr;
    doc->buildDataTableDictionary();
    Log::setSink([](const std::string&) {});
    doc->Synthesize();
    const Channels& c = *doc->getChannel(0);
    doc->setModelSamples(std::vector<float>(c.samples(), c.samples() + c.sampleCount()), c.m_dSampleRate);
    return doc;
}

// Makes the window's spectrogram plot 1000 x 400 pixels.
void sizeForPlot(SpectrogramPitchWindow& window)
{
    for (int round = 0; round < 3; ++round) {
        const QRect area = window.spectrogram()->plotArea();
        window.resize(window.width() + 1000 - area.width(), window.height() + 400 - area.height());
        QCoreApplication::processEvents();
    }
}

void BM_SpectrogramPitchWindowFirstPicture(benchmark::State& state)
{
    auto doc = recording();
    mainTable table(doc.get());
    QSize size;
    {
        SpectrogramPitchWindow probe(&table, 2, nullptr);
        probe.show();
        sizeForPlot(probe);
        size = probe.size();
    }
    for (auto _ : state) {
        QElapsedTimer clock;
        clock.start();
        SpectrogramPitchWindow window(&table, 2, nullptr);
        QSignalSpy ready(window.spectrogram(), &spectrogramView::pictureReady);
        window.resize(size);
        window.show();
        if (!ready.wait(5000))
            state.SkipWithError("no picture");
        window.spectrogram()->repaint();
        state.SetIterationTime(clock.nsecsElapsed() / 1e9);
        state.counters["width"] = window.spectrogram()->plotArea().width();
        state.counters["height"] = window.spectrogram()->plotArea().height();
    }
}
BENCHMARK(BM_SpectrogramPitchWindowFirstPicture)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);

void BM_SpectrogramPitchWindowResize(benchmark::State& state)
{
    auto doc = recording();
    mainTable table(doc.get());
    SpectrogramPitchWindow window(&table, 2, nullptr);
    window.show();
    sizeForPlot(window);
    QSignalSpy ready(window.spectrogram(), &spectrogramView::pictureReady);
    ready.wait(5000);
    int step = 0;
    for (auto _ : state) {
        // Alternating between 1000 and 980 pixels wide; the settle wait happens outside the clock.
        window.resize(window.width() + (step++ % 2 ? 20 : -20), window.height());
        QCoreApplication::processEvents();
        QElapsedTimer clock;
        clock.start();
        window.spectrogram()->setup();
        if (!ready.wait(5000))
            state.SkipWithError("no picture");
        window.spectrogram()->repaint();
        state.SetIterationTime(clock.nsecsElapsed() / 1e9);
    }
}
BENCHMARK(BM_SpectrogramPitchWindowResize)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_FFTLPCArrowStep(benchmark::State& state)
{
    auto doc = recording();
    mainTable table(doc.get());
    FFTLPCWindow window(&table, 0, nullptr);
    window.resize(680, 480);
    window.show();
    QCoreApplication::processEvents();
    int frame = 0;
    for (auto _ : state) {
        const Qt::Key key = frame++ % 400 < 200 ? Qt::Key_Right : Qt::Key_Left;
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&window, &press);
        window.repaint();
    }
    if (window.startSample() <= 0.0)
        state.SkipWithError("the arrow did not step");
}
BENCHMARK(BM_FFTLPCArrowStep)->Unit(benchmark::kMillisecond)->Iterations(200);
void BM_SpectrogramImage(benchmark::State& state)
{
    auto doc = recording();
    SpectrogramComputation computation;
    computation.m_settings = SpectrogramSettings::fromDocument(*doc);
    computation.compute(*doc->getChannel(2), 1000, 400, nullptr);
    for (auto _ : state)
        benchmark::DoNotOptimize(SpectrogramImage().DrawImage(computation));
}
BENCHMARK(BM_SpectrogramImage)->Unit(benchmark::kMillisecond);

void BM_PitchTrackDrawing(benchmark::State& state)
{
    auto doc = recording();
    PitchTrackComputation track;
    const PitchSettings settings = PitchSettings::fromDocument(*doc);
    track.DoPitchCepstral(*doc->getChannel(2), settings);
    QImage plot(1000, 120, QImage::Format_ARGB32_Premultiplied);
    const double lengthMS = doc->getChannel(2)->m_dwFileLength * 1000.0 / doc->getChannel(2)->m_dSampleRate;
    for (auto _ : state) {
        QPainter painter(&plot);
        DrawPitchTrack(painter, plot.rect(), track.m_hdPitchFile, settings.m_dPitchStepSize, lengthMS, 0.0,
                       450.0, QColor(0, 90, 200));
    }
}
BENCHMARK(BM_PitchTrackDrawing)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv)
{
    return runGuiBenchmarks(argc, argv);
}
