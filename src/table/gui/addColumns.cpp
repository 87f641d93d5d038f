#include "table/gui/addColumns.h"

#include "document/MyDocument.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

addColumns::addColumns(QWidget* parent) : OptionPanel(parent)
{
    setWindowTitle(QStringLiteral("Add Frames"));
    auto* layout = new QVBoxLayout(this);
    m_groupLocation = new QButtonGroup(this);
    const char* places[] = {"At the beginning", "After the selected frame", "At the end"};
    for (int row = 0; row < 3; ++row) {
        auto* radio = new QRadioButton(QString::fromUtf8(places[row]), this);
        m_groupLocation->addButton(radio, row);
        layout->addWidget(radio);
    }
    auto* form = new QFormLayout;
    m_duration = new QSpinBox(this);
    m_duration->setRange(0, kMaximumDurationMS);
    m_duration->setSuffix(QStringLiteral(" ms"));
    form->addRow(QStringLiteral("Duration to add:"), m_duration);
    layout->addLayout(form);
    layout->addWidget(makeButtons(false));
    // Wide enough for the whole title beside the title bar's buttons: the window manager
    // shortens a title that does not fit.
    setMinimumWidth(std::max(sizeHint().width(), fontMetrics().horizontalAdvance(windowTitle()) * 2 + 160));
}

void addColumns::setup(MyDocument* doc)
{
    if (!doc)
        return;
    // A remembered place outside the three is shown as "at the end", the factory choice.
    QAbstractButton* place = m_groupLocation->button(doc->_nindexModifyColumn);
    (place ? place : m_groupLocation->button(2))->setChecked(true);
    m_duration->setValue(doc->_nDurationModifyColumn);
}

void addColumns::save(MyDocument* doc)
{
    if (!doc)
        return;
    m_duration->interpretText(); // a number still being typed counts
    doc->_nindexModifyColumn = m_groupLocation->checkedId();
    doc->_nDurationModifyColumn = m_duration->value();
}
