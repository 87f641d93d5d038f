#pragma once
// The spectrogram options panel: analysis length (menu of nine), dynamic range, frequency
// range, pre-emphasis ("%1.2f"), formant tracking and its LPC order, grids, print size. Default
// resets the controls (not the document) with the sample rate captured at set-up.
// Main thread only.
#include "options/AnalysisPanel.h"

class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;

class optionSpectrogram : public AnalysisPanel
{
    Q_OBJECT
public:
    explicit optionSpectrogram(QWidget* parent = nullptr);

    void actionPtsSelector(int index) { m_nSelectedLength = index; }

    int m_nSelectedLength = 2;
    QLineEdit* m_nSpecDynamicRange = nullptr;
    QLineEdit* m_nSpecfrequencyRange = nullptr;
    QLineEdit* m_dPreEmphasis = nullptr;
    QCheckBox* _drawFormantTracking = nullptr;
    QLineEdit* m_nSpecLPCNumberofCoefficients = nullptr;
    QCheckBox* _drawFrequencyGrid = nullptr;
    QLineEdit* m_nSpecFrequencyGrid = nullptr;
    QCheckBox* _drawTimeGrid = nullptr;
    QLineEdit* m_nSpecTimeGrid = nullptr;
    QButtonGroup* m_Inchcm = nullptr; // tag 1 inches
    QLineEdit* m_dSpecWidth = nullptr;
    QLineEdit* m_dSpecHeight = nullptr;
    QLabel* _note = nullptr;

protected:
    void fill(const MyDocument& doc) override;
};
