#pragma once
// What both data-entry windows are (the graphical one and the trace one): a window over a
// document opened from its parameter table, three plots on one shared time axis with a scroll
// bar, the thirteen parameter buttons and six colour wells, and undo, redo and play forwarded to
// the table that opened the window (nothing is forwarded without a table, nor an undo or redo
// with nothing to undo or redo, nor Play Model without a model). The table owns the window's
// controller (one at a time); the controller owns its window. Main thread only.
#include "dataentry/gui/DataEntryControls.h"
#include "table/gui/DataEntryController.h"

#include <QObject>

#include <array>
#include <optional>

class DataEntryPlot;
class MyDocument;
class mainTable;
class QPushButton;
class QScrollBar;
class QWidget;
class TimeAxisZoom;

class DataEntryWindow : public QObject, public DataEntryController
{
    Q_OBJECT
public:
    // The thirteen parameter buttons, in the order of the window's left margin.
    using Button = DataEntryControls::Button;
    using enum DataEntryControls::Button;

    ~DataEntryWindow() override;

    // The table (may be null) receives the forwarded commands and follows the pointer.
    void setmaintableID(mainTable* table);
    MyDocument* document() const { return m_pDoc; }

    // Forwarded to the table.
    void undo();
    void redo();
    void _PlayCurrent();
    void _PlaySelection();
    void _PlayPrevious();
    void _PlayAudio();

    QPushButton* button(Button b) const { return m_controls->button(b); }
    QColor wellColor(int well) const { return m_controls->wellColor(well); }
    // The zoom and scroll position the three plots share, and its scroll bar.
    TimeAxisZoom* timeAxis() const { return m_timeAxis; }
    QScrollBar* scrollBar() const { return m_scrollBar; }

protected:
    DataEntryWindow(MyDocument* doc, QObject* parent);
    // The window's three plots, top to bottom.
    virtual std::array<DataEntryPlot*, 3> plots() const = 0;
    // Makes the time axis the plots share (it follows the document's frame count) and its scroll
    // bar in `barParent`; called once the plots exist.
    void makeTimeAxis(QWidget* barParent);

    MyDocument* m_pDoc = nullptr;
    mainTable* m_mainTableID = nullptr;
    TimeAxisZoom* m_timeAxis = nullptr;
    QScrollBar* m_scrollBar = nullptr;
    std::optional<DataEntryControls> m_controls;

private:
    void forward(void (mainTable::*command)());
};
