#pragma once
// The play cursor of one table: while the shared player plays this table's samples (the
// current synthesis, the previous one or the model), a timer on the main thread reads how
// many samples the player has delivered and has the table show the frame column they belong
// to; when the playback ends (or another table takes the player) the cursor is cleared.
//
// The audio thread is never involved: the player's count of delivered samples is an atomic
// read here. Delivered samples run ahead of what is heard by the output's buffering (one
// request of 512 samples and the device's latency, a few tens of milliseconds), less than
// the width of a frame at the usual intervals. Main thread only; positions in samples.
#include <QObject>

class QTimer;
class mainTable;

class PlayCursor : public QObject
{
    Q_OBJECT
public:
    explicit PlayCursor(mainTable* table);

    // The table column of the frame that holds sample `playedSamples` of a playback at
    // `sampleRate` Hz: frame column k covers the samples from (k - 1) x interval x rate / 1000
    // on. -1 when the position lies beyond the last of `frameCount` frames or when the rate
    // or the interval (ms) cannot place it.
    static int frameColumnAt(double playedSamples, double sampleRate, int intervalMS, int frameCount);

    // Starts following a playback of `samples` samples at `sampleRate` Hz that starts at
    // sample `startSample` of the synthesis (a played selection).
    void follow(double sampleRate, double samples, double startSample = 0);
    // Shows the frame column of a position of the current playback, counted from its start
    // (the timer's step).
    void showPosition(double playedSamples);
    // Clears the cursor and stops following.
    void clear();

    bool isFollowing() const;

signals:
    // The position shown, in seconds from the start, and the playback's length in seconds.
    void positionChanged(double seconds, double totalSeconds);
    // The cursor was cleared: the playback ended or was stopped.
    void finished();

private:
    void step();

    mainTable* m_pTable;
    QTimer* m_pTimer;
    double m_dSampleRate = 0;
    double m_dSamples = 0;
    double m_dStart = 0;
};
