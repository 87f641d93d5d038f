#include "dataentry/dataentryGraphicalController.h"

#include "dataentry/DataEntrySupport.h"
#include "dataentry/TimeAxisZoom.h"
#include "dataentry/viewF0.h"
#include "dataentry/viewFormants.h"
#include "dataentry/viewOthers.h"
#include "table/mainTable.h"

#include <QAction>
#include <QColorDialog>
#include <QEvent>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollBar>
#include <QToolButton>

#include <algorithm>
#include <cstdint>

namespace
{

struct ButtonRole {
    const char* title;
    const char* upperPlots; // parameter made active in the F0 and formant plots
    const char* lowerPlot;  // parameter made active in the amplitude plot
    std::int32_t MyDocument::*documentSwitch;
    bool storedBack; // the A5F switch is read from the document but never written to it
};

const ButtonRole kButtons[dataentryGraphicalController::ButtonCount] = {
    {"F0", "f0", "f0", &MyDocument::m_nF0, true},   {"F1", "f1", "a1f", &MyDocument::m_nF1, true},
    {"F2", "f2", "a2f", &MyDocument::m_nF2, true},  {"F3", "f3", "a3f", &MyDocument::m_nF3, true},
    {"F4", "f4", "a4f", &MyDocument::m_nF4, true},  {"F5", "f5", "a5f", &MyDocument::m_nF5, true},
    {"AV", "", "av", &MyDocument::m_nAV, true},     {"APV", "", "apv", &MyDocument::m_nAPV, true},
    {"A1F", "", "a1f", &MyDocument::m_nA1F, true},  {"A2F", "", "a2f", &MyDocument::m_nA2F, true},
    {"A3F", "", "a3f", &MyDocument::m_nA3F, true},  {"A4F", "", "a4f", &MyDocument::m_nA4F, true},
    {"A5F", "", "a5f", &MyDocument::m_nA5F, false},
};

constexpr int kMargin = 100; // the left margin that holds the controls
constexpr int kControlGap = 2;
constexpr int kWellWidth = 30;

} // namespace

dataentryGraphicalController::dataentryGraphicalController(MyDocument* doc, mainTable* table, QObject* parent)
    : QObject(parent), m_pDoc(doc)
{
    m_window = std::make_unique<QMainWindow>();
    m_content = new QWidget(m_window.get());
    m_window->setCentralWidget(m_content);
    m_viewF0 = new viewF0(m_content);
    m_viewFormants = new viewFormants(m_content);
    m_viewOthers = new viewOthers(m_content);
    m_timeAxis = new TimeAxisZoom(this);
    m_timeAxis->setFrameSource([this] { return m_pDoc ? m_pDoc->getChannel(0)->m_nColumnNum : 0; });
    m_scrollBar = new QScrollBar(Qt::Horizontal, m_content);
    m_timeAxis->attach(m_scrollBar);
    for (TrackPlotView* view : views()) {
        view->setTimeAxis(m_timeAxis);
        m_timeAxis->watch(view);
    }
    // An edited amplitude decides which F0 and formant points show: every plot repaints the
    // strip of an edited frame.
    for (TrackPlotView* source : views())
        for (TrackPlotView* target : views())
            if (source != target)
                connect(source, &TrackPlotView::frameEdited, target, &TrackPlotView::updateFrame);
    // Undo becomes possible after a drag: the shortcut must not wait for the menu to open.
    for (TrackPlotView* view : views())
        connect(view, &TrackPlotView::committed, this, &dataentryGraphicalController::validateMenus);
    makeControls();
    makeMenus();
    setmaintableID(table);
    windowDidLoad();
}

dataentryGraphicalController::~dataentryGraphicalController() = default;

std::array<TrackPlotView*, 3> dataentryGraphicalController::views() const
{
    return {m_viewF0, m_viewFormants, m_viewOthers};
}

QWidget* dataentryGraphicalController::window()
{
    return m_window.get();
}

void dataentryGraphicalController::setmaintableID(mainTable* table)
{
    m_mainTableID = table;
    for (TrackPlotView* view : views()) {
        view->set_mainTableID(table);
        view->setDocument(m_pDoc);
    }
}

void dataentryGraphicalController::makeControls()
{
    for (int b = 0; b < ButtonCount; ++b) {
        auto* button = new QPushButton(QString::fromUtf8(kButtons[b].title), m_content);
        button->setCheckable(true);
        button->setObjectName(QString::fromUtf8(kButtons[b].title));
        // Radio behaviour is ours: a click on the pressed button keeps it pressed.
        connect(button, &QPushButton::clicked, this, [this, b] { actionParameter(static_cast<Button>(b)); });
        m_buttons[b] = button;
    }
    for (int well = 0; well < 6; ++well) {
        auto* button = new QToolButton(m_content);
        button->setAutoRaise(false);
        button->setToolTip(well == 0 ? QStringLiteral("F0 colour") : QStringLiteral("F%1 colour").arg(well));
        connect(button, &QToolButton::clicked, this, [this, well] {
            const QColor chosen = QColorDialog::getColor(m_wellColors[well], m_window.get());
            if (chosen.isValid())
                actionColor(well, chosen);
        });
        m_wells[well] = button;
    }
    m_content->installEventFilter(this);
    m_window->installEventFilter(this);
}

void dataentryGraphicalController::makeMenus()
{
    QMenu* edit = m_window->menuBar()->addMenu(QStringLiteral("&Edit"));
    m_undo = edit->addAction(QStringLiteral("Undo"), this, &dataentryGraphicalController::undo);
    m_undo->setShortcut(QKeySequence::Undo);
    m_redo = edit->addAction(QStringLiteral("Redo"), this, &dataentryGraphicalController::redo);
    m_redo->setShortcut(QKeySequence::Redo);
    QMenu* play = m_window->menuBar()->addMenu(QStringLiteral("&Play"));
    play->addAction(QStringLiteral("Play Current"), this, &dataentryGraphicalController::_PlayCurrent);
    play->addAction(QStringLiteral("Play Previous"), this, &dataentryGraphicalController::_PlayPrevious);
    m_playAudio =
        play->addAction(QStringLiteral("Play Model"), this, &dataentryGraphicalController::_PlayAudio);
    QMenu* view = m_window->menuBar()->addMenu(QStringLiteral("&View"));
    view->addActions(m_timeAxis->makeActions(m_window.get()));
    connect(edit, &QMenu::aboutToShow, this, &dataentryGraphicalController::validateMenus);
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
    for (int well = 0; well < 6; ++well) {
        m_wellColors[well] = m_pDoc ? toQColor(m_pDoc->m_ColorTracing[well]) : QColor(Qt::black);
        showWellColor(well);
    }
    for (int b = 0; b < ButtonCount; ++b)
        m_buttons[b]->setChecked(m_pDoc && m_pDoc->*kButtons[b].documentSwitch != 0);
    m_viewF0->setColor(m_wellColors[0]);
    for (int f = 0; f < 5; ++f)
        m_viewFormants->setColor(m_wellColors[f + 1], f);
    setupViews();
    // The window always opens drawing F0, whatever the document's switches say.
    for (int b = 0; b < ButtonCount; ++b)
        m_buttons[b]->setChecked(b == F0);
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
    for (int b = 0; b < ButtonCount; ++b)
        m_buttons[b]->setChecked(b == button);
    storeSwitches();
    m_viewF0->activeParameter(kButtons[button].upperPlots);
    m_viewFormants->activeParameter(kButtons[button].upperPlots);
    m_viewOthers->activeParameter(kButtons[button].lowerPlot);
}

void dataentryGraphicalController::storeSwitches()
{
    if (!m_pDoc)
        return;
    for (int b = 0; b < ButtonCount; ++b)
        if (kButtons[b].storedBack)
            m_pDoc->*kButtons[b].documentSwitch = m_buttons[b]->isChecked() ? 1 : 0;
}

void dataentryGraphicalController::actionColor(int well, const QColor& color)
{
    if (well < 0 || well >= 6 || !color.isValid())
        return;
    m_wellColors[well] = color;
    showWellColor(well);
    if (m_pDoc)
        m_pDoc->m_ColorTracing[well] = toColor(color);
    if (well == 0)
        m_viewF0->setColor(color);
    else
        m_viewFormants->setColor(color, well - 1);
}

void dataentryGraphicalController::showWellColor(int well)
{
    m_wells[well]->setStyleSheet(QStringLiteral("background-color: %1; border: 1px solid gray;")
                                     .arg(m_wellColors[well].name(QColor::HexArgb)));
}

void dataentryGraphicalController::forward(void (mainTable::*command)())
{
    if (m_mainTableID)
        (m_mainTableID->*command)();
}

void dataentryGraphicalController::undo()
{
    forward(&mainTable::undo);
}
void dataentryGraphicalController::redo()
{
    forward(&mainTable::redo);
}
void dataentryGraphicalController::_PlayCurrent()
{
    forward(&mainTable::_PlayCurrent);
}
void dataentryGraphicalController::_PlayPrevious()
{
    forward(&mainTable::_PlayPrevious);
}
void dataentryGraphicalController::_PlayAudio()
{
    forward(&mainTable::_PlayAudio);
}

bool dataentryGraphicalController::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_content && event->type() == QEvent::Resize) {
        const QSize size = static_cast<QResizeEvent*>(event)->size();
        specialWindowDidResize(size.width(), size.height());
    }
    // Edits in the table (typed values, interpolation) replace cells; coming back to this
    // window shows the cells the table holds now.
    if (watched == m_window.get() && event->type() == QEvent::WindowActivate)
        setupViews();
    return QObject::eventFilter(watched, event);
}

void dataentryGraphicalController::specialWindowDidResize(int w, int h)
{
    // The plots share the height less 26 in the proportion 1 : 2 : 1.
    const int H = h - 26;
    const int width = w - (kMargin + 5);
    const QRect f0(kMargin, 5, width, H / 4);
    const QRect formants(kMargin, H / 4 + 5, width, (2 * H) / 4);
    const QRect others(kMargin, (2 * H) / 4 + H / 4 + 5, width, H / 4 - 5);
    m_viewF0->setPosition(f0);
    m_viewFormants->setPosition(formants);
    m_viewOthers->setPosition(others);
    m_timeAxis->setViewWidth(width);
    // The scroll bar under the plots, in the strip the plots leave free.
    const int barTop = others.bottom() + 1 + kControlGap;
    m_scrollBar->setGeometry(kMargin, barTop, width, std::clamp(h - barTop - kControlGap, 0, 18));

    // Beside each plot the buttons that act on it; the colour wells right of their buttons.
    placeButtons(f0.top(), f0.height(), F0, 1, 1);
    placeButtons(formants.top(), formants.height(), F1, 5, 1);
    placeButtons(others.top(), others.height(), AV, 7, 2);
    const int wellX = kMargin - kWellWidth - 2 * kControlGap;
    for (int well = 0; well < 6; ++well) {
        const QRect beside = m_buttons[well]->geometry();
        m_wells[well]->setGeometry(wellX, beside.top(), kWellWidth, beside.height());
    }
}

void dataentryGraphicalController::placeButtons(int top, int height, int firstButton, int count, int columns)
{
    // One column of buttons leaves room for the colour wells; two columns share the margin.
    const int left = kControlGap;
    const int usable = columns == 1 ? kMargin - kWellWidth - 4 * kControlGap : kMargin - 3 * kControlGap;
    const int buttonWidth = (usable - (columns - 1) * kControlGap) / columns;
    const int rows = (count + columns - 1) / columns;
    const int rowHeight = std::max(height / std::max(rows, 1), 1);
    const int buttonHeight = std::max(std::min(rowHeight - kControlGap, 24), 1);
    for (int i = 0; i < count; ++i) {
        const int row = i / columns;
        const int column = i % columns;
        m_buttons[firstButton + i]->setGeometry(left + column * (buttonWidth + kControlGap),
                                                top + row * rowHeight, buttonWidth, buttonHeight);
    }
}
