#include "options/optionFile.h"

#include "document/MyDocument.h"
#include "options/AnalysisPanelControls.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

#include <cmath>

namespace
{
QLineEdit* numberField(int maximum)
{
    auto* field = new QLineEdit;
    field->setValidator(new QIntValidator(0, maximum, field));
    field->setAlignment(Qt::AlignRight);
    field->setMaximumWidth(100);
    return field;
}
} // namespace

optionFile::optionFile(QWidget* parent) : OptionPanel(parent)
{
    setWindowTitle(tr("File"));
    _popupSR = new QComboBox;
    _popupSR->addItems({QStringLiteral("11025"), QStringLiteral("22050")});
    m_nFileLength = numberField(3600000);
    m_nInterval = numberField(1000);
    QLayout* interpolationRow = nullptr;
    QLayout* anchorRow = nullptr;
    _interpolationGroup = AnalysisPanelControls::choice(this, tr("On"), tr("Off"), interpolationRow);
    _anchorGroup = AnalysisPanelControls::choice(this, tr("On"), tr("Off"), anchorRow);

    auto* form = new QFormLayout;
    form->addRow(tr("Sample rate (Hz):"), _popupSR);
    form->addRow(tr("Length (ms):"), m_nFileLength);
    form->addRow(tr("Update interval (ms):"), m_nInterval);
    form->addRow(tr("Interpolate typed values:"), interpolationRow);
    form->addRow(tr("Typed values become anchors:"), anchorRow);

    m_pRefusal = makeRefusalLabel();
    layOut(form, {m_pRefusal}, false);
}

QString optionFile::sizeRefusal(long long lengthMS, long long intervalMS)
{
    const auto limit = static_cast<long long>(MyDocument::kMaxLengthMS);
    if (lengthMS > limit)
        return tr("A document lasts at most one hour (%1 ms); %2 ms is too long.").arg(limit).arg(lengthMS);
    const long long interval = intervalMS < 1 ? 10 : intervalMS; // as the table takes it
    const long long frames = lengthMS / interval;
    if (frames > MyDocument::kMaxFrames)
        return tr("%1 ms in frames of %2 ms makes %3 frames; a document holds at most %4. "
                  "Choose a longer interval or a shorter length.")
            .arg(lengthMS)
            .arg(interval)
            .arg(frames)
            .arg(MyDocument::kMaxFrames);
    return {};
}

bool optionFile::mayAccept()
{
    const QString why = sizeRefusal(m_nFileLength->text().toLongLong(), m_nInterval->text().toLongLong());
    m_pRefusal->setText(why);
    m_pRefusal->setVisible(!why.isEmpty());
    if (!why.isEmpty())
        m_nFileLength->setFocus();
    return why.isEmpty();
}

void optionFile::setup(MyDocument* doc)
{
    Channels& c = *doc->getChannel(0);
    _popupSR->setCurrentIndex(c.m_dSampleRate == 11025.0 ? 0 : 1);
    m_nFileLength->setText(QString::number(static_cast<long long>(std::trunc(c.m_dLengthMS))));
    m_nInterval->setText(QString::number(doc->updateInterval())); // repairs an interval below 1
    _interpolationGroup->button(c.m_bDoInterpolate ? 1 : 0)->setChecked(true);
    _anchorGroup->button(c.m_bDoAnchor ? 1 : 0)->setChecked(true);
}

void optionFile::save(MyDocument* doc)
{
    Channels& c = *doc->getChannel(0);
    doc->m_dNewSampleRate = _popupSR->currentIndex() == 0 ? 11025.0 : 22050.0;
    doc->m_dNewLengthMS = m_nFileLength->text().toInt();
    doc->m_nNewUpdateIntervalMS = m_nInterval->text().toInt();
    c.m_bDoInterpolate = _interpolationGroup->checkedId() == 1 ? 1 : 0;
    c.m_bDoAnchor = _anchorGroup->checkedId() == 1 ? 1 : 0;
}
