#pragma once
// The graphical data-entry window (a DataEntryWindow): three stacked plots of the same frames (F0, the five
// lower formants, the amplitudes), thirteen toggle buttons that pick the one parameter mouse drags edit, and
// six colour wells for the F0 and formant colours. The plots share one time axis that the View menu,
// Ctrl+wheel and the scroll bar below the plots zoom and scroll; View > Play After Each Stroke plays the
// document after each drag (PlayAfterStroke). It edits the document's own table cells through the plots;
// undo, redo and play are forwarded to the table that opened it. The controller owns its window; the table
// owns the controller (one at a time). Main thread only. Sizes are in pixels of the window's content.
#include "dataentry/gui/DataEntryWindow.h"

#include <QColor>

#include <array>

class mainTable;
class viewF0;
class viewFormants;
class viewOthers;
class TrackPlotView;
class QAction;

class dataentryGraphicalController : public DataEntryWindow
{
    Q_OBJECT
public:
    // Opens the window on the document; the table (may be null) receives the forwarded
    // commands and follows the pointer.
    dataentryGraphicalController(MyDocument* doc, mainTable* table, QObject* parent = nullptr);

    // DataEntryController
    void setupViews() override;

    // A parameter button pressed: this button on, the twelve others off, the switches stored
    // in the document, and the plots told which parameter is active.
    void actionParameter(Button button);

    viewF0* _viewF0() const { return m_viewF0; }
    viewFormants* _viewFormants() const { return m_viewFormants; }
    viewOthers* _viewOthers() const { return m_viewOthers; }

    void specialWindowDidResize(int w, int h) override;
    void relayout() override;

protected:
    void colorPlots(int well, const QColor& color) override;
    // Coming back to the window shows the cells the table holds now.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void windowDidLoad();
    void makeMenus();
    void validateMenus();
    std::array<TrackPlotView*, 3> views() const;

    viewF0* m_viewF0 = nullptr;
    viewFormants* m_viewFormants = nullptr;
    viewOthers* m_viewOthers = nullptr;
    QAction* m_undo = nullptr;
    QAction* m_redo = nullptr;
    QAction* m_playAudio = nullptr;
};
