#include "table/gui/TablePlayback.h"

#include "audio/AudioPlayer.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QApplication>
#include <QPointer>
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

AudioPlayer* TablePlayback::sharedPlayer()
{
    static QPointer<AudioPlayer> player;
    if (!player) {
        player = new AudioPlayer(qApp);
        QObject::connect(player, &AudioPlayer::playbackStopped, player, [] { releasePlayedBlock(); });
    }
    return player;
}

mainTable* TablePlayback::playingTable()
{
    return g_playingTable;
}

TablePlayback::TablePlayback(mainTable& table) : m_table(table) {}

TablePlayback::~TablePlayback() = default;

void TablePlayback::stop()
{
    if (g_playingTable != &m_table)
        return;
    sharedPlayer()->stopClean();
    releasePlayedBlock();
}

void TablePlayback::schedule(int channel)
{
    AudioPlayer* player = sharedPlayer();
    if (player->isPlaying())
        player->stopPlay();
    // Deferred so that the menu closes before a synthesis starts.
    QTimer::singleShot(100, &m_table, [this, channel] { play(channel); });
}

void TablePlayback::play(int channel)
{
    try {
        Channels* ch = m_table.document()->getChannel(channel);
        if (channel == 0)
            m_table.synthesizeIfNeeded();
        if (!ch->hasAudio())
            return; // nothing to play, nothing to report
        AudioPlayer* player = sharedPlayer();
        if (player->isPlaying())
            player->stopPlay();
        releasePlayedBlock();
        player->CreateDefaultAU();
        player->setDelegate(&m_table);
        g_lockedBlock = ch->m_hData.get();
        g_lockedBlock->lock();
        g_playingTable = &m_table;
        g_playingChannel = channel;
        // Never more samples than the block holds, whatever the recorded length says.
        const double length = std::min(ch->m_dwFileLength, static_cast<double>(ch->sampleCount()));
        player->setData(g_lockedBlock->bytes(), length, 0);
        player->setSampleRate(ch->m_dSampleRate);
        player->startPlay();
        if (player->isPlaying())
            emit m_table.playbackStarted(ch->m_dSampleRate, length, 0);
    } catch (const std::exception& e) {
        Log::line(std::string("PlayDocument: ") + e.what()); // swallowed by design
    }
}

void TablePlayback::scheduleSelection()
{
    AudioPlayer* player = sharedPlayer();
    if (player->isPlaying())
        player->stopPlay();
    QTimer::singleShot(100, &m_table, [this] { m_table.PlaySelection(); });
}

void TablePlayback::playSelection(int first, int last)
{
    try {
        first = std::max(first, 1); // the name column stands for no samples
        if (last < first)
            return;
        m_table.synthesizeIfNeeded();
        MyDocument& doc = *m_table.document();
        const Channels& ch = *doc.getChannel(0);
        // Frame column k holds the samples from (k - 1) x the frame's sample count on, the
        // count the synthesis made per frame.
        const std::size_t perFrame = static_cast<std::size_t>(doc.updateInterval()) *
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
        player->setDelegate(&m_table);
        g_playingTable = &m_table;
        player->setData(reinterpret_cast<const std::uint8_t*>(m_selectionSamples.data()),
                        static_cast<double>(m_selectionSamples.size()), 0);
        player->setSampleRate(ch.m_dSampleRate);
        player->startPlay();
        if (player->isPlaying())
            emit m_table.playbackStarted(ch.m_dSampleRate, static_cast<double>(to - from),
                                         static_cast<double>(from));
    } catch (const std::exception& e) {
        Log::line(std::string("PlaySelection: ") + e.what()); // swallowed, as for the other plays
    }
}
