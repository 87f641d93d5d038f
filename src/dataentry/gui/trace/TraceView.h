#pragma once
// One view of the trace window: the frame columns of the document along x (the grid's time
// axis), a value scale along y (0 at the bottom edge, the full scale at the top), the model's
// analysis drawn behind (by the subclass), and the traced tracks of the view's slots drawn over
// it from their display lists. A drag with a track active writes the value under the pointer
// into the document's own cell of the column under the pointer; the press records the undo
// step, the release writes the traced cells back clamped to their limits, refreshes the table
// and records the redo step. One drag is one undo step.
//
// Mapping (W x H = the view's size, N = channel 0's m_nColumnNum), at the window's default zoom
// (fit all; zoomed, W is the zoomed content width and x counts from its left end, see
// TimeAxisZoom):
//   column under the pointer = trunc(x x N / W) (table column + 1);
//   value under the pointer  = trunc((H - y) x full scale / H).
// Subclasses: viewPitch, viewSpectrogram, viewAmplitudes. Main thread only.
#include "dataentry/TraceTrackLists.h"
#include "dataentry/gui/TimeAxisZoom.h"
#include "display/gui/GraphGrids.h"

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QTimer>
#include <QWidget>

#include <string>
#include <vector>

class MyDocument;
class mainTable;
class dataentryTraceContoller;

class TraceView : public QWidget
{
    Q_OBJECT
public:
    void setDocument(MyDocument* doc) { _pDoc = doc; }
    MyDocument* document() const { return _pDoc; }
    void set_mainTableID(mainTable* table) { m_mainTableID = table; }
    mainTable* _mainTableID() const { return m_mainTableID; }
    void set_containerID(dataentryTraceContoller* container) { m_containerID = container; }
    dataentryTraceContoller* _containerID() const { return m_containerID; }
    void set_bViewGridData(bool show) { m_lists._bViewGridData = show; }
    bool _bViewGridData() const { return m_lists._bViewGridData; }

    // Rebuilds the lists from the table data and redraws (subclasses also refresh their
    // analysis first).
    virtual void setup();
    // Makes the slot with this key the active one; any other key ("") leaves none active.
    void activeParameter(const std::string& key);
    bool isActive(int slot) const { return m_active[static_cast<std::size_t>(slot)]; }
    bool hasActiveTrack() const;
    void setColor(const QColor& color, int slot);
    QColor tracingColor(int slot) const { return m_colors[static_cast<std::size_t>(slot)]; }
    void setPosition(const QRect& frame) { setGeometry(frame); }
    // The time axis shared with the other views of the window (zoom and scroll position); the
    // view repaints when it changes. Without one the view shows all frame columns.
    void setTimeAxis(TimeAxisZoom* axis);
    const TimeAxisZoom& timeAxis() const { return *m_axis; }

    TraceTrackLists& lists() { return m_lists; }
    const std::vector<QPointF>& _arraytrace() const { return m_arraytrace; }
    double fullScale() const { return m_nScale; }
    int columnAt(double x) const;
    // The grid labels the view draws (over its tracks), none colliding with another or with
    // the caption, all inside the view; and the caption's box at the top right.
    std::vector<GridLabel> gridLabels(const QFontMetrics& metrics) const;
    QRect captionBox() const;
    int valueAt(double y) const;

signals:
    // Where the pointer is, as a line for the window's status strip.
    void pointerReadout(const QString& text);
    // A drag ended and was committed (undo and redo recorded).
    void committed();

protected:
    using ValueGrid = ::ValueGrid;

    TraceView(double fullScale, std::vector<std::string> keys, std::vector<int> rows, QWidget* parent);

    virtual ValueGrid valueGrid() const = 0;
    virtual QString caption() const = 0;
    virtual bool timeLabels() const { return false; }
    // Readout of a value under the pointer, in the view's unit.
    virtual QString valueText(int value) const { return QString::number(value); }
    // The pitch view saves an undo step on any press inside it, active track or not.
    virtual bool pressNeedsActiveTrack() const { return true; }
    // Whether the view keeps the points of the current drag in its trace lists: all three do, the
    // spectrogram view its formant lists too.
    virtual bool keepsDragTrace() const { return true; }
    // The pitch view commits on every release.
    virtual bool releaseNeedsActiveTrack() const { return true; }
    virtual void afterDragValue(int /*column*/, const QPointF& /*p*/) {}
    virtual void afterCommit() {}
    virtual void drawAnalysis(QPainter& /*painter*/, const QRect& /*clip*/) {}
    virtual void drawOverlay(QPainter& /*painter*/, const QRect& /*clip*/) {}
    // Whether a slot's traced values are drawn (all by default).
    virtual bool drawsSlot(int /*slot*/) const { return true; }
    // Slots written back on release.
    virtual bool commitsSlot(int slot) const { return isActive(slot); }

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    int frameCount() const;
    // Repaints the strip of the view where column index `column` is drawn.
    void updateColumn(int column);
    double gridLengthMS() const;
    // The area over which the whole time axis is drawn: the view's rectangle at fit all, wider
    // and shifted left by the scroll offset when zoomed.
    QRect contentRect() const;

    MyDocument* _pDoc = nullptr;
    TraceTrackLists m_lists;
    TimeAxisZoom m_ownAxis; // fit all, used until the window gives its shared axis
    TimeAxisZoom* m_axis = &m_ownAxis;

private:
    bool inside(const QPointF& p) const;
    void dragTo(const QPointF& p);
    void drawSlot(QPainter& painter, int slot, int first, int last) const;
    void drawTrace(QPainter& painter) const;
    void drawCaption(QPainter& painter) const;
    QFont captionFont() const;
    void followInTable(int tableColumn);
    void followNow();

    mainTable* m_mainTableID = nullptr;
    dataentryTraceContoller* m_containerID = nullptr;
    double m_nScale;
    std::vector<std::string> m_keys;
    std::vector<bool> m_active;
    std::vector<QColor> m_colors;
    std::vector<QPointF> m_arraytrace;
    bool m_bDrawing = false;
    int m_nFollowedColumn = -1; // the table column the table shows selected
    int m_nPendingColumn = -1;  // the table column under the pointer
    QTimer m_followTimer;
};
