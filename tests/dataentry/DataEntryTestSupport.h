#pragma once
// Helpers shared by the data-entry window tests and benchmarks: mouse and wheel events sent
// straight to a view, waiting on background work, long documents, and a recording as the bytes
// of a WAVE file written by the document's own writer.
#include "document/MyDocument.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>

#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

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

// A document of `frames` 10 ms frames with factory values and its table data.
inline void makeLong(MyDocument& doc, int frames)
{
    for (int channel = 0; channel < 3; ++channel) {
        Channels* c = doc.getChannel(channel);
        c->m_dLengthMS = frames * 10.0;
        c->m_nColumnNum = frames;
    }
    doc.SetUpDataGridMemory();
    doc.buildDataTableDictionary();
}

// The value of table column `column` (frame column-1) in `row`, for 10 ms frames.
inline int cellValue(const MyDocument& doc, int column, int row)
{
    return doc._dataTableDictionary.cellAt(column * 10LL, row)->_nValue();
}

// `samples` at `rate` as the bytes of a WAVE file.
inline std::string waveFileBytes(const std::vector<float>& samples, double rate)
{
    MyDocument writer;
    Channels* c = writer.getChannel(0);
    c->m_hData = MemoryBlock::newHandleClear(samples.size() * sizeof(float));
    std::memcpy(c->m_hData->bytes(), samples.data(), samples.size() * sizeof(float));
    c->m_dSampleRate = rate;
    c->m_dwFileLength = static_cast<double>(samples.size());
    return writer.save_Wave_FileType();
}
