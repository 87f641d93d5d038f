#pragma once
// RecordModelDialog: File > Record Model... Records from the default input at the document's
// rate while it is open: a level meter, the time recorded against the five-minute limit, and
// Stop, which ends the recording and keeps it; Cancel throws it away. At the limit the
// recording stops by itself and is kept. Without an input device the dialog is not shown and
// the caller gets the message. Main thread only.
#include <QDialog>

#include <vector>

class AudioRecorder;
class QLabel;
class QProgressBar;
class QPushButton;

class RecordModelDialog : public QDialog
{
    Q_OBJECT
public:
    RecordModelDialog(double sampleRate, QWidget* parent);

    // Starts recording; false with the reason when the input cannot be used.
    bool startRecording(QString* error);
    // The kept recording (empty unless the dialog was accepted).
    const std::vector<float>& recording() const { return m_recording; }
    AudioRecorder* recorder() const { return m_pRecorder; }

public slots:
    // Stop: ends the recording and accepts the dialog.
    void stopRecording();
    void reject() override;

private:
    void updateMeter();

    AudioRecorder* m_pRecorder;
    double m_dSampleRate;
    std::vector<float> m_recording;
    QProgressBar* m_pMeter;
    QLabel* m_pTime;
    QPushButton* m_pStop;
    bool m_bEnding = false; // Stop or Cancel was chosen: the recorder's end is expected
};
