#include "continuum/gui/ContinuumDialog.h"

#include "continuum/Continuum.h"
#include "continuum/ContinuumWriter.h"
#include "document/DocumentException.h"
#include "document/FileIdentity.h"
#include "document/MyDocument.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QThread>
#include <QVBoxLayout>

#include <filesystem>
#include <new>

// What the worker owns: the continuum (a copy of both documents' values), its writer, and the
// cancel flag. Shared with the dialog, so a dialog closed early leaves the worker its data.
struct ContinuumDialog::Work {
    std::unique_ptr<Continuum> continuum;
    std::unique_ptr<ContinuumWriter> writer;
    std::atomic<bool> cancel{false};
};

namespace
{
std::unique_ptr<MyDocument> readDocument(const QString& path, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QObject::tr("“%1” cannot be read: %2").arg(path, file.errorString());
        return nullptr;
    }
    const QByteArray bytes = file.readAll();
    auto document = std::make_unique<MyDocument>();
    int code = 0;
    if (!document->readFromData(std::string(bytes.constData(), bytes.size()), "stk", &code)) {
        error = QObject::tr("“%1” is not a parameter document: %2")
                    .arg(path, QString::fromStdString(document->lastReadError()));
        return nullptr;
    }
    document->buildDataTableDictionary();
    return document;
}
} // namespace

ContinuumDialog::ContinuumDialog(MyDocument& document, const QString& documentPath, QWidget* parent)
    : QDialog(parent), m_document(document), m_strDocumentPath(documentPath)
{
    setWindowTitle(tr("Make Continuum"));
    buildForm(documentPath);
}

ContinuumDialog::~ContinuumDialog()
{
    if (m_work)
        m_work->cancel = true;
}

QLayout* ContinuumDialog::browseRow(QLineEdit* field, void (ContinuumDialog::*choose)())
{
    auto* browse = new QPushButton(tr("Choose..."));
    connect(browse, &QPushButton::clicked, this, choose);
    auto* row = new QHBoxLayout;
    row->addWidget(field);
    row->addWidget(browse);
    return row;
}

QLayout* ContinuumDialog::makeRowsChoice()
{
    m_pAllDiffering = new QCheckBox(tr("Every row that differs between A and B"));
    m_pAllDiffering->setChecked(true);
    m_pRows = new QListWidget;
    m_pRows->setFlow(QListView::LeftToRight);
    m_pRows->setWrapping(true);
    m_pRows->setResizeMode(QListView::Adjust);
    m_pRows->setFixedHeight(100);
    for (int row = 0; row < kParameterCount; ++row) {
        auto* item = new QListWidgetItem(QString::fromLatin1(kFactoryParameters[row].name), m_pRows);
        item->setFlags(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled);
        item->setCheckState(Qt::Unchecked);
    }
    m_pRows->setEnabled(false);
    connect(m_pAllDiffering, &QCheckBox::toggled, m_pRows, [this](bool all) { m_pRows->setEnabled(!all); });
    auto* rows = new QVBoxLayout;
    rows->addWidget(m_pAllDiffering);
    rows->addWidget(m_pRows);
    return rows;
}

void ContinuumDialog::buildForm(const QString& documentPath)
{
    auto* form = new QFormLayout;
    const QFileInfo a(documentPath.isEmpty() ? QStringLiteral("untitled.stk") : documentPath);
    form->addRow(tr("First step (A):"), new QLabel(a.fileName()));

    m_pSecond = new QLineEdit;
    form->addRow(tr("Last step (B):"), browseRow(m_pSecond, &ContinuumDialog::chooseSecond));

    m_pSteps = new QSpinBox;
    m_pSteps->setRange(2, Continuum::kMaxSteps);
    m_pSteps->setValue(11);
    form->addRow(tr("Steps:"), m_pSteps);

    m_pScale = new QComboBox;
    m_pScale->addItem(tr("Hertz (linear)"), int(FrequencyScale::Hz));
    m_pScale->addItem(tr("Bark"), int(FrequencyScale::Bark));
    m_pScale->addItem(tr("ERB-rate"), int(FrequencyScale::Erb));
    m_pScale->addItem(tr("Mel"), int(FrequencyScale::Mel));
    form->addRow(tr("Frequency scale:"), m_pScale);

    form->addRow(tr("Rows:"), makeRowsChoice());

    m_pFolder = new QLineEdit(a.absoluteDir().filePath(a.completeBaseName() + QStringLiteral("-continuum")));
    form->addRow(tr("Folder:"), browseRow(m_pFolder, &ContinuumDialog::chooseFolder));

    m_pWave = new QCheckBox(tr("Synthesize a WAVE file for each step"));
    m_pWave->setChecked(true);
    form->addRow(QString(), m_pWave);

    m_pProgress = new QProgressBar;
    m_pProgress->setVisible(false);
    m_pStatus = new QLabel;
    m_pStatus->setObjectName(QStringLiteral("status"));
    m_pStatus->setWordWrap(true);
    m_pButtons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    m_pButtons->addButton(tr("Make"), QDialogButtonBox::AcceptRole);
    connect(m_pButtons, &QDialogButtonBox::accepted, this, [this] { start(); });
    connect(m_pButtons, &QDialogButtonBox::rejected, this, &ContinuumDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_pProgress);
    layout->addWidget(m_pStatus);
    layout->addWidget(m_pButtons);
    resize(560, sizeHint().height());
}

void ContinuumDialog::chooseSecond()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Last Step of the Continuum"),
                                                      QFileInfo(m_strDocumentPath).absolutePath(),
                                                      tr("Parameter documents (*.stk)"));
    if (!path.isEmpty())
        m_pSecond->setText(path);
}

void ContinuumDialog::chooseFolder()
{
    const QString path =
        QFileDialog::getExistingDirectory(this, tr("Folder of the Continuum"), m_pFolder->text());
    if (!path.isEmpty())
        m_pFolder->setText(path);
}

void ContinuumDialog::message(const QString& text)
{
    m_pStatus->setStyleSheet(QStringLiteral("color: #b00020"));
    m_pStatus->setText(text);
}

bool ContinuumDialog::mayReplace(const std::vector<std::string>& outputs)
{
    int existing = 0;
    for (const std::string& path : outputs)
        existing += QFileInfo::exists(QString::fromStdString(path)) ? 1 : 0;
    if (existing == 0)
        return true;
    return QMessageBox::question(
               this, tr("Make Continuum"),
               tr("%n file(s) of the continuum already exist in “%1”. Replace them?", nullptr, existing)
                   .arg(m_pFolder->text()),
               QMessageBox::Yes | QMessageBox::Cancel) == QMessageBox::Yes;
}

bool ContinuumDialog::formSettings(ContinuumSettings& settings)
{
    settings.steps = m_pSteps->value();
    settings.scale = static_cast<FrequencyScale::Kind>(m_pScale->currentData().toInt());
    if (m_pAllDiffering->isChecked())
        return true;
    for (int row = 0; row < m_pRows->count(); ++row)
        if (m_pRows->item(row)->checkState() == Qt::Checked)
            settings.rows.push_back(row);
    if (settings.rows.empty()) {
        message(tr("Choose the rows to interpolate."));
        return false;
    }
    return true;
}

std::shared_ptr<ContinuumDialog::Work> ContinuumDialog::prepareWork(const QString& secondPath,
                                                                    const QString& folder)
{
    QString error;
    std::unique_ptr<MyDocument> second = readDocument(secondPath, error);
    if (!second) {
        message(error);
        return nullptr;
    }
    ContinuumSettings settings;
    if (!formSettings(settings))
        return nullptr;
    auto work = std::make_shared<Work>();
    try {
        work->continuum = std::make_unique<Continuum>(m_document, *second, settings);
    } catch (const DocumentException& e) {
        message(tr("“%1” cannot make a continuum with this document: %2")
                    .arg(QFileInfo(secondPath).fileName(), QString::fromStdString(e.reason())));
        return nullptr;
    } catch (const std::bad_alloc&) {
        message(tr("Not enough memory for this continuum."));
        return nullptr;
    }
    const QFileInfo a(m_strDocumentPath.isEmpty() ? QStringLiteral("untitled.stk") : m_strDocumentPath);
    work->writer = std::make_unique<ContinuumWriter>(
        *work->continuum, folder.toStdString(), a.completeBaseName().toStdString(), m_pWave->isChecked());
    return work;
}

bool ContinuumDialog::outputsAllowed(const Work& work, const QString& secondPath, const QString& folder)
{
    // One file reached two ways (a link, another spelling) is one: the same rule as the command line.
    for (const std::string& output : work.writer->outputs())
        for (const QString& input : {m_strDocumentPath, secondPath})
            if (!input.isEmpty() && sameFile(output, input.toStdString())) {
                message(tr("The continuum would write over “%1”; choose another folder.").arg(input));
                return false;
            }
    std::error_code made;
    std::filesystem::create_directories(folder.toStdString(), made);
    if (made) {
        message(tr("The folder “%1” cannot be made: %2").arg(folder, QString::fromStdString(made.message())));
        return false;
    }
    return mayReplace(work.writer->outputs());
}

bool ContinuumDialog::start()
{
    if (m_work)
        return false;
    const QString secondPath = m_pSecond->text().trimmed();
    const QString folder = m_pFolder->text().trimmed();
    if (secondPath.isEmpty() || folder.isEmpty()) {
        message(tr("Choose the last step's document and the folder."));
        return false;
    }
    std::shared_ptr<Work> work = prepareWork(secondPath, folder);
    if (!work || !outputsAllowed(*work, secondPath, folder))
        return false;

    m_work = work;
    m_pStatus->clear();
    m_pProgress->setRange(0, work->continuum->steps());
    m_pProgress->setValue(0);
    m_pProgress->setVisible(true);
    m_pButtons->button(QDialogButtonBox::Cancel)->setFocus();
    for (QAbstractButton* button : m_pButtons->buttons())
        if (m_pButtons->buttonRole(button) == QDialogButtonBox::AcceptRole)
            button->setEnabled(false);
    runWork(work);
    return true;
}

void ContinuumDialog::runWork(const std::shared_ptr<Work>& work)
{
    QPointer<ContinuumDialog> self(this);
    QThread* thread = QThread::create([work, self] {
        QString failure;
        const int steps = work->continuum->steps();
        try {
            for (int step = 1; step <= steps && !work->cancel; ++step) {
                work->writer->writeStep(step);
                QMetaObject::invokeMethod(QCoreApplication::instance(), [self, step] {
                    if (self)
                        self->stepDone(step);
                });
            }
            if (!work->cancel)
                work->writer->writeManifest();
        } catch (const DocumentException& e) {
            failure = QString::fromStdString(e.name() + ": " + e.reason());
        } catch (const std::bad_alloc&) {
            failure = QObject::tr("Not enough memory for this continuum.");
        }
        QMetaObject::invokeMethod(QCoreApplication::instance(), [self, failure] {
            if (self)
                self->finished(failure);
        });
    });
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
}

void ContinuumDialog::stepDone(int done)
{
    m_pProgress->setValue(done);
}

void ContinuumDialog::finished(const QString& error)
{
    const bool cancelled = m_work && m_work->cancel;
    m_work.reset();
    if (cancelled) {
        QDialog::reject();
        return;
    }
    if (!error.isEmpty()) {
        message(error);
        for (QAbstractButton* button : m_pButtons->buttons())
            button->setEnabled(true);
        return;
    }
    emit continuumWritten(m_pFolder->text().trimmed());
    accept();
}

void ContinuumDialog::reject()
{
    if (!m_work) {
        QDialog::reject();
        return;
    }
    // Cancel stops the worker after the step it is making; the dialog closes when it has
    // stopped, so that no other synthesis runs while it still synthesizes. Files written so far
    // stay.
    m_work->cancel = true;
    m_pStatus->setStyleSheet(QString());
    m_pStatus->setText(tr("Stopping after the current step..."));
    m_pButtons->setEnabled(false);
}
