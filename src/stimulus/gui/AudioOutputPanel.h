#pragma once
// Options > Audio Output...: how Save Audio writes the synthesis (output rate, level, ramps,
// silence, sample width, format). A modal option panel like the others: OK ends it with 1000
// and keeps the settings (StimulusOutputFile, beside the configuration file), Cancel with 1001
// and keeps nothing. The document is not involved: the settings belong to the application.
// Main thread only.
#include "options/OptionPanel.h"
#include "stimulus/StimulusOutput.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLayout;

class AudioOutputPanel : public OptionPanel
{
    Q_OBJECT
public:
    explicit AudioOutputPanel(QWidget* parent = nullptr);

    // Loads the kept settings, runs the panel, keeps them on OK; the modal code.
    int run(QWidget* parent);

    // What the controls say now, and showing settings in them.
    StimulusOutput output() const;
    void showOutput(const StimulusOutput& output);

    void setup(MyDocument* doc) override;
    void save(MyDocument* doc) override;

protected:
    // Refuses a rate out of range, and keeps the settings (refusing when they cannot be kept).
    bool mayAccept() override;

private:
    QComboBox* makeRateField();
    QLayout* makeLevelRow();
    QLayout* makeFileRow();
    void updateSummary();

    QComboBox* m_pRate;
    QComboBox* m_pLevel;
    QDoubleSpinBox* m_pLevelDb;
    QCheckBox* m_pAllowClip;
    QDoubleSpinBox* m_pRamp;
    QDoubleSpinBox* m_pPadBefore;
    QDoubleSpinBox* m_pPadAfter;
    QComboBox* m_pBits;
    QComboBox* m_pFormat;
    QLabel* m_pSummary;
    QLabel* m_pRefusal;
};
