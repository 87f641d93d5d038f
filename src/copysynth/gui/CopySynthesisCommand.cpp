#include "copysynth/gui/CopySynthesisCommand.h"

#include "copysynth/CopySynthesis.h"
#include "document/MyDocument.h"
#include "table/gui/Alert.h"
#include "table/gui/mainTable.h"

#include <QCoreApplication>
#include <QProgressDialog>
#include <QThread>

#include <atomic>
#include <new>
#include <stdexcept>
#include <vector>

namespace
{
// The dialog shows only when the estimation takes longer than this (ms).
constexpr int kShowAfterMS = 250;
constexpr int kSteps = 1000;
const char* const kTitle = "Automatic Copy Synthesis";
} // namespace

// What the worker owns: its copy of the recording, the cancel flag and the result.
struct CopySynthesisCommand::Work {
    std::vector<float> samples;
    double sampleRate = 0.0;
    std::atomic<bool> cancel{false};
    std::atomic<int> reported{-1}; // last progress posted, in thousandths
    CopySynthesisResult result;
};

CopySynthesisCommand::CopySynthesisCommand(mainTable& table, QWidget* parent)
    : QObject(&table), m_pTable(&table), m_pParent(parent), m_work(std::make_shared<Work>())
{
}

CopySynthesisCommand* CopySynthesisCommand::start(mainTable& table, QWidget* parent)
{
    const Channels& model = *table.document()->getChannel(2);
    if (!model.hasAudio() || model.sampleCount() == 0) {
        Alert::show(parent, QString::fromLatin1(kTitle),
                    QObject::tr("There is no model utterance to copy: open a WAVE file first."),
                    QStringLiteral("OK"));
        return nullptr;
    }
    auto* command = new CopySynthesisCommand(table, parent);
    try {
        command->m_work->samples.assign(model.samples(), model.samples() + model.sampleCount());
    } catch (const std::bad_alloc&) {
        delete command;
        Alert::show(parent, QStringLiteral("Memory Error"), QStringLiteral("Unable to allocate memory"),
                    QStringLiteral("OK"));
        return nullptr;
    }
    command->m_work->sampleRate = model.m_dSampleRate;
    command->run();
    return command;
}

void CopySynthesisCommand::run()
{
    m_pProgress = new QProgressDialog(tr("Estimating the synthesis parameters of the model\u2026"),
                                      tr("Cancel"), 0, kSteps, m_pParent);
    m_pProgress->setWindowTitle(QString::fromLatin1(kTitle));
    m_pProgress->setWindowModality(Qt::ApplicationModal);
    m_pProgress->setMinimumDuration(kShowAfterMS);
    m_pProgress->setAutoClose(false);
    m_pProgress->setAutoReset(false);
    m_pProgress->setValue(0);
    const std::shared_ptr<Work> work = m_work;
    connect(m_pProgress, &QProgressDialog::canceled, this, [work] { work->cancel = true; });

    QPointer<CopySynthesisCommand> self(this);
    QThread* thread = QThread::create([work, self] {
        QString failure;
        const auto progress = [&work, self](double done) {
            const int permille = static_cast<int>(done * kSteps);
            if (work->reported.exchange(permille) / 10 != permille / 10)
                QMetaObject::invokeMethod(QCoreApplication::instance(), [self, permille] {
                    if (self)
                        self->progressed(permille);
                });
            return !work->cancel.load();
        };
        try {
            work->result = copySynthesize(work->samples.data(), work->samples.size(), work->sampleRate,
                                          CopySynthesisOptions{}, progress);
        } catch (const std::invalid_argument& e) {
            failure = QString::fromStdString(e.what());
        } catch (const std::bad_alloc&) {
            failure = QStringLiteral("Unable to allocate memory");
        }
        QMetaObject::invokeMethod(QCoreApplication::instance(), [self, failure] {
            if (self)
                self->done(failure);
        });
    });
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
}

void CopySynthesisCommand::progressed(int permille)
{
    if (m_pProgress && !m_work->cancel)
        m_pProgress->setValue(std::min(permille, kSteps - 1));
}

void CopySynthesisCommand::done(const QString& failure)
{
    // A Cancel that came after the worker's last look at the flag still cancels.
    const bool cancelled =
        m_work->cancel || m_work->result.cancelled || (m_pProgress && m_pProgress->wasCanceled());
    if (m_pProgress) {
        m_pProgress->hide();
        m_pProgress->deleteLater();
    }
    bool applied = false;
    if (!failure.isEmpty())
        Alert::show(m_pParent, QString::fromLatin1(kTitle), failure, QStringLiteral("OK"));
    else if (!cancelled && m_pTable)
        applied = apply();
    emit finished(applied);
    deleteLater();
}

bool CopySynthesisCommand::apply()
{
    MyDocument& doc = *m_pTable->document();
    bool applied = true;
    try {
        doc.saveUndo();
        applyCopySynthesis(m_work->result, doc);
        doc.saveRedo();
    } catch (const std::exception& e) {
        // What was applied before the failure shows, and the undo step restores it.
        Alert::show(m_pParent, QString::fromLatin1(kTitle), QString::fromStdString(e.what()),
                    QStringLiteral("OK"));
        applied = false;
    }
    m_pTable->afterGridReplaced();
    return applied;
}
