#include "options/optionSpectrogram.h"

#include "document/MyDocument.h"

#include <QComboBox>
#include <QLabel>

using D = MyDocument;

optionSpectrogram::optionSpectrogram(QWidget* parent)
    : AnalysisPanel(parent, tr("Spectrogram"), QStringLiteral("optionSpectrogram"))
{
    OptionForm& form = m_form;
    _popupWindowLength =
        form.lengthMenu(tr("Analysis length:"), &D::m_nSpecWindowLengthSelector, &D::m_nSpecWindowLength);
    m_nSpecDynamicRange = form.integer(tr("Dynamic range (dB):"), &D::m_nSpecDynamicRange);
    m_nSpecfrequencyRange = form.integer(tr("Frequency range (Hz):"), &D::m_nSpecfrequencyRange);
    m_dPreEmphasis = form.decimal(tr("Pre-emphasis:"), &D::m_dPreEmphasis, "%1.2f");
    _drawFormantTracking = form.check(tr("Formant tracking"), &D::m_bSpecDrawFormantTracking);
    m_nSpecLPCNumberofCoefficients =
        form.integer(tr("LPC coefficients:"), &D::m_nSpecLPCNumberofCoefficients);
    std::tie(_drawFrequencyGrid, m_nSpecFrequencyGrid) = form.checkedInteger(
        tr("Frequency grid:"), tr("every (Hz)"), &D::m_bSpecDrawFrequencyGrid, &D::m_nSpecFrequencyGrid);
    std::tie(_drawTimeGrid, m_nSpecTimeGrid) =
        form.checkedInteger(tr("Time grid:"), tr("every (ms)"), &D::m_bSpecDrawTimeGrid, &D::m_nSpecTimeGrid);
    // Any non-zero value means inches.
    m_Inchcm = form.choice(tr("Print size in:"), tr("Inches"), tr("cm"), &D::m_bSpecInches);
    m_dSpecWidth = form.decimal(tr("Width:"), &D::m_dSpecWidth);
    m_dSpecHeight = form.decimal(tr("Height:"), &D::m_dSpecHeight);
    _note = new QLabel(
        QStringLiteral("Note\nA value of 0 will make the time grid adjust automatically to the zoomed "
                       "window.\nGrid is always displayed on the main screen but follows the selection "
                       "for the print and pict."));
    _note->setWordWrap(true);
    _note->setMaximumWidth(420);
    finishLayout(_note);
    connect(_popupWindowLength, QOverload<int>::of(&QComboBox::activated), this,
            &optionSpectrogram::actionPtsSelector);
}

void optionSpectrogram::fill(const MyDocument& doc)
{
    AnalysisPanel::fill(doc);
    m_nSelectedLength = _popupWindowLength->currentIndex();
}
