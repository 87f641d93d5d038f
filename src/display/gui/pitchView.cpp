#include "display/gui/pitchView.h"

#include "display/GridStep.h"
#include "display/gui/AnalysisTracks.h"
#include "display/gui/GraphGrids.h"
#include "display/gui/spectrogramView.h"
#include "document/MyDocument.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

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

std::vector<GridLabel> pitchView::timeAxisLabels(const QFontMetrics& metrics, const QRect& area) const
{
    std::vector<GridLabel> labels;
    const double length = lengthMS();
    // Labels at a round step that leaves room for the widest one.
    const double step =
        gridStep(length, area.width(), 0.0, metrics.horizontalAdvance(QStringLiteral("00000 ms")));
    if (step <= 0.0)
        return labels;
    const int top = area.bottom() + 4;
    for (int j = 0; j * step <= length + 1e-9; ++j) {
        const int x = area.left() + static_cast<int>(std::lround(j * step / length * area.width()));
        QString text = QString::number(j * step, 'g', 6);
        if (j == 0)
            text += QStringLiteral(" ms");
        const int width = metrics.horizontalAdvance(text);
        // Centred under its tick; the first starts at its tick, and one that would pass the
        // plot's right edge ends there.
        const int left = j == 0 ? x : std::min(x - width / 2, area.right() + 1 - width);
        labels.push_back({QRect(left, top, width, metrics.height()), text});
    }
    std::vector<GridLabel> kept;
    std::vector<QRect> taken;
    const QRect bounds(area.left(), top, area.width(), metrics.height());
    for (const GridLabel& label : labels) {
        // Two labels keep a few pixels apart.
        const QRect spaced = label.box.adjusted(-3, 0, 3, 0);
        if (bounds.contains(label.box) &&
            std::none_of(taken.begin(), taken.end(), [&](const QRect& r) { return r.intersects(spaced); })) {
            taken.push_back(label.box);
            kept.push_back(label);
        }
    }
    return kept;
}

void pitchView::drawTimeAxis(QPainter& painter, const QRect& area) const
{
    const double length = lengthMS();
    const double step = gridStep(length, area.width(), 0.0,
                                 painter.fontMetrics().horizontalAdvance(QStringLiteral("00000 ms")));
    if (step <= 0.0)
        return;
    painter.setPen(QColor(70, 70, 70));
    for (int j = 0; j * step <= length + 1e-9; ++j) {
        const int x = area.left() + static_cast<int>(std::lround(j * step / length * area.width()));
        painter.drawLine(x, area.bottom(), x, area.bottom() + 3);
    }
    const QFontMetrics metrics(painter.font(), painter.device());
    for (const GridLabel& label : timeAxisLabels(metrics, area))
        painter.drawText(label.box.left(), label.box.top() + metrics.ascent(), label.text);
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
        DrawAnyGrid(painter, area, low, high, m_pDoc->m_nPitchFreqGrid, high, QStringLiteral("Hz"),
                    ValueLabels::Outside);
    if (m_track.m_bHavePitch)
        DrawPitchTrack(painter, area, m_track.m_hdPitchFile, m_dStepMS, lengthMS(), 0.0, high,
                       QColor(0, 90, 200));
    painter.setPen(Qt::black);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(areaF);
    drawTimeAxis(painter, area);
}

void pitchView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintPicture(painter);
}
