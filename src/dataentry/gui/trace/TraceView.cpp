#include "dataentry/gui/trace/TraceView.h"

#include "dataentry/gui/DataEntrySupport.h"
#include "dataentry/gui/PlotThinning.h"

#include "display/gui/GraphGrids.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace
{
constexpr int kPoint = 3;             // side of a traced point, pixels
constexpr int kFollowIntervalMS = 40; // the table follows a drag at most this often
} // namespace

TraceView::TraceView(double fullScale, std::vector<std::string> keys, std::vector<int> rows, QWidget* parent)
    : DataEntryPlot(parent), m_lists(std::move(rows)), m_nScale(fullScale), m_keys(std::move(keys))
{
    m_active.assign(m_keys.size(), false);
    m_colors.assign(m_keys.size(), QColor(Qt::black));
    setCursor(Qt::CrossCursor);
    m_followTimer.setSingleShot(true);
    m_followTimer.setInterval(kFollowIntervalMS);
    connect(&m_followTimer, &QTimer::timeout, this, &TraceView::followNow);
}

void TraceView::setup()
{
    if (_pDoc)
        m_lists.setup(*_pDoc);
    update();
}

void TraceView::activeParameter(const std::string& key)
{
    for (std::size_t slot = 0; slot < m_keys.size(); ++slot)
        m_active[slot] = !key.empty() && key == m_keys[slot];
    update();
}

bool TraceView::hasActiveTrack() const
{
    return std::find(m_active.begin(), m_active.end(), true) != m_active.end();
}

void TraceView::setColor(const QColor& color, int slot)
{
    if (slot < 0 || slot >= static_cast<int>(m_colors.size()))
        return;
    m_colors[static_cast<std::size_t>(slot)] = color;
    update();
}

double TraceView::gridLengthMS() const
{
    if (!_pDoc)
        return 0.0;
    const int interval = std::max(_pDoc->getChannel(0)->m_nUpdateIntervalMS, 1);
    return static_cast<double>(frameCount()) * interval;
}

QRect TraceView::contentRect() const
{
    return QRect(-m_axis->offset(), 0, static_cast<int>(m_axis->contentWidth(width())), height());
}

void TraceView::updateColumn(int column)
{
    const int frames = frameCount();
    if (frames <= 0 || column < 0)
        return;
    // The lines to both neighbours change with the point.
    const int x0 = m_axis->pixelOf(column - 1, frames, width());
    const int x1 = m_axis->pixelOf(column + 2, frames, width());
    update(QRect(x0 - kPoint, 0, x1 - x0 + 2 * kPoint, height()));
}

void TraceView::startDrag()
{
    m_nFollowedColumn = -1;
    m_nPendingColumn = -1;
}

void TraceView::pointerMoved(const QPointF& p, bool /*buttonDown*/)
{
    const int column = columnAt(p.x());
    const int interval = std::max(_pDoc->getChannel(0)->m_nUpdateIntervalMS, 1);
    emit pointerReadout(QStringLiteral("%1 ms   %2")
                            .arg(static_cast<long long>(column + 1) * interval)
                            .arg(valueText(valueAt(p.y()))));
}

void TraceView::dragTo(const QPointF& p)
{
    const int column = columnAt(p.x());
    if (column < 0)
        return;
    followInTable(column + 1);
    m_stroke.add(column + 1);
    if (keepsDragTrace())
        m_arraytrace.push_back(p);
    const int value = valueAt(p.y());
    for (int slot = 0; slot < static_cast<int>(m_active.size()); ++slot)
        if (isActive(slot) && column < m_lists.columnCount(slot))
            m_lists.setValue(slot, column, value);
    afterDragValue(column, p);
    updateColumn(column);
    const QPoint pixel = p.toPoint();
    update(QRect(pixel.x() - 2, pixel.y() - 2, 5, 5));
}

void TraceView::followInTable(int tableColumn)
{
    m_nPendingColumn = tableColumn;
    // The table scrolls and repaints at most once per interval of the timer: a fast drag stays
    // smooth, and the table shows the last column when the drag slows down or ends.
    if (!m_followTimer.isActive()) {
        followNow();
        m_followTimer.start();
    }
}

void TraceView::followNow()
{
    if (!m_mainTableID || m_nPendingColumn < 0 || m_nPendingColumn == m_nFollowedColumn)
        return;
    m_nFollowedColumn = m_nPendingColumn;
    m_mainTableID->selectaColumn(m_nFollowedColumn);
}

void TraceView::leaveEvent(QEvent* event)
{
    m_nFollowedColumn = -1;
    emit pointerReadout(QString());
    QWidget::leaveEvent(event);
}

bool TraceView::finishDrag()
{
    m_followTimer.stop();
    followNow();
    return !releaseNeedsActiveTrack() || hasActiveTrack();
}

void TraceView::commitDrag()
{
    for (int slot = 0; slot < m_lists.slotCount(); ++slot)
        if (commitsSlot(slot))
            m_lists.writeBack(*_pDoc, slot, true);
}

void TraceView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const QRect clip = event->rect();
    painter.setClipRect(clip);
    painter.fillRect(rect(), Qt::white);
    drawAnalysis(painter, clip);
    drawGrids(painter, rect());
    drawOverlay(painter, clip);
    const int frames = frameCount();
    if (frames > 0 && width() > 0) {
        const int first = std::max(0, m_axis->firstFrameAt(clip.left() - kPoint, frames, width()) - 1);
        const int last =
            std::min(frames - 1, m_axis->firstFrameAt(clip.right() + kPoint, frames, width()) + 1);
        for (int slot = 0; slot < m_lists.slotCount(); ++slot)
            if (drawsSlot(slot))
                drawSlot(painter, slot, first, last);
    }
    drawTrace(painter);
    // The labels go over the tracks, each on a light box, so that neither hides the other.
    DrawGridLabels(painter, gridLabels(painter.fontMetrics()), true);
    drawCaption(painter);
    painter.setClipping(false);
    painter.setPen(QColor(90, 90, 90));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void TraceView::drawSlot(QPainter& painter, int slot, int first, int last) const
{
    if (slot >= static_cast<int>(m_lists._arrayGridValues.size()))
        return;
    const TraceTrackLists::CellList& shown = m_lists._arrayGridValues[static_cast<std::size_t>(slot)];
    last = std::min(last, static_cast<int>(shown.size()) - 1);
    const int frames = frameCount();
    const int w = width();
    const int h = height();
    // The active track is a line with points; the others are lighter points only, so that
    // the analysis behind them stays readable.
    const bool active = isActive(slot);
    QColor color = m_colors[static_cast<std::size_t>(slot)];
    if (!active)
        color.setAlpha(140);
    const double side = active ? kPoint : kPoint - 1.0;
    // A long document puts many frames on one pixel column: what would not change the picture
    // is left out.
    PointThinning points(h, kPoint);
    LineThinning line;
    for (int k = first; k <= last; ++k) {
        int value = 0;
        // Placeholders (-1) and missing cells are not drawn; a line does not run to or from 0
        // (an unvoiced frame, a formant not found).
        if (!shown.value(static_cast<std::size_t>(k), value) || value < 0) {
            line.breakRun();
            continue;
        }
        // The point sits in the middle of its column.
        const double x = m_axis->xOf(k + 0.5, frames, w);
        const double y = h - value * h / m_nScale;
        const QRectF square(x - side / 2.0, y - side / 2.0, side, side);
        if (points.fresh(static_cast<int>(std::lround(square.x())),
                         static_cast<int>(std::lround(square.y()))))
            painter.fillRect(square, color);
        if (value == 0)
            line.breakRun();
        else if (active)
            line.add(QPointF(x, y));
    }
    if (active)
        painter.strokePath(line.path(), QPen(color, 1.5));
}

void TraceView::drawTrace(QPainter& painter) const
{
    if (m_arraytrace.empty())
        return;
    QPainterPath path;
    for (const QPointF& p : m_arraytrace)
        path.addEllipse(QRectF(p.x(), p.y(), 1.0, 1.0));
    painter.strokePath(path, QPen(Qt::black));
}

QFont TraceView::captionFont() const
{
    QFont bold = font();
    bold.setBold(true);
    return bold;
}

QRect TraceView::captionBox() const
{
    const QString text = caption();
    if (text.isEmpty())
        return {};
    const QRect box = QFontMetrics(captionFont()).boundingRect(text).adjusted(-4, -1, 4, 1);
    return QRect(width() - box.width() - 6, 4, box.width(), box.height());
}

void TraceView::drawCaption(QPainter& painter) const
{
    const QRect at = captionBox();
    if (at.isEmpty())
        return;
    painter.setFont(captionFont());
    painter.fillRect(at, QColor(255, 255, 255, 200));
    painter.setPen(Qt::black);
    painter.drawText(at, Qt::AlignCenter, caption());
}
