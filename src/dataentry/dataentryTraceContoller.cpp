#include "dataentry/dataentryTraceContoller.h"

#include "app/ConfigurationFile.h"
#include "dataentry/DataEntrySupport.h"
#include "dataentry/TimeAxisZoom.h"
#include "dataentry/core/TraceDataEntry.h"
#include "dataentry/viewAmplitudes.h"
#include "dataentry/viewPitch.h"
#include "dataentry/viewSpectrogram.h"
#include "table/mainTable.h"

#include <QAction>
#include <QCheckBox>
#include <QColorDialog>
#include <QEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollBar>
#include <QToolButton>

#include <algorithm>
#include <cstdint>
#include <exception>

namespace
{

struct ButtonRole {
    const char* title;
    const char* pitch;       // key made active in the pitch view
    const char* spectrogram; // ... in the spectrogram view
    const char* amplitudes;  // ... in the amplitude view
    int alsoOn;              // the button switched on with this one (-1 none)
    std::int32_t MyDocument::*documentSwitch;
};

using C = dataentryTraceContoller;
const ButtonRole kButtons[C::ButtonCount] = {
    {"F0", "f0", "", "", -1, &MyDocument::m_nF0},        {"F1", "", "f1", "a1f", C::A1F, &MyDocument::m_nF1},
    {"F2", "", "f2", "a2f", C::A2F, &MyDocument::m_nF2}, {"F3", "", "f3", "a3f", C::A3F, &MyDocument::m_nF3},
    {"F4", "", "f4", "a4f", C::A4F, &MyDocument::m_nF4}, {"F5", "", "f5", "a5f", C::A5F, &MyDocument::m_nF5},
    {"AV", "", "", "av", -1, &MyDocument::m_nAV},        {"APV", "", "", "apv", -1, &MyDocument::m_nAPV},
    {"A1F", "", "", "a1f", -1, &MyDocument::m_nA1F},     {"A2F", "", "", "a2f", -1, &MyDocument::m_nA2F},
    {"A3F", "", "", "a3f", -1, &MyDocument::m_nA3F},     {"A4F", "", "", "a4f", -1, &MyDocument::m_nA4F},
    {"A5F", "", "", "a5f", -1, &MyDocument::m_nA5F},
};

constexpr int kMargin = 100; // the left margin that holds the track buttons
constexpr int kStrip = 26;   // the strip along the bottom: Enter All Data, View Old Data, status
constexpr int kGap = 2;
constexpr int kWellWidth = 26;
constexpr int kViewOldWidth = 115; // the View Old Data check box
constexpr int kStatusWidth = 170;  // the pointer's readout

} // namespace

dataentryTraceContoller::dataentryTraceContoller(MyDocument* doc, mainTable* table, QObject* parent)
    : QObject(parent), m_pDoc(doc)
{
    m_window = std::make_unique<QWidget>();
    m_window->setAttribute(Qt::WA_DeleteOnClose, false);
    m_viewPitch = new viewPitch(m_window.get());
    m_viewSpectrogram = new viewSpectrogram(m_window.get());
    m_viewAmplitudes = new viewAmplitudes(m_window.get());
    m_timeAxis = new TimeAxisZoom(this);
    m_timeAxis->setFrameSource([this] { return m_pDoc ? m_pDoc->getChannel(0)->m_nColumnNum : 0; });
    m_scrollBar = new QScrollBar(Qt::Horizontal, m_window.get());
    m_scrollBar->setFocusPolicy(Qt::NoFocus);
    m_timeAxis->attach(m_scrollBar);
    for (TraceView* view : views()) {
        view->setTimeAxis(m_timeAxis);
        m_timeAxis->watch(view);
    }
    // The readout named the time under the pointer before the axis moved.
    connect(m_timeAxis, &TimeAxisZoom::changed, this, [this] {
        if (!m_viewSpectrogram->isComputing())
            m_status->clear();
    });
    makeControls();
    makeShortcuts();
    for (TraceView* view : views())
        connect(view, &TraceView::pointerReadout, this, [this](const QString& text) {
            if (!m_viewSpectrogram->isComputing())
                m_status->setText(text);
        });
    connect(m_viewSpectrogram, &viewSpectrogram::computingChanged, this,
            &dataentryTraceContoller::spectrogramComputing);
    setmaintableID(table);
    windowDidLoad();
}

dataentryTraceContoller::~dataentryTraceContoller() = default;

std::array<TraceView*, 3> dataentryTraceContoller::views() const
{
    return {m_viewPitch, m_viewSpectrogram, m_viewAmplitudes};
}

QWidget* dataentryTraceContoller::window()
{
    return m_window.get();
}

void dataentryTraceContoller::setmaintableID(mainTable* table)
{
    m_mainTableID = table;
    for (TraceView* view : views())
        view->set_mainTableID(table);
}

void dataentryTraceContoller::makeControls()
{
    for (int b = 0; b < ButtonCount; ++b) {
        auto* button = new QPushButton(QString::fromUtf8(kButtons[b].title), m_window.get());
        button->setCheckable(true);
        button->setFocusPolicy(Qt::NoFocus); // Space plays; it must not press a button
        button->setObjectName(QString::fromUtf8(kButtons[b].title));
        connect(button, &QPushButton::clicked, this, [this, b] { actionTrace(static_cast<Button>(b)); });
        m_buttons[static_cast<std::size_t>(b)] = button;
    }
    for (int well = 0; well < 6; ++well) {
        auto* button = new QToolButton(m_window.get());
        button->setFocusPolicy(Qt::NoFocus);
        button->setToolTip(well == 0 ? QStringLiteral("F0 colour") : QStringLiteral("F%1 colour").arg(well));
        connect(button, &QToolButton::clicked, this, [this, well] {
            const QColor chosen =
                QColorDialog::getColor(m_wellColors[static_cast<std::size_t>(well)], m_window.get());
            if (chosen.isValid())
                actionColor(well, chosen);
        });
        m_wells[static_cast<std::size_t>(well)] = button;
    }
    m_enterAllData = new QPushButton(QStringLiteral("Enter All Data"), m_window.get());
    m_enterAllData->setFocusPolicy(Qt::NoFocus);
    m_enterAllData->setToolTip(
        QStringLiteral("Enter the pitch track, the formants and their amplitudes (Ctrl+E)"));
    connect(m_enterAllData, &QPushButton::clicked, this, &dataentryTraceContoller::actionEnterAllData);
    m_viewOldData = new QCheckBox(QStringLiteral("View Old Data"), m_window.get());
    m_viewOldData->setFocusPolicy(Qt::NoFocus);
    connect(m_viewOldData, &QCheckBox::clicked, this, &dataentryTraceContoller::actionViewOldData);
    m_status = new QLabel(m_window.get());
    m_status->setTextFormat(Qt::PlainText);
    m_window->installEventFilter(this);
}

void dataentryTraceContoller::makeShortcuts()
{
    const auto add = [this](const QKeySequence& keys, auto slot) {
        auto* action = new QAction(m_window.get());
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WindowShortcut);
        connect(action, &QAction::triggered, this, slot);
        m_window->addAction(action);
    };
    add(QKeySequence(QStringLiteral("Ctrl+E")), &dataentryTraceContoller::actionEnterAllData);
    add(QKeySequence::Undo, &dataentryTraceContoller::undo);
    add(QKeySequence(QStringLiteral("Ctrl+Shift+Z")), &dataentryTraceContoller::redo);
    add(QKeySequence(Qt::Key_Space), &dataentryTraceContoller::_PlayCurrent);
    add(QKeySequence(QStringLiteral("Ctrl+Shift+Space")), &dataentryTraceContoller::_PlayPrevious);
    add(QKeySequence(QStringLiteral("Ctrl+M")), &dataentryTraceContoller::_PlayAudio);
    m_window->addActions(m_timeAxis->makeActions(m_window.get()));
    add(QKeySequence::Save, [this] {
        if (m_save)
            m_save();
    });
}

void dataentryTraceContoller::windowDidLoad()
{
    m_window->setWindowTitle(dataEntryWindowTitle(m_pDoc));
    m_window->setGeometry(10, 300, 800, 400);
    m_window->setMinimumSize(420, 300);
    for (int well = 0; well < 6; ++well) {
        m_wellColors[static_cast<std::size_t>(well)] =
            m_pDoc ? toQColor(m_pDoc->m_ColorTracing[well]) : QColor(Qt::black);
        showWellColor(well);
    }
    for (int b = 0; b < ButtonCount; ++b)
        m_buttons[static_cast<std::size_t>(b)]->setChecked(m_pDoc &&
                                                           m_pDoc->*kButtons[b].documentSwitch != 0);
    for (TraceView* view : views()) {
        view->setDocument(m_pDoc);
        view->set_containerID(this);
    }
    m_viewPitch->setColor(m_wellColors[0]);
    for (int f = 0; f < 5; ++f) {
        m_viewSpectrogram->setColor(m_wellColors[static_cast<std::size_t>(f + 1)], f);
        m_viewAmplitudes->setColor(m_wellColors[static_cast<std::size_t>(f + 1)], f);
    }
    // The window always opens tracing F0, whatever the document's switches say.
    for (int b = 0; b < ButtonCount; ++b)
        m_buttons[static_cast<std::size_t>(b)]->setChecked(b == F0);
    m_viewPitch->activeParameter("f0");
    const bool showOld = !m_pDoc || m_pDoc->_bShowGridData != 0;
    m_viewOldData->setChecked(showOld);
    for (TraceView* view : views())
        view->set_bViewGridData(showOld);
    specialWindowDidResize(m_window->width(), m_window->height());
    m_viewPitch->setup();
    m_viewSpectrogram->setup();
    m_viewAmplitudes->setup();
}

void dataentryTraceContoller::setupViews()
{
    m_viewPitch->setup();
    m_viewSpectrogram->setupAfterUndo();
    m_viewAmplitudes->setup();
}

void dataentryTraceContoller::actionTrace(Button button)
{
    if (!m_pDoc)
        return;
    const ButtonRole& role = kButtons[button];
    for (int b = 0; b < ButtonCount; ++b)
        m_buttons[static_cast<std::size_t>(b)]->setChecked(b == button || b == role.alsoOn);
    // The A5F switch is read from the document but never written back by the buttons.
    for (int b = 0; b < A5F; ++b)
        m_pDoc->*kButtons[b].documentSwitch = m_buttons[static_cast<std::size_t>(b)]->isChecked() ? 1 : 0;
    m_viewPitch->activeParameter(role.pitch);
    m_viewSpectrogram->activeParameter(role.spectrogram);
    m_viewAmplitudes->activeParameter(role.amplitudes);
    if (button >= F1 && button <= F5)
        m_viewAmplitudes->setColor(toQColor(m_pDoc->m_ColorTracing[button]), button - F1);
}

void dataentryTraceContoller::actionColor(int well, const QColor& color)
{
    if (well < 0 || well >= 6 || !color.isValid())
        return;
    m_wellColors[static_cast<std::size_t>(well)] = color;
    showWellColor(well);
    if (m_pDoc)
        m_pDoc->m_ColorTracing[well] = toColor(color);
    if (well == 0) {
        m_viewPitch->setColor(color);
        return;
    }
    m_viewSpectrogram->setColor(color, well - 1);
    m_viewAmplitudes->setColor(color, well - 1);
}

QColor dataentryTraceContoller::getControlColor(const std::string& key) const
{
    static const char* const keys[] = {"f0", "f1", "f2", "f3", "f4", "f5"};
    for (int well = 0; well < 6; ++well)
        if (key == keys[well])
            return m_wellColors[static_cast<std::size_t>(well)];
    return Qt::black;
}

void dataentryTraceContoller::showWellColor(int well)
{
    m_wells[static_cast<std::size_t>(well)]->setStyleSheet(
        QStringLiteral("background-color: %1; border: 1px solid gray;")
            .arg(m_wellColors[static_cast<std::size_t>(well)].name(QColor::HexArgb)));
}

void dataentryTraceContoller::showSheet(const QString& title, const QString& message,
                                        const QString& buttonText)
{
    if (m_sheet)
        m_sheet->deleteLater();
    auto* box = new QMessageBox(QMessageBox::Warning, title, title, QMessageBox::NoButton, m_window.get());
    box->setInformativeText(message);
    box->addButton(buttonText, QMessageBox::AcceptRole);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    m_sheet = box;
    box->open();
}

void dataentryTraceContoller::actionEnterAllData()
{
    if (!m_pDoc)
        return;
    if (!m_pDoc->m_bSpecDrawFormantTracking) {
        showSheet(QStringLiteral("Formant tracking is not on. Automatic formants are not available"),
                  QStringLiteral("Close this window. Use Options->Spectrogram and turn on formant tracking."),
                  QStringLiteral("OK"));
        return;
    }
    // The formants come from the spectrogram being computed: the entry waits for it.
    if (m_viewSpectrogram->isComputing() || !m_viewSpectrogram->getHandle()) {
        m_bEnterPending = true;
        m_status->setText(QStringLiteral("Enter All Data runs when the spectrogram is ready"));
        if (!m_viewSpectrogram->isComputing())
            m_viewSpectrogram->DoSpectrogramOperation();
        return;
    }
    enterAllDataNow();
}

void dataentryTraceContoller::enterAllDataNow()
{
    m_bEnterPending = false;
    try {
        TraceDataEntry::enterAllData(*m_pDoc, m_viewPitch->lists(), m_viewSpectrogram->lists(),
                                     m_viewAmplitudes->lists(), m_viewPitch->pitchTrack(),
                                     *m_viewSpectrogram->getHandle());
        m_status->setText(QStringLiteral("Entered f0, f1 - f5 and a1f - a5f from the analysis"));
    } catch (const std::exception& e) {
        showSheet(QStringLiteral("Error in entering data values"), QString::fromStdString(e.what()),
                  QStringLiteral("Close"));
    }
    // Whatever was entered stays entered, and shows.
    if (m_mainTableID)
        m_mainTableID->refreshTable();
    else
        m_pDoc->updateChangeCount(MyDocument::ChangeDone);
    for (TraceView* view : views())
        view->update();
}

void dataentryTraceContoller::spectrogramComputing(bool computing)
{
    m_status->setText(computing ? QStringLiteral("Computing spectrogram\u2026") : QString());
    if (!computing && m_bEnterPending)
        enterAllDataNow();
}

void dataentryTraceContoller::actionViewOldData(bool show)
{
    if (!m_pDoc)
        return;
    m_pDoc->_bShowGridData = show ? 1 : 0;
    for (TraceView* view : views())
        view->set_bViewGridData(show);
    m_viewPitch->setup();
    m_viewSpectrogram->changeViewMode();
    m_viewAmplitudes->setup();
    // Remembered for the next windows; a missing or foreign configuration is left alone.
    ConfigurationFile::writeShowGridData(ConfigurationFile::defaultPath(), show);
}

void dataentryTraceContoller::forward(void (mainTable::*command)())
{
    if (m_mainTableID)
        (m_mainTableID->*command)();
}

void dataentryTraceContoller::undo()
{
    if (m_pDoc && m_pDoc->canUndo())
        forward(&mainTable::undo);
}
void dataentryTraceContoller::redo()
{
    if (m_pDoc && m_pDoc->canRedo())
        forward(&mainTable::redo);
}
void dataentryTraceContoller::_PlayCurrent()
{
    forward(&mainTable::_PlayCurrent);
}
void dataentryTraceContoller::_PlayPrevious()
{
    forward(&mainTable::_PlayPrevious);
}
void dataentryTraceContoller::_PlayAudio()
{
    if (m_pDoc && m_pDoc->getChannel(2)->hasAudio())
        forward(&mainTable::_PlayAudio);
}

bool dataentryTraceContoller::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window.get() && event->type() == QEvent::Resize) {
        const QSize size = static_cast<QResizeEvent*>(event)->size();
        specialWindowDidResize(size.width(), size.height());
    }
    return QObject::eventFilter(watched, event);
}

void dataentryTraceContoller::specialWindowDidResize(int w, int h)
{
    // The views share the height less the bottom strip in the proportion 1 : 2 : 1.
    const int H = h - kStrip;
    const int width = w - (kMargin + 5);
    const QRect pitch(kMargin, 5, width, H / 4);
    const QRect spectrogram(kMargin, H / 4 + 5, width, (2 * H) / 4);
    const QRect amplitudes(kMargin, (2 * H) / 4 + H / 4 + 5, width, H / 4 - 5);
    m_viewPitch->setPosition(pitch);
    m_viewSpectrogram->setPosition(spectrogram);
    m_viewAmplitudes->setPosition(amplitudes);

    placeButtons(pitch.top(), pitch.height(), F0, 1, 1);
    placeButtons(spectrogram.top(), spectrogram.height(), F1, 5, 1);
    placeButtons(amplitudes.top(), amplitudes.height(), AV, 7, 2);
    const int wellX = kMargin - kWellWidth - 2 * kGap;
    for (int well = 0; well < 6; ++well) {
        const QRect beside = m_buttons[static_cast<std::size_t>(well)]->geometry();
        m_wells[static_cast<std::size_t>(well)]->setGeometry(wellX, beside.top(), kWellWidth,
                                                             beside.height());
    }
    const int stripTop = h - kStrip + 2;
    m_enterAllData->setGeometry(kGap, stripTop, kMargin - 2 * kGap, kStrip - 4);
    m_timeAxis->setViewWidth(width);
    // Under the views: the scroll bar, then View Old Data and the pointer's readout at the right.
    const int right = kMargin + width;
    const int statusLeft = right - std::min(kStatusWidth, std::max(width - kViewOldWidth, 0));
    const int viewOldLeft = std::max(statusLeft - kViewOldWidth, kMargin);
    m_scrollBar->setGeometry(kMargin, stripTop + 3, std::max(viewOldLeft - kGap - kMargin, 0), kStrip - 10);
    m_viewOldData->setGeometry(viewOldLeft + kGap, stripTop, kViewOldWidth - kGap, kStrip - 4);
    m_status->setGeometry(statusLeft, stripTop, right - statusLeft, kStrip - 4);
}

void dataentryTraceContoller::placeButtons(int top, int height, int firstButton, int count, int columns)
{
    const int usable = columns == 1 ? kMargin - kWellWidth - 4 * kGap : kMargin - 3 * kGap;
    const int buttonWidth = (usable - (columns - 1) * kGap) / columns;
    const int rows = (count + columns - 1) / columns;
    const int rowHeight = std::max(height / std::max(rows, 1), 1);
    const int buttonHeight = std::max(std::min(rowHeight - kGap, 24), 1);
    for (int i = 0; i < count; ++i) {
        const int row = i / columns;
        const int column = i % columns;
        m_buttons[static_cast<std::size_t>(firstButton + i)]->setGeometry(
            kGap + column * (buttonWidth + kGap), top + row * rowHeight, buttonWidth, buttonHeight);
    }
}
