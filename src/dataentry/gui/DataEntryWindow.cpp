#include "dataentry/gui/DataEntryWindow.h"

#include "dataentry/gui/DataEntryPlot.h"
#include "dataentry/gui/DataEntrySupport.h"
#include "dataentry/gui/TimeAxisZoom.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QEvent>
#include <QMainWindow>
#include <QResizeEvent>
#include <QScrollBar>

DataEntryWindow::DataEntryWindow(MyDocument* doc, QObject* parent) : QObject(parent), m_pDoc(doc) {}

DataEntryWindow::~DataEntryWindow() = default;

QWidget* DataEntryWindow::window()
{
    return m_window.get();
}

void DataEntryWindow::makeWindow()
{
    m_window = std::make_unique<QMainWindow>();
    m_window->setAttribute(Qt::WA_DeleteOnClose, false);
    m_content = new QWidget(m_window.get());
    m_window->setCentralWidget(m_content);
}

void DataEntryWindow::makeParameterControls(int wellWidth, std::function<void(Button)> pressed)
{
    m_controls.emplace(m_content, wellWidth, this, std::move(pressed),
                       [this](int well, const QColor& color) { actionColor(well, color); });
    m_content->installEventFilter(this);
}

DataEntryControls::Stack DataEntryWindow::placePlots(int w, int h)
{
    const DataEntryControls::Stack stack =
        DataEntryControls::stack(w, h, DataEntryControls::labelHeight(m_labelStrip));
    const std::array<DataEntryPlot*, 3> views = plots();
    views[0]->setPosition(stack.upper);
    views[1]->setPosition(stack.middle);
    views[2]->setPosition(stack.lower);
    if (m_labelStrip)
        m_labelStrip->setGeometry(stack.labels);
    return stack;
}

void DataEntryWindow::actionColor(int well, const QColor& color)
{
    if (well < 0 || well >= 6 || !color.isValid())
        return;
    m_controls->setWellColor(well, color);
    if (m_pDoc)
        m_pDoc->m_ColorTracing[well] = toColor(color);
    colorPlots(well, color);
}

void DataEntryWindow::setLabelStrip(QWidget* strip)
{
    m_labelStrip = strip;
    relayout();
}

bool DataEntryWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_content && event->type() == QEvent::Resize) {
        const QSize size = static_cast<QResizeEvent*>(event)->size();
        specialWindowDidResize(size.width(), size.height());
    }
    return QObject::eventFilter(watched, event);
}

void DataEntryWindow::makeTimeAxis(const std::array<DataEntryPlot*, 3>& plots)
{
    m_plots = plots;
    m_timeAxis = new TimeAxisZoom(this);
    m_timeAxis->setFrameSource([this] { return m_pDoc ? m_pDoc->getChannel(0)->m_nColumnNum : 0; });
    m_scrollBar = new QScrollBar(Qt::Horizontal, m_content);
    m_scrollBar->setFocusPolicy(Qt::NoFocus); // Space and the play keys stay the window's
    m_timeAxis->attach(m_scrollBar);
    for (DataEntryPlot* plot : m_plots) {
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
