#include "app/WorkbenchApplication.h"

#include "app/DocumentWindow.h"
#include "configuration/ConfigurationFile.h"
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "display/gui/FFTLPCWindow.h"
#include "display/gui/SpectrogramPitchWindow.h"
#include "document/CountedText.h"
#include "document/MyDocument.h"
#include "labels/gui/DocumentLabels.h"
#include "labels/gui/LabelAttachment.h"
#include "stimulus/StimulusOutputFile.h"
#include "table/gui/mainTable.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QSettings>

#include <algorithm>
#include <filesystem>

namespace
{
constexpr int kRecentFiles = 10;
const char* kRecentKey = "recentFiles";
const char* kOpenFolderKey = "openFolder";
} // namespace

WorkbenchApplication::WorkbenchApplication(QObject* parent)
    : QObject(parent), m_pAutosave(std::make_unique<Autosave>())
{
    ConfigurationFile::install();
    // The audio output settings of Save Audio live beside the configuration file.
    StimulusOutputFile::setDefaultPath(
        (std::filesystem::path(ConfigurationFile::defaultPath()).parent_path() /
         StimulusOutputFile::kFileName)
            .string());
    // Whatever ends the event loop, unsaved changes are copied first.
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
            &WorkbenchApplication::autosaveAll);
    mainTable::setGraphicalDataEntryFactory([](mainTable* table) -> DataEntryController* {
        auto* controller = new dataentryGraphicalController(table->document(), table);
        attachLabels(*controller, DocumentLabels::of(table));
        return controller;
    });
    mainTable::setTraceDataEntryFactory([](mainTable* table) -> DataEntryController* {
        auto* controller = new dataentryTraceContoller(table->document(), table);
        attachLabels(*controller, DocumentLabels::of(table));
        // Ctrl+S in the trace window saves the document as its own window does.
        QPointer<DocumentWindow> owner = qobject_cast<DocumentWindow*>(table->window());
        controller->setSaveCommand([owner] {
            if (owner)
                owner->saveDocument();
        });
        return controller;
    });
    mainTable::setAnalysisWindowFactories(
        [](mainTable* table, double startSample) -> QWidget* {
            auto* window = new FFTLPCWindow(table, startSample, table->window());
            attachLabels(*window, DocumentLabels::of(table));
            return window;
        },
        [](mainTable* table, int channel) -> QWidget* {
            auto* window = new SpectrogramPitchWindow(table, channel, table->window());
            attachLabels(*window, DocumentLabels::of(table));
            return window;
        });
}

WorkbenchApplication::~WorkbenchApplication()
{
    for (DocumentWindow* w : std::vector<DocumentWindow*>(m_windows))
        delete w;
}

void WorkbenchApplication::alert(QWidget* parent, const QString& title, const QString& message)
{
    m_strLastAlert = title + QStringLiteral(": ") + message;
    if (m_bQuiet)
        return;
    QMessageBox box(QMessageBox::Warning, title, message, QMessageBox::Ok, parent);
    box.setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
    box.exec();
}

DocumentWindow* WorkbenchApplication::show(std::unique_ptr<MyDocument> doc, int untitledNumber)
{
    auto* window = new DocumentWindow(this, std::move(doc), untitledNumber);
    if (!window->table()->isSetUp()) {
        delete window; // its table said why in an alert; the other windows go on
        return nullptr;
    }
    m_windows.push_back(window);
    // Cascade new windows a little so that they do not hide each other.
    if (m_windows.size() > 1) {
        const QPoint offset(28 * static_cast<int>((m_windows.size() - 1) % 8),
                            28 * static_cast<int>((m_windows.size() - 1) % 8));
        window->move(m_windows.front()->pos() + offset);
    }
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

DocumentWindow* WorkbenchApplication::newDocument()
{
    auto doc = std::make_unique<MyDocument>();
    doc->SetUpDataGridMemory();
    doc->buildDataTableDictionary();
    return show(std::move(doc), ++m_nUntitledCount);
}

DocumentWindow* WorkbenchApplication::newDocument(std::unique_ptr<MyDocument> doc)
{
    return show(std::move(doc), ++m_nUntitledCount);
}

DocumentWindow* WorkbenchApplication::openFile(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    for (DocumentWindow* w : m_windows) {
        // Compared as paths: a document's file need not exist yet (a WAVE file's x.stk).
        if (!w->filePath().isEmpty() && QFileInfo(w->filePath()).absoluteFilePath() == absolute) {
            w->raise();
            w->activateWindow();
            return w;
        }
    }
    const QString name = QFileInfo(absolute).fileName();
    QFile file(absolute);
    if (!file.open(QIODevice::ReadOnly)) {
        alert(nullptr, tr("The document “%1” could not be opened.").arg(name), file.errorString());
        return nullptr;
    }
    const QByteArray bytes = file.readAll();
    auto doc = std::make_unique<MyDocument>();
    doc->setFileURL(absolute.toStdString());
    int errorCode = 0;
    if (!doc->readFromData(bytes.toStdString(), "stk", &errorCode)) {
        const QString why = QString::fromStdString(doc->lastReadError());
        alert(nullptr, tr("The document “%1” could not be opened.").arg(name),
              why.isEmpty() ? tr("It is neither a WAVE file nor a parameter document.") : why);
        return nullptr;
    }
    // A WAVE file became a new, changed document x.stk: a name proposed, not chosen.
    const bool nameProposed =
        QFileInfo(QString::fromStdString(doc->fileURL())).absoluteFilePath() != absolute;
    noteRecentFile(absolute);
    const QStringList changes = readChanges(*doc);
    // An untouched new window gives way to the opened file.
    DocumentWindow* pristine =
        m_windows.size() == 1 && m_windows.front()->isPristine() ? m_windows.front() : nullptr;
    DocumentWindow* opened = show(std::move(doc), 0);
    if (!opened)
        return nullptr;
    opened->setFileNameProposed(nameProposed);
    if (opened->document()->getChannel(2)->hasAudio()) {
        opened->setModelPath(absolute);
        opened->loadLabelsBeside(absolute);
    }
    if (pristine) {
        opened->move(pristine->pos());
        pristine->close();
    }
    // Everything reading changed, in one alert after the window opened.
    if (!changes.isEmpty())
        alert(opened, tr("Opened with changes"),
              tr("The document “%1” was not read exactly as written:").arg(name) + QLatin1Char('\n') +
                  changes.join(QLatin1Char('\n')));
    return opened;
}

QStringList WorkbenchApplication::readChanges(const MyDocument& doc)
{
    QStringList changes;
    if (doc.isTruncated())
        changes
            << tr("It declares %1 frames but holds values for %2 of them; the others have default values.")
                   .arg(doc.framesDeclared())
                   .arg(doc.framesInFile());
    if (doc.isWaveShort())
        changes << tr("Its sample data stops early: it holds %1 of the %2 it declares.")
                       .arg(
                           QString::fromStdString(countedText(doc.waveSamplesPresent(), "sample", "samples")))
                       .arg(doc.waveSamplesDeclared());
    if (doc.m_nClampedValues == 1)
        changes << tr("1 value did not fit the table and was set to its parameter's limits.");
    else if (doc.m_nClampedValues > 0)
        changes << tr("%1 values did not fit the table and were set to their parameters' limits.")
                       .arg(doc.m_nClampedValues);
    return changes;
}

void WorkbenchApplication::openFiles(const QStringList& paths)
{
    for (const QString& path : paths)
        openFile(path);
}

QString WorkbenchApplication::openFolder(QWidget* parent) const
{
    if (auto* window = qobject_cast<DocumentWindow*>(parent); window && !window->filePath().isEmpty())
        return QFileInfo(window->filePath()).absolutePath();
    return QSettings().value(kOpenFolderKey).toString();
}

void WorkbenchApplication::openDialog(QWidget* parent)
{
    const QStringList paths = QFileDialog::getOpenFileNames(
        parent, tr("Open"), openFolder(parent),
        tr("Parameter documents and WAVE files (*.stk *.wav *.wave);;"
           "Parameter documents (*.stk);;WAVE files (*.wav *.wave);;All files (*)"));
    if (!paths.isEmpty())
        QSettings().setValue(kOpenFolderKey, QFileInfo(paths.first()).absolutePath());
    openFiles(paths);
}

QStringList WorkbenchApplication::recentFiles() const
{
    return QSettings().value(kRecentKey).toStringList();
}

void WorkbenchApplication::noteRecentFile(const QString& path)
{
    QStringList files = recentFiles();
    files.removeAll(path);
    files.prepend(path);
    while (files.size() > kRecentFiles)
        files.removeLast();
    QSettings().setValue(kRecentKey, files);
    emit recentFilesChanged();
}

void WorkbenchApplication::clearRecentFiles()
{
    QSettings().remove(kRecentKey);
    emit recentFilesChanged();
}

void WorkbenchApplication::windowClosed(DocumentWindow* window)
{
    m_windows.erase(std::remove(m_windows.begin(), m_windows.end(), window), m_windows.end());
}

void WorkbenchApplication::autosaveAll()
{
    for (DocumentWindow* w : m_windows)
        w->autosaveNow();
}

bool WorkbenchApplication::quit()
{
    autosaveAll();
    for (DocumentWindow* w : std::vector<DocumentWindow*>(m_windows))
        if (!w->close())
            return false;
    QApplication::quit();
    return true;
}
