#include "display/gui/pitchView.h"

#include "display/GridStep.h"
#include "display/gui/AnalysisTracks.h"
#include "display/gui/GraphGrids.h"
#include "display/gui/spectrogramView.h"
#include "document/MyDocument.h"

#include <QFontMetricsF>
#include <QPainter>

pitchView::pitchView(MyDocument* document, int channel, QWidget* parent)
    : ChannelPlotView(document, channel, 60, parent)
{
}

QRect pitchView::plotArea() const
{
    // Lined up with the spectrogram above; the time labels sit below it.
    return rect().adjusted(spectrogramView::kLeftMargin, spectrogramView::kTopMargin,
                           -spectrogramView::kRightMargin, -kTimeAxisHeight);
}

void pitchView::drawTimeAxis(QPainter& painter, const QRectF& area) const
{
    const double length = lengthMS();
    const QFontMetricsF metrics(painter.font(), painter.device());
    // Labels at a round step that leaves room for the widest one.
    const double step =
        gridStep(length, area.width(), 0.0, metrics.horizontalAdvance(QStringLiteral("00000 ms")));
    if (step <= 0.0)
        return;
    painter.setPen(QColor(70, 70, 70));
    const double baseline = area.bottom() + metrics.ascent() + 4.0;
    for (int j = 0; j * step <= length + 1e-9; ++j) {
        const double x = area.left() + j * step / length * area.width();
        painter.drawLine(QPointF(x, area.bottom()), QPointF(x, area.bottom() + 3.0));
        QString text = QString::number(j * step, 'g', 6);
        if (j == 0)
            text += QStringLiteral(" ms");
        const double width = metrics.horizontalAdvance(text);
        painter.drawText(QPointF(j == 0 ? x : x - width / 2.0, baseline), text);
    }
}

void pitchView::setup()
{
    const PitchSettings settings = PitchSettings::fromDocument(*m_pDoc);
    m_dStepMS = settings.m_dPitchStepSize;
    m_track = PitchTrackComputation();
    const Channels& channel = *m_pDoc->getChannel(_nChannel);
    if (channel.hasAudio())
        m_track.DoPitchCepstral(channel, settings);
    update();
}

void pitchView::drawPicture(QPainter& painter, const QRectF& areaF, bool forScreen) const
{
    const QRect area = areaF.toAlignedRect();
    painter.fillRect(area, Qt::white);
    // The axis runs from 0 Hz to the top of the display range; grid lines from its bottom.
    const double low = m_pDoc->m_nPitchDisplayLow, high = std::max(1, m_pDoc->m_nPitchDisplayHigh);
    if (forScreen || m_pDoc->m_bPitchDrawTimeGrid)
        TimeGrids(painter, area, 0.0, lengthMS(), m_pDoc->m_nSpecTimeGrid, false);
    if (forScreen || m_pDoc->m_bPitchDrawFreqGrid)
        DrawAnyGrid(painter, area, low, high, m_pDoc->m_nPitchFreqGrid, high, QStringLiteral("Hz"));
    if (m_track.m_bHavePitch)
        DrawPitchTrack(painter, area, m_track.m_hdPitchFile, m_dStepMS, lengthMS(), 0.0, high,
                       QColor(0, 90, 200));
    painter.setPen(Qt::black);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(areaF);
    drawTimeAxis(painter, areaF);
}

void pitchView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintPicture(painter);
}
