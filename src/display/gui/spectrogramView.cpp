#include "display/gui/spectrogramView.h"

#include "display/gui/AnalysisTracks.h"
#include "display/gui/GraphGrids.h"
#include "document/MyDocument.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace
{
const std::array<QColor, 5> kFormantColors{QColor(220, 30, 30), QColor(30, 150, 30), QColor(30, 70, 220),
                                           QColor(200, 120, 0), QColor(150, 30, 170)};
} // namespace

spectrogramView::spectrogramView(MyDocument* document, int channel, QWidget* parent)
    : ChannelPlotView(document, channel, 120, parent), m_pWorker(new SpectrogramWorker(this))
{
    connect(m_pWorker, &SpectrogramWorker::finished, this, &spectrogramView::finished);
    m_resizeTimer.setSingleShot(true);
    m_resizeTimer.setInterval(kResizeSettleMS);
    connect(&m_resizeTimer, &QTimer::timeout, this, &spectrogramView::setup);
}

QRect spectrogramView::plotArea() const
{
    return rect().adjusted(kLeftMargin, kTopMargin, -kRightMargin, -kBottomMargin);
}

void spectrogramView::setup()
{
    const QRect area = plotArea();
    const Channels& channel = *m_pDoc->getChannel(_nChannel);
    if (area.width() < 1 || area.height() < 1 || !channel.hasAudio())
        return;
    m_pWorker->start(channel, SpectrogramSettings::fromDocument(*m_pDoc), area.width(), area.height());
}

void spectrogramView::finished(std::shared_ptr<const SpectrogramWorker::Result> result)
{
    m_pResult = std::move(result);
    update();
    emit pictureReady();
}

void spectrogramView::drawPicture(QPainter& painter, const QRectF& areaF, bool forScreen) const
{
    const QRect area = areaF.toAlignedRect();
    painter.fillRect(area, Qt::white);
    if (m_pResult && !m_pResult->image.isNull())
        painter.drawImage(areaF, m_pResult->image);
    const int range = m_pDoc->m_nSpecfrequencyRange;
    if (m_pResult && m_pDoc->m_bSpecDrawFormantTracking)
        DrawFormantTracks(painter, area, m_pResult->computation, range, kFormantColors);
    // A time grid of 0 follows the zoom: the grid picks a round step for the width.
    if (forScreen || m_pDoc->m_bSpecDrawTimeGrid)
        TimeGrids(painter, area, 0.0, lengthMS(), m_pDoc->m_nSpecTimeGrid, true);
    if (forScreen || m_pDoc->m_bSpecDrawFrequencyGrid)
        DrawAnyGrid(painter, area, 0.0, range, m_pDoc->m_nSpecFrequencyGrid, range, QStringLiteral("Hz"),
                    ValueLabels::Outside);
    painter.setPen(Qt::black);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(areaF);
}

void spectrogramView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRect area = paintPicture(painter);
    if (!m_pResult) {
        painter.setPen(Qt::darkGray);
        painter.drawText(area, Qt::AlignCenter,
                         m_pDoc->getChannel(_nChannel)->hasAudio() ? tr("Computing...") : tr("No audio"));
    }
}

void spectrogramView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (!m_pResult && !m_pWorker->isRunning())
        setup(); // the first picture as soon as the view has a size
    else
        m_resizeTimer.start();
}

void spectrogramView::mousePressEvent(QMouseEvent* event)
{
    const QRect area = plotArea();
    if (!area.contains(event->pos()) || lengthMS() <= 0.0)
        return;
    const double fx = static_cast<double>(event->pos().x() - area.left()) / area.width();
    const double fy = static_cast<double>(area.bottom() - event->pos().y()) / area.height();
    const double ms = fx * lengthMS();
    const double hz = fy * m_pDoc->m_nSpecfrequencyRange;
    double level = 0.0;
    if (m_pResult && m_pResult->computation.m_bHaveSpectrogram) {
        const SpectrogramComputation& c = m_pResult->computation;
        const int column = std::clamp(static_cast<int>(fx * c.m_nDisplayRange), 0, c.m_nDisplayRange - 1);
        const int row =
            std::clamp(static_cast<int>(fy * c.m_nDisplayVerticalRange), 0, c.m_nDisplayVerticalRange - 1);
        level = c.level(column, row) - c.m_settings.m_nSpecDynamicRange;
    }
    setCursorMS(ms);
    emit cursorMoved(ms, hz, level);
}
