// The table's commands other than playback: undo, redo, revert, interpolation, the option
// windows and the data-entry windows.
#include "table/gui/mainTable.h"

#include "document/DocumentException.h"
#include "document/InstalledHook.h"
#include "document/MyDocument.h"
#include "options/optionFFTLPC.h"
#include "options/optionFile.h"
#include "options/optionPitch.h"
#include "options/optionSpectrogram.h"
#include "options/optionsParameters.h"
#include "table/TableEditing.h"

#include <QMessageBox>
#include <QPushButton>
#include <QWidget>

#include <algorithm>

namespace
{
const QString kGraphicalTitle = QStringLiteral("data entry:: ");
const QString kTraceTitle = QStringLiteral("data entry by tracing over a model:: ");

using GraphicalWindows = InstalledHook<struct GraphicalWindowsTag, mainTable::DataEntryFactory>;
using TraceWindows = InstalledHook<struct TraceWindowsTag, mainTable::DataEntryFactory>;
} // namespace

void mainTable::setGraphicalDataEntryFactory(DataEntryFactory factory)
{
    GraphicalWindows::install(std::move(factory));
}

void mainTable::setTraceDataEntryFactory(DataEntryFactory factory)
{
    TraceWindows::install(std::move(factory));
}

bool mainTable::hasGraphicalDataEntry()
{
    return GraphicalWindows::installed();
}

bool mainTable::hasTraceDataEntry()
{
    return TraceWindows::installed();
}

void mainTable::afterSnapshotRestored()
{
    rebuildColumns();
    viewport()->update();
    _bSynthesize = true;
    // The data-entry views hold the cells that were just replaced.
    if (m_pDataentryGraphical)
        m_pDataentryGraphical->setupViews();
    if (m_pDataentryTrace)
        m_pDataentryTrace->setupViews();
    emit documentChanged();
}

void mainTable::undo()
{
    guarded(QStringLiteral("OK"), [&] {
        m_pDoc->doUndo();
        afterSnapshotRestored();
    });
}

void mainTable::redo()
{
    guarded(QStringLiteral("OK"), [&] {
        m_pDoc->doRedo();
        afterSnapshotRestored();
    });
}

void mainTable::revertDocumentToSaved()
{
    guarded(QStringLiteral("Error in Revert to Save"), [&] {
        if (!m_pDoc->doRevertDocumentToSaved())
            throw DocumentException("Error in reading the file", m_pDoc->lastReadError());
        afterSnapshotRestored();
    });
}

void mainTable::_InterpolateAll()
{
    guarded(QStringLiteral("OK"), [&] {
        interpolateAll(*m_pDoc);
        reloadData();
        _bSynthesize = true;
        emit documentChanged();
    });
}

void mainTable::_editRows()
{
    _optionsParameters();
}

void mainTable::_optionsParameters()
{
    guarded(QStringLiteral("OK"), [&] {
        optionsParameters panel(window());
        if (panel.showInWindow(window(), m_pDoc) != 1000)
            return;
        saveParameters();
        m_pDoc->saveConfig();
    });
}

void mainTable::_optionsFile()
{
    guarded(QStringLiteral("OK"), [&] {
        Channels& c = *m_pDoc->getChannel(0);
        const std::uint8_t interpolate = c.m_bDoInterpolate, anchor = c.m_bDoAnchor;
        optionFile panel(window());
        if (panel.showInWindow(window(), m_pDoc) != 1000)
            return;
        if (!mayShorten()) {
            c.m_bDoInterpolate = interpolate; // declined: the panel changes nothing
            c.m_bDoAnchor = anchor;
            return;
        }
        saveoptionsFile();
        m_pDoc->saveConfig();
        m_pDoc->saveRedo();
        reloadData();
    });
}

bool mainTable::mayShorten()
{
    const Shortening shortening = proposedShortening(*m_pDoc);
    if (!shortening.removesValues)
        return true; // frames at the factory values are not worth a question
    QMessageBox box(QMessageBox::Question, tr("Shorten"),
                    tr("Shortening to %1 ms removes %2 frames.")
                        .arg(static_cast<long long>(std::max(0.0, m_pDoc->m_dNewLengthMS)))
                        .arg(shortening.removedFrames),
                    QMessageBox::NoButton, window());
    box.setInformativeText(tr("Some of them hold values other than a new frame's."));
    QPushButton* shorten = box.addButton(tr("Shorten"), QMessageBox::DestructiveRole);
    QPushButton* cancel = box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(cancel);
    box.setWindowModality(Qt::WindowModal);
    box.exec();
    return box.clickedButton() == shorten;
}

void mainTable::runAnalysisPanel(OptionPanel& panel, bool traceAnalyses)
{
    guarded(QStringLiteral("OK"), [&] {
        if (panel.showInWindow(window(), m_pDoc) != OptionPanel::kOK)
            return;
        m_pDoc->saveConfig();
        if (traceAnalyses && m_pDataentryTrace)
            m_pDataentryTrace->analysisSettingsChanged();
        emit analysisSettingsChanged();
    });
}

void mainTable::_optionsFFTLPC()
{
    optionFFTLPC panel(window());
    runAnalysisPanel(panel, false);
}

void mainTable::_optionsSpectrogram()
{
    optionSpectrogram panel(window());
    runAnalysisPanel(panel, true);
}

void mainTable::_optionsPitch()
{
    optionPitch panel(window());
    runAnalysisPanel(panel, true);
}

void mainTable::saveParameters()
{
    stopPlayback();            // the synthesis that follows replaces the samples
    ::saveParameters(*m_pDoc); // synthesizes again for the rate the shown rows ask for
    reloadData();
    emit synthesized();
    emit documentChanged();
}

void mainTable::AdjustSampleRate(bool synthesize)
{
    if (synthesize)
        stopPlayback();
    ::AdjustSampleRate(*m_pDoc, synthesize);
    if (synthesize)
        emit synthesized();
}

void mainTable::saveoptionsFile()
{
    ::saveoptionsFile(*m_pDoc);
    rebuildColumns();
    // The utterance's length or rate changed: the next play synthesizes again.
    _bSynthesize = true;
    emit documentChanged();
}

void mainTable::openDataEntry(std::unique_ptr<DataEntryController>& slot, const DataEntryFactory& factory,
                              const QString& titlePrefix)
{
    if (!factory)
        return;
    guarded(QStringLiteral("OK"), [&] {
        slot.reset(); // one window of a kind per table: the old one goes first
        slot.reset(factory(this));
        if (!slot || !slot->window())
            return;
        QWidget* w = slot->window();
        if (m_strDocumentTitle.isEmpty())
            m_strDocumentTitle = w->windowTitle(); // the controller's own name of the document
        titleDataEntry(slot.get(), titlePrefix);
        w->show();
        w->raise();
        w->activateWindow();
    });
}

void mainTable::_dataentryGraphical()
{
    openDataEntry(m_pDataentryGraphical, GraphicalWindows::function(), kGraphicalTitle);
}

void mainTable::_dataentryTrace()
{
    if (!m_pDoc->getChannel(2)->hasAudio())
        return;
    openDataEntry(m_pDataentryTrace, TraceWindows::function(), kTraceTitle);
}

void mainTable::titleDataEntry(DataEntryController* controller, const QString& titlePrefix)
{
    QWidget* w = controller ? controller->window() : nullptr;
    if (!w)
        return;
    w->setWindowTitle(titlePrefix + m_strDocumentTitle + QStringLiteral("[*]"));
    w->setWindowModified(m_pDoc->isDocumentEdited());
}

void mainTable::setDocumentTitle(const QString& name)
{
    m_strDocumentTitle = name;
    titleDataEntry(m_pDataentryGraphical.get(), kGraphicalTitle);
    titleDataEntry(m_pDataentryTrace.get(), kTraceTitle);
}
