// The document window's crash-recovery copy: written a while after a change while the
// document has unsaved changes, removed when it is saved or closed.
#include "app/Autosave.h"
#include "app/DocumentWindow.h"
#include "app/WorkbenchApplication.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QStatusBar>
#include <QTimer>

void DocumentWindow::setUpAutosave()
{
    m_pAutosaveTimer = new QTimer(this);
    m_pAutosaveTimer->setSingleShot(true);
    m_pAutosaveTimer->setInterval(Autosave::intervalSeconds() * 1000);
    connect(m_pAutosaveTimer, &QTimer::timeout, this, &DocumentWindow::autosaveNow);
    connect(m_pTable, &mainTable::documentChanged, this, &DocumentWindow::scheduleAutosave);
}

void DocumentWindow::scheduleAutosave()
{
    if (!m_pAutosaveTimer->isActive())
        m_pAutosaveTimer->start();
}

bool DocumentWindow::autosaveNow()
{
    m_pAutosaveTimer->stop();
    if (m_bClosed)
        return true;
    if (!m_pDoc->isDocumentEdited()) {
        removeAutosave(); // back where it was saved (undo, revert)
        return true;
    }
    Autosave* store = m_pApp->autosave();
    if (!store->isUsable())
        return false;
    if (m_strAutosavePath.isEmpty())
        m_strAutosavePath = store->newCopyPath();
    Autosave::Entry entry;
    entry.copyPath = m_strAutosavePath;
    entry.originalPath = filePath();
    entry.name = displayName();
    entry.modelPath = m_strModelPath;
    entry.nameProposed = m_bFileNameProposed;
    QString error;
    if (!store->write(entry, *m_pDoc, &error)) {
        statusBar()->showMessage(tr("The recovery copy could not be written: %1").arg(error), 10000);
        return false;
    }
    return true;
}

void DocumentWindow::removeAutosave()
{
    m_pAutosaveTimer->stop();
    Autosave::remove(m_strAutosavePath);
    m_strAutosavePath.clear();
}
