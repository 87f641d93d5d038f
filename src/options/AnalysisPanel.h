#pragma once
// What the three analysis option panels share (FFT/LPC, spectrogram, pitch): a form of rows
// bound to the document's analysis settings (OptionForm), filled from the document, saved on OK,
// and a Default button that puts the analysis defaults for the sample rate captured at set-up
// into the controls (not the document). A panel with an analysis-length menu titles its nine
// lengths in ms at that rate. Main thread only.
#include "options/OptionForm.h"
#include "options/OptionPanel.h"

class QComboBox;

class AnalysisPanel : public OptionPanel
{
    Q_OBJECT
public:
    // Captures the sample rate of channel 0 (panels with a length menu), then fills the panel.
    void setup(MyDocument* doc) override;
    void save(MyDocument* doc) override;
    void actionDefault();

    double m_dAnalysisSampleRate = 11025.0;
    QComboBox* _popupWindowLength = nullptr; // none in the pitch panel

protected:
    // `name` is the panel's object name.
    AnalysisPanel(QWidget* parent, const QString& title, const QString& name);
    // Shows the settings of `doc` in the controls: the form's rows (a panel adds what no row
    // shows).
    virtual void fill(const MyDocument& doc);
    // Puts the form, then `note` when given, then OK, Cancel and Default into the panel.
    void finishLayout(QWidget* note = nullptr);

    OptionForm m_form{this};
};
