#pragma once
// spectrogramView: the spectrogram of one channel (`_nChannel`: 0 the table data, 2 the model)
// with its formant tracks, time and frequency grids and a time cursor. The computation runs
// on a SpectrogramWorker for the plot area's size in pixels; while it runs (and while a
// resize goes on) the last picture is shown stretched. A resize recomputes once it has ended
// (no new size for a moment). Clicking sets the time cursor and reports time, frequency and
// level under the pointer. Main thread only.
#include "display/gui/ChannelPlotView.h"
#include "display/gui/SpectrogramWorker.h"

#include <QTimer>

#include <memory>

class spectrogramView : public ChannelPlotView
{
    Q_OBJECT
public:
    // Margins of the plot area in pixels: room for the frequency labels and the time labels.
    static constexpr int kLeftMargin = 64;
    static constexpr int kRightMargin = 10;
    static constexpr int kTopMargin = 6;
    static constexpr int kBottomMargin = 6;
    // How long a size must stay before the picture is recomputed for it.
    static constexpr int kResizeSettleMS = 120;

    spectrogramView(MyDocument* document, int channel, QWidget* parent = nullptr);

    // Starts computing for the current size and settings.
    void setup();
    // The finished computation shown, or nullptr before the first one.
    const SpectrogramWorker::Result* result() const { return m_pResult.get(); }
    SpectrogramWorker* worker() const { return m_pWorker; }
    QRect plotArea() const override;
    void drawPicture(QPainter& painter, const QRectF& area, bool forScreen) const override;

signals:
    // A complete picture is shown (after the first computation and after each recomputation).
    void pictureReady();
    // The user clicked: time (ms), frequency (Hz) and level (dB re the loudest frame) there.
    void cursorMoved(double ms, double hz, double levelDB);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void finished(std::shared_ptr<const SpectrogramWorker::Result> result);

    SpectrogramWorker* m_pWorker;
    std::shared_ptr<const SpectrogramWorker::Result> m_pResult;
    QTimer m_resizeTimer;
};
