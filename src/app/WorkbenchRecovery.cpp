// The recovery offer at start: the copies of documents with unsaved changes that a workbench
// left behind when it ended without saving them.
#include "app/DocumentWindow.h"
#include "app/RecoveryDialog.h"
#include "app/WorkbenchApplication.h"
#include "document/MyDocument.h"

#include <QFile>

namespace
{
// The document of a copy: its model recording from the WAVE file when that is still there,
// then the copy's parameters; marked as changed and named after its own file. nullptr with
// `why` set when the copy cannot be read.
std::unique_ptr<MyDocument> readCopy(const Autosave::Entry& entry, QString& why)
{
    QFile copy(entry.copyPath);
    if (!copy.open(QIODevice::ReadOnly)) {
        why = copy.errorString();
        return nullptr;
    }
    const std::string text = copy.readAll().toStdString();
    auto doc = std::make_unique<MyDocument>();
    QFile wave(entry.modelPath);
    int code = 0;
    if (!entry.modelPath.isEmpty() && wave.open(QIODevice::ReadOnly) &&
        !(doc->readFromData(wave.readAll().toStdString(), "stk", &code) && doc->getChannel(2)->hasAudio()))
        doc = std::make_unique<MyDocument>(); // no longer a recording: recovered without a model
    if (doc->Read_STK_FileType(text) != 0) {
        why = QString::fromStdString(doc->lastReadError());
        return nullptr;
    }
    doc->m_bReadFile = 1;
    doc->setFileURL(entry.originalPath.toStdString());
    doc->setFileType("stk");
    doc->updateChangeCount(MyDocument::ChangeDone);
    return doc;
}
} // namespace

int WorkbenchApplication::offerRecovery()
{
    const QList<Autosave::Entry> entries = m_pAutosave->leftBehind();
    if (entries.isEmpty())
        return 0;
    RecoveryDialog dialog(entries);
    const int choice = dialog.exec();
    if (choice == RecoveryDialog::Discard) {
        for (const Autosave::Entry& entry : entries)
            Autosave::remove(entry.copyPath);
        return 0;
    }
    return choice == RecoveryDialog::Recover ? recover(entries) : 0;
}

int WorkbenchApplication::recover(const QList<Autosave::Entry>& entries)
{
    int recovered = 0;
    for (const Autosave::Entry& entry : entries) {
        QString why;
        std::unique_ptr<MyDocument> doc = readCopy(entry, why);
        if (!doc) {
            alert(nullptr, tr("“%1” could not be recovered.").arg(entry.name), why);
            continue;
        }
        const bool model = doc->getChannel(2)->hasAudio();
        DocumentWindow* window = show(std::move(doc), 0);
        if (!window)
            continue;
        window->setFileNameProposed(entry.nameProposed);
        if (model)
            window->setModelPath(entry.modelPath);
        if (entry.originalPath.isEmpty())
            window->setUntitledName(entry.name);
        window->updateTitle();
        // The new window's own copy first: the changes are never without one.
        if (window->autosaveNow())
            Autosave::remove(entry.copyPath);
        ++recovered;
    }
    return recovered;
}
