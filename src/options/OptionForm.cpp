#include "options/OptionForm.h"

#include <algorithm>

using namespace AnalysisPanelControls;

void OptionForm::fill(const MyDocument& doc) const
{
    for (const auto& binding : m_bindings)
        binding.first(doc);
}

void OptionForm::save(MyDocument& doc) const
{
    for (const auto& binding : m_bindings)
        binding.second(doc);
}

void OptionForm::bind(std::function<void(const MyDocument&)> fill, std::function<void(MyDocument&)> save)
{
    m_bindings.emplace_back(std::move(fill), std::move(save));
}

QLineEdit* OptionForm::decimal(const QString& label, double MyDocument::*setting, const char* format)
{
    QLineEdit* field = decimalField();
    bind(
        [=](const MyDocument& d) {
            field->setText(format ? QString::asprintf(format, d.*setting) : QString::number(d.*setting));
        },
        [=](MyDocument& d) { d.*setting = decimalOf(field); });
    m_layout->addRow(label, field);
    return field;
}

QButtonGroup* OptionForm::unboundChoice(const QString& label, const QString& first, const QString& second)
{
    QLayout* row = nullptr;
    QButtonGroup* group = AnalysisPanelControls::choice(m_owner, first, second, row);
    m_layout->addRow(label, row);
    return group;
}

QComboBox* OptionForm::lengthMenu(const QString& label, std::int32_t MyDocument::*selector,
                                  std::int32_t MyDocument::*points)
{
    QComboBox* menu = AnalysisPanelControls::lengthMenu();
    bind([=](const MyDocument& d) { menu->setCurrentIndex(std::clamp(d.*selector, 0, 8)); },
         [=](MyDocument& d) {
             d.*selector = menu->currentIndex();
             d.*points = pointsOf(menu->currentIndex());
         });
    m_layout->addRow(label, menu);
    return menu;
}
