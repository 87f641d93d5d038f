#include "options/optionPitch.h"

#include "document/MyDocument.h"
#include "options/AnalysisPanelControls.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace AnalysisPanelControls;

namespace
{
QLayout* rangeRow(QLineEdit* low, QLineEdit* high)
{
    auto* row = new QHBoxLayout;
    row->addWidget(low);
    row->addWidget(new QLabel(QStringLiteral("to")));
    row->addWidget(high);
    row->addStretch();
    return row;
}
} // namespace

optionPitch::optionPitch(QWidget* parent) : AnalysisPanel(parent)
{
    setWindowTitle(tr("Pitch"));
    setObjectName(QStringLiteral("optionPitch"));
    _WindowLength = integerField();
    _StepSize = integerField();
    _FrequencyDeviation = integerField();
    _Threshold = integerField();
    _CalculationLow = integerField();
    _CalculationHigh = integerField();
    _DisplayLow = integerField();
    _DisplayHigh = integerField();
    _drawFrequencyGrid = new QCheckBox(tr("every (Hz)"));
    _FrequencyGrid = integerField();
    _drawTimeGrid = new QCheckBox(tr("every (ms)"));
    _TimeGrid = integerField();
    QLayout *unitRow = nullptr, *colourRow = nullptr;
    _Inchcm = choice(this, tr("Inches"), tr("cm"), unitRow);
    _Width = decimalField();
    _Heigth = decimalField();
    _ColorBW = choice(this, tr("Colour"), tr("Black and white"), colourRow);

    auto* form = new QFormLayout;
    form->addRow(tr("Window (ms):"), _WindowLength);
    form->addRow(tr("Step (ms):"), _StepSize);
    form->addRow(tr("Largest jump kept (Hz):"), _FrequencyDeviation);
    form->addRow(tr("Energy threshold (%):"), _Threshold);
    form->addRow(tr("Calculation range (Hz):"), rangeRow(_CalculationLow, _CalculationHigh));
    form->addRow(tr("Display range (Hz):"), rangeRow(_DisplayLow, _DisplayHigh));
    form->addRow(tr("Frequency grid:"), checkedRow(_drawFrequencyGrid, _FrequencyGrid));
    form->addRow(tr("Time grid:"), checkedRow(_drawTimeGrid, _TimeGrid));
    form->addRow(tr("Print size in:"), unitRow);
    form->addRow(tr("Width:"), _Width);
    form->addRow(tr("Height:"), _Heigth);
    form->addRow(tr("Print in:"), colourRow);
    auto* outer = new QVBoxLayout(this);
    outer->addLayout(form);
    outer->addWidget(makeButtons(true));
    connect(defaultButton(), &QPushButton::clicked, this, &AnalysisPanel::actionDefault);
}

void optionPitch::fill(const MyDocument& doc)
{
    setInteger(_WindowLength, doc.m_dPitchWindowLength);
    setInteger(_StepSize, doc.m_dPitchStepSize);
    setInteger(_FrequencyDeviation, doc.m_dFreqDeviation);
    setInteger(_Threshold, doc.m_dPitchTrackingThreshHold);
    setInteger(_CalculationLow, doc.m_dCalculationLow);
    setInteger(_CalculationHigh, doc.m_dCalculationHigh);
    setInteger(_DisplayLow, doc.m_nPitchDisplayLow);
    setInteger(_DisplayHigh, doc.m_nPitchDisplayHigh);
    _drawFrequencyGrid->setChecked(doc.m_bPitchDrawFreqGrid != 0);
    setInteger(_FrequencyGrid, doc.m_nPitchFreqGrid);
    _drawTimeGrid->setChecked(doc.m_bPitchDrawTimeGrid != 0);
    setInteger(_TimeGrid, doc.m_nPitchTimeGrid);
    // The print settings have no document setting: they always start at their defaults.
    setChoice(_Inchcm, true);
    _Width->setText(QStringLiteral("6.0"));
    _Heigth->setText(QStringLiteral("4.0"));
    setChoice(_ColorBW, true);
}

void optionPitch::save(MyDocument* doc)
{
    doc->m_dPitchWindowLength = integerOf(_WindowLength);
    doc->m_dPitchStepSize = integerOf(_StepSize);
    doc->m_dFreqDeviation = integerOf(_FrequencyDeviation);
    doc->m_dPitchTrackingThreshHold = integerOf(_Threshold);
    doc->m_dCalculationLow = integerOf(_CalculationLow);
    doc->m_dCalculationHigh = integerOf(_CalculationHigh);
    // Intended: the display fields overwrite the calculation range just written, and the
    // display range settings stay as they were.
    doc->m_dCalculationLow = integerOf(_DisplayLow);
    doc->m_dCalculationHigh = integerOf(_DisplayHigh);
    doc->m_bPitchDrawFreqGrid = _drawFrequencyGrid->isChecked() ? 1 : 0;
    doc->m_nPitchFreqGrid = integerOf(_FrequencyGrid);
    doc->m_bPitchDrawTimeGrid = _drawTimeGrid->isChecked() ? 1 : 0;
    doc->m_nPitchTimeGrid = integerOf(_TimeGrid);
}
