#pragma once
// Helpers of the GUI tests and benchmarks: mouse and wheel events sent straight to a widget (no
// window system needed), and waiting for queued calls from background work.
#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>

#include <initializer_list>

inline void sendMouse(QWidget& view, QEvent::Type type, QPointF at, Qt::MouseButton button,
                      Qt::MouseButtons held)
{
    QMouseEvent event(type, at, view.mapToGlobal(at), button, held, Qt::NoModifier);
    QApplication::sendEvent(&view, &event);
}

// Press at the first point, move through the others, release at the last ({p, p}: a drag of
// one move at p).
inline void dragThrough(QWidget& view, std::initializer_list<QPointF> points)
{
    sendMouse(view, QEvent::MouseButtonPress, *points.begin(), Qt::LeftButton, Qt::LeftButton);
    for (auto p = points.begin() + 1; p != points.end(); ++p)
        sendMouse(view, QEvent::MouseMove, *p, Qt::NoButton, Qt::LeftButton);
    sendMouse(view, QEvent::MouseButtonRelease, *(points.end() - 1), Qt::LeftButton, Qt::NoButton);
}

inline void sendWheel(QWidget& view, QPointF at, int delta, Qt::KeyboardModifiers modifiers)
{
    QWheelEvent event(at, view.mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view, &event);
}

// Runs the event loop until `done` holds or 20 s have passed; whether it holds.
template <typename Done> bool waitFor(Done done)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < 20000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    return done();
}
