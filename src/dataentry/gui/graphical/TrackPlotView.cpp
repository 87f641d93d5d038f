#include "dataentry/gui/graphical/TrackPlotView.h"

#include "dataentry/gui/DataEntrySupport.h"
#include "dataentry/gui/PlotThinning.h"

#include "display/gui/GraphGrids.h"
#include "table/gui/mainTable.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <climits>
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

bool TrackPlotView::frameValue(int frame, int row, int& value) const
{
    if (!_pDoc || frame < 0 || frame >= frameCount())
        return false;
    return _pDoc->_dataTableDictionary.valueAt(static_cast<long long>(frame + 1) * _pDoc->updateInterval(),
                                               row, value);
}

void TrackPlotView::setup()
{
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
    const long long key = static_cast<long long>(frame + 1) * _pDoc->updateInterval();
    for (Track& track : m_tracks) {
        // The cell the table shows (its column made now if it was not yet).
        const CellRef cell = track.active && frame < frameCount()
                                 ? _pDoc->_dataTableDictionary.cellAt(key, track.row)
                                 : nullptr;
        if (!cell)
            continue;
        cell->set_nValue(value);
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
    // The stroke changed the values of the cells of its columns; their texts follow. A column
    // the stroke passed over without making it holds its value as its text already.
    const StrokeSpan& stroke = lastStroke();
    const int interval = _pDoc->updateInterval();
    for (const Track& track : m_tracks) {
        if (!track.active || stroke.first() < 1)
            continue;
        for (int column = stroke.first(); column <= stroke.last(); ++column) {
            const CellArray* cells =
                _pDoc->_dataTableDictionary.peek(static_cast<long long>(column) * interval).cells;
            if (cells && track.row < static_cast<int>(cells->size()) && (*cells)[track.row])
                (*cells)[track.row]->setInttoStringValue((*cells)[track.row]->_nValue());
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
    // A long document puts hundreds of frames on one pixel column: a point drawn again would
    // change nothing.
    PointThinning points(h, kPointSize);
    for (int k = std::max(first, 0); k <= last; ++k) {
        int value = 0;
        if (!frameValue(k, track.row, value))
            continue;
        if (track.gateRow >= 0) {
            int gate = 0;
            if (!frameValue(k, track.gateRow, gate) || gate <= kGateMinimum)
                continue;
        }
        const int x = m_axis->pixelOf(k, frames, w);
        const long long y = h - static_cast<long long>(value) * h / m_nScale;
        if (y < INT_MIN / 2 || y > h || !points.fresh(x, static_cast<int>(y)))
            continue;
        painter.fillRect(x, static_cast<int>(y), kPointSize, kPointSize, track.color);
        path.addEllipse(x, static_cast<int>(y), kPointSize, kPointSize);
    }
    painter.strokePath(path, QPen(track.color));
}
