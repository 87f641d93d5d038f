#include "dataentry/gui/DataEntryPlot.h"

#include "dataentry/gui/DataEntrySupport.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QMouseEvent>
#include <QPainter>

#include <optional>

#include <algorithm>

DataEntryPlot::DataEntryPlot(QWidget* parent) : QWidget(parent)
{
    // Mouse moves without a button reach the view too (the table follows the pointer).
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void DataEntryPlot::setTimeAxis(TimeAxisZoom* axis)
{
    if (m_axis != &m_ownAxis)
        disconnect(m_axis, nullptr, this, nullptr);
    m_axis = axis ? axis : &m_ownAxis;
    connect(m_axis, &TimeAxisZoom::changed, this, [this] { timeAxisChanged(); });
    update();
}

int DataEntryPlot::frameCount() const
{
    return _pDoc ? std::max(_pDoc->getChannel(0)->m_nColumnNum, 0) : 0;
}

int DataEntryPlot::frameAt(double x) const
{
    return m_axis->frameAt(x, frameCount(), width());
}

int DataEntryPlot::valueAt(double y) const
{
    return valueAtHeight(y, height(), fullScale());
}

void DataEntryPlot::drawGrids(QPainter& painter, const QRect& area) const
{
    if (!_pDoc)
        return;
    const auto [startMS, endMS] = m_axis->visibleMS(gridLengthMS(), width());
    TimeGrids(painter, area, startMS, endMS,
              m_axis->timeGridStep(_pDoc->m_nSpecTimeGrid, gridLengthMS(), width()), false);
    const ValueGrid grid = valueGrid();
    DrawAnyGrid(painter, area, grid.low, grid.high, grid.step, grid.fullScale, grid.label, ValueLabels::None);
}

std::vector<GridLabel> DataEntryPlot::gridLabels(const QFontMetrics& metrics) const
{
    if (!_pDoc)
        return {};
    std::optional<TimeSpan> times;
    if (timeLabels()) {
        const auto [startMS, endMS] = m_axis->visibleMS(gridLengthMS(), width());
        times =
            TimeSpan{startMS, endMS, m_axis->timeGridStep(_pDoc->m_nSpecTimeGrid, gridLengthMS(), width())};
    }
    return plotLabels(metrics, rect(), valueGrid(), times, captionBox());
}

bool DataEntryPlot::inside(const QPointF& p) const
{
    return insideView(p, size());
}

void DataEntryPlot::mousePressEvent(QMouseEvent* event)
{
    m_bDrawing = false;
    if (event->button() != Qt::LeftButton || !_pDoc || !inside(event->position()) || !mayStartDrag())
        return;
    startDrag();
    m_arraytrace.clear();
    m_stroke.reset();
    _pDoc->saveUndo();
    m_bDrawing = true;
}

void DataEntryPlot::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF p = event->position();
    if (!_pDoc || !inside(p))
        return;
    const bool buttonDown = (event->buttons() & Qt::LeftButton) != 0;
    pointerMoved(p, buttonDown);
    if (buttonDown && m_bDrawing && hasActiveTrack())
        dragTo(p);
}

void DataEntryPlot::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !m_bDrawing)
        return;
    m_bDrawing = false;
    const bool commit = finishDrag();
    if (!commit || !_pDoc)
        return;
    commitDrag();
    if (m_mainTableID)
        m_mainTableID->refreshTable();
    else
        _pDoc->updateChangeCount(MyDocument::ChangeDone);
    afterCommit();
    _pDoc->saveRedo();
    m_arraytrace.clear();
    update();
    emit committed();
}
