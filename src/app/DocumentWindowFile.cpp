// The document window's file commands: save, save as, revert, named configurations, and
// loading a model recording into the open document.
#include "app/DocumentWindow.h"

#include "app/WorkbenchApplication.h"
#include "audio/RecordModelDialog.h"
#include "configuration/ConfigurationFile.h"
#include "continuum/gui/ContinuumDialog.h"
#include "document/CountedText.h"
#include "document/MyDocument.h"
#include "phonemes/gui/PhonemeTextDialog.h"
#include "table/gui/mainTable.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QStatusBar>
#include <QUrl>

namespace
{
QString documentsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

// The file the user picks to save into, given `suffix` when typed without one; empty when
// cancelled.
QString askSavePath(QWidget* parent, const QString& title, const QString& proposal, const QString& filter,
                    const QString& suffix)
{
    QString path = QFileDialog::getSaveFileName(parent, title, proposal, filter);
    if (!path.isEmpty() && QFileInfo(path).suffix().isEmpty())
        path += suffix;
    return path;
}
} // namespace

bool DocumentWindow::saveDocument()
{
    if (filePath().isEmpty() || (m_bFileNameProposed && QFileInfo::exists(filePath()))) {
        // The file there is not this document's: the user picks where (the panel asks before
        // it replaces anything).
        saveDocumentAs();
        return !filePath().isEmpty() && !m_bFileNameProposed && !m_pDoc->isDocumentEdited();
    }
    return saveDocumentTo(filePath());
}

bool DocumentWindow::saveDocumentTo(const QString& path)
{
    std::string error;
    if (!m_pDoc->writeSafelyToURL(path.toStdString(), "stk", &error)) {
        alert(tr("The document “%1” could not be saved.").arg(QFileInfo(path).fileName()),
              QString::fromStdString(error));
        updateActions();
        return false;
    }
    m_pDoc->setFileURL(QFileInfo(path).absoluteFilePath().toStdString());
    m_pDoc->setFileType("stk");
    m_pDoc->updateChangeCount(MyDocument::ChangeCleared);
    m_bFileNameProposed = false;
    removeAutosave();
    m_pApp->noteRecentFile(filePath());
    updateTitle();
    updateActions();
    return true;
}

void DocumentWindow::saveDocumentAs()
{
    const QString start =
        filePath().isEmpty() ? documentsFolder() + QStringLiteral("/untitled.stk") : filePath();
    const QString path =
        askSavePath(this, tr("Save As"), start, tr("Parameter documents (*.stk)"), QStringLiteral(".stk"));
    if (!path.isEmpty())
        saveDocumentTo(path);
}

void DocumentWindow::revertDocument()
{
    if (!m_pDoc->canRevert())
        return;
    m_pTable->stopPlayback();
    m_pTable->revertDocumentToSaved();
    updateTitle();
    updateActions();
}

bool DocumentWindow::loadConfigurationFrom(const QString& path)
{
    // The configuration brings a length and an interval: the table is rebuilt for them from
    // the frames it has, like the file options do.
    // The previous synthesis and the model keep their own lengths.
    struct Extent {
        double length;
        std::int32_t interval, columns;
    } kept[3];
    for (int ch = 0; ch < 3; ++ch) {
        const Channels& k = *m_pDoc->getChannel(ch);
        kept[ch] = {k.m_dLengthMS, k.m_nUpdateIntervalMS, k.m_nColumnNum};
    }
    Channels& c = *m_pDoc->getChannel(0);
    if (!ConfigurationFile::read(path.toStdString(), *m_pDoc, ConfigurationFile::Scope::Everything)) {
        alert(tr("The configuration “%1” could not be loaded.").arg(QFileInfo(path).fileName()),
              tr("It is missing, damaged or not a Tessaphon configuration."));
        return false;
    }
    m_pDoc->m_dNewLengthMS = c.m_dLengthMS;
    m_pDoc->m_nNewUpdateIntervalMS = c.m_nUpdateIntervalMS;
    m_pDoc->m_dNewSampleRate = c.m_dSampleRate;
    for (int ch = 0; ch < 3; ++ch) {
        Channels& k = *m_pDoc->getChannel(ch);
        k.m_dLengthMS = kept[ch].length;
        k.m_nUpdateIntervalMS = kept[ch].interval;
        k.m_nColumnNum = kept[ch].columns;
    }
    try {
        m_pTable->saveoptionsFile();
        m_pTable->saveParameters();
    } catch (const std::exception& e) {
        // A length or interval the document cannot take: the grid stays as it was.
        alert(tr("The configuration “%1” could not be applied.").arg(QFileInfo(path).fileName()),
              QString::fromUtf8(e.what()));
        return false;
    }
    m_pDoc->saveRedo();
    updateTitle();
    updateActions();
    return true;
}

bool DocumentWindow::saveConfigurationTo(const QString& path)
{
    std::string error;
    if (!ConfigurationFile::write(path.toStdString(), *m_pDoc, &error)) {
        alert(tr("The configuration could not be saved."), QString::fromStdString(error));
        return false;
    }
    return true;
}

QString DocumentWindow::chooseConfigurationFile(bool forSaving)
{
    const QString proposal = documentsFolder() + QStringLiteral("/config.cfg");
    if (forSaving)
        return QFileDialog::getSaveFileName(this, tr("Save Configuration"), proposal,
                                            tr("Configurations (*.cfg)"));
    return QFileDialog::getOpenFileName(this, tr("Load Configuration"), proposal,
                                        tr("Configurations (*.cfg);;All files (*)"));
}

void DocumentWindow::loadConfiguration()
{
    if (const QString path = chooseConfigurationFile(false); !path.isEmpty())
        loadConfigurationFrom(path);
}

void DocumentWindow::saveConfiguration()
{
    if (const QString path = chooseConfigurationFile(true); !path.isEmpty())
        saveConfigurationTo(path);
}

void DocumentWindow::loadModelRecording()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Load Model Recording"), documentsFolder(),
                                                      tr("WAVE files (*.wav *.wave);;All files (*)"));
    if (!path.isEmpty())
        loadModelRecordingFrom(path);
}

bool DocumentWindow::loadModelRecordingFrom(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        alert(tr("The recording “%1” could not be read.").arg(QFileInfo(path).fileName()),
              file.errorString());
        return false;
    }
    const std::string bytes = file.readAll().toStdString();
    // The model's samples are about to be replaced: a playback of them stops first.
    m_pTable->stopPlayback();
    // The reader names the document after the recording; this document keeps its own name.
    const std::string url = m_pDoc->fileURL();
    const std::string type = m_pDoc->fileType();
    const int result = m_pDoc->Read_WAVE_FileType(bytes);
    m_pDoc->setFileURL(url);
    m_pDoc->setFileType(type);
    if (result != 0) {
        alert(tr("The recording “%1” could not be used.").arg(QFileInfo(path).fileName()),
              QString::fromStdString(m_pDoc->lastReadError()));
        return false;
    }
    if (DataEntryController* trace = m_pTable->traceDataEntry())
        trace->analysisSettingsChanged();
    updateStatus();
    updateTitle();
    updateActions();
    const long long modelMS = static_cast<long long>(m_pDoc->getChannel(2)->m_dLengthMS);
    const long long gridMS = static_cast<long long>(m_pDoc->getChannel(0)->m_dLengthMS);
    QString message = tr("Model recording %1 loaded (%2 ms)").arg(QFileInfo(path).fileName()).arg(modelMS);
    if (modelMS != gridMS)
        message += tr("; the grid is %1 ms long and keeps its time axis").arg(gridMS);
    statusBar()->showMessage(message, 15000);
    if (m_pDoc->isWaveShort())
        alert(tr("The recording “%1” stops early.").arg(QFileInfo(path).fileName()),
              tr("Its sample data holds %1 of the %2 it declares.")
                  .arg(QString::fromStdString(countedText(m_pDoc->waveSamplesPresent(), "sample", "samples")))
                  .arg(m_pDoc->waveSamplesDeclared()));
    loadLabelsBeside(path);
    return true;
}

void DocumentWindow::recordModel()
{
    // The model is recorded at the document's rate, so that it lines up with the synthesis.
    const double rate = m_pDoc->getChannel(0)->m_dSampleRate;
    RecordModelDialog dialog(rate, this);
    QString error;
    if (!dialog.startRecording(&error)) {
        alert(tr("Nothing can be recorded."), error);
        return;
    }
    if (dialog.exec() != QDialog::Accepted)
        return;
    // The model's samples are about to be replaced: a playback of them stops first.
    m_pTable->stopPlayback();
    try {
        if (!m_pDoc->setModelSamples(dialog.recording(), rate)) {
            alert(tr("The recording could not become the model."), tr("It is empty or too long."));
            return;
        }
    } catch (const std::exception& e) {
        alert(tr("The recording could not become the model."), QString::fromUtf8(e.what()));
        return;
    }
    if (DataEntryController* trace = m_pTable->traceDataEntry())
        trace->analysisSettingsChanged();
    updateStatus();
    updateTitle();
    updateActions();
    statusBar()->showMessage(
        tr("Recorded %1 s as the model").arg(m_pDoc->getChannel(2)->m_dLengthMS / 1000.0, 0, 'f', 1), 5000);
}

bool DocumentWindow::saveModelAudioTo(const QString& path)
{
    const std::string bytes = m_pDoc->save_Wave_FileType(2);
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) &&
        file.write(bytes.data(), static_cast<qint64>(bytes.size())) == static_cast<qint64>(bytes.size()) &&
        file.commit())
        return true;
    alert(tr("The model audio could not be saved."),
          QFileInfo(path).fileName() + QStringLiteral(": ") + file.errorString());
    return false;
}

void DocumentWindow::saveModelAudio()
{
    if (!m_pDoc->getChannel(2)->hasAudio())
        return;
    const QString path =
        askSavePath(this, tr("Save Model Audio"), documentsFolder() + QStringLiteral("/model.wav"),
                    tr("WAVE audio (*.wav)"), QStringLiteral(".wav"));
    if (!path.isEmpty())
        saveModelAudioTo(path);
}

void DocumentWindow::newFromText()
{
    PhonemeTextDialog dialog(this);
    if (dialog.exec() == QDialog::Accepted)
        if (std::unique_ptr<MyDocument> document = dialog.takeDocument()) {
            // Made, not opened: unsaved work, as a WAVE file's new document is.
            document->updateChangeCount(MyDocument::ChangeDone);
            m_pApp->newDocument(std::move(document));
        }
}

void DocumentWindow::makeContinuum()
{
    ContinuumDialog dialog(*m_pDoc, filePath(), this);
    QString written;
    connect(&dialog, &ContinuumDialog::continuumWritten, this, [&written](const QString& folder) {
        written = folder;
        QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
    });
    dialog.exec();
    // Said in words as well: a desktop without a file manager opens nothing.
    if (!written.isEmpty()) {
        const QString where = QDir(written).absolutePath();
        statusBar()->showMessage(tr("Continuum written to %1").arg(where));
        alert(tr("The continuum is written."), tr("Its documents are in the folder “%1”.").arg(where));
    }
}
