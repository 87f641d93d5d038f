#pragma once
// What both data-entry windows are (the graphical one and the trace one): a window over a
// document opened from its parameter table, three plots on one shared time axis with a scroll
// bar and a label strip under them, laid out again whenever the window's content is resized,
// the thirteen parameter buttons and six colour wells, View > Play After Each Stroke, and undo,
// redo and play forwarded to the table that opened the window (nothing is forwarded without a
// table, nor an undo or redo with nothing to undo or redo, nor Play Model without a model). The
// table owns the window's controller (one at a time); the controller owns its window. Main
// thread only.
#include "dataentry/gui/DataEntryControls.h"
#include "table/gui/DataEntryController.h"

#include <QObject>
#include <QPointer>

#include <array>
#include <memory>
#include <optional>

class DataEntryPlot;
class MyDocument;
class mainTable;
class QAction;
class QMainWindow;
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
    // View > Play After Each Stroke.
    QAction* playAfterStrokeAction() const { return m_playAfterStroke; }

    // DataEntryController
    QWidget* window() override;

    // A colour chosen in well i (0 = F0, 1 .. 5 = F1 .. F5): the well shows it, the document
    // keeps it as that track's tracing colour and the plots draw the track in it. An invalid
    // colour or well changes nothing.
    void actionColor(int well, const QColor& color);
    // Lays the plots and the controls out for a content area of w x h; the content's resizes
    // come here.
    virtual void specialWindowDidResize(int w, int h) = 0;
    // The label strip under the views (made by the labels' code, a child of the window's
    // content): laid out at its size hint while shown; relayout() after its height changes.
    void setLabelStrip(QWidget* strip);
    virtual void relayout() = 0;

protected:
    DataEntryWindow(MyDocument* doc, QObject* parent);
    // The window's three plots, top to bottom.
    const std::array<DataEntryPlot*, 3>& plots() const { return m_plots; }
    // Makes the window, its content and the three plots in it (top to bottom), and the time
    // axis they share (it follows the document's frame count) with its scroll bar.
    template <class Upper, class Middle, class Lower>
    void makePlots(Upper*& upper, Middle*& middle, Lower*& lower)
    {
        makeWindow();
        upper = new Upper(m_content);
        middle = new Middle(m_content);
        lower = new Lower(m_content);
        makeTimeAxis({upper, middle, lower});
    }
    // Makes the parameter buttons and the colour wells (`wellWidth` wide) in the content: a
    // click on a button runs `pressed`, a chosen colour actionColor.
    void makeParameterControls(int wellWidth, std::function<void(Button)> pressed);
    // Places the three plots and the label strip for a content area of w x h; the stack placed.
    DataEntryControls::Stack placePlots(int w, int h);
    bool eventFilter(QObject* watched, QEvent* event) override;
    // The plots that draw well i's track take its new colour.
    virtual void colorPlots(int well, const QColor& color) = 0;

    MyDocument* m_pDoc = nullptr;
    mainTable* m_mainTableID = nullptr;
    TimeAxisZoom* m_timeAxis = nullptr;
    QScrollBar* m_scrollBar = nullptr;
    std::optional<DataEntryControls> m_controls;
    std::unique_ptr<QMainWindow> m_window;
    QWidget* m_content = nullptr; // the window's central widget, which the plots share
    QPointer<QWidget> m_labelStrip;
    QAction* m_playAfterStroke = nullptr;

private:
    void forward(void (mainTable::*command)());
    void makeWindow();
    void makeTimeAxis(const std::array<DataEntryPlot*, 3>& plots);

    std::array<DataEntryPlot*, 3> m_plots{};
};
