#include "table/gui/PlayCursor.h"

#include "audio/AudioPlayer.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QTimer>

#include <cmath>

namespace
{
// Often enough for a 10 ms frame grid to look continuous, rarely enough to cost nothing.
constexpr int kStepMS = 40;
} // namespace

PlayCursor::PlayCursor(mainTable* table) : QObject(table), m_pTable(table), m_pTimer(new QTimer(this))
{
    m_pTimer->setInterval(kStepMS);
    connect(m_pTimer, &QTimer::timeout, this, &PlayCursor::step);
}

int PlayCursor::frameColumnAt(double playedSamples, double sampleRate, int intervalMS, int frameCount)
{
    const double samplesPerFrame = intervalMS * sampleRate / 1000.0;
    if (!(samplesPerFrame > 0) || !std::isfinite(samplesPerFrame) || !(playedSamples >= 0))
        return -1;
    const double frame = std::floor(playedSamples / samplesPerFrame);
    if (!(frame < frameCount))
        return -1; // past the grid (a model longer than the table)
    return static_cast<int>(frame) + 1;
}

void PlayCursor::follow(double sampleRate, double samples, double startSample)
{
    m_dSampleRate = sampleRate;
    m_dSamples = samples;
    m_dStart = startSample;
    showPosition(0);
    m_pTimer->start();
}

bool PlayCursor::isFollowing() const
{
    return m_pTimer->isActive();
}

void PlayCursor::showPosition(double playedSamples)
{
    const int interval = m_pTable->document()->updateInterval();
    m_pTable->showPlayColumn(frameColumnAt(m_dStart + playedSamples, m_dSampleRate, interval,
                                           m_pTable->tableModel()->frameCount()));
    if (m_dSampleRate > 0)
        emit positionChanged(playedSamples / m_dSampleRate, m_dSamples / m_dSampleRate);
}

void PlayCursor::clear()
{
    const bool wasShown = m_pTimer->isActive() || m_pTable->playColumn() > 0;
    m_pTimer->stop();
    m_pTable->showPlayColumn(-1);
    if (wasShown)
        emit finished();
}

void PlayCursor::step()
{
    AudioPlayer* player = mainTable::sharedPlayer();
    if (!player->isPlaying() || mainTable::playingTable() != m_pTable) {
        clear();
        return;
    }
    showPosition(player->playedSamples());
}
