#include "display/gui/ChannelPlotView.h"

#include "document/MyDocument.h"

#include <QPainter>

ChannelPlotView::ChannelPlotView(MyDocument* document, int channel, int minimumHeight, QWidget* parent)
    : QWidget(parent), _nChannel(channel), m_pDoc(document)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(200, minimumHeight);
}

double ChannelPlotView::lengthMS() const
{
    const Channels& c = *m_pDoc->getChannel(_nChannel);
    return c.m_dSampleRate > 0 ? c.m_dwFileLength * 1000.0 / c.m_dSampleRate : 0.0;
}

void ChannelPlotView::setCursorMS(double ms)
{
    m_dCursorMS = ms;
    update();
}

QRect ChannelPlotView::paintPicture(QPainter& painter)
{
    painter.fillRect(rect(), palette().window());
    const QRect area = plotArea();
    drawPicture(painter, area, true);
    if (m_dCursorMS >= 0.0 && lengthMS() > 0.0) {
        const int x = area.left() + static_cast<int>(m_dCursorMS / lengthMS() * area.width());
        painter.setPen(QPen(QColor(230, 120, 0), 1));
        painter.drawLine(x, area.top(), x, area.bottom());
    }
    return area;
}
