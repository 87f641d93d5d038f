#pragma once
// Playing a parameter table's document: the whole synthesis, the previous one, the model, or
// the part of the synthesis under the selected frames, through the application's one
// AudioPlayer. The player remembers which table's samples it plays and keeps that channel's
// block locked, so that a table going away (or synthesizing again) stops it first. Owned by the
// table (mainTable), which it tells when a playback starts (playbackStarted). Main thread only.
#include <vector>

class AudioPlayer;
class mainTable;

class TablePlayback
{
public:
    explicit TablePlayback(mainTable& table);
    // The table stops its playback before it goes (see stop).
    ~TablePlayback();
    TablePlayback(const TablePlayback&) = delete;
    TablePlayback& operator=(const TablePlayback&) = delete;

    // The application's one player (made on first use), and the table whose samples it plays
    // (nullptr when none).
    static AudioPlayer* sharedPlayer();
    static mainTable* playingTable();

    // Stops the shared player when it plays this table's samples.
    void stop();
    // Stops what plays and plays a channel 100 ms later, so that the menu closes before a
    // synthesis starts; play is that deferred half. Channel 0 is synthesized first when the
    // table asks for it (mainTable::synthesizeIfNeeded).
    void schedule(int channel);
    void play(int channel);
    // The same for the synthesis under table columns first .. last (frame columns; the name
    // column stands for no samples).
    void scheduleSelection();
    void playSelection(int first, int last);

private:
    mainTable& m_table;
    // The samples of a selection being played (the player reads them; kept until the next
    // playback or the table goes).
    std::vector<float> m_selectionSamples;
};
