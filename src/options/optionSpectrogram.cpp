#include "options/optionSpectrogram.h"

#include "document/MyDocument.h"
#include "options/AnalysisPanelControls.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace AnalysisPanelControls;

optionSpectrogram::optionSpectrogram(QWidget* parent) : AnalysisPanel(parent)
{
    setWindowTitle(tr("Spectrogram"));
    setObjectName(QStringLiteral("optionSpectrogram"));
    _popupWindowLength = lengthMenu();
    m_nSpecDynamicRange = integerField();
    m_nSpecfrequencyRange = integerField();
    m_dPreEmphasis = decimalField();
    _drawFormantTracking = new QCheckBox(tr("Formant tracking"));
    m_nSpecLPCNumberofCoefficients = integerField();
    _drawFrequencyGrid = new QCheckBox(tr("every (Hz)"));
    m_nSpecFrequencyGrid = integerField();
    _drawTimeGrid = new QCheckBox(tr("every (ms)"));
    m_nSpecTimeGrid = integerField();
    QLayout* unitRow = nullptr;
    m_Inchcm = choice(this, tr("Inches"), tr("cm"), unitRow);
    m_dSpecWidth = decimalField();
    m_dSpecHeight = decimalField();
    _note = new QLabel(
        QStringLiteral("Note\nA value of 0 will make the time grid adjust automatically to the zoomed "
                       "window.\nGrid is always displayed on the main screen but follows the selection "
                       "for the print and pict."));
    _note->setWordWrap(true);
    _note->setMaximumWidth(420);

    auto* form = new QFormLayout;
    form->addRow(tr("Analysis length:"), _popupWindowLength);
    form->addRow(tr("Dynamic range (dB):"), m_nSpecDynamicRange);
    form->addRow(tr("Frequency range (Hz):"), m_nSpecfrequencyRange);
    form->addRow(tr("Pre-emphasis:"), m_dPreEmphasis);
    form->addRow(QString(), _drawFormantTracking);
    form->addRow(tr("LPC coefficients:"), m_nSpecLPCNumberofCoefficients);
    form->addRow(tr("Frequency grid:"), checkedRow(_drawFrequencyGrid, m_nSpecFrequencyGrid));
    form->addRow(tr("Time grid:"), checkedRow(_drawTimeGrid, m_nSpecTimeGrid));
    form->addRow(tr("Print size in:"), unitRow);
    form->addRow(tr("Width:"), m_dSpecWidth);
    form->addRow(tr("Height:"), m_dSpecHeight);
    auto* outer = new QVBoxLayout(this);
    outer->addLayout(form);
    outer->addWidget(_note);
    outer->addWidget(makeButtons(true));
    connect(defaultButton(), &QPushButton::clicked, this, &AnalysisPanel::actionDefault);
    connect(_popupWindowLength, QOverload<int>::of(&QComboBox::activated), this,
            &optionSpectrogram::actionPtsSelector);
}

void optionSpectrogram::fill(const MyDocument& doc)
{
    m_nSelectedLength = std::clamp(doc.m_nSpecWindowLengthSelector, 0, 8);
    _popupWindowLength->setCurrentIndex(m_nSelectedLength);
    setInteger(m_nSpecDynamicRange, doc.m_nSpecDynamicRange);
    setInteger(m_nSpecfrequencyRange, doc.m_nSpecfrequencyRange);
    m_dPreEmphasis->setText(QString::asprintf("%1.2f", doc.m_dPreEmphasis));
    _drawFormantTracking->setChecked(doc.m_bSpecDrawFormantTracking != 0);
    setInteger(m_nSpecLPCNumberofCoefficients, doc.m_nSpecLPCNumberofCoefficients);
    _drawFrequencyGrid->setChecked(doc.m_bSpecDrawFrequencyGrid != 0);
    setInteger(m_nSpecFrequencyGrid, doc.m_nSpecFrequencyGrid);
    _drawTimeGrid->setChecked(doc.m_bSpecDrawTimeGrid != 0);
    setInteger(m_nSpecTimeGrid, doc.m_nSpecTimeGrid);
    setChoice(m_Inchcm, doc.m_bSpecInches != 0); // any non-zero value means inches
    m_dSpecWidth->setText(QString::number(doc.m_dSpecWidth));
    m_dSpecHeight->setText(QString::number(doc.m_dSpecHeight));
}

void optionSpectrogram::save(MyDocument* doc)
{
    const int index = _popupWindowLength->currentIndex();
    doc->m_nSpecWindowLengthSelector = index;
    doc->m_nSpecWindowLength = pointsOf(index);
    doc->m_nSpecDynamicRange = integerOf(m_nSpecDynamicRange);
    doc->m_nSpecfrequencyRange = integerOf(m_nSpecfrequencyRange);
    doc->m_dPreEmphasis = decimalOf(m_dPreEmphasis);
    doc->m_bSpecDrawFormantTracking = _drawFormantTracking->isChecked() ? 1 : 0;
    doc->m_nSpecLPCNumberofCoefficients = integerOf(m_nSpecLPCNumberofCoefficients);
    doc->m_bSpecDrawFrequencyGrid = _drawFrequencyGrid->isChecked() ? 1 : 0;
    doc->m_nSpecFrequencyGrid = integerOf(m_nSpecFrequencyGrid);
    doc->m_bSpecDrawTimeGrid = _drawTimeGrid->isChecked() ? 1 : 0;
    doc->m_nSpecTimeGrid = integerOf(m_nSpecTimeGrid);
    doc->m_bSpecInches = firstChosen(m_Inchcm) ? 1 : 0;
    doc->m_dSpecWidth = decimalOf(m_dSpecWidth);
    doc->m_dSpecHeight = decimalOf(m_dSpecHeight);
}
