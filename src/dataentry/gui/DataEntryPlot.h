#pragma once
// What a plot of either data-entry window is: a view of the document's frames along x, on the
// time axis the window's plots share (zoom and scroll, see TimeAxisZoom), values along y from 0
// at the bottom edge to the full scale at the top edge; and a drag with the left button that is
// one undo step: the press inside the view records the undo step, each move while the button is
// down sets values (the subclass's dragTo), the release writes them back to the table data
// (commitDrag), refreshes the table the window was opened from (or marks the document changed
// without one), and records the redo step.
//
// Mapping (W x H = the view's size, N = channel 0's m_nColumnNum), at fit all (zoomed, W is the
// zoomed content width and x counts from its left end):
//   frame under the pointer k = trunc(x * N / W), table column k + 1;
//   value under the pointer v = trunc((H - y) * full scale / H), not clamped to the limits.
// Subclasses: TrackPlotView (graphical window), TraceView (trace window). Main thread only.
#include "dataentry/StrokePlayback.h"
#include "dataentry/gui/TimeAxisZoom.h"
#include "display/gui/GraphGrids.h"

#include <QPointF>
#include <QWidget>

#include <vector>

class MyDocument;
class mainTable;

class DataEntryPlot : public QWidget
{
    Q_OBJECT
public:
    void setDocument(MyDocument* doc) { _pDoc = doc; }
    MyDocument* document() const { return _pDoc; }
    void set_mainTableID(mainTable* table) { m_mainTableID = table; }
    mainTable* _mainTableID() const { return m_mainTableID; }
    // The time axis shared with the other plots of the window; the view repaints when it
    // changes. Without one the view shows all frames.
    void setTimeAxis(TimeAxisZoom* axis);
    const TimeAxisZoom& timeAxis() const { return *m_axis; }
    // Places the view in its window (window content coordinates).
    void setPosition(const QRect& frame) { setGeometry(frame); }

    // The pointer positions of the current drag (empty between drags).
    const std::vector<QPointF>& _arraytrace() const { return m_arraytrace; }
    // The table columns the last stroke went over.
    const StrokeSpan& lastStroke() const { return m_stroke; }
    virtual bool hasActiveTrack() const = 0;
    // The value at the top edge.
    virtual double fullScale() const = 0;

    // The mapping above; -1 for a frame when the document has no frames or the view no width.
    int frameAt(double x) const;
    int valueAt(double y) const;

    // The grid labels the view draws (over its tracks), none colliding with another or with
    // the caption, all inside the view; and the caption's box (empty without one).
    std::vector<GridLabel> gridLabels(const QFontMetrics& metrics) const;
    virtual QRect captionBox() const { return {}; }

signals:
    // A drag ended and was committed to the table (undo and redo recorded).
    void committed();

protected:
    explicit DataEntryPlot(QWidget* parent);

    using ValueGrid = ::ValueGrid;

    // Channel 0's frame count (0 without a document).
    int frameCount() const;
    bool inside(const QPointF& p) const;

    // The grids: the value grid of the view, and the time grid (every m_nSpecTimeGrid ms, or a
    // step to suit the zoom) along the time axis of gridLengthMS(); labelled by gridLabels().
    virtual ValueGrid valueGrid() const = 0;
    virtual bool timeLabels() const { return false; }
    virtual double gridLengthMS() const = 0;
    // Draws both grids over `area` (with a document only).
    void drawGrids(QPainter& painter, const QRect& area) const;

    // The steps of a drag, in order.
    virtual bool mayStartDrag() const { return hasActiveTrack(); }
    virtual void startDrag() {}
    // Any move inside the view, before a drag step.
    virtual void pointerMoved(const QPointF& /*p*/, bool /*buttonDown*/) {}
    virtual void dragTo(const QPointF& p) = 0;
    // At the release: false when nothing is to be committed.
    virtual bool finishDrag() { return hasActiveTrack(); }
    virtual void commitDrag() = 0;
    virtual void afterCommit() {}
    // The shared time axis zoomed or scrolled: the view repaints.
    virtual void timeAxisChanged() { update(); }

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

    MyDocument* _pDoc = nullptr;
    mainTable* m_mainTableID = nullptr;
    TimeAxisZoom m_ownAxis; // fit all, used until the window gives its shared axis
    TimeAxisZoom* m_axis = &m_ownAxis;
    std::vector<QPointF> m_arraytrace;
    int m_nFollowedColumn = -1; // the table column the table shows selected
    StrokeSpan m_stroke;        // the columns of the current or last drag (dragTo adds them)

private:
    bool m_bDrawing = false; // a press started a drag
};
