// The trace window's menus: Edit (undo, redo, Enter All Data, Automatic Copy Synthesis), Play (the document
// window's keys) and View (the time axis's zoom and Play After Each Stroke), and Ctrl+S, which saves the
// document without a menu of its own.
#include "dataentry/gui/DataEntryMenus.h"
#include "dataentry/gui/trace/TraceView.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "dataentry/gui/trace/viewAmplitudes.h"
#include "dataentry/gui/trace/viewPitch.h"
#include "dataentry/gui/trace/viewSpectrogram.h"
#include "document/MyDocument.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

void dataentryTraceContoller::makeMenus()
{
    QMenu* edit = m_window->menuBar()->addMenu(QStringLiteral("&Edit"));
    QAction* undoAction =
        edit->addAction(QStringLiteral("Undo"), QKeySequence::Undo, this, &dataentryTraceContoller::undo);
    QAction* redoAction =
        edit->addAction(QStringLiteral("Redo"), QKeySequence(QStringLiteral("Ctrl+Shift+Z")), this,
                        &dataentryTraceContoller::redo);
    edit->addSeparator();
    edit->addAction(QStringLiteral("Enter All Data"), QKeySequence(QStringLiteral("Ctrl+E")), this,
                    &dataentryTraceContoller::actionEnterAllData);
    edit->addAction(QStringLiteral("Automatic Copy Synthesis"), QKeySequence(QStringLiteral("Ctrl+Shift+E")),
                    this, &dataentryTraceContoller::actionCopySynthesis);
    connect(edit, &QMenu::aboutToShow, this, [this, undoAction, redoAction] {
        undoAction->setEnabled(m_pDoc && m_pDoc->canUndo());
        redoAction->setEnabled(m_pDoc && m_pDoc->canRedo());
    });
    // Enabled again once the menu closes: the shortcuts check for themselves.
    connect(edit, &QMenu::aboutToHide, this, [undoAction, redoAction] {
        undoAction->setEnabled(true);
        redoAction->setEnabled(true);
    });

    addPlayMenu(m_window.get(), this);
    m_playAfterStroke = addViewMenu(m_window.get(), m_timeAxis);
    for (TraceView* v : views())
        connect(v, &TraceView::committed, this, [this, v] { strokeCommitted(v); });

    auto* save = new QAction(m_window.get());
    save->setShortcut(QKeySequence::Save);
    connect(save, &QAction::triggered, this, [this] {
        if (m_save)
            m_save();
    });
    m_window->addAction(save);
}

void dataentryTraceContoller::strokeCommitted(const TraceView* view)
{
    if (m_playAfterStroke->isChecked())
        PlayAfterStroke::play(m_mainTableID, m_pDoc, view->lastStroke());
}
