#pragma once
// SpectrogramWorker: computes the spectrogram of a channel (SpectrogramComputation) and its
// picture (SpectrogramImage) on a background thread, one run at a time.
//
// start() is called on the GUI thread. It takes its own copy of the channel's samples and of
// the settings, so the document may change or close while the run goes on. A new start()
// cancels the run before it. Each run owns a result object and a cancel flag; a finished run
// hands its result to the GUI thread by a queued call that first checks, through a QPointer,
// that the worker still exists, and delivers it only if no newer run was started meanwhile
// (signal `finished`). The worker never touches a widget. Destroying the worker cancels the
// run and waits for its thread (at most one column of computation).
#include "display/SpectrogramComputation.h"

#include <QImage>
#include <QObject>

#include <atomic>
#include <memory>
#include <thread>

class SpectrogramWorker : public QObject
{
    Q_OBJECT
public:
    // What a finished run hands over.
    struct Result {
        SpectrogramComputation computation;
        QImage image;  // W x H, null when the run computed nothing
        int width = 0; // display size the run was made for
        int height = 0;
    };

    explicit SpectrogramWorker(QObject* parent = nullptr);
    ~SpectrogramWorker() override;

    // Starts a run for a display of width x height pixels.
    void start(const Channels& channel, const SpectrogramSettings& settings, int width, int height);
    // Cancels the current run; its result is never delivered.
    void cancel();
    // A run was started and its result has not been delivered yet.
    bool isRunning() const { return m_bRunning; }
    // Waits for the current run's thread to end (tests and benchmarks; the GUI never waits).
    void waitForThread();

signals:
    void started();
    void finished(std::shared_ptr<const SpectrogramWorker::Result> result);

private:
    void deliver(int run, std::shared_ptr<const Result> result);

    std::thread m_thread;
    std::shared_ptr<std::atomic<bool>> m_pCancel;
    int m_nRun = 0;
    bool m_bRunning = false;
};
