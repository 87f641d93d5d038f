#pragma once
// The FFT/LPC options panel: the slice window's analysis length (a menu of nine lengths) and
// the part of it applied (ms), frequency range, averaging step, LPC order, absolute or relative
// levels, print size and grids. Default resets the controls (not the document) with the sample
// rate captured at set-up. Main thread only.
#include "options/AnalysisPanel.h"

class QButtonGroup;
class QCheckBox;
class QLineEdit;

class optionFFTLPC : public AnalysisPanel
{
    Q_OBJECT
public:
    explicit optionFFTLPC(QWidget* parent = nullptr);

    // A length chosen: the applied length becomes the window's duration in ms.
    void actionPtsSelector(int index);

    QLineEdit* m_nFFTAppliedWindowLength = nullptr;
    QLineEdit* m_nFFTfrequencyRange = nullptr;
    QLineEdit* m_nFFTAverageStepSize = nullptr;
    QLineEdit* m_nLPCNumberofCoefficients = nullptr;
    QCheckBox* _drawLPC = nullptr;
    QButtonGroup* m_displayType = nullptr; // tag 1 absolute
    QLineEdit* m_nAbsoluteRange = nullptr;
    QButtonGroup* m_Inchcm = nullptr;     // tag 1 inches
    QButtonGroup* m_ColorGroup = nullptr; // tag 1 colour
    QLineEdit* m_dWidth = nullptr;
    QLineEdit* m_dHeight = nullptr;
    QCheckBox* _drawFrequencyGrid = nullptr;
    QLineEdit* m_nFrequencyGrid = nullptr;
    QCheckBox* _drawDBGrid = nullptr;
    QLineEdit* m_nDBGrid = nullptr;
};
