#pragma once
// The graphical data-entry window: three stacked plots of the same frames (F0, the five lower
// formants, the amplitudes), thirteen toggle buttons that pick the one parameter mouse drags
// edit, and six colour wells for the F0 and formant colours. The plots share one time axis that
// the View menu, Ctrl+wheel and the scroll bar below the plots zoom and scroll; View > Play After
// Each Stroke plays the document after each drag (PlayAfterStroke). It edits the document's own
// table cells through the plots; undo, redo and play are forwarded to the table that opened it. The
// controller owns its window; the table owns the controller (one at a time). Main thread only. Sizes are in
// pixels of the window's content.
#include "dataentry/gui/DataEntryControls.h"
#include "table/gui/DataEntryController.h"

#include <QColor>
#include <QObject>
#include <QPointer>

#include <array>
#include <memory>
#include <optional>

class MyDocument;
class mainTable;
class viewF0;
class viewFormants;
class viewOthers;
class TrackPlotView;
class QMainWindow;
class QPushButton;
class QAction;
class QScrollBar;
class TimeAxisZoom;

class dataentryGraphicalController : public QObject, public DataEntryController
{
    Q_OBJECT
public:
    // The thirteen parameter buttons, in the order of the window's left margin.
    using Button = DataEntryControls::Button;
    using enum DataEntryControls::Button;

    // Opens the window on the document; the table (may be null) receives the forwarded
    // commands and follows the pointer.
    dataentryGraphicalController(MyDocument* doc, mainTable* table, QObject* parent = nullptr);
    ~dataentryGraphicalController() override;

    // DataEntryController
    void setupViews() override;
    QWidget* window() override;

    void setmaintableID(mainTable* table);
    MyDocument* document() const { return m_pDoc; }

    // A parameter button pressed: this button on, the twelve others off, the switches stored
    // in the document, and the plots told which parameter is active.
    void actionParameter(Button button);
    // A colour chosen in well i (0 = F0, 1 .. 5 = F1 .. F5).
    void actionColor(int well, const QColor& color);

    // Forwarded to the table.
    void undo();
    void redo();
    void _PlayCurrent();
    void _PlaySelection();
    void _PlayPrevious();
    void _PlayAudio();

    viewF0* _viewF0() const { return m_viewF0; }
    viewFormants* _viewFormants() const { return m_viewFormants; }
    viewOthers* _viewOthers() const { return m_viewOthers; }
    QPushButton* button(Button b) const { return m_controls->button(b); }
    QColor wellColor(int well) const { return m_controls->wellColor(well); }
    // The zoom and scroll position the three plots share, and its scroll bar below them.
    TimeAxisZoom* timeAxis() const { return m_timeAxis; }
    QScrollBar* scrollBar() const { return m_scrollBar; }
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
    void forward(void (mainTable::*command)());
    std::array<TrackPlotView*, 3> views() const;

    mainTable* m_mainTableID = nullptr;
    MyDocument* m_pDoc = nullptr;
    std::unique_ptr<QMainWindow> m_window;
    QWidget* m_content = nullptr;
    viewF0* m_viewF0 = nullptr;
    viewFormants* m_viewFormants = nullptr;
    viewOthers* m_viewOthers = nullptr;
    TimeAxisZoom* m_timeAxis = nullptr;
    QScrollBar* m_scrollBar = nullptr;
    QPointer<QWidget> m_labelStrip;
    std::optional<DataEntryControls> m_controls;
    QAction* m_undo = nullptr;
    QAction* m_redo = nullptr;
    QAction* m_playAudio = nullptr;
    QAction* m_playAfterStroke = nullptr;
};
