#pragma once
// The menus both data-entry windows share: Play, with the keys of the document window's Play
// menu, and View, with the time axis's zoom and Play After Each Stroke. Main thread only.
#include "dataentry/gui/PlayAfterStroke.h"
#include "dataentry/gui/TimeAxisZoom.h"

#include <QAction>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

// Adds the Play menu, whose items run the controller's play commands; answers Play Model.
template <typename Controller> QAction* addPlayMenu(QMainWindow* window, Controller* controller)
{
    QMenu* play = window->menuBar()->addMenu(QStringLiteral("&Play"));
    play->addAction(QStringLiteral("Play Current"), QKeySequence(Qt::Key_Space), controller,
                    &Controller::_PlayCurrent);
    play->addAction(QStringLiteral("Play Selection"), QKeySequence(QStringLiteral("Shift+Space")), controller,
                    &Controller::_PlaySelection);
    play->addAction(QStringLiteral("Play Previous"), QKeySequence(QStringLiteral("Ctrl+Shift+Space")),
                    controller, &Controller::_PlayPrevious);
    return play->addAction(QStringLiteral("Play Model"), QKeySequence(QStringLiteral("Ctrl+M")), controller,
                           &Controller::_PlayAudio);
}

// Adds the View menu: zoom in, zoom out, fit all, then Play After Each Stroke, which it answers.
inline QAction* addViewMenu(QMainWindow* window, TimeAxisZoom* axis)
{
    QMenu* view = window->menuBar()->addMenu(QStringLiteral("&View"));
    view->addActions(axis->makeActions(window));
    view->addSeparator();
    QAction* playAfterStroke = PlayAfterStroke::makeAction(window);
    view->addAction(playAfterStroke);
    return playAfterStroke;
}
