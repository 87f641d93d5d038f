#include "dataentry/gui/graphical/TrackPlotView.h"

#include "dataentry/gui/DataEntrySupport.h"

#include "display/gui/GraphGrids.h"
#include "table/gui/mainTable.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace
{
constexpr int kPointSize = 4;    // the square and the oval of a track point, in pixels
constexpr int kGateMinimum = 10; // a gated point shows only above this amplitude (dB)
} // namespace

TrackPlotView::TrackPlotView(int scale, std::initializer_list<TrackDefinition> tracks, QWidget* parent)
    : DataEntryPlot(parent), m_nScale(scale)
{
    for (const TrackDefinition& definition : tracks) {
        m_tracks.emplace_back();
        static_cast<TrackDefinition&>(m_tracks.back()) = definition;
    }
}

std::vector<CellRef> TrackPlotView::rowCells(int row, int frames) const
{
    std::vector<CellRef> cells(static_cast<std::size_t>(frames));
    const int interval = _pDoc->updateInterval();
    for (int k = 0; k < frames; ++k)
        cells[k] = _pDoc->_dataTableDictionary.cellAt(static_cast<long long>(k + 1) * interval, row);
    return cells;
}

void TrackPlotView::setup()
{
    const int frames = frameCount();
    for (Track& track : m_tracks) {
        track.cells.clear();
        track.gate.clear();
        if (!_pDoc)
            continue;
        track.cells = rowCells(track.row, frames);
        if (track.gateRow >= 0)
            track.gate = rowCells(track.gateRow, frames);
    }
    update();
}

void TrackPlotView::activeParameter(const std::string& name)
{
    for (Track& track : m_tracks)
        track.active = name == track.name;
    update();
}

bool TrackPlotView::hasActiveTrack() const
{
    return std::any_of(m_tracks.begin(), m_tracks.end(), [](const Track& t) { return t.active; });
}

bool TrackPlotView::isActive(const std::string& name) const
{
    return std::any_of(m_tracks.begin(), m_tracks.end(),
                       [&](const Track& t) { return t.active && name == t.name; });
}

void TrackPlotView::setTrackColor(int slot, const QColor& color)
{
    if (slot < 0 || slot >= static_cast<int>(m_tracks.size()))
        return;
    m_tracks[slot].color = color;
    update();
}

void TrackPlotView::updateFrame(int frame)
{
    const int frames = frameCount();
    if (frames <= 0 || frame < 0)
        return;
    const int x = m_axis->pixelOf(frame, frames, width());
    update(QRect(x - 1, 0, kPointSize + 3, height()));
}

void TrackPlotView::startDrag()
{
    // Take the cells afresh: an edit in the table may have replaced some since the last set-up,
    // and committing stale cells would undo that edit.
    setup();
    m_nFollowedColumn = -1;
}

void TrackPlotView::pointerMoved(const QPointF& p, bool buttonDown)
{
    if (!buttonDown)
        followInTable(frameAt(p.x()));
}

void TrackPlotView::dragTo(const QPointF& p)
{
    const int frame = frameAt(p.x());
    if (frame < 0)
        return;
    const int value = valueAt(p.y());
    followInTable(frame);
    m_stroke.add(frame + 1);
    m_arraytrace.push_back(p);
    bool changed = false;
    for (Track& track : m_tracks) {
        if (!track.active || frame >= static_cast<int>(track.cells.size()) || !track.cells[frame])
            continue;
        track.cells[frame]->set_nValue(value);
        changed = true;
    }
    const QPoint pixel = p.toPoint();
    update(QRect(pixel.x() - 2, pixel.y() - 2, 5, 5));
    if (changed) {
        updateFrame(frame);
        emit frameEdited(frame);
    }
}

void TrackPlotView::followInTable(int frame)
{
    // Selecting the column the table already shows selected would only cost time.
    if (!m_mainTableID || frame < 0 || frame + 1 == m_nFollowedColumn)
        return;
    m_nFollowedColumn = frame + 1;
    m_mainTableID->selectaColumn(m_nFollowedColumn);
}

void TrackPlotView::leaveEvent(QEvent* event)
{
    m_nFollowedColumn = -1; // the user may select in the table meanwhile
    QWidget::leaveEvent(event);
}

bool TrackPlotView::finishDrag()
{
    m_arraytrace.clear();
    return hasActiveTrack();
}

void TrackPlotView::commitActiveTracks()
{
    const int interval = _pDoc->updateInterval();
    for (const Track& track : m_tracks) {
        if (!track.active)
            continue;
        for (std::size_t k = 0; k < track.cells.size(); ++k) {
            const CellRef& cell = track.cells[k];
            if (!cell)
                continue;
            cell->setInttoStringValue(cell->_nValue());
            CellArray* column =
                _pDoc->_dataTableDictionary.objectForKey(static_cast<long long>(k + 1) * interval);
            if (column && track.row < static_cast<int>(column->size()))
                (*column)[track.row] = cell;
        }
    }
}

void TrackPlotView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.setClipRect(event->rect());
    const QRect bounds = rect();
    painter.fillRect(bounds, Qt::white);
    painter.setPen(Qt::black);
    painter.drawRect(bounds.adjusted(0, 0, -1, -1));
    if (!_pDoc)
        return;

    drawGrids(painter, bounds);

    drawTrace(painter, event->rect());

    // Only the frames whose points reach into the exposed rectangle are drawn.
    const int frames = frameCount();
    if (frames > 0 && width() > 0) {
        const QRect clip = event->rect();
        const int first = m_axis->firstFrameAt(clip.left() - kPointSize, frames, width());
        const int last = m_axis->firstFrameAt(clip.right() + 1, frames, width()) + 1;
        for (const Track& track : m_tracks)
            if (drawsTrack(track))
                drawTrack(painter, track, first, std::min(last, frames - 1));
    }
    // The labels go over the tracks, each on a light box, so that neither hides the other.
    DrawGridLabels(painter, gridLabels(painter.fontMetrics()), true);
    drawCaption(painter);
}

double TrackPlotView::gridLengthMS() const
{
    const double length = _pDoc->getChannel(0)->m_dLengthMS;
    return std::isfinite(length) && length > 0.0 ? std::trunc(length) : 0.0;
}

void TrackPlotView::drawTrace(QPainter& painter, const QRect& clip) const
{
    if (m_arraytrace.empty())
        return;
    QPainterPath path;
    const QRectF area = QRectF(clip).adjusted(-2, -2, 2, 2);
    for (const QPointF& p : m_arraytrace)
        if (area.contains(p))
            path.addEllipse(QRectF(p.x(), p.y(), 1.0, 1.0));
    painter.strokePath(path, QPen(Qt::black));
}

void TrackPlotView::drawTrack(QPainter& painter, const Track& track, int first, int last) const
{
    const int frames = frameCount();
    const int w = width();
    const int h = height();
    QPainterPath path;
    last = std::min(last, static_cast<int>(track.cells.size()) - 1);
    for (int k = first; k <= last; ++k) {
        const CellRef& cell = track.cells[k];
        if (!cell)
            continue;
        if (track.gateRow >= 0) {
            const bool voiced = k < static_cast<int>(track.gate.size()) && track.gate[k] &&
                                track.gate[k]->_nValue() > kGateMinimum;
            if (!voiced)
                continue;
        }
        const int x = m_axis->pixelOf(k, frames, w);
        const int y = h - static_cast<int>(static_cast<long long>(cell->_nValue()) * h / m_nScale);
        painter.fillRect(x, y, kPointSize, kPointSize, track.color);
        path.addEllipse(x, y, kPointSize, kPointSize);
    }
    painter.strokePath(path, QPen(track.color));
}
