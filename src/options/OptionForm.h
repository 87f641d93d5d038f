#pragma once
// OptionForm: the form of an option panel whose rows show settings of the document. Each row is
// made together with its binding, so a setting is named once: fill() shows the settings of a
// document in the controls, save() writes the controls back, both in the order the rows were
// made (a later row that saves into the same setting wins). Whole numbers are shown truncated
// and saved as typed; on/off settings read any non-zero value as on and save 1 or 0; a choice's
// first button (tag 1) stands for on. The controls are those of AnalysisPanelControls. A setting
// is a field of MyDocument, its own or one of the analysis settings it derives from.
// Main thread only.
#include "document/MyDocument.h"
#include "options/AnalysisPanelControls.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>

#include <functional>
#include <utility>
#include <vector>

class OptionForm
{
public:
    // `owner` owns the button groups of the choices; the layout goes to the panel's layout.
    explicit OptionForm(QWidget* owner) : m_owner(owner), m_layout(new QFormLayout) {}

    QFormLayout* layout() const { return m_layout; }
    void fill(const MyDocument& doc) const;
    void save(MyDocument& doc) const;

    // A whole-number field shown from `from` and saved into `into` (usually the same setting).
    template <class From, class FromOwner, class Into, class IntoOwner>
    QLineEdit* integerField(From FromOwner::*from, Into IntoOwner::*into)
    {
        QLineEdit* field = AnalysisPanelControls::integerField();
        bind([=](const MyDocument& d) { AnalysisPanelControls::setInteger(field, d.*from); },
             [=](MyDocument& d) { d.*into = AnalysisPanelControls::integerOf(field); });
        return field;
    }
    template <class T, class Owner> QLineEdit* integer(const QString& label, T Owner::*setting)
    {
        QLineEdit* field = integerField(setting, setting);
        m_layout->addRow(label, field);
        return field;
    }
    // A decimal field, shown as QString::number gives it or in a printf `format`.
    QLineEdit* decimal(const QString& label, double MyDocument::*setting, const char* format = nullptr);
    // A check box in a row of its own (no label).
    template <class T, class Owner> QCheckBox* check(const QString& text, T Owner::*setting)
    {
        QCheckBox* box = checkBox(text, setting);
        m_layout->addRow(QString(), box);
        return box;
    }
    // A check box and a whole-number field on one row ("Frequency grid: [x] every (Hz) [1000]").
    template <class On, class Value>
    std::pair<QCheckBox*, QLineEdit*> checkedInteger(const QString& label, const QString& text,
                                                     On MyDocument::*on, Value MyDocument::*value)
    {
        QCheckBox* box = checkBox(text, on);
        QLineEdit* field = integerField(value, value);
        m_layout->addRow(label, AnalysisPanelControls::checkedRow(box, field));
        return {box, field};
    }
    // Two radio buttons on one row; the setting is on when the first is chosen.
    template <class T>
    QButtonGroup* choice(const QString& label, const QString& first, const QString& second,
                         T MyDocument::*setting)
    {
        QButtonGroup* group = unboundChoice(label, first, second);
        bind([=](const MyDocument& d) { AnalysisPanelControls::setChoice(group, d.*setting != 0); },
             [=](MyDocument& d) { d.*setting = AnalysisPanelControls::firstChosen(group) ? 1 : 0; });
        return group;
    }
    // A choice no setting is behind (the panel fills it itself).
    QButtonGroup* unboundChoice(const QString& label, const QString& first, const QString& second);
    // The menu of nine analysis lengths: the item shown from `selector` (clamped to the menu),
    // saved into `selector` and its number of points into `points`.
    QComboBox* lengthMenu(const QString& label, std::int32_t MyDocument::*selector,
                          std::int32_t MyDocument::*points);

private:
    template <class T, class Owner> QCheckBox* checkBox(const QString& text, T Owner::*setting)
    {
        auto* box = new QCheckBox(text);
        bind([=](const MyDocument& d) { box->setChecked(d.*setting != 0); },
             [=](MyDocument& d) { d.*setting = box->isChecked() ? 1 : 0; });
        return box;
    }
    void bind(std::function<void(const MyDocument&)> fill, std::function<void(MyDocument&)> save);

    QWidget* m_owner;
    QFormLayout* m_layout;
    std::vector<std::pair<std::function<void(const MyDocument&)>, std::function<void(MyDocument&)>>>
        m_bindings;
};
