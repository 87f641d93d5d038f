#include "options/optionFFTLPC.h"

#include "document/MyDocument.h"
#include "options/AnalysisPanelControls.h"

#include <QComboBox>
#include <QLineEdit>

using D = MyDocument;

optionFFTLPC::optionFFTLPC(QWidget* parent)
    : AnalysisPanel(parent, tr("FFT/LPC"), QStringLiteral("optionFFTLPC"))
{
    OptionForm& form = m_form;
    _popupWindowLength =
        form.lengthMenu(tr("Analysis length:"), &D::m_nFFTWindowLengthSelector, &D::m_nFFTWindowLength);
    m_nFFTAppliedWindowLength = form.integer(tr("Window applied (ms):"), &D::m_nFFTAppliedWindowLength);
    m_nFFTfrequencyRange = form.integer(tr("Frequency range (Hz):"), &D::m_nFFTfrequencyRange);
    m_nFFTAverageStepSize = form.integer(tr("Averaging step:"), &D::m_nFFTAverageStepSize);
    m_nLPCNumberofCoefficients = form.integer(tr("LPC coefficients:"), &D::m_nLPCNumberofCoefficients);
    _drawLPC = form.check(tr("Draw LPC spectrum"), &D::m_bFFTDrawLPC);
    m_displayType = form.choice(tr("Levels:"), tr("Absolute"), tr("Relative"), &D::m_bFFTAbsolute);
    m_nAbsoluteRange = form.integer(tr("Absolute range (dB):"), &D::m_nFFTAbsoluteRange);
    m_Inchcm = form.choice(tr("Print size in:"), tr("Inches"), tr("cm"), &D::m_bFFTInches);
    m_dWidth = form.decimal(tr("Width:"), &D::m_dFFTWidth);
    m_dHeight = form.decimal(tr("Height:"), &D::m_dFFTHeight);
    m_ColorGroup = form.choice(tr("Print in:"), tr("Colour"), tr("Black and white"), &D::m_bFFTColor);
    std::tie(_drawFrequencyGrid, m_nFrequencyGrid) = form.checkedInteger(
        tr("Frequency grid:"), tr("every (Hz)"), &D::m_bFFTDrawFrequencyGrid, &D::m_nFFTFrequencyGrid);
    std::tie(_drawDBGrid, m_nDBGrid) =
        form.checkedInteger(tr("Level grid:"), tr("every (dB)"), &D::m_bFFTDrawDBGrid, &D::m_nFFTDBGrid);
    finishLayout();
    connect(_popupWindowLength, QOverload<int>::of(&QComboBox::activated), this,
            &optionFFTLPC::actionPtsSelector);
}

void optionFFTLPC::actionPtsSelector(int index)
{
    if (m_dAnalysisSampleRate > 0.0)
        AnalysisPanelControls::setInteger(m_nFFTAppliedWindowLength, AnalysisPanelControls::pointsOf(index) *
                                                                         1000.0 / m_dAnalysisSampleRate);
}
