#include "audio/RecordModelDialog.h"

#include "audio/AudioRecorder.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>

namespace
{
// The meter shows the peak from -60 dB to 0 dB re full scale.
constexpr double kMeterFloorDB = -60.0;

QString minutesAndSeconds(double seconds)
{
    const int whole = static_cast<int>(seconds);
    return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}
} // namespace

RecordModelDialog::RecordModelDialog(double sampleRate, QWidget* parent)
    : QDialog(parent), m_pRecorder(new AudioRecorder(this)), m_dSampleRate(sampleRate)
{
    setWindowTitle(tr("Record Model"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Recording from the default input at %1 Hz.").arg(sampleRate), this));
    m_pMeter = new QProgressBar(this);
    m_pMeter->setRange(0, 1000);
    m_pMeter->setTextVisible(false);
    layout->addWidget(m_pMeter);
    m_pTime = new QLabel(this);
    layout->addWidget(m_pTime);
    auto* buttons = new QDialogButtonBox(this);
    m_pStop = buttons->addButton(tr("Stop"), QDialogButtonBox::AcceptRole);
    buttons->addButton(QDialogButtonBox::Cancel);
    layout->addWidget(buttons);
    connect(m_pStop, &QPushButton::clicked, this, &RecordModelDialog::stopRecording);
    connect(buttons, &QDialogButtonBox::rejected, this, &RecordModelDialog::reject);
    // At the limit the recorder stops by itself: keep what it has.
    connect(m_pRecorder, &AudioRecorder::finished, this, [this] {
        if (!m_bEnding)
            stopRecording();
    });
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &RecordModelDialog::updateMeter);
    timer->start(50);
    updateMeter();
}

bool RecordModelDialog::startRecording(QString* error)
{
    return m_pRecorder->start(m_dSampleRate, error);
}

void RecordModelDialog::updateMeter()
{
    const double peak = m_pRecorder->takePeak();
    const double db = peak > 0.0 ? 20.0 * std::log10(peak) : kMeterFloorDB;
    const double fraction = std::clamp((db - kMeterFloorDB) / -kMeterFloorDB, 0.0, 1.0);
    m_pMeter->setValue(static_cast<int>(fraction * 1000.0));
    const double seconds = m_pRecorder->recordedSamples() / m_dSampleRate;
    m_pTime->setText(tr("%1 of %2 recorded")
                         .arg(minutesAndSeconds(seconds), minutesAndSeconds(AudioRecorder::kMaxSeconds)));
}

void RecordModelDialog::stopRecording()
{
    m_bEnding = true;
    m_pRecorder->stop();
    m_recording = m_pRecorder->samples();
    if (m_recording.empty()) {
        QDialog::reject();
        return;
    }
    accept();
}

void RecordModelDialog::reject()
{
    m_bEnding = true;
    m_pRecorder->stop();
    m_recording.clear();
    QDialog::reject();
}
