#pragma once
// The formant view of the trace window: the model's spectrogram with its automatic formant
// tracks, over which the user traces f1 .. f5 (slots 0 .. 4; 5000 Hz at the top edge).
// Tracing a formant also traces its amplitude in the amplitude view: the spectrogram level
// under the pointer (remoteTraceValue).
//
// The spectrogram is computed for the view's pixel size by a SpectrogramWorker on a background
// thread, started by setup() and again when a resize has settled; meanwhile the last picture
// is shown stretched with a "Computing spectrogram" note. Zoomed in, the whole recording's
// picture is stretched at first; once the zoom or scroll settles, a second worker computes the
// visible stretch alone at the view's resolution (spectrogram and formant tracks), which is
// then drawn over its part of the axis. The view paints from finished results only. Main
// thread only.
#include "dataentry/gui/trace/TraceView.h"
#include "display/gui/SpectrogramWorker.h"

#include <QTimer>

#include <memory>
#include <utility>

class viewSpectrogram : public TraceView
{
    Q_OBJECT
public:
    explicit viewSpectrogram(QWidget* parent = nullptr);
    ~viewSpectrogram() override;

    // Lists rebuilt, the document's spectrogram settings taken, the spectrogram recomputed.
    void setup() override;
    // Lists rebuilt; the computed spectrogram is kept.
    void changeViewMode() { TraceView::setup(); }
    void setupAfterUndo() { TraceView::setup(); }
    // Starts the background computation for the view's current size.
    void DoSpectrogramOperation();

    // The finished spectrogram (nullptr before the first one), its formant frame count and its
    // display rectangle.
    const SpectrogramComputation* getHandle() const { return m_result ? &m_result->computation : nullptr; }
    int getFormantFrames() const { return m_result ? m_result->computation.m_nFormantsFrames : 0; }
    ShortRect getRect() const { return m_result ? m_result->computation.m_rSpectrogram : ShortRect{}; }
    bool isComputing() const { return m_worker.isRunning(); }
    SpectrogramWorker& worker() { return m_worker; }
    // The picture of the visible stretch while zoomed (nullptr at fit all or before it is
    // ready), the stretch's times in ms, and whether one is being computed.
    const SpectrogramWorker::Result* zoomedResult() const { return m_zoomed.get(); }
    std::pair<double, double> zoomedMS() const { return m_zoomedMS; }
    bool isComputingZoomed() const { return m_zoomWorker.isRunning(); }

signals:
    void computingChanged(bool computing);

protected:
    ValueGrid valueGrid() const override;
    QString caption() const override;
    QString valueText(int value) const override { return QStringLiteral("%1 Hz").arg(value); }
    void afterDragValue(int column, const QPointF& p) override;
    void drawAnalysis(QPainter& painter, const QRect& clip) override;
    void drawOverlay(QPainter& painter, const QRect& clip) override;
    void resizeEvent(QResizeEvent* event) override;
    void timeAxisChanged() override;

private:
    void resultArrived(std::shared_ptr<const SpectrogramWorker::Result> result);
    // Starts the computation of the visible stretch (nothing at fit all).
    void computeVisibleStretch();
    // Where the visible stretch's picture lies in the view, in pixels.
    QRectF zoomedArea() const;

    SpectrogramWorker m_worker;
    std::shared_ptr<const SpectrogramWorker::Result> m_result;
    SpectrogramSettings m_settings;
    QTimer m_resizeSettled;
    QSize m_requested; // the display size of the last run started
    SpectrogramWorker m_zoomWorker;
    std::shared_ptr<const SpectrogramWorker::Result> m_zoomed;
    std::pair<double, double> m_zoomedMS{0.0, 0.0};    // of m_zoomed
    std::pair<double, double> m_requestedMS{0.0, 0.0}; // of the stretch being computed
    QTimer m_zoomSettled;
};
