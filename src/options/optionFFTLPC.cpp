#include "options/optionFFTLPC.h"

#include "document/MyDocument.h"
#include "options/AnalysisPanelControls.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

using namespace AnalysisPanelControls;

optionFFTLPC::optionFFTLPC(QWidget* parent) : AnalysisPanel(parent)
{
    setWindowTitle(tr("FFT/LPC"));
    setObjectName(QStringLiteral("optionFFTLPC"));
    _popupWindowLength = lengthMenu();
    m_nFFTAppliedWindowLength = integerField();
    m_nFFTfrequencyRange = integerField();
    m_nFFTAverageStepSize = integerField();
    m_nLPCNumberofCoefficients = integerField();
    _drawLPC = new QCheckBox(tr("Draw LPC spectrum"));
    QLayout *displayRow = nullptr, *unitRow = nullptr, *colourRow = nullptr;
    m_displayType = choice(this, tr("Absolute"), tr("Relative"), displayRow);
    m_nAbsoluteRange = integerField();
    m_Inchcm = choice(this, tr("Inches"), tr("cm"), unitRow);
    m_ColorGroup = choice(this, tr("Colour"), tr("Black and white"), colourRow);
    m_dWidth = decimalField();
    m_dHeight = decimalField();
    _drawFrequencyGrid = new QCheckBox(tr("every (Hz)"));
    m_nFrequencyGrid = integerField();
    _drawDBGrid = new QCheckBox(tr("every (dB)"));
    m_nDBGrid = integerField();

    auto* form = new QFormLayout;
    form->addRow(tr("Analysis length:"), _popupWindowLength);
    form->addRow(tr("Window applied (ms):"), m_nFFTAppliedWindowLength);
    form->addRow(tr("Frequency range (Hz):"), m_nFFTfrequencyRange);
    form->addRow(tr("Averaging step:"), m_nFFTAverageStepSize);
    form->addRow(tr("LPC coefficients:"), m_nLPCNumberofCoefficients);
    form->addRow(QString(), _drawLPC);
    form->addRow(tr("Levels:"), displayRow);
    form->addRow(tr("Absolute range (dB):"), m_nAbsoluteRange);
    form->addRow(tr("Print size in:"), unitRow);
    form->addRow(tr("Width:"), m_dWidth);
    form->addRow(tr("Height:"), m_dHeight);
    form->addRow(tr("Print in:"), colourRow);
    form->addRow(tr("Frequency grid:"), checkedRow(_drawFrequencyGrid, m_nFrequencyGrid));
    form->addRow(tr("Level grid:"), checkedRow(_drawDBGrid, m_nDBGrid));
    auto* outer = new QVBoxLayout(this);
    outer->addLayout(form);
    outer->addWidget(makeButtons(true));
    connect(defaultButton(), &QPushButton::clicked, this, &AnalysisPanel::actionDefault);
    connect(_popupWindowLength, QOverload<int>::of(&QComboBox::activated), this,
            &optionFFTLPC::actionPtsSelector);
}

void optionFFTLPC::fill(const MyDocument& doc)
{
    _popupWindowLength->setCurrentIndex(std::clamp(doc.m_nFFTWindowLengthSelector, 0, 8));
    setInteger(m_nFFTAppliedWindowLength, doc.m_nFFTAppliedWindowLength);
    setInteger(m_nFFTfrequencyRange, doc.m_nFFTfrequencyRange);
    setInteger(m_nFFTAverageStepSize, doc.m_nFFTAverageStepSize);
    setInteger(m_nLPCNumberofCoefficients, doc.m_nLPCNumberofCoefficients);
    _drawLPC->setChecked(doc.m_bFFTDrawLPC != 0);
    setChoice(m_displayType, doc.m_bFFTAbsolute != 0);
    setInteger(m_nAbsoluteRange, doc.m_nFFTAbsoluteRange);
    setChoice(m_Inchcm, doc.m_bFFTInches != 0);
    setChoice(m_ColorGroup, doc.m_bFFTColor != 0);
    m_dWidth->setText(QString::number(doc.m_dFFTWidth));
    m_dHeight->setText(QString::number(doc.m_dFFTHeight));
    _drawFrequencyGrid->setChecked(doc.m_bFFTDrawFrequencyGrid != 0);
    setInteger(m_nFrequencyGrid, doc.m_nFFTFrequencyGrid);
    _drawDBGrid->setChecked(doc.m_bFFTDrawDBGrid != 0);
    setInteger(m_nDBGrid, doc.m_nFFTDBGrid);
}

void optionFFTLPC::actionPtsSelector(int index)
{
    if (m_dAnalysisSampleRate > 0.0)
        setInteger(m_nFFTAppliedWindowLength, pointsOf(index) * 1000.0 / m_dAnalysisSampleRate);
}

void optionFFTLPC::save(MyDocument* doc)
{
    doc->m_nFFTWindowLengthSelector = _popupWindowLength->currentIndex();
    doc->m_nFFTWindowLength = pointsOf(_popupWindowLength->currentIndex());
    doc->m_nFFTAppliedWindowLength = integerOf(m_nFFTAppliedWindowLength);
    doc->m_nFFTfrequencyRange = integerOf(m_nFFTfrequencyRange);
    doc->m_nFFTAverageStepSize = integerOf(m_nFFTAverageStepSize);
    doc->m_nLPCNumberofCoefficients = integerOf(m_nLPCNumberofCoefficients);
    doc->m_bFFTDrawLPC = _drawLPC->isChecked() ? 1 : 0;
    doc->m_bFFTAbsolute = firstChosen(m_displayType) ? 1 : 0;
    doc->m_nFFTAbsoluteRange = integerOf(m_nAbsoluteRange);
    doc->m_bFFTInches = firstChosen(m_Inchcm) ? 1 : 0;
    doc->m_bFFTColor = firstChosen(m_ColorGroup) ? 1 : 0;
    doc->m_dFFTWidth = decimalOf(m_dWidth);
    doc->m_dFFTHeight = decimalOf(m_dHeight);
    doc->m_bFFTDrawFrequencyGrid = _drawFrequencyGrid->isChecked() ? 1 : 0;
    doc->m_nFFTFrequencyGrid = integerOf(m_nFrequencyGrid);
    doc->m_bFFTDrawDBGrid = _drawDBGrid->isChecked() ? 1 : 0;
    doc->m_nFFTDBGrid = integerOf(m_nDBGrid);
}
