#include "options/optionFile.h"

#include "document/MyDocument.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

#include <cmath>

namespace
{
// An On/Off choice: the first row carries id 1.
QButtonGroup* onOffChoice(QWidget* owner, QLayout*& layout)
{
    auto* group = new QButtonGroup(owner);
    auto* on = new QRadioButton(QObject::tr("On"));
    auto* off = new QRadioButton(QObject::tr("Off"));
    group->addButton(on, 1);
    group->addButton(off, 0);
    auto* row = new QHBoxLayout;
    row->addWidget(on);
    row->addWidget(off);
    row->addStretch();
    layout = row;
    return group;
}

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
    _interpolationGroup = onOffChoice(this, interpolationRow);
    _anchorGroup = onOffChoice(this, anchorRow);

    auto* form = new QFormLayout;
    form->addRow(tr("Sample rate (Hz):"), _popupSR);
    form->addRow(tr("Length (ms):"), m_nFileLength);
    form->addRow(tr("Update interval (ms):"), m_nInterval);
    form->addRow(tr("Interpolate typed values:"), interpolationRow);
    form->addRow(tr("Typed values become anchors:"), anchorRow);

    auto* outer = new QVBoxLayout(this);
    outer->addLayout(form);
    outer->addWidget(makeButtons(false));
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
