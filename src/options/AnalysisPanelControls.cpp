#include "options/AnalysisPanelControls.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleValidator>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLineEdit>
#include <QRadioButton>

#include <cmath>

namespace AnalysisPanelControls
{

QLineEdit* integerField(int minimum, int maximum)
{
    auto* field = new QLineEdit;
    field->setValidator(new QIntValidator(minimum, maximum, field));
    field->setAlignment(Qt::AlignRight);
    field->setMaximumWidth(90);
    return field;
}

QLineEdit* decimalField()
{
    auto* field = new QLineEdit;
    auto* validator = new QDoubleValidator(field);
    validator->setLocale(QLocale::c());
    field->setValidator(validator);
    field->setAlignment(Qt::AlignRight);
    field->setMaximumWidth(90);
    return field;
}

void setInteger(QLineEdit* field, double value)
{
    field->setText(QString::number(std::isfinite(value) ? static_cast<long long>(std::trunc(value)) : 0));
}

int integerOf(const QLineEdit* field)
{
    return field->text().trimmed().toInt();
}

double decimalOf(const QLineEdit* field)
{
    return field->text().trimmed().toDouble();
}

QButtonGroup* choice(QWidget* owner, const QString& first, const QString& second, QLayout*& row)
{
    auto* group = new QButtonGroup(owner);
    auto* a = new QRadioButton(first);
    auto* b = new QRadioButton(second);
    group->addButton(a, 1);
    group->addButton(b, 0);
    auto* layout = new QHBoxLayout;
    layout->addWidget(a);
    layout->addWidget(b);
    layout->addStretch();
    row = layout;
    return group;
}

void setChoice(QButtonGroup* group, bool first)
{
    group->button(first ? 1 : 0)->setChecked(true);
}

bool firstChosen(const QButtonGroup* group)
{
    return group->checkedId() == 1;
}

QComboBox* lengthMenu()
{
    auto* menu = new QComboBox;
    for (int i = 0; i < 9; ++i)
        menu->addItem(QString());
    return menu;
}

void titleLengthMenu(QComboBox* menu, double sampleRate)
{
    for (int i = 0; i < menu->count(); ++i) {
        const int points = pointsOf(i);
        const long long bandwidth =
            std::isfinite(sampleRate) ? static_cast<long long>(sampleRate / points) : 0;
        menu->setItemText(i, QString::asprintf(" %d Hz (%d pts)", static_cast<int>(bandwidth), points));
    }
}

int pointsOf(int index)
{
    return 1 << (index + 5);
}

QLayout* checkedRow(QCheckBox* box, QLineEdit* field)
{
    auto* row = new QHBoxLayout;
    row->addWidget(box);
    row->addWidget(field);
    row->addStretch();
    return row;
}

} // namespace AnalysisPanelControls
