#pragma once
// One view of the trace window: the frame columns of the document along x (the grid's time
// axis), a value scale along y (0 at the bottom edge, the full scale at the top), the model's
// analysis drawn behind (by the subclass), and the traced tracks of the view's slots drawn over
// it from their display lists. A drag with a track active writes the value under the pointer
// into the document's own cell of the column under the pointer; the press records the undo
// step, the release writes the traced cells back clamped to their limits, refreshes the table
// and records the redo step. One drag is one undo step.
//
// The column and value under the pointer are DataEntryPlot's mapping (columnAt = frameAt).
// Subclasses: viewPitch, viewSpectrogram, viewAmplitudes. Main thread only.
#include "dataentry/TraceTrackLists.h"
#include "dataentry/gui/DataEntryPlot.h"
#include "display/gui/GraphGrids.h"

#include <QColor>
#include <QFont>
#include <QTimer>

#include <string>
#include <vector>

class dataentryTraceContoller;

class TraceView : public DataEntryPlot
{
    Q_OBJECT
public:
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
    bool hasActiveTrack() const override;
    void setColor(const QColor& color, int slot);
    QColor tracingColor(int slot) const { return m_colors[static_cast<std::size_t>(slot)]; }

    TraceTrackLists& lists() { return m_lists; }
    double fullScale() const override { return m_nScale; }
    int columnAt(double x) const { return frameAt(x); }
    // The caption's box at the top right.
    QRect captionBox() const override;

signals:
    // Where the pointer is, as a line for the window's status strip.
    void pointerReadout(const QString& text);

protected:
    TraceView(double fullScale, std::vector<std::string> keys, std::vector<int> rows, QWidget* parent);

    virtual QString caption() const = 0;
    // Readout of a value under the pointer, in the view's unit.
    virtual QString valueText(int value) const { return QString::number(value); }
    // The pitch view saves an undo step on any press inside it, active track or not.
    virtual bool pressNeedsActiveTrack() const { return true; }
    // Whether the view keeps the pointer positions of the current drag (_arraytrace, drawn as the
    // drag's line): all three views do, the spectrogram view included.
    virtual bool keepsDragTrace() const { return true; }
    // The pitch view commits on every release.
    virtual bool releaseNeedsActiveTrack() const { return true; }
    virtual void afterDragValue(int /*column*/, const QPointF& /*p*/) {}
    virtual void drawAnalysis(QPainter& /*painter*/, const QRect& /*clip*/) {}
    virtual void drawOverlay(QPainter& /*painter*/, const QRect& /*clip*/) {}
    // Whether a slot's traced values are drawn (all by default).
    virtual bool drawsSlot(int /*slot*/) const { return true; }
    // Slots written back on release.
    virtual bool commitsSlot(int slot) const { return isActive(slot); }

    // The drag (see DataEntryPlot): the table follows it at most once per timer interval; the
    // release writes the committed slots back clamped to their limits.
    bool mayStartDrag() const override { return !pressNeedsActiveTrack() || hasActiveTrack(); }
    void startDrag() override;
    void pointerMoved(const QPointF& p, bool buttonDown) override;
    void dragTo(const QPointF& p) override;
    bool finishDrag() override;
    void commitDrag() override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    // Repaints the strip of the view where column index `column` is drawn.
    void updateColumn(int column);
    // The length of the time axis: the frames times the update interval, ms.
    double gridLengthMS() const override;
    // The area over which the whole time axis is drawn: the view's rectangle at fit all, wider
    // and shifted left by the scroll offset when zoomed.
    QRect contentRect() const;

    TraceTrackLists m_lists;

private:
    void drawSlot(QPainter& painter, int slot, int first, int last) const;
    void drawTrace(QPainter& painter) const;
    void drawCaption(QPainter& painter) const;
    QFont captionFont() const;
    void followInTable(int tableColumn);
    void followNow();

    dataentryTraceContoller* m_containerID = nullptr;
    double m_nScale;
    std::vector<std::string> m_keys;
    std::vector<bool> m_active;
    std::vector<QColor> m_colors;
    int m_nPendingColumn = -1; // the table column under the pointer
    QTimer m_followTimer;
};
