#pragma once
// What the three analysis option panels share (FFT/LPC, spectrogram, pitch): they are filled
// from the document's analysis settings, and Default puts the analysis defaults for the sample
// rate captured at set-up into the controls (not the document). A panel with an analysis-length
// menu titles its nine lengths in ms at that rate. Main thread only.
#include "options/OptionPanel.h"

class QComboBox;

class AnalysisPanel : public OptionPanel
{
    Q_OBJECT
public:
    // Captures the sample rate of channel 0 (panels with a length menu), then fills the panel.
    void setup(MyDocument* doc) override;
    void actionDefault();

    double m_dAnalysisSampleRate = 11025.0;
    QComboBox* _popupWindowLength = nullptr; // none in the pitch panel

protected:
    explicit AnalysisPanel(QWidget* parent) : OptionPanel(parent) {}
    // Shows the settings of `doc` in the controls.
    virtual void fill(const MyDocument& doc) = 0;
};
