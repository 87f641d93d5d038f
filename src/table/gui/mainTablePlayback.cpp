// The table's play commands (the whole synthesis, the previous one, the model, or the part
// of the synthesis under the selected frames), the play cursor's column and the save-audio
// command. One
// AudioPlayer serves the whole application; the table remembers which table's samples it
// plays so that a table going away (or re-synthesizing) can stop it first.
#include "table/gui/mainTable.h"

#include "audio/AudioPlayer.h"
#include "document/DocumentException.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "stimulus/StimulusFile.h"
#include "stimulus/StimulusOutputFile.h"
#include "table/gui/Alert.h"

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
#include <QTimer>

#include <algorithm>

namespace
{
// What the shared player is playing: the table, the channel and the block kept locked.
QPointer<mainTable> g_playingTable;
int g_playingChannel = -1;
MemoryBlock* g_lockedBlock = nullptr;

// Unlocks the played block when it still belongs to the channel it was taken from.
void releasePlayedBlock()
{
    if (g_playingTable && g_lockedBlock && g_playingChannel >= 0) {
        Channels* channel = g_playingTable->document()->getChannel(g_playingChannel);
        if (channel->m_hData.get() == g_lockedBlock)
            g_lockedBlock->unlock();
    }
    g_lockedBlock = nullptr;
    g_playingChannel = -1;
    g_playingTable = nullptr;
}
} // namespace

AudioPlayer* mainTable::sharedPlayer()
{
    static QPointer<AudioPlayer> player;
    if (!player) {
        player = new AudioPlayer(qApp);
        QObject::connect(player, &AudioPlayer::playbackStopped, player, [] { releasePlayedBlock(); });
    }
    return player;
}

mainTable* mainTable::playingTable()
{
    return g_playingTable;
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
    if (g_playingTable != this)
        return;
    sharedPlayer()->stopClean();
    releasePlayedBlock();
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
    AudioPlayer* player = sharedPlayer();
    if (player->isPlaying())
        player->stopPlay();
    // Deferred so that the menu closes before a synthesis starts.
    QTimer::singleShot(100, this, [this, channel] { PlayDocument(channel); });
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
    try {
        Channels* ch = m_pDoc->getChannel(channel);
        if (channel == 0)
            synthesizeIfNeeded();
        if (!ch->hasAudio())
            return; // nothing to play, nothing to report
        AudioPlayer* player = sharedPlayer();
        if (player->isPlaying())
            player->stopPlay();
        releasePlayedBlock();
        player->CreateDefaultAU();
        player->setDelegate(this);
        g_lockedBlock = ch->m_hData.get();
        g_lockedBlock->lock();
        g_playingTable = this;
        g_playingChannel = channel;
        // Never more samples than the block holds, whatever the recorded length says.
        const double length = std::min(ch->m_dwFileLength, static_cast<double>(ch->sampleCount()));
        player->setData(g_lockedBlock->bytes(), length, 0);
        player->setSampleRate(ch->m_dSampleRate);
        player->startPlay();
        if (player->isPlaying())
            emit playbackStarted(ch->m_dSampleRate, length, 0);
    } catch (const std::exception& e) {
        Log::line(std::string("PlayDocument: ") + e.what()); // swallowed by design
    }
}

void mainTable::_PlaySelection()
{
    AudioPlayer* player = sharedPlayer();
    if (player->isPlaying())
        player->stopPlay();
    QTimer::singleShot(100, this, [this] { PlaySelection(); });
}

void mainTable::PlaySelection()
{
    const auto [first, last] = selectedColumnSpan();
    playFrames(first, last);
}

void mainTable::playFrames(int first, int last)
{
    try {
        first = std::max(first, 1); // the name column stands for no samples
        if (last < first)
            return;
        synthesizeIfNeeded();
        const Channels& ch = *m_pDoc->getChannel(0);
        // Frame column k holds the samples from (k - 1) x the frame's sample count on, the
        // count the synthesis made per frame.
        const std::size_t perFrame = static_cast<std::size_t>(m_pDoc->updateInterval()) *
                                     static_cast<std::size_t>(ch.m_dSampleRate) / 1000;
        const std::size_t held = ch.sampleCount();
        const std::size_t from = std::min(static_cast<std::size_t>(first - 1) * perFrame, held);
        const std::size_t to = std::min(static_cast<std::size_t>(last) * perFrame, held);
        if (from >= to)
            return;
        AudioPlayer* player = sharedPlayer();
        if (player->isPlaying())
            player->stopPlay();
        releasePlayedBlock();
        // The player plays whole requests only; the selection is copied and followed by
        // silence up to a whole request, so that its last samples are heard too.
        const std::size_t request = AudioPlayer::kFramesPerRequest;
        m_selectionSamples.assign(ch.samples() + from, ch.samples() + to);
        m_selectionSamples.resize((to - from + request - 1) / request * request, 0.0f);
        player->CreateDefaultAU();
        player->setDelegate(this);
        g_playingTable = this;
        player->setData(reinterpret_cast<const std::uint8_t*>(m_selectionSamples.data()),
                        static_cast<double>(m_selectionSamples.size()), 0);
        player->setSampleRate(ch.m_dSampleRate);
        player->startPlay();
        if (player->isPlaying())
            emit playbackStarted(ch.m_dSampleRate, static_cast<double>(to - from), static_cast<double>(from));
    } catch (const std::exception& e) {
        Log::line(std::string("playFrames: ") + e.what()); // swallowed, as for the other plays
    }
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
