#include "display/gui/SpectrogramWorker.h"

#include "display/gui/SpectrogramImage.h"

#include <QCoreApplication>
#include <QPointer>

#include <cstring>

namespace
{
// A copy of the samples and of what the computation reads of a channel.
std::shared_ptr<Channels> snapshotOf(const Channels& channel)
{
    auto copy = std::make_shared<Channels>();
    copy->m_dSampleRate = channel.m_dSampleRate;
    copy->m_dwFileLength = channel.m_dwFileLength;
    copy->m_dLengthMS = channel.m_dLengthMS;
    if (channel.hasAudio()) {
        copy->m_hData = MemoryBlock::newHandleClear(channel.m_hData->size());
        if (copy->m_hData)
            std::memcpy(copy->m_hData->bytes(), channel.m_hData->bytes(), channel.m_hData->size());
    }
    return copy;
}
} // namespace

SpectrogramWorker::SpectrogramWorker(QObject* parent) : QObject(parent) {}

SpectrogramWorker::~SpectrogramWorker()
{
    cancel();
    waitForThread();
}

void SpectrogramWorker::cancel()
{
    if (m_pCancel)
        m_pCancel->store(true);
    ++m_nRun; // a result already posted is dropped on arrival
    m_bRunning = false;
}

void SpectrogramWorker::waitForThread()
{
    if (m_thread.joinable())
        m_thread.join();
}

void SpectrogramWorker::start(const Channels& channel, const SpectrogramSettings& settings, int width,
                              int height)
{
    cancel();
    // The previous run stops at its next column.
    waitForThread();
    const int run = ++m_nRun;
    m_pCancel = std::make_shared<std::atomic<bool>>(false);
    m_bRunning = true;
    std::shared_ptr<Channels> samples = snapshotOf(channel);
    std::shared_ptr<std::atomic<bool>> cancelFlag = m_pCancel;
    QPointer<SpectrogramWorker> receiver(this);
    QObject* app = QCoreApplication::instance();
    m_thread = std::thread([=] {
        auto result = std::make_shared<Result>();
        result->computation.m_settings = settings;
        result->width = width;
        result->height = height;
        if (!result->computation.compute(*samples, width, height, cancelFlag.get()))
            if (cancelFlag->load())
                return;
        result->image = SpectrogramImage().DrawImage(result->computation);
        if (cancelFlag->load() || !app)
            return;
        // The receiver is checked on the GUI thread, where it lives and dies.
        QMetaObject::invokeMethod(
            app,
            [receiver, run, result] {
                if (receiver)
                    receiver->deliver(run, result);
            },
            Qt::QueuedConnection);
    });
    emit started();
}

void SpectrogramWorker::deliver(int run, std::shared_ptr<const Result> result)
{
    if (run != m_nRun)
        return; // a newer run was started, or this one was cancelled
    m_bRunning = false;
    waitForThread();
    emit finished(std::move(result));
}
