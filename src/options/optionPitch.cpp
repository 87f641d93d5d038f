#include "options/optionPitch.h"

#include "document/MyDocument.h"
#include "options/AnalysisPanelControls.h"

#include <QHBoxLayout>
#include <QLabel>

using namespace AnalysisPanelControls;
using D = MyDocument;

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

optionPitch::optionPitch(QWidget* parent) : AnalysisPanel(parent, tr("Pitch"), QStringLiteral("optionPitch"))
{
    OptionForm& form = m_form;
    _WindowLength = form.integer(tr("Window (ms):"), &D::m_dPitchWindowLength);
    _StepSize = form.integer(tr("Step (ms):"), &D::m_dPitchStepSize);
    _FrequencyDeviation = form.integer(tr("Largest jump kept (Hz):"), &D::m_dFreqDeviation);
    _Threshold = form.integer(tr("Energy threshold (%):"), &D::m_dPitchTrackingThreshHold);
    _CalculationLow = form.integerField(&D::m_dCalculationLow, &D::m_dCalculationLow);
    _CalculationHigh = form.integerField(&D::m_dCalculationHigh, &D::m_dCalculationHigh);
    form.layout()->addRow(tr("Calculation range (Hz):"), rangeRow(_CalculationLow, _CalculationHigh));
    // Intended: the display fields are saved after the calculation range, into it, and the
    // display range settings stay as they were.
    _DisplayLow = form.integerField(&D::m_nPitchDisplayLow, &D::m_dCalculationLow);
    _DisplayHigh = form.integerField(&D::m_nPitchDisplayHigh, &D::m_dCalculationHigh);
    form.layout()->addRow(tr("Display range (Hz):"), rangeRow(_DisplayLow, _DisplayHigh));
    std::tie(_drawFrequencyGrid, _FrequencyGrid) = form.checkedInteger(
        tr("Frequency grid:"), tr("every (Hz)"), &D::m_bPitchDrawFreqGrid, &D::m_nPitchFreqGrid);
    std::tie(_drawTimeGrid, _TimeGrid) = form.checkedInteger(tr("Time grid:"), tr("every (ms)"),
                                                             &D::m_bPitchDrawTimeGrid, &D::m_nPitchTimeGrid);
    // The print settings have no document setting: the panel fills them itself.
    _Inchcm = form.unboundChoice(tr("Print size in:"), tr("Inches"), tr("cm"));
    _Width = decimalField();
    _Heigth = decimalField();
    form.layout()->addRow(tr("Width:"), _Width);
    form.layout()->addRow(tr("Height:"), _Heigth);
    _ColorBW = form.unboundChoice(tr("Print in:"), tr("Colour"), tr("Black and white"));
    finishLayout();
}

void optionPitch::fill(const MyDocument& doc)
{
    AnalysisPanel::fill(doc);
    // The print settings always start at their defaults.
    setChoice(_Inchcm, true);
    _Width->setText(QStringLiteral("6.0"));
    _Heigth->setText(QStringLiteral("4.0"));
    setChoice(_ColorBW, true);
}
