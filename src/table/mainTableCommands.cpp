// The table's commands other than playback: undo, redo, revert, interpolation, the option
// windows and the data-entry windows.
#include "table/mainTable.h"

#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "options/optionFFTLPC.h"
#include "options/optionFile.h"
#include "options/optionPitch.h"
#include "options/optionSpectrogram.h"
#include "options/optionsParameters.h"
#include "table/TableEditing.h"

#include <QWidget>

namespace
{
mainTable::DataEntryFactory& graphicalFactory()
{
    static mainTable::DataEntryFactory factory;
    return factory;
}
mainTable::DataEntryFactory& traceFactory()
{
    static mainTable::DataEntryFactory factory;
    return factory;
}
} // namespace

void mainTable::setGraphicalDataEntryFactory(DataEntryFactory factory)
{
    graphicalFactory() = std::move(factory);
}

void mainTable::setTraceDataEntryFactory(DataEntryFactory factory)
{
    traceFactory() = std::move(factory);
}

bool mainTable::hasGraphicalDataEntry()
{
    return static_cast<bool>(graphicalFactory());
}

bool mainTable::hasTraceDataEntry()
{
    return static_cast<bool>(traceFactory());
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
        optionFile panel(window());
        if (panel.showInWindow(window(), m_pDoc) != 1000)
            return;
        saveoptionsFile();
        m_pDoc->saveConfig();
        m_pDoc->saveRedo();
        reloadData();
    });
}

namespace
{
template <class Panel> bool runAnalysisPanel(QWidget* parent, MyDocument* doc)
{
    Panel panel(parent);
    if (panel.showInWindow(parent, doc) != OptionPanel::kOK)
        return false;
    doc->saveConfig();
    return true;
}
} // namespace

void mainTable::_optionsFFTLPC()
{
    guarded(QStringLiteral("OK"), [&] {
        if (runAnalysisPanel<optionFFTLPC>(window(), m_pDoc))
            emit analysisSettingsChanged();
    });
}

void mainTable::_optionsSpectrogram()
{
    guarded(QStringLiteral("OK"), [&] {
        if (!runAnalysisPanel<optionSpectrogram>(window(), m_pDoc))
            return;
        if (m_pDataentryTrace)
            m_pDataentryTrace->analysisSettingsChanged();
        emit analysisSettingsChanged();
    });
}

void mainTable::_optionsPitch()
{
    guarded(QStringLiteral("OK"), [&] {
        if (!runAnalysisPanel<optionPitch>(window(), m_pDoc))
            return;
        if (m_pDataentryTrace)
            m_pDataentryTrace->analysisSettingsChanged();
        emit analysisSettingsChanged();
    });
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
        w->setWindowTitle(titlePrefix + w->windowTitle());
        w->show();
        w->raise();
        w->activateWindow();
    });
}

void mainTable::_dataentryGraphical()
{
    openDataEntry(m_pDataentryGraphical, graphicalFactory(), QStringLiteral("data entry:: "));
}

void mainTable::_dataentryTrace()
{
    if (!m_pDoc->getChannel(2)->hasAudio())
        return;
    openDataEntry(m_pDataentryTrace, traceFactory(), QStringLiteral("data entry by tracing over a model:: "));
}
