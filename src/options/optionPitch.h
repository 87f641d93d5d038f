#pragma once
// The pitch options panel: cepstral pitch tracking (window and step in ms, the largest jump
// kept, the energy threshold in per cent, the calculation range) and the pitch display (range,
// grids, print size). The double-valued settings are shown as whole numbers. Saving writes the
// calculation range and then, on purpose, the display fields into the same two settings: the
// range typed as the display range is the one that takes effect, and the stored display range
// is never changed by this panel. Main thread only.
#include "options/AnalysisPanel.h"

class QButtonGroup;
class QCheckBox;
class QLineEdit;

class optionPitch : public AnalysisPanel
{
    Q_OBJECT
public:
    explicit optionPitch(QWidget* parent = nullptr);

    QLineEdit* _WindowLength = nullptr;
    QLineEdit* _StepSize = nullptr;
    QLineEdit* _FrequencyDeviation = nullptr;
    QLineEdit* _Threshold = nullptr;
    QLineEdit* _CalculationLow = nullptr;
    QLineEdit* _CalculationHigh = nullptr;
    QLineEdit* _DisplayLow = nullptr;
    QLineEdit* _DisplayHigh = nullptr;
    QCheckBox* _drawFrequencyGrid = nullptr;
    QLineEdit* _FrequencyGrid = nullptr;
    QCheckBox* _drawTimeGrid = nullptr;
    QLineEdit* _TimeGrid = nullptr;
    QButtonGroup* _Inchcm = nullptr; // tag 1 inches
    QLineEdit* _Width = nullptr;
    QLineEdit* _Heigth = nullptr;
    QButtonGroup* _ColorBW = nullptr; // tag 1 colour

protected:
    void fill(const MyDocument& doc) override;
};
