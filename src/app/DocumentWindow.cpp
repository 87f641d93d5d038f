#include "app/DocumentWindow.h"

#include "app/WorkbenchApplication.h"
#include "document/MyDocument.h"
#include "table/gui/PlayCursor.h"
#include "table/gui/mainTable.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>
#include <QUrl>

namespace
{
bool isOpenable(const QUrl& url)
{
    const QString suffix = QFileInfo(url.toLocalFile()).suffix().toLower();
    return url.isLocalFile() && (suffix == "stk" || suffix == "wav" || suffix == "wave");
}
} // namespace

DocumentWindow::DocumentWindow(WorkbenchApplication* app, std::unique_ptr<MyDocument> doc, int untitledNumber)
    : m_pApp(app), m_pDoc(std::move(doc)), m_nUntitled(untitledNumber)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptDrops(true);
    m_pTable = new mainTable(m_pDoc.get(), this);
    setCentralWidget(m_pTable);
    connect(m_pTable, &mainTable::documentChanged, this, &DocumentWindow::updateTitle);
    connect(m_pTable, &mainTable::documentChanged, this, &DocumentWindow::updateActions);
    connect(m_pTable, &mainTable::playbackStarted, this, &DocumentWindow::updateStatus);
    connect(m_pTable, &mainTable::synthesized, this, &DocumentWindow::updateStatus);
    createMenus();
    // Commands that work on the selection are enabled as it changes (their shortcuts too).
    connect(m_pTable->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DocumentWindow::updateActions);
    createStatusBar();
    setUpAutosave();
    resize(1100, 720);
    updateTitle();
    updateActions();
}

DocumentWindow::~DocumentWindow()
{
    // The table goes before the document it shows.
    delete m_pTable;
    m_pTable = nullptr;
    m_pApp->windowClosed(this);
}

QString DocumentWindow::filePath() const
{
    return QString::fromStdString(m_pDoc->fileURL());
}

bool DocumentWindow::isPristine() const
{
    return filePath().isEmpty() && !m_pDoc->isDocumentEdited() && m_pDoc->_arrayUndo.empty();
}

QString DocumentWindow::displayName() const
{
    if (!filePath().isEmpty())
        return QFileInfo(filePath()).fileName();
    if (!m_strUntitledName.isEmpty())
        return m_strUntitledName;
    return m_nUntitled > 1 ? tr("Untitled %1").arg(m_nUntitled) : tr("Untitled");
}

void DocumentWindow::setUntitledName(const QString& name)
{
    m_strUntitledName = name;
    updateTitle();
}

void DocumentWindow::updateTitle()
{
    setWindowTitle(displayName() + QStringLiteral("[*] — Tessaphon"));
    setWindowFilePath(filePath());
    setWindowModified(m_pDoc->isDocumentEdited());
    m_pTable->setDocumentTitle(displayName());
    updateStatus();
}

void DocumentWindow::alert(const QString& title, const QString& message)
{
    m_pApp->alert(this, title, message);
}

bool DocumentWindow::maySave()
{
    if (!m_pDoc->isDocumentEdited())
        return true;
    const QString name = displayName();
    QMessageBox box(QMessageBox::Warning, tr("Tessaphon"),
                    tr("Do you want to save the changes you made in the document “%1”?").arg(name),
                    QMessageBox::NoButton, this);
    box.setInformativeText(tr("Your changes will be lost if you don’t save them."));
    QPushButton* save = box.addButton(QMessageBox::Save);
    box.addButton(QMessageBox::Discard)->setText(tr("Don’t Save"));
    QPushButton* cancel = box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(save);
    box.setEscapeButton(cancel);
    box.setWindowModality(Qt::WindowModal);
    box.exec();
    if (box.clickedButton() == save)
        return saveDocument();
    return box.clickedButton() != cancel;
}

void DocumentWindow::closeEvent(QCloseEvent* event)
{
    if (!maySave()) {
        event->ignore();
        return;
    }
    m_pTable->stopPlayback();
    removeAutosave(); // saved, or its changes let go on purpose
    m_bClosed = true;
    event->accept();
}

void DocumentWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!event->mimeData()->hasUrls())
        return;
    for (const QUrl& url : event->mimeData()->urls())
        if (isOpenable(url)) {
            event->acceptProposedAction();
            return;
        }
}

void DocumentWindow::dropEvent(QDropEvent* event)
{
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (isOpenable(url))
            paths << url.toLocalFile();
    event->acceptProposedAction();
    // Opened after the drop has finished, so that the source is not kept waiting.
    QTimer::singleShot(0, m_pApp, [app = m_pApp, paths] { app->openFiles(paths); });
}

void DocumentWindow::createStatusBar()
{
    m_pStatusGrid = new QLabel(this);
    m_pStatusClipping = new QLabel(this);
    m_pStatusClipping->setObjectName(QStringLiteral("clipping"));
    m_pStatusClipping->setStyleSheet(QStringLiteral("QLabel { color: #b00000; font-weight: bold; }"));
    m_pStatusPlay = new QLabel(this);
    statusBar()->addWidget(m_pStatusGrid, 1);
    statusBar()->addWidget(m_pStatusClipping);
    statusBar()->addPermanentWidget(m_pStatusPlay);
    // The table's play cursor reports the position it shows; the status bar repeats it.
    connect(m_pTable->playCursor(), &PlayCursor::positionChanged, m_pStatusPlay,
            [this](double at, double total) {
                m_pStatusPlay->setText(tr("Playing %1 / %2 s").arg(at, 0, 'f', 2).arg(total, 0, 'f', 2));
            });
    connect(m_pTable->playCursor(), &PlayCursor::finished, m_pStatusPlay, &QLabel::clear);
}

void DocumentWindow::updateStatus()
{
    if (!m_pStatusGrid)
        return;
    const Channels& c = *m_pDoc->getChannel(0);
    // The rate the next synthesis will run at, which follows the shown parameters at once.
    QString text = tr("%1 frames of %2 ms · %3 ms · %4 Hz")
                       .arg(c.m_nColumnNum)
                       .arg(c.m_nUpdateIntervalMS)
                       .arg(static_cast<long long>(c.m_dLengthMS))
                       .arg(m_pDoc->synthesisSampleRate());
    if (m_pDoc->getChannel(2)->hasAudio())
        text += tr(" · model %1 ms").arg(static_cast<long long>(m_pDoc->getChannel(2)->m_dLengthMS));
    m_pStatusGrid->setText(text);
    // The last synthesis's clipping or silence, until the next synthesis.
    m_pStatusClipping->setText(QString::fromStdString(m_pDoc->synthesisWarning()));
}
