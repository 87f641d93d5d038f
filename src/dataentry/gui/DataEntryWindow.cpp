#include "dataentry/gui/DataEntryWindow.h"

#include "dataentry/gui/DataEntryPlot.h"
#include "dataentry/gui/TimeAxisZoom.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QScrollBar>

DataEntryWindow::DataEntryWindow(MyDocument* doc, QObject* parent) : QObject(parent), m_pDoc(doc) {}

DataEntryWindow::~DataEntryWindow() = default;

void DataEntryWindow::makeTimeAxis(QWidget* barParent)
{
    m_timeAxis = new TimeAxisZoom(this);
    m_timeAxis->setFrameSource([this] { return m_pDoc ? m_pDoc->getChannel(0)->m_nColumnNum : 0; });
    m_scrollBar = new QScrollBar(Qt::Horizontal, barParent);
    m_scrollBar->setFocusPolicy(Qt::NoFocus); // Space and the play keys stay the window's
    m_timeAxis->attach(m_scrollBar);
    for (DataEntryPlot* plot : plots()) {
        plot->setTimeAxis(m_timeAxis);
        m_timeAxis->watch(plot);
    }
}

void DataEntryWindow::setmaintableID(mainTable* table)
{
    m_mainTableID = table;
    for (DataEntryPlot* plot : plots()) {
        plot->set_mainTableID(table);
        plot->setDocument(m_pDoc);
    }
}

void DataEntryWindow::forward(void (mainTable::*command)())
{
    if (m_mainTableID)
        (m_mainTableID->*command)();
}

void DataEntryWindow::undo()
{
    if (m_pDoc && m_pDoc->canUndo())
        forward(&mainTable::undo);
}

void DataEntryWindow::redo()
{
    if (m_pDoc && m_pDoc->canRedo())
        forward(&mainTable::redo);
}

void DataEntryWindow::_PlayCurrent()
{
    forward(&mainTable::_PlayCurrent);
}

void DataEntryWindow::_PlaySelection()
{
    forward(&mainTable::_PlaySelection);
}

void DataEntryWindow::_PlayPrevious()
{
    forward(&mainTable::_PlayPrevious);
}

void DataEntryWindow::_PlayAudio()
{
    if (m_pDoc && m_pDoc->getChannel(2)->hasAudio())
        forward(&mainTable::_PlayAudio);
}
