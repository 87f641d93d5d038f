// The document window's menus and the enabling of their commands.
#include "app/DocumentWindow.h"

#include "app/WorkbenchApplication.h"
#include "copysynth/gui/CopySynthesisCommand.h"
#include "document/MyDocument.h"
#include "stimulus/gui/AudioOutputPanel.h"
#include "table/gui/mainTable.h"

#include <QAction>
#include <QFileInfo>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

void DocumentWindow::createMenus()
{
    QMenu* file = createFileMenu();
    QMenu* edit = createEditMenu();
    createViewMenu();
    QMenu* frames = createFramesMenu();
    QMenu* play = createPlayMenu();
    createDataEntryMenu();
    QMenu* analysis = createAnalysisMenu();
    QMenu* options = createOptionsMenu();
    for (QMenu* menu : {file, edit, frames, play, analysis, options})
        connect(menu, &QMenu::aboutToShow, this, &DocumentWindow::updateActions);
}

QMenu* DocumentWindow::createFileMenu()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&New"), QKeySequence::New, m_pApp, [this] { m_pApp->newDocument(); });
    file->addAction(tr("New from &Text..."), QKeySequence(tr("Ctrl+Shift+N")), this,
                    &DocumentWindow::newFromText);
    file->addAction(tr("&Open..."), QKeySequence::Open, this, [this] { m_pApp->openDialog(this); });
    m_pRecent = file->addMenu(tr("Open &Recent"));
    connect(m_pRecent, &QMenu::aboutToShow, this, [this] {
        m_pRecent->clear();
        for (const QString& path : m_pApp->recentFiles())
            m_pRecent->addAction(QFileInfo(path).fileName(), this, [this, path] { m_pApp->openFile(path); })
                ->setToolTip(path);
        m_pRecent->addSeparator();
        m_pRecent->addAction(tr("Clear Menu"), m_pApp, &WorkbenchApplication::clearRecentFiles)
            ->setEnabled(!m_pApp->recentFiles().isEmpty());
    });
    file->addSeparator();
    file->addAction(tr("&Close"), QKeySequence::Close, this, &QWidget::close);
    m_pSave = file->addAction(tr("&Save"), QKeySequence::Save, this, [this] { saveDocument(); });
    file->addAction(tr("Save &As..."), QKeySequence::SaveAs, this, &DocumentWindow::saveDocumentAs);
    m_pRevert = file->addAction(tr("Re&vert to Saved"), this, &DocumentWindow::revertDocument);
    file->addSeparator();
    file->addAction(tr("Save A&udio..."), m_pTable, &mainTable::_fileSaveAudio);
    file->addAction(tr("Load &Model Recording..."), this, &DocumentWindow::loadModelRecording);
    file->addAction(tr("Rec&ord Model..."), this, &DocumentWindow::recordModel);
    m_pSaveModel = file->addAction(tr("Save Mo&del Audio..."), this, &DocumentWindow::saveModelAudio);
    file->addAction(tr("Make Co&ntinuum..."), this, &DocumentWindow::makeContinuum);
    createLabelMenus(file);
    file->addSeparator();
    file->addAction(tr("&Load Configuration..."), this, &DocumentWindow::loadConfiguration);
    file->addAction(tr("Save Con&figuration..."), this, &DocumentWindow::saveConfiguration);
    file->addSeparator();
    QAction* quit = file->addAction(tr("&Quit"), QKeySequence::Quit, m_pApp, &WorkbenchApplication::quit);
    quit->setMenuRole(QAction::QuitRole);
    return file;
}

QMenu* DocumentWindow::createEditMenu()
{
    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    m_pUndo = edit->addAction(tr("&Undo"), QKeySequence::Undo, m_pTable, &mainTable::undo);
    m_pRedo = edit->addAction(tr("&Redo"), QKeySequence(tr("Ctrl+Shift+Z")), m_pTable, &mainTable::redo);
    edit->addSeparator();
    edit->addAction(tr("&Copy"), QKeySequence::Copy, m_pTable, &mainTable::copySelection);
    edit->addAction(tr("&Paste"), QKeySequence::Paste, m_pTable, &mainTable::pasteAtSelection);
    edit->addAction(tr("Select &All"), QKeySequence::SelectAll, m_pTable, &QTableView::selectAll);
    edit->addSeparator();
    edit->addAction(tr("&Parameters..."), m_pTable, &mainTable::_editRows);
    return edit;
}

QMenu* DocumentWindow::createFramesMenu()
{
    QMenu* frames = menuBar()->addMenu(tr("F&rames"));
    frames->addAction(tr("&Add Frames..."), m_pTable, &mainTable::_editAddColumns);
    frames->addAction(tr("&Remove Frames"), m_pTable, &mainTable::_editRemoveColumns);
    frames->addSeparator();
    m_pInterpolateSelection =
        frames->addAction(tr("&Interpolate Selection"), m_pTable, &mainTable::_InterpolateSelection);
    frames->addAction(tr("Interpolate A&ll"), m_pTable, &mainTable::_InterpolateAll);
    frames->addSeparator();
    m_pAnchorRemoveSelection =
        frames->addAction(tr("Remove Anchors in &Selection"), m_pTable, &mainTable::_anchorRemoveSelection);
    frames->addAction(tr("Remove All A&nchors"), m_pTable, &mainTable::_anchorRemoveAll);
    return frames;
}

QMenu* DocumentWindow::createPlayMenu()
{
    QMenu* play = menuBar()->addMenu(tr("&Play"));
    play->addAction(tr("Play &Current"), QKeySequence(Qt::Key_Space), m_pTable, &mainTable::_PlayCurrent);
    play->addAction(tr("Play &Selection"), QKeySequence(tr("Shift+Space")), m_pTable,
                    &mainTable::_PlaySelection);
    play->addAction(tr("Play &Previous"), QKeySequence(tr("Ctrl+Shift+Space")), m_pTable,
                    &mainTable::_PlayPrevious);
    m_pPlayModel =
        play->addAction(tr("Play &Model"), QKeySequence(tr("Ctrl+M")), m_pTable, &mainTable::_PlayAudio);
    return play;
}

void DocumentWindow::createDataEntryMenu()
{
    if (mainTable::hasGraphicalDataEntry() || mainTable::hasTraceDataEntry()) {
        QMenu* entry = menuBar()->addMenu(tr("&Data Entry"));
        if (mainTable::hasGraphicalDataEntry())
            entry->addAction(tr("&Graphical Data Entry..."), QKeySequence(tr("Ctrl+G")), m_pTable,
                             &mainTable::_dataentryGraphical);
        if (mainTable::hasTraceDataEntry())
            m_pTrace = entry->addAction(tr("&Trace Over Model..."), QKeySequence(tr("Ctrl+T")), m_pTable,
                                        &mainTable::_dataentryTrace);
        m_pCopySynthesis = entry->addAction(tr("&Automatic Copy Synthesis"), QKeySequence(tr("Ctrl+Shift+E")),
                                            this, [this] { CopySynthesisCommand::start(*m_pTable, this); });
        connect(entry, &QMenu::aboutToShow, this, &DocumentWindow::updateActions);
    }
}

QMenu* DocumentWindow::createAnalysisMenu()
{
    QMenu* analysis = menuBar()->addMenu(tr("&Analysis"));
    if (mainTable::hasAnalysisWindows()) {
        analysis->addAction(tr("&Spectrogram and Pitch"), QKeySequence(tr("Ctrl+Shift+P")), m_pTable,
                            &mainTable::_analysisSpectrogramPitch);
        m_pSpectrogramModel =
            analysis->addAction(tr("Spectrogram and Pitch of &Model"), QKeySequence(tr("Ctrl+Shift+M")),
                                m_pTable, &mainTable::_analysisSpectrogramPitchModel);
        m_pFFTLPC = analysis->addAction(tr("&FFT/LPC Slice"), QKeySequence(tr("Ctrl+Shift+F")), m_pTable,
                                        &mainTable::_analysisFFTLPC);
    }
    return analysis;
}

QMenu* DocumentWindow::createOptionsMenu()
{
    QMenu* options = menuBar()->addMenu(tr("&Options"));
    options->addAction(tr("&Parameters..."), m_pTable, &mainTable::_optionsParameters);
    options->addAction(tr("&File..."), m_pTable, &mainTable::_optionsFile);
    options->addSeparator();
    options->addAction(tr("FFT/&LPC..."), m_pTable, &mainTable::_optionsFFTLPC);
    options->addAction(tr("&Spectrogram..."), m_pTable, &mainTable::_optionsSpectrogram);
    options->addAction(tr("P&itch..."), m_pTable, &mainTable::_optionsPitch);
    options->addSeparator();
    options->addAction(tr("&Audio Output..."), this, [this] { AudioOutputPanel(this).run(this); });
    return options;
}

void DocumentWindow::updateActions()
{
    if (!m_pUndo)
        return;
    m_pUndo->setEnabled(m_pDoc->canUndo());
    m_pRedo->setEnabled(m_pDoc->canRedo());
    m_pRevert->setEnabled(m_pDoc->canRevert());
    const bool model = m_pDoc->getChannel(2)->hasAudio();
    m_pPlayModel->setEnabled(model);
    m_pSaveModel->setEnabled(model);
    if (m_pTrace)
        m_pTrace->setEnabled(model);
    if (m_pCopySynthesis)
        m_pCopySynthesis->setEnabled(model);
    if (m_pSpectrogramModel)
        m_pSpectrogramModel->setEnabled(model);
    // The first frame cannot be analysed from the table: column 1 is not enough.
    if (m_pFFTLPC)
        m_pFFTLPC->setEnabled(m_pTable->selectedColumnSpan().first > 1);
    // The selection commands work on the span of the selected rows.
    const bool rowSelected = m_pTable->selectedRowSpan().first >= 0;
    m_pInterpolateSelection->setEnabled(rowSelected);
    m_pAnchorRemoveSelection->setEnabled(rowSelected);
}
