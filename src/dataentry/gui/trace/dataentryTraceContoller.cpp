#include "dataentry/gui/trace/dataentryTraceContoller.h"

#include "configuration/ConfigurationFile.h"
#include "copysynth/gui/CopySynthesisCommand.h"
#include "dataentry/TraceDataEntry.h"
#include "dataentry/gui/DataEntrySupport.h"
#include "dataentry/gui/TimeAxisZoom.h"
#include "dataentry/gui/trace/viewAmplitudes.h"
#include "dataentry/gui/trace/viewPitch.h"
#include "dataentry/gui/trace/viewSpectrogram.h"
#include "table/gui/mainTable.h"

#include <QAction>
#include <QCheckBox>
#include <QEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>
#include <exception>

namespace
{

// The keys each button makes active in the three views, and the button switched on with it.
struct ButtonRole {
    const char* pitch;
    const char* spectrogram;
    const char* amplitudes;
    int alsoOn; // -1: none
};

using C = dataentryTraceContoller;
const ButtonRole kButtons[C::ButtonCount] = {
    {"f0", "", "", -1},        {"", "f1", "a1f", C::A1F}, {"", "f2", "a2f", C::A2F},
    {"", "f3", "a3f", C::A3F}, {"", "f4", "a4f", C::A4F}, {"", "f5", "a5f", C::A5F},
    {"", "", "av", -1},        {"", "", "apv", -1},       {"", "", "a1f", -1},
    {"", "", "a2f", -1},       {"", "", "a3f", -1},       {"", "", "a4f", -1},
    {"", "", "a5f", -1},
};

constexpr int kMargin = DataEntryControls::kMargin;
constexpr int kStrip = 26; // the strip along the bottom: Enter All Data, View Old Data, status
constexpr int kGap = DataEntryControls::kGap;
constexpr int kWellWidth = 26;
constexpr int kViewOldWidth = 115; // the View Old Data check box
constexpr int kStatusWidth = 250;  // the pointer's readout and the entry's report

} // namespace

dataentryTraceContoller::dataentryTraceContoller(MyDocument* doc, mainTable* table, QObject* parent)
    : DataEntryWindow(doc, parent)
{
    makePlots(m_viewPitch, m_viewSpectrogram, m_viewAmplitudes);
    // The readout named the time under the pointer before the axis moved.
    connect(m_timeAxis, &TimeAxisZoom::changed, this, [this] {
        if (!m_viewSpectrogram->isComputing())
            showStatus({});
    });
    makeControls();
    makeMenus();
    for (TraceView* view : views())
        connect(view, &TraceView::pointerReadout, this, [this](const QString& text) {
            if (!m_viewSpectrogram->isComputing())
                showStatus(text);
        });
    connect(m_viewSpectrogram, &viewSpectrogram::computingChanged, this,
            &dataentryTraceContoller::spectrogramComputing);
    connect(&m_entryAnalysis, &SpectrogramWorker::finished, this,
            [this](std::shared_ptr<const SpectrogramWorker::Result> result) {
                if (m_pDoc && m_bEnterPending)
                    enterAllDataNow(result->computation);
            });
    setmaintableID(table);
    windowDidLoad();
}

std::array<TraceView*, 3> dataentryTraceContoller::views() const
{
    return {m_viewPitch, m_viewSpectrogram, m_viewAmplitudes};
}

void dataentryTraceContoller::makeControls()
{
    makeParameterControls(kWellWidth, [this](Button b) { actionTrace(b); });
    m_enterAllData = new QPushButton(QStringLiteral("Enter All Data"), m_content);
    m_enterAllData->setFocusPolicy(Qt::NoFocus);
    m_enterAllData->setToolTip(
        QStringLiteral("Enter the pitch track, the formants and their amplitudes (Ctrl+E)"));
    connect(m_enterAllData, &QPushButton::clicked, this, &dataentryTraceContoller::actionEnterAllData);
    m_copySynthesis = new QPushButton(QStringLiteral("Automatic Copy Synthesis"), m_content);
    m_copySynthesis->setFocusPolicy(Qt::NoFocus);
    m_copySynthesis->setToolTip(QStringLiteral(
        "Estimate every parameter from the model, voicing, noise and levels included (Ctrl+Shift+E)"));
    connect(m_copySynthesis, &QPushButton::clicked, this, &dataentryTraceContoller::actionCopySynthesis);
    m_viewOldData = new QCheckBox(QStringLiteral("View Old Data"), m_content);
    m_viewOldData->setFocusPolicy(Qt::NoFocus);
    connect(m_viewOldData, &QCheckBox::clicked, this, &dataentryTraceContoller::actionViewOldData);
    m_status = new QLabel(m_content);
    m_status->setTextFormat(Qt::PlainText);
}

void dataentryTraceContoller::windowDidLoad()
{
    m_window->setWindowTitle(dataEntryWindowTitle(m_pDoc));
    m_window->setGeometry(10, 300, 800, 400);
    m_window->setMinimumSize(420, 300);
    m_controls->load(m_pDoc);
    for (TraceView* view : views()) {
        view->setDocument(m_pDoc);
        view->set_containerID(this);
    }
    m_viewPitch->setColor(m_controls->wellColor(0));
    for (int f = 0; f < 5; ++f) {
        m_viewSpectrogram->setColor(m_controls->wellColor(f + 1), f);
        m_viewAmplitudes->setColor(m_controls->wellColor(f + 1), f);
    }
    // The window always opens tracing F0, whatever the document's switches say.
    m_controls->checkOnly(F0);
    m_viewPitch->activeParameter("f0");
    const bool showOld = !m_pDoc || m_pDoc->_bShowGridData != 0;
    m_viewOldData->setChecked(showOld);
    for (TraceView* view : views())
        view->set_bViewGridData(showOld);
    // The content is laid out before the window is first shown, so that the spectrogram is
    // computed at once for the size it will have.
    m_content->resize(800, 400 - m_window->menuBar()->sizeHint().height());
    specialWindowDidResize(m_content->width(), m_content->height());
    m_viewPitch->setup();
    m_viewSpectrogram->setup();
    m_viewAmplitudes->setup();
}

void dataentryTraceContoller::setupViews()
{
    // The model and the analysis settings are as they were: the tracks computed from them stay.
    m_viewPitch->setupAfterUndo();
    m_viewSpectrogram->setupAfterUndo();
    m_viewAmplitudes->setup();
}

void dataentryTraceContoller::analysisSettingsChanged()
{
    // setup() takes the document's settings and computes the pitch track and the spectrogram
    // again (in the background for the spectrogram); the old picture shows until then.
    m_viewPitch->setup();
    m_viewSpectrogram->setup();
    m_viewAmplitudes->setup();
}

void dataentryTraceContoller::actionTrace(Button button)
{
    if (!m_pDoc)
        return;
    const ButtonRole& role = kButtons[button];
    m_controls->checkOnly(button, role.alsoOn);
    m_controls->storeSwitches(*m_pDoc);
    m_viewPitch->activeParameter(role.pitch);
    m_viewSpectrogram->activeParameter(role.spectrogram);
    m_viewAmplitudes->activeParameter(role.amplitudes);
    if (button >= F1 && button <= F5)
        m_viewAmplitudes->setColor(toQColor(m_pDoc->m_ColorTracing[button]), button - F1);
}

void dataentryTraceContoller::colorPlots(int well, const QColor& color)
{
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
            return m_controls->wellColor(well);
    return Qt::black;
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
    // The entry reads an analysis of its own, made now with the document's current settings:
    // the picture on screen has one frame per pixel column, too few for a long recording.
    m_bEnterPending = true;
    showStatus(QStringLiteral("Enter All Data runs when the analysis is ready"));
    m_entryAnalysis.start(*m_pDoc->getChannel(2), SpectrogramSettings::fromDocument(*m_pDoc),
                          TraceDataEntry::entryAnalysisWidth(*m_pDoc),
                          TraceDataEntry::kDefaultSpectrogramHeight);
}

namespace
{
// What an entry put into the table, in the status line's words; only the tracks the analysis had.
QString enteredTracks(const PitchTrackComputation& pitch, const SpectrogramComputation& analysis)
{
    QStringList entered;
    if (pitch.m_bHavePitch && pitch.m_nFrameCount > 0)
        entered << QStringLiteral("f0");
    if (analysis.m_bHaveFormants && analysis.m_nFormantsFrames > 0)
        entered << QStringLiteral("f1 - f5") << QStringLiteral("a1f - a5f");
    if (entered.isEmpty())
        return QStringLiteral("Nothing entered: the analysis found neither pitch nor formants");
    const QString last = entered.takeLast();
    return QStringLiteral("Entered %1")
        .arg(entered.isEmpty() ? last : entered.join(QStringLiteral(", ")) + QStringLiteral(" and ") + last);
}
} // namespace

void dataentryTraceContoller::actionCopySynthesis()
{
    if (m_mainTableID)
        CopySynthesisCommand::start(*m_mainTableID, m_window.get());
}

void dataentryTraceContoller::enterAllDataNow(const SpectrogramComputation& analysis)
{
    m_bEnterPending = false;
    try {
        TraceDataEntry::enterAllData(*m_pDoc, m_viewPitch->lists(), m_viewSpectrogram->lists(),
                                     m_viewAmplitudes->lists(), m_viewPitch->pitchTrack(), analysis);
        showStatus(enteredTracks(m_viewPitch->pitchTrack(), analysis));
    } catch (const std::exception& e) {
        showStatus({});
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
    if (!m_bEnterPending)
        showStatus(computing ? QStringLiteral("Computing spectrogram\u2026") : QString());
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

void dataentryTraceContoller::relayout()
{
    specialWindowDidResize(m_window->width(), m_window->height());
}

void dataentryTraceContoller::specialWindowDidResize(int w, int h)
{
    // The views share the height less the bottom strip in the proportion 1 : 2 : 1.
    const DataEntryControls::Stack views = placePlots(w, h);
    m_controls->place(views);
    const int width = views.upper.width();
    const int stripTop = h - kStrip + 2;
    m_enterAllData->setGeometry(kGap, stripTop, kMargin - 2 * kGap, kStrip - 4);
    m_timeAxis->setViewWidth(width);
    // Under the views: the scroll bar, then View Old Data and the pointer's readout at the right.
    const int right = kMargin + width;
    const int statusLeft = right - std::min(kStatusWidth, std::max(width - kViewOldWidth, 0));
    const int viewOldLeft = std::max(statusLeft - kViewOldWidth, kMargin);
    // Automatic Copy Synthesis beside Enter All Data, then the scroll bar.
    const int copyWidth = std::min(m_copySynthesis->sizeHint().width(), std::max(viewOldLeft - kMargin, 0));
    m_copySynthesis->setGeometry(kMargin, stripTop, copyWidth, kStrip - 4);
    const int barLeft = kMargin + copyWidth + kGap;
    m_scrollBar->setGeometry(barLeft, stripTop + 3, std::max(viewOldLeft - kGap - barLeft, 0), kStrip - 10);
    m_viewOldData->setGeometry(viewOldLeft + kGap, stripTop, kViewOldWidth - kGap, kStrip - 4);
    m_status->setGeometry(statusLeft, stripTop, right - statusLeft, kStrip - 4);
    showStatus(m_statusText);
}

void dataentryTraceContoller::showStatus(const QString& text)
{
    // The strip has room for one line: a longer text is cut with an ellipsis and shown whole
    // in the tool tip.
    m_statusText = text;
    const QString shown = m_status->fontMetrics().elidedText(text, Qt::ElideRight, m_status->width());
    m_status->setText(shown);
    m_status->setToolTip(shown == text ? QString() : text);
}
