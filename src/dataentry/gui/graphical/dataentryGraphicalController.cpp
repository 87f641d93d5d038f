#include "dataentry/gui/graphical/dataentryGraphicalController.h"

#include "dataentry/gui/DataEntryMenus.h"
#include "dataentry/gui/DataEntrySupport.h"
#include "dataentry/gui/PlayAfterStroke.h"
#include "dataentry/gui/TimeAxisZoom.h"
#include "dataentry/gui/graphical/viewF0.h"
#include "dataentry/gui/graphical/viewFormants.h"
#include "dataentry/gui/graphical/viewOthers.h"
#include "table/gui/mainTable.h"

#include <QAction>
#include <QEvent>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>

namespace
{

// The parameter each button makes active in the F0 and formant plots, and in the amplitude plot.
struct ButtonRole {
    const char* upperPlots;
    const char* lowerPlot;
};

const ButtonRole kButtons[dataentryGraphicalController::ButtonCount] = {
    {"f0", "f0"}, {"f1", "a1f"}, {"f2", "a2f"}, {"f3", "a3f"}, {"f4", "a4f"}, {"f5", "a5f"}, {"", "av"},
    {"", "apv"},  {"", "a1f"},   {"", "a2f"},   {"", "a3f"},   {"", "a4f"},   {"", "a5f"},
};

constexpr int kWellWidth = 30;

} // namespace

dataentryGraphicalController::dataentryGraphicalController(MyDocument* doc, mainTable* table, QObject* parent)
    : DataEntryWindow(doc, parent)
{
    makePlots(m_viewF0, m_viewFormants, m_viewOthers);
    // An edited amplitude decides which F0 and formant points show: every plot repaints the
    // strip of an edited frame.
    for (TrackPlotView* source : views())
        for (TrackPlotView* target : views())
            if (source != target)
                connect(source, &TrackPlotView::frameEdited, target, &TrackPlotView::updateFrame);
    // Undo becomes possible after a drag: the shortcut must not wait for the menu to open.
    for (TrackPlotView* view : views())
        connect(view, &TrackPlotView::committed, this, &dataentryGraphicalController::validateMenus);
    // Radio behaviour is ours: a click on the pressed button keeps it pressed.
    makeParameterControls(kWellWidth, [this](Button b) { actionParameter(b); });
    m_window->installEventFilter(this); // WindowActivate: see eventFilter
    makeMenus();
    setmaintableID(table);
    windowDidLoad();
}

std::array<TrackPlotView*, 3> dataentryGraphicalController::views() const
{
    return {m_viewF0, m_viewFormants, m_viewOthers};
}

void dataentryGraphicalController::makeMenus()
{
    QMenu* edit = m_window->menuBar()->addMenu(QStringLiteral("&Edit"));
    m_undo = edit->addAction(QStringLiteral("Undo"), this, &dataentryGraphicalController::undo);
    m_undo->setShortcut(QKeySequence::Undo);
    m_redo = edit->addAction(QStringLiteral("Redo"), this, &dataentryGraphicalController::redo);
    m_redo->setShortcut(QKeySequence::Redo);
    m_playAudio = addPlayMenu(m_window.get(), this);
    m_playAfterStroke = addViewMenu(m_window.get(), m_timeAxis);
    for (TrackPlotView* plot : views())
        connect(plot, &TrackPlotView::committed, this, [this, plot] {
            if (m_playAfterStroke->isChecked())
                PlayAfterStroke::play(m_mainTableID, m_pDoc, plot->lastStroke());
        });
    connect(edit, &QMenu::aboutToShow, this, &dataentryGraphicalController::validateMenus);
    if (auto* play = qobject_cast<QMenu*>(m_playAudio->parent()))
        connect(play, &QMenu::aboutToShow, this, &dataentryGraphicalController::validateMenus);
}

void dataentryGraphicalController::validateMenus()
{
    m_undo->setEnabled(m_pDoc && m_pDoc->canUndo());
    m_redo->setEnabled(m_pDoc && m_pDoc->canRedo());
    m_playAudio->setEnabled(m_pDoc && m_pDoc->getChannel(2)->hasAudio());
}

void dataentryGraphicalController::windowDidLoad()
{
    m_window->setWindowTitle(dataEntryWindowTitle(m_pDoc));
    m_window->setGeometry(10, 300, 800, 400);
    m_controls->load(m_pDoc);
    m_viewF0->setColor(wellColor(0));
    for (int f = 0; f < 5; ++f)
        m_viewFormants->setColor(wellColor(f + 1), f);
    setupViews();
    // The window always opens drawing F0, whatever the document's switches say.
    m_controls->checkOnly(F0);
    m_viewF0->activeParameter("f0");
    m_viewFormants->activeParameter("f0");
    m_viewOthers->activeParameter("f0");
    specialWindowDidResize(m_content->width(), m_content->height());
}

void dataentryGraphicalController::setupViews()
{
    if (m_undo)
        validateMenus();
    for (TrackPlotView* view : views())
        view->setup();
    if (m_pDoc)
        m_viewF0->setColor(toQColor(m_pDoc->m_ColorTracing[0]));
}

void dataentryGraphicalController::actionParameter(Button button)
{
    m_controls->checkOnly(button);
    if (m_pDoc)
        m_controls->storeSwitches(*m_pDoc);
    m_viewF0->activeParameter(kButtons[button].upperPlots);
    m_viewFormants->activeParameter(kButtons[button].upperPlots);
    m_viewOthers->activeParameter(kButtons[button].lowerPlot);
}

void dataentryGraphicalController::colorPlots(int well, const QColor& color)
{
    if (well == 0)
        m_viewF0->setColor(color);
    else
        m_viewFormants->setColor(color, well - 1);
}

bool dataentryGraphicalController::eventFilter(QObject* watched, QEvent* event)
{
    // Edits in the table (typed values, interpolation) replace cells; coming back to this
    // window shows the cells the table holds now.
    if (watched == m_window.get() && event->type() == QEvent::WindowActivate)
        setupViews();
    return DataEntryWindow::eventFilter(watched, event);
}

void dataentryGraphicalController::relayout()
{
    specialWindowDidResize(m_content->width(), m_content->height());
}

void dataentryGraphicalController::specialWindowDidResize(int w, int h)
{
    const DataEntryControls::Stack plots = placePlots(w, h);
    m_timeAxis->setViewWidth(plots.upper.width());
    // The scroll bar under the plots, in the strip the plots leave free.
    const int gap = DataEntryControls::kGap;
    const int barTop = plots.labels.bottom() + 1 + gap; // the lower plot's bottom without labels
    m_scrollBar->setGeometry(DataEntryControls::kMargin, barTop, plots.upper.width(),
                             std::clamp(h - barTop - gap, 0, 18));
    m_controls->place(plots);
}
