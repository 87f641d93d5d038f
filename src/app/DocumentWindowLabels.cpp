// The document window's labels (File > Load Labels..., the TextGrid beside a model recording,
// View > Label Tiers, the frame headers' notes) and interchange (File > Import..., Export...).
#include "app/DocumentWindow.h"

#include "app/WorkbenchApplication.h"
#include "document/AtomicFile.h"
#include "document/MyDocument.h"
#include "interchange/Interchange.h"
#include "labels/gui/DocumentLabels.h"
#include "table/gui/ParameterTableModel.h"
#include "table/gui/mainTable.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>

#include <cstring>

void DocumentWindow::createLabelMenus(QMenu* file)
{
    file->addAction(tr("Load &Labels..."), this, &DocumentWindow::loadLabels);
    file->addSeparator();
    file->addAction(tr("&Import..."), this, &DocumentWindow::importFile);
    file->addAction(tr("E&xport..."), this, &DocumentWindow::exportFile);

    // The frame headers name the boundaries that fall in their frames.
    DocumentLabels* labels = DocumentLabels::of(m_pTable);
    m_pTable->tableModel()->setFrameNote([this, labels](int frame) {
        const double interval = m_pDoc->updateInterval();
        return labels->boundaryNote((frame - 1) * interval, frame * interval);
    });
}

void DocumentWindow::createViewMenu()
{
    QMenu* view = menuBar()->addMenu(tr("&View"));
    QMenu* tiers = view->addMenu(tr("Label &Tiers"));
    DocumentLabels* labels = DocumentLabels::of(m_pTable);
    connect(tiers, &QMenu::aboutToShow, this, [tiers, labels] {
        tiers->clear();
        const TextGrid& grid = labels->grid();
        if (grid.empty())
            tiers->addAction(tr("No Labels Loaded"))->setEnabled(false);
        for (std::size_t t = 0; t < grid.tiers.size(); ++t) {
            const LabelTier& tier = grid.tiers[t];
            QAction* a = tiers->addAction(QString::fromStdString(tier.name) +
                                          (tier.isPointTier ? tr(" (points)") : QString()));
            a->setCheckable(true);
            a->setChecked(labels->isTierShown(t));
            connect(a, &QAction::toggled, labels, [labels, t](bool on) { labels->setTierShown(t, on); });
        }
        if (!grid.empty()) {
            tiers->addSeparator();
            tiers->addAction(tr("Clear Labels"), labels, &DocumentLabels::clear);
        }
    });
}

void DocumentWindow::loadLabels()
{
    const QString folder = filePath().isEmpty() ? QString() : QFileInfo(filePath()).absolutePath();
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Load Labels"), folder, tr("TextGrid files (*.TextGrid *.textgrid);;All files (*)"));
    if (!path.isEmpty())
        loadLabelsFrom(path);
}

bool DocumentWindow::loadLabelsFrom(const QString& path)
{
    QString error;
    DocumentLabels* labels = DocumentLabels::of(m_pTable);
    if (!labels->load(path, &error)) {
        alert(tr("The labels “%1” could not be read.").arg(QFileInfo(path).fileName()), error);
        return false;
    }
    m_pTable->tableModel()->headerDataChanged(Qt::Horizontal, 0, m_pTable->tableModel()->columnCount() - 1);
    statusBar()->showMessage(
        tr("Labels %1 loaded (%2 tiers)").arg(QFileInfo(path).fileName()).arg(labels->grid().tiers.size()),
        15000);
    return true;
}

void DocumentWindow::loadLabelsBeside(const QString& recordingPath)
{
    const QFileInfo recording(recordingPath);
    const QDir folder = recording.absoluteDir();
    for (const QString& name : folder.entryList(QDir::Files)) {
        const QFileInfo candidate(folder.filePath(name));
        if (candidate.completeBaseName() == recording.completeBaseName() &&
            candidate.suffix().compare(QStringLiteral("TextGrid"), Qt::CaseInsensitive) == 0) {
            loadLabelsFrom(candidate.absoluteFilePath());
            return;
        }
    }
}

void DocumentWindow::importFile()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Import"), QString(),
                                     tr("Varied parameters or frames (*.klp *.tsv *.txt);;Varied parameters "
                                        "(*.klp);;Frames, tab-separated "
                                        "(*.tsv *.txt);;All files (*)"));
    if (path.isEmpty())
        return;
    QFile file(path);
    const QString name = QFileInfo(path).fileName();
    if (!file.open(QIODevice::ReadOnly)) {
        alert(tr("“%1” could not be read.").arg(name), file.errorString());
        return;
    }
    const QByteArray bytes = file.readAll();
    try {
        ImportedDocument imported =
            importDocument(std::string_view(bytes.constData(), bytes.size()), path.toStdString());
        DocumentWindow* window = m_pApp->newDocument(std::move(imported.document));
        if (window && !imported.warnings.empty()) {
            QStringList lines;
            for (const std::string& w : imported.warnings)
                lines << QString::fromStdString(w);
            window->alert(tr("“%1” was imported with changes.").arg(name), lines.join(QLatin1Char('\n')));
        }
    } catch (const InterchangeError& e) {
        alert(tr("“%1” could not be imported.").arg(name), QString::fromStdString(e.where()));
    } catch (const std::exception& e) {
        alert(tr("“%1” could not be imported.").arg(name), QString::fromUtf8(e.what()));
    }
}

bool DocumentWindow::exportTo(const QString& path)
{
    InterchangeFormat format = InterchangeFormat::Tsv;
    interchangeFormatNamed(QFileInfo(path).suffix().toStdString(), format);
    const std::string text = exportDocument(*m_pDoc, format);
    if (const int error = writeFileAtomically(path.toStdString(), text); error != 0) {
        alert(tr("“%1” could not be written.").arg(QFileInfo(path).fileName()),
              QString::fromLocal8Bit(std::strerror(error)));
        return false;
    }
    statusBar()->showMessage(tr("Exported to %1").arg(QDir::toNativeSeparators(path)), 15000);
    return true;
}

void DocumentWindow::exportFile()
{
    const QString base = QFileInfo(filePath().isEmpty() ? displayName() : filePath()).completeBaseName();
    QString filter;
    QString path =
        QFileDialog::getSaveFileName(this, tr("Export"), base + QStringLiteral(".klp"),
                                     tr("Varied parameters (*.klp);;Frames, tab-separated (*.tsv)"), &filter);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += filter.contains(QStringLiteral("*.tsv")) ? QStringLiteral(".tsv") : QStringLiteral(".klp");
    exportTo(path);
}
