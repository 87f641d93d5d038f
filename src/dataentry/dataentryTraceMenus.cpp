// The trace window's menus: Edit (undo, redo, Enter All Data), Play (the document window's keys)
// and View (the time axis's zoom and Play After Each Stroke), and Ctrl+S, which saves the
// document without a menu of its own.
#include "dataentry/PlayAfterStroke.h"
#include "dataentry/TimeAxisZoom.h"
#include "dataentry/TraceView.h"
#include "dataentry/dataentryTraceContoller.h"
#include "dataentry/viewAmplitudes.h"
#include "dataentry/viewPitch.h"
#include "dataentry/viewSpectrogram.h"
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
    connect(edit, &QMenu::aboutToShow, this, [this, undoAction, redoAction] {
        undoAction->setEnabled(m_pDoc && m_pDoc->canUndo());
        redoAction->setEnabled(m_pDoc && m_pDoc->canRedo());
    });
    // Enabled again once the menu closes: the shortcuts check for themselves.
    connect(edit, &QMenu::aboutToHide, this, [undoAction, redoAction] {
        undoAction->setEnabled(true);
        redoAction->setEnabled(true);
    });

    QMenu* play = m_window->menuBar()->addMenu(QStringLiteral("&Play"));
    play->addAction(QStringLiteral("Play Current"), QKeySequence(Qt::Key_Space), this,
                    &dataentryTraceContoller::_PlayCurrent);
    play->addAction(QStringLiteral("Play Selection"), QKeySequence(QStringLiteral("Shift+Space")), this,
                    &dataentryTraceContoller::_PlaySelection);
    play->addAction(QStringLiteral("Play Previous"), QKeySequence(QStringLiteral("Ctrl+Shift+Space")), this,
                    &dataentryTraceContoller::_PlayPrevious);
    play->addAction(QStringLiteral("Play Model"), QKeySequence(QStringLiteral("Ctrl+M")), this,
                    &dataentryTraceContoller::_PlayAudio);

    QMenu* view = m_window->menuBar()->addMenu(QStringLiteral("&View"));
    view->addActions(m_timeAxis->makeActions(m_window.get()));
    view->addSeparator();
    m_playAfterStroke = PlayAfterStroke::makeAction(m_window.get());
    view->addAction(m_playAfterStroke);
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
