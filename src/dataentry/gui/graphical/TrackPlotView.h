#pragma once
// One plot of the graphical data-entry window: the document's frames along x, the values of
// some parameter rows along y (0 at the bottom edge, _nScale at the top edge), drawn as
// points over a time grid and a value grid. The user draws the active track with the mouse:
// each drag position sets the value of the frame under the pointer in the document's own
// cells (the cells the table shows, not copies), and releasing the mouse commits the edit:
// texts of the stroke's cells, table refreshed, redo step recorded. Mouse down records the
// undo step, so one drag is one undo step.
//
// The view reads values from the table data as they stand, without making its columns: only
// the frames a stroke touches get cells, so opening the window over a document of an hour
// costs what is drawn. Several frames falling on one pixel draw one point a position.
//
// The frame and value under the pointer are DataEntryPlot's mapping, _nScale its full scale.
//
// A drag repaints only the strip of the edited frame (and, through the window, the same strip
// of the other plots, whose point visibility may depend on the edited amplitude), so drawing
// over a long document stays quick. Subclasses (viewF0, viewFormants, viewOthers) give the
// rows, the scale, the value grid and which tracks are drawn. Main thread only.
#include "dataentry/gui/DataEntryPlot.h"
#include "display/gui/GraphGrids.h"
#include "document/MyDocument.h"

#include <QColor>

#include <string>
#include <vector>

class QPainter;

class TrackPlotView : public DataEntryPlot
{
    Q_OBJECT
public:
    // What a track shows, as a subclass declares it.
    struct TrackDefinition {
        const char* name = ""; // parameter name that activates it ("f0", "f1", "a1f", "av", ...)
        int row = 0;           // parameter row in the table data
        int gateRow = -1;      // a point shows only where this row's value exceeds 10; -1 always
    };
    struct Track : TrackDefinition {
        QColor color = Qt::black;
        bool active = false;
    };

    // Redraws from the table data as it stands. Called when the window opens, after undo, redo
    // and revert (which replace the cells), and before a drag.
    void setup();
    // The value of a track's row at frame k (table column k + 1); false for a missing cell.
    bool frameValue(int frame, int row, int& value) const;
    // Makes the track of that parameter name the active one; any other name leaves the view
    // with no active track. Redraws.
    void activeParameter(const std::string& name);

    int _nScale() const { return m_nScale; }
    const std::vector<Track>& tracks() const { return m_tracks; }
    bool _bActiveF(int slot) const { return m_tracks[slot].active; }
    bool hasActiveTrack() const override;
    double fullScale() const override { return m_nScale; }
    bool isActive(const std::string& name) const;

    // Repaints the strip of the view where frame k's points are drawn.
    void updateFrame(int frame);

signals:
    // A drag changed the value of a frame (any track of this view).
    void frameEdited(int frame);

protected:
    TrackPlotView(int scale, std::initializer_list<TrackDefinition> tracks, QWidget* parent);

    virtual bool drawsTrack(const Track&) const { return _pDoc != nullptr; }
    virtual void drawCaption(QPainter&) {}
    // The length of the time axis: channel 0's length in whole ms (0 without a length).
    double gridLengthMS() const override;
    void setTrackColor(int slot, const QColor& color);

    // The drag (see DataEntryPlot): each position sets the active tracks' cells of its frame,
    // the release sets the texts of the stroke's cells.
    void startDrag() override;
    void pointerMoved(const QPointF& p, bool buttonDown) override;
    void dragTo(const QPointF& p) override;
    bool finishDrag() override;
    void commitDrag() override { commitActiveTracks(); }
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void commitActiveTracks();
    void followInTable(int frame);
    void drawTrack(QPainter& painter, const Track& track, int first, int last) const;
    void drawTrace(QPainter& painter, const QRect& clip) const;

    int m_nScale;
    std::vector<Track> m_tracks;
};
