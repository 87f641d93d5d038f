#include "stimulus/gui/AudioOutputPanel.h"

#include "stimulus/StimulusOutputFile.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace
{

QDoubleSpinBox* msField(const char* name, double maximum)
{
    auto* field = new QDoubleSpinBox;
    field->setObjectName(QString::fromLatin1(name));
    field->setRange(0.0, maximum);
    field->setDecimals(1);
    field->setSuffix(QStringLiteral(" ms"));
    field->setAlignment(Qt::AlignRight);
    return field;
}

} // namespace

AudioOutputPanel::AudioOutputPanel(QWidget* parent) : OptionPanel(parent)
{
    setWindowTitle(tr("Audio Output"));
    auto* form = new QFormLayout;
    form->addRow(tr("Sample rate (Hz):"), makeRateField());
    form->addRow(tr("Level:"), makeLevelRow());
    form->addRow(QString(), m_pAllowClip);
    m_pRamp = msField("ramp", StimulusOutput::kMaxRampMS);
    auto* rampRow = new QHBoxLayout;
    rampRow->addWidget(m_pRamp);
    rampRow->addStretch();
    form->addRow(tr("Onset and offset ramps:"), rampRow);
    m_pPadBefore = msField("padBefore", StimulusOutput::kMaxPadMS);
    m_pPadAfter = msField("padAfter", StimulusOutput::kMaxPadMS);
    auto* padRow = new QHBoxLayout;
    padRow->addWidget(m_pPadBefore);
    padRow->addWidget(new QLabel(tr("after:")));
    padRow->addWidget(m_pPadAfter);
    padRow->addStretch();
    form->addRow(tr("Silence before:"), padRow);
    form->addRow(tr("File:"), makeFileRow());

    m_pSummary = new QLabel;
    m_pSummary->setObjectName(QStringLiteral("summary"));
    m_pSummary->setWordWrap(true);
    m_pRefusal = makeRefusalLabel();
    layOut(form, {m_pSummary, m_pRefusal}, false);

    for (QComboBox* box : {m_pLevel, m_pBits, m_pFormat})
        connect(box, &QComboBox::currentIndexChanged, this, &AudioOutputPanel::updateSummary);
    connect(m_pRate, &QComboBox::currentTextChanged, this, &AudioOutputPanel::updateSummary);
    for (QDoubleSpinBox* field : {m_pLevelDb, m_pRamp, m_pPadBefore, m_pPadAfter})
        connect(field, &QDoubleSpinBox::valueChanged, this, &AudioOutputPanel::updateSummary);
    connect(m_pAllowClip, &QCheckBox::toggled, this, &AudioOutputPanel::updateSummary);
    updateSummary();
}

QComboBox* AudioOutputPanel::makeRateField()
{
    m_pRate = new QComboBox;
    m_pRate->setObjectName(QStringLiteral("rate"));
    m_pRate->setEditable(true); // any rate from 8000 to 192000 Hz may be typed
    m_pRate->addItem(tr("Synthesis rate"), 0);
    for (const int rate : {16000, 22050, 44100, 48000, 96000})
        m_pRate->addItem(QString::number(rate), rate);
    return m_pRate;
}

QLayout* AudioOutputPanel::makeLevelRow()
{
    m_pLevel = new QComboBox;
    m_pLevel->setObjectName(QStringLiteral("level"));
    m_pLevel->addItem(tr("As synthesized"), int(StimulusOutput::Level::Unchanged));
    m_pLevel->addItem(tr("RMS"), int(StimulusOutput::Level::Rms));
    m_pLevel->addItem(tr("Peak"), int(StimulusOutput::Level::Peak));
    m_pLevelDb = new QDoubleSpinBox;
    m_pLevelDb->setObjectName(QStringLiteral("levelDb"));
    m_pLevelDb->setRange(StimulusOutput::kLowestLevelDb, 0.0);
    m_pLevelDb->setDecimals(1);
    m_pLevelDb->setSuffix(QStringLiteral(" dBFS"));
    m_pLevelDb->setValue(-23.0);
    m_pAllowClip = new QCheckBox(tr("Write a level that clips (limited to full scale)"));
    m_pAllowClip->setObjectName(QStringLiteral("allowClip"));
    auto* row = new QHBoxLayout;
    row->addWidget(m_pLevel);
    row->addWidget(m_pLevelDb);
    return row;
}

QLayout* AudioOutputPanel::makeFileRow()
{
    m_pBits = new QComboBox;
    m_pBits->setObjectName(QStringLiteral("bits"));
    m_pBits->addItem(tr("16-bit"), 16);
    m_pBits->addItem(tr("24-bit"), 24);
    m_pFormat = new QComboBox;
    m_pFormat->setObjectName(QStringLiteral("format"));
    m_pFormat->addItem(tr("WAVE"), int(StimulusOutput::Format::Wav));
    m_pFormat->addItem(tr("FLAC"), int(StimulusOutput::Format::Flac));
    auto* row = new QHBoxLayout;
    row->addWidget(m_pFormat);
    row->addWidget(m_pBits);
    row->addStretch();
    return row;
}

int AudioOutputPanel::run(QWidget* parent)
{
    return showInWindow(parent, nullptr);
}

StimulusOutput AudioOutputPanel::output() const
{
    StimulusOutput o;
    const QString rateText = m_pRate->currentText().trimmed();
    const int index = m_pRate->findText(rateText);
    o.rate = index >= 0 ? m_pRate->itemData(index).toInt() : rateText.toInt();
    o.level = static_cast<StimulusOutput::Level>(m_pLevel->currentData().toInt());
    o.levelDb = m_pLevelDb->value();
    o.allowClip = m_pAllowClip->isChecked();
    o.rampMS = m_pRamp->value();
    o.padBeforeMS = m_pPadBefore->value();
    o.padAfterMS = m_pPadAfter->value();
    o.bits = m_pBits->currentData().toInt();
    o.format = static_cast<StimulusOutput::Format>(m_pFormat->currentData().toInt());
    return o;
}

void AudioOutputPanel::showOutput(const StimulusOutput& o)
{
    const int index = m_pRate->findData(o.rate);
    if (index >= 0)
        m_pRate->setCurrentIndex(index);
    else
        m_pRate->setEditText(QString::number(o.rate));
    m_pLevel->setCurrentIndex(m_pLevel->findData(int(o.level)));
    if (o.level != StimulusOutput::Level::Unchanged)
        m_pLevelDb->setValue(o.levelDb);
    m_pAllowClip->setChecked(o.allowClip);
    m_pRamp->setValue(o.rampMS);
    m_pPadBefore->setValue(o.padBeforeMS);
    m_pPadAfter->setValue(o.padAfterMS);
    m_pBits->setCurrentIndex(m_pBits->findData(o.bits));
    m_pFormat->setCurrentIndex(m_pFormat->findData(int(o.format)));
    updateSummary();
}

void AudioOutputPanel::setup(MyDocument*)
{
    showOutput(StimulusOutputFile::load());
}

void AudioOutputPanel::save(MyDocument*)
{
    // Kept by mayAccept(), so that a file that cannot be written keeps the panel open.
}

bool AudioOutputPanel::mayAccept()
{
    const StimulusOutput o = output();
    if (o.rate != 0 && (o.rate < StimulusOutput::kMinRate || o.rate > StimulusOutput::kMaxRate)) {
        m_pRefusal->setText(tr("The sample rate is a whole number of hertz from 8000 to 192000, or the "
                               "synthesis rate."));
        m_pRefusal->show();
        return false;
    }
    std::string error;
    if (!StimulusOutputFile::store(o, &error)) {
        m_pRefusal->setText(tr("The settings could not be kept: %1").arg(QString::fromStdString(error)));
        m_pRefusal->show();
        return false;
    }
    m_pRefusal->hide();
    return true;
}

void AudioOutputPanel::updateSummary()
{
    m_pLevelDb->setEnabled(m_pLevel->currentIndex() > 0);
    m_pAllowClip->setEnabled(m_pLevel->currentIndex() > 0);
    m_pSummary->setText(tr("Save Audio writes: %1").arg(QString::fromStdString(output().summary())));
}
