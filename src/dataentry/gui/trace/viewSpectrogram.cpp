#include "dataentry/gui/trace/viewSpectrogram.h"

#include "dataentry/TraceDataEntry.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "dataentry/gui/trace/viewAmplitudes.h"
#include "display/gui/AnalysisTracks.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QPainter>
#include <QRegion>
#include <QResizeEvent>

#include <algorithm>
#include <cmath>

namespace
{
constexpr int kResizeSettleMS = 250; // a resize counts as ended after this long without another
// The automatic formant tracks, F1 first: fixed colours that stand apart from the grey
// spectrogram and from the traces (drawn in the user's colours, black by default).
const std::array<QColor, 5> kFormantColors = {QColor(220, 40, 40), QColor(30, 160, 60), QColor(40, 90, 230),
                                              QColor(230, 140, 0), QColor(170, 50, 200)};
} // namespace

viewSpectrogram::viewSpectrogram(QWidget* parent)
    : TraceView(5000.0, {"f1", "f2", "f3", "f4", "f5"}, {Row::f1, Row::f2, Row::f3, Row::f4, Row::f5},
                parent),
      m_worker(this), m_zoomWorker(this)
{
    m_resizeSettled.setSingleShot(true);
    m_resizeSettled.setInterval(kResizeSettleMS);
    connect(&m_resizeSettled, &QTimer::timeout, this, &viewSpectrogram::DoSpectrogramOperation);
    connect(&m_worker, &SpectrogramWorker::finished, this, &viewSpectrogram::resultArrived);
    m_zoomSettled.setSingleShot(true);
    m_zoomSettled.setInterval(kResizeSettleMS);
    connect(&m_zoomSettled, &QTimer::timeout, this, &viewSpectrogram::computeVisibleStretch);
    connect(&m_zoomWorker, &SpectrogramWorker::finished, this,
            [this](std::shared_ptr<const SpectrogramWorker::Result> result) {
                m_zoomed = std::move(result);
                m_zoomedMS = m_requestedMS;
                update();
            });
}

viewSpectrogram::~viewSpectrogram() = default;

void viewSpectrogram::setup()
{
    if (_pDoc)
        m_settings = SpectrogramSettings::fromDocument(*_pDoc);
    TraceView::setup();
    DoSpectrogramOperation();
}

void viewSpectrogram::DoSpectrogramOperation()
{
    m_resizeSettled.stop();
    if (!_pDoc || width() <= 0 || height() <= 0)
        return;
    m_requested = size();
    m_worker.start(*_pDoc->getChannel(2), m_settings, width(), height());
    emit computingChanged(true);
    // The visible stretch of the old settings or size is of no more use.
    m_zoomed.reset();
    computeVisibleStretch();
    update();
}

void viewSpectrogram::timeAxisChanged()
{
    DataEntryPlot::timeAxisChanged();
    m_zoomSettled.start();
}

void viewSpectrogram::computeVisibleStretch()
{
    m_zoomSettled.stop();
    const Channels* model = _pDoc ? _pDoc->getChannel(2) : nullptr;
    if (!model || !model->hasAudio() || m_axis->isFitAll() || width() <= 0 || height() <= 0) {
        m_zoomWorker.cancel();
        m_zoomed.reset();
        return;
    }
    const std::pair<double, double> visible = m_axis->visibleMS(gridLengthMS(), width());
    if (m_zoomed && visible == m_zoomedMS && m_zoomed->width == width() && m_zoomed->height == height())
        return; // already there
    const double rate = model->m_dSampleRate;
    const std::size_t held = model->sampleCount();
    const auto first = std::min(static_cast<std::size_t>(std::max(visible.first, 0.0) * rate / 1000.0), held);
    const auto last = std::min(static_cast<std::size_t>(std::ceil(visible.second * rate / 1000.0)), held);
    if (!(rate >= 1.0) || last <= first)
        return;
    // The stretch as a channel of its own; the worker takes its own copy of it.
    Channels stretch;
    stretch.m_dSampleRate = rate;
    stretch.m_dwFileLength = static_cast<double>(last - first);
    stretch.m_dLengthMS = stretch.m_dwFileLength * 1000.0 / rate;
    stretch.m_hData = MemoryBlock::newHandleClear((last - first) * sizeof(float) + 100);
    if (!stretch.m_hData)
        return;
    std::copy(model->samples() + first, model->samples() + last, stretch.samples());
    m_requestedMS = {first * 1000.0 / rate, last * 1000.0 / rate};
    m_zoomWorker.start(stretch, m_settings, width(), height());
}

QRectF viewSpectrogram::zoomedArea() const
{
    const double length = gridLengthMS();
    if (!m_zoomed || !(length > 0.0))
        return {};
    const double content = static_cast<double>(m_axis->contentWidth(width()));
    const double left = m_zoomedMS.first / length * content - m_axis->offset();
    const double right = m_zoomedMS.second / length * content - m_axis->offset();
    return QRectF(left, 0.0, right - left, height());
}

void viewSpectrogram::resultArrived(std::shared_ptr<const SpectrogramWorker::Result> result)
{
    m_result = std::move(result);
    emit computingChanged(false);
    update();
}

void viewSpectrogram::resizeEvent(QResizeEvent* event)
{
    TraceView::resizeEvent(event);
    // Computed again once the size stops changing; a run for this very size needs no other.
    if (m_requested == size())
        return;
    if (_pDoc)
        m_resizeSettled.start();
}

void viewSpectrogram::afterDragValue(int column, const QPointF& p)
{
    if (!m_result || !_pDoc || !_containerID())
        return;
    viewAmplitudes* amplitudes = _containerID()->_viewAmplitudes();
    const SpectrogramComputation& s = m_result->computation;
    const double vertical = s.m_rSpectrogram.bottom - s.m_rSpectrogram.top;
    const double horizontal = s.m_rSpectrogram.right - s.m_rSpectrogram.left;
    for (int slot = 0; slot < 5; ++slot) {
        if (!isActive(slot))
            continue;
        const double amplitude = s.GetSpectrogramAmplitue(
            vertical, horizontal, _pDoc->m_nSpecDynamicRange, TraceDataEntry::kAmplitudeCeiling,
            static_cast<int>(std::trunc(vertical - p.y())),
            static_cast<int>(std::trunc(m_axis->fitAllX(p.x(), width()))));
        amplitudes->remoteTraceValue(amplitude, column, slot);
    }
}

TraceView::ValueGrid viewSpectrogram::valueGrid() const
{
    const MyDocument& doc = *_pDoc;
    return {0.0, static_cast<double>(doc.m_nSpecfrequencyRange),
            doc.m_bSpecDrawFrequencyGrid ? static_cast<double>(doc.m_nSpecFrequencyGrid) : 0.0, fullScale(),
            QStringLiteral("Hz")};
}

QString viewSpectrogram::caption() const
{
    for (int slot = 0; slot < 5; ++slot)
        if (isActive(slot))
            return QStringLiteral("F%1").arg(slot + 1);
    return QStringLiteral("Spectrogram");
}

void viewSpectrogram::drawAnalysis(QPainter& painter, const QRect&)
{
    if (!m_result || m_result->image.isNull())
        return;
    // Until the spectrogram for a new size arrives, the old picture is stretched over the view.
    painter.setRenderHint(QPainter::SmoothPixmapTransform,
                          m_result->width != width() || m_result->height != height());
    if (m_axis->isFitAll()) {
        painter.drawImage(rect(), m_result->image);
        return;
    }
    // Zoomed, the visible part of the picture is stretched over the view; the picture is not
    // computed again.
    const double scale = m_result->image.width() / static_cast<double>(m_axis->contentWidth(width()));
    const QRectF source(m_axis->offset() * scale, 0.0, width() * scale, m_result->image.height());
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.drawImage(QRectF(rect()), m_result->image, source);
    // Over its part of the axis, the visible stretch computed at the view's resolution.
    if (m_zoomed && !m_zoomed->image.isNull())
        painter.drawImage(zoomedArea(), m_zoomed->image);
}

void viewSpectrogram::drawOverlay(QPainter& painter, const QRect&)
{
    if (m_result && _pDoc && _pDoc->m_bSpecDrawFormantTracking) {
        const bool zoomed = m_zoomed && !m_axis->isFitAll();
        const QRectF area = zoomed ? zoomedArea() : QRectF();
        painter.save();
        if (zoomed) // the whole recording's tracks only where the stretch's are not
            painter.setClipRegion(QRegion(rect()).subtracted(QRegion(area.toAlignedRect())));
        DrawFormantTracks(painter, contentRect(), m_result->computation,
                          m_result->computation.m_settings.m_nSpecfrequencyRange, kFormantColors);
        painter.restore();
        if (zoomed)
            DrawFormantTracks(painter, area.toRect(), m_zoomed->computation,
                              m_zoomed->computation.m_settings.m_nSpecfrequencyRange, kFormantColors);
    }
    if (m_worker.isRunning()) {
        const QString text = QStringLiteral("Computing spectrogram\u2026");
        const QRect box = painter.fontMetrics().boundingRect(text).adjusted(-8, -4, 8, 4);
        const QRect at(rect().center() - box.center(), box.size());
        painter.fillRect(at, QColor(255, 255, 230, 230));
        painter.setPen(QColor(80, 80, 80));
        painter.drawRect(at.adjusted(0, 0, -1, -1));
        painter.drawText(at, Qt::AlignCenter, text);
    }
}
