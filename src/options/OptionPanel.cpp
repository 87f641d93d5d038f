#include "options/OptionPanel.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

OptionPanel::OptionPanel(QWidget* parent) : QDialog(parent)
{
    setModal(true);
    setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
}

int OptionPanel::showInWindow(QWidget* parent, MyDocument* doc)
{
    if (parent && parentWidget() != parent)
        setParent(parent, windowFlags());
    setup(doc);
    const int code = exec();
    if (code == kOK)
        save(doc);
    return code;
}

QDialogButtonBox* OptionPanel::makeButtons(bool withDefault)
{
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons->button(QDialogButtonBox::Ok), &QPushButton::clicked, this, &OptionPanel::oktButton);
    connect(buttons->button(QDialogButtonBox::Cancel), &QPushButton::clicked, this,
            &OptionPanel::canceltButton);
    if (withDefault)
        m_pDefault = buttons->addButton(tr("Default"), QDialogButtonBox::ResetRole);
    return buttons;
}

QDialogButtonBox* OptionPanel::layOut(QLayout* top, std::initializer_list<QWidget*> below, bool withDefault)
{
    auto* outer = new QVBoxLayout(this);
    if (top)
        outer->addLayout(top);
    for (QWidget* widget : below)
        if (widget)
            outer->addWidget(widget);
    QDialogButtonBox* buttons = makeButtons(withDefault);
    outer->addWidget(buttons);
    return buttons;
}

QLabel* OptionPanel::makeRefusalLabel()
{
    auto* label = new QLabel;
    label->setObjectName(QStringLiteral("refusal"));
    label->setWordWrap(true);
    label->setStyleSheet(QStringLiteral("color: #b00000;"));
    label->hide();
    return label;
}
