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
#include <QPointer>

#include <array>
#include <memory>

class mainTable;
class viewF0;
class viewFormants;
class viewOthers;
class TrackPlotView;
class QMainWindow;
class QAction;

class dataentryGraphicalController : public DataEntryWindow
{
    Q_OBJECT
public:
    // Opens the window on the document; the table (may be null) receives the forwarded
    // commands and follows the pointer.
    dataentryGraphicalController(MyDocument* doc, mainTable* table, QObject* parent = nullptr);
    ~dataentryGraphicalController() override;

    // DataEntryController
    void setupViews() override;
    QWidget* window() override;

    // A parameter button pressed: this button on, the twelve others off, the switches stored
    // in the document, and the plots told which parameter is active.
    void actionParameter(Button button);
    // A colour chosen in well i (0 = F0, 1 .. 5 = F1 .. F5).
    void actionColor(int well, const QColor& color);

    viewF0* _viewF0() const { return m_viewF0; }
    viewFormants* _viewFormants() const { return m_viewFormants; }
    viewOthers* _viewOthers() const { return m_viewOthers; }
    // View > Play After Each Stroke.
    QAction* playAfterStrokeAction() const { return m_playAfterStroke; }

    // Lays the plots and the controls out for a content area of w x h.
    void specialWindowDidResize(int w, int h);
    // The label strip under the views (made by the labels' code, a child of the window's
    // content): laid out at its size hint while shown; relayout() after its height changes.
    void setLabelStrip(QWidget* strip);
    void relayout();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void windowDidLoad();
    void makeControls();
    void makeMenus();
    void validateMenus();
    std::array<TrackPlotView*, 3> views() const;
    std::array<DataEntryPlot*, 3> plots() const override;

    std::unique_ptr<QMainWindow> m_window;
    QWidget* m_content = nullptr;
    viewF0* m_viewF0 = nullptr;
    viewFormants* m_viewFormants = nullptr;
    viewOthers* m_viewOthers = nullptr;
    QPointer<QWidget> m_labelStrip;
    QAction* m_undo = nullptr;
    QAction* m_redo = nullptr;
    QAction* m_playAudio = nullptr;
    QAction* m_playAfterStroke = nullptr;
};
