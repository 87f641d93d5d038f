// The table's play commands (the playing itself is TablePlayback's), the play cursor's column
// and the save-audio command.
#include "table/gui/mainTable.h"

#include "document/DocumentException.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "stimulus/StimulusFile.h"
#include "stimulus/StimulusOutputFile.h"
#include "table/gui/Alert.h"
#include "table/gui/TablePlayback.h"

#include <QApplication>
#include <QFileDialog>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QSaveFile>
#include <QScrollBar>
#include <QStandardPaths>

#include <algorithm>

AudioPlayer* mainTable::sharedPlayer()
{
    return TablePlayback::sharedPlayer();
}

mainTable* mainTable::playingTable()
{
    return TablePlayback::playingTable();
}

QRect mainTable::columnStrip(int tableColumn) const
{
    return QRect(columnViewportPosition(tableColumn), 0, columnWidth(tableColumn), viewport()->height());
}

bool mainTable::isColumnOnScreen(int tableColumn) const
{
    if (tableColumn < 1 || tableColumn >= m_pModel->columnCount() || isColumnHidden(tableColumn))
        return false;
    const QRect strip = columnStrip(tableColumn);
    return strip.right() >= columnWidth(0) && strip.left() < viewport()->width();
}

void mainTable::showPlayColumn(int tableColumn)
{
    if (tableColumn < 1 || tableColumn >= m_pModel->columnCount())
        tableColumn = -1;
    if (tableColumn == m_nPlayColumn)
        return;
    // The view follows the cursor only while the column being heard is on screen: a
    // playback that starts out of sight, or a column the user scrolled away from, never
    // takes the table away from where the user is; scrolling back to it resumes following.
    const bool follow = m_nPlayColumn >= 1 && isColumnOnScreen(m_nPlayColumn);
    if (m_nPlayColumn > 0)
        viewport()->update(columnStrip(m_nPlayColumn));
    m_nPlayColumn = tableColumn;
    if (m_nPlayColumn < 1)
        return;
    const QRect strip = columnStrip(m_nPlayColumn);
    if (follow && (strip.left() < columnWidth(0) || strip.right() >= viewport()->width())) {
        // A page at a time: the column heard goes to the left edge, next to the names.
        QScrollBar* bar = horizontalScrollBar();
        bar->setValue(bar->value() + strip.left() - columnWidth(0));
    }
    viewport()->update(columnStrip(m_nPlayColumn));
}

void mainTable::paintEvent(QPaintEvent* event)
{
    QTableView::paintEvent(event);
    if (m_nPlayColumn < 1)
        return;
    QRect strip = columnStrip(m_nPlayColumn);
    // Down to the last row, not into the empty space below the table.
    strip.setBottom(std::min(strip.bottom(), verticalHeader()->length() - verticalOffset() - 1));
    if (!strip.intersects(event->rect()))
        return;
    QPainter painter(viewport());
    painter.fillRect(strip, QColor(255, 170, 0, 90));
    painter.setPen(QPen(QColor(230, 120, 0), 2));
    painter.drawLine(strip.topLeft() + QPoint(1, 0), strip.bottomLeft() + QPoint(1, 0));
}

void mainTable::stopPlayback()
{
    m_pPlayback->stop();
}

void mainTable::_PlayCurrent()
{
    schedulePlay(0);
}

void mainTable::_PlayPrevious()
{
    schedulePlay(1);
}

void mainTable::_PlayAudio()
{
    schedulePlay(2);
}

void mainTable::schedulePlay(int channel)
{
    m_pPlayback->schedule(channel);
}

void mainTable::synthesizeIfNeeded()
{
    // A document just opened has a table but no synthesis yet: it is heard as it reads.
    if (!_bSynthesize && m_pDoc->getChannel(0)->hasAudio())
        return;
    stopPlayback(); // the synthesis replaces the samples the player may hold
    m_pDoc->Synthesize();
    _bSynthesize = false;
    emit synthesized();
}

void mainTable::PlayDocument(int channel)
{
    m_pPlayback->play(channel);
}

void mainTable::_PlaySelection()
{
    m_pPlayback->scheduleSelection();
}

void mainTable::PlaySelection()
{
    const auto [first, last] = selectedColumnSpan();
    playFrames(first, last);
}

void mainTable::playFrames(int first, int last)
{
    m_pPlayback->playSelection(first, last);
}

bool mainTable::saveAudioTo(const QString& path)
{
    bool ok = false;
    try {
        synthesizeIfNeeded();
        if (m_pDoc->getChannel(0)->sampleCount() == 0) {
            Alert::show(window(), QStringLiteral("No audio to save"),
                        tr("The document is too short to synthesize any samples; nothing was written."),
                        QStringLiteral("OK"));
            Log::line("no");
            return false;
        }
        const StimulusOutput output = StimulusOutputFile::load();
        if (!output.plain())
            return saveShapedAudio(path, output);
        const std::string bytes = m_pDoc->save_Wave_FileType();
        QSaveFile file(path);
        ok = file.open(QIODevice::WriteOnly) &&
             file.write(bytes.data(), static_cast<qint64>(bytes.size())) ==
                 static_cast<qint64>(bytes.size()) &&
             file.commit();
    } catch (const std::exception& e) {
        Log::line(std::string("save audio: ") + e.what());
        ok = false;
    }
    Log::line(ok ? "yes" : "no");
    return ok;
}

bool mainTable::saveShapedAudio(const QString& path, const StimulusOutput& output)
{
    // Resampled, levelled, ramped: the settings of Options > Audio Output...
    const Channels& c = *m_pDoc->getChannel(0);
    try {
        const StimulusFigures figures = saveStimulus(path.toStdString(), c.samples(), c.sampleCount(),
                                                     static_cast<int>(c.m_dSampleRate), output);
        Log::line("yes: " + figures.csvFields());
        return true;
    } catch (const std::exception& e) {
        const auto* refusal = dynamic_cast<const DocumentException*>(&e);
        Alert::show(window(), QStringLiteral("Audio not saved"),
                    refusal ? QString::fromStdString(refusal->name() + ": " + refusal->reason())
                            : QString::fromStdString(e.what()),
                    QStringLiteral("OK"));
        Log::line("no");
        return false;
    }
}

void mainTable::_fileSaveAudio()
{
    const StimulusOutput output = StimulusOutputFile::load();
    const bool flac = output.format == StimulusOutput::Format::Flac;
    QFileDialog panel(window(), QStringLiteral("save as wav"));
    panel.setOption(QFileDialog::DontUseNativeDialog); // for the line of settings below
    panel.setAcceptMode(QFileDialog::AcceptSave);
    panel.setFileMode(QFileDialog::AnyFile);
    panel.setNameFilter(flac ? tr("FLAC audio (*.flac)") : tr("WAVE audio (*.wav)"));
    panel.setDefaultSuffix(flac ? QStringLiteral("flac") : QStringLiteral("wav"));
    panel.setDirectory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    panel.setLabelText(QFileDialog::FileName, QStringLiteral("Save Audio as"));
    panel.selectFile(flac ? QStringLiteral("audio.flac") : QStringLiteral("audio.wav"));
    if (auto* grid = qobject_cast<QGridLayout*>(panel.layout())) {
        auto* settings = new QLabel(
            tr("Audio output: %1 (Options > Audio Output...)").arg(QString::fromStdString(output.summary())));
        settings->setObjectName(QStringLiteral("audioOutput"));
        grid->addWidget(settings, grid->rowCount(), 0, 1, grid->columnCount());
    }
    panel.setWindowModality(Qt::WindowModal);
    if (panel.exec() != QDialog::Accepted || panel.selectedFiles().isEmpty())
        return;
    saveAudioTo(panel.selectedFiles().first());
}
