#include "dataentry/gui/DataEntryControls.h"

#include "dataentry/gui/DataEntrySupport.h"
#include "document/MyDocument.h"

#include <QColorDialog>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>
#include <cstdint>

namespace
{

struct ButtonRole {
    const char* title;
    std::int32_t MyDocument::*documentSwitch;
};

const ButtonRole kButtons[DataEntryControls::ButtonCount] = {
    {"F0", &MyDocument::m_nF0},   {"F1", &MyDocument::m_nF1},   {"F2", &MyDocument::m_nF2},
    {"F3", &MyDocument::m_nF3},   {"F4", &MyDocument::m_nF4},   {"F5", &MyDocument::m_nF5},
    {"AV", &MyDocument::m_nAV},   {"APV", &MyDocument::m_nAPV}, {"A1F", &MyDocument::m_nA1F},
    {"A2F", &MyDocument::m_nA2F}, {"A3F", &MyDocument::m_nA3F}, {"A4F", &MyDocument::m_nA4F},
    {"A5F", &MyDocument::m_nA5F},
};

} // namespace

DataEntryControls::Stack DataEntryControls::stack(int w, int h, int labelHeight)
{
    const int H = h - 26 - labelHeight;
    const int width = w - (kMargin + 5);
    const QRect lower(kMargin, (2 * H) / 4 + H / 4 + 5, width, H / 4 - 5);
    return {QRect(kMargin, 5, width, H / 4), QRect(kMargin, H / 4 + 5, width, (2 * H) / 4), lower,
            QRect(kMargin, lower.bottom() + 1, width, labelHeight)};
}

int DataEntryControls::labelHeight(const QWidget* strip)
{
    return strip && !strip->isHidden() ? strip->sizeHint().height() : 0;
}

DataEntryControls::DataEntryControls(QWidget* parent, int wellWidth, QObject* context,
                                     std::function<void(Button)> pressed,
                                     std::function<void(int, const QColor&)> chosen)
    : m_parent(parent), m_nWellWidth(wellWidth)
{
    for (int b = 0; b < ButtonCount; ++b) {
        auto* button = new QPushButton(QString::fromUtf8(kButtons[b].title), parent);
        button->setCheckable(true);
        button->setObjectName(QString::fromUtf8(kButtons[b].title));
        button->setFocusPolicy(Qt::NoFocus); // Space plays; it must not press a button
        QObject::connect(button, &QPushButton::clicked, context,
                         [pressed, b] { pressed(static_cast<Button>(b)); });
        m_buttons[static_cast<std::size_t>(b)] = button;
    }
    for (int well = 0; well < kWells; ++well) {
        auto* button = new QToolButton(parent);
        button->setFocusPolicy(Qt::NoFocus);
        button->setToolTip(well == 0 ? QStringLiteral("F0 colour") : QStringLiteral("F%1 colour").arg(well));
        QObject::connect(button, &QToolButton::clicked, context, [this, chosen, well] {
            const QColor color = QColorDialog::getColor(wellColor(well), m_parent->window());
            if (color.isValid())
                chosen(well, color);
        });
        m_wells[static_cast<std::size_t>(well)] = button;
    }
}

void DataEntryControls::setWellColor(int well, const QColor& color)
{
    m_wellColors[static_cast<std::size_t>(well)] = color;
    m_wells[static_cast<std::size_t>(well)]->setStyleSheet(
        QStringLiteral("background-color: %1; border: 1px solid gray;").arg(color.name(QColor::HexArgb)));
}

void DataEntryControls::load(const MyDocument* doc)
{
    for (int well = 0; well < kWells; ++well)
        setWellColor(well, doc ? toQColor(doc->m_ColorTracing[well]) : QColor(Qt::black));
    for (int b = 0; b < ButtonCount; ++b)
        button(b)->setChecked(doc && doc->*kButtons[b].documentSwitch != 0);
}

void DataEntryControls::checkOnly(int on, int alsoOn)
{
    for (int b = 0; b < ButtonCount; ++b)
        button(b)->setChecked(b == on || b == alsoOn);
}

void DataEntryControls::storeSwitches(MyDocument& doc) const
{
    for (int b = 0; b < A5F; ++b)
        doc.*kButtons[b].documentSwitch = button(b)->isChecked() ? 1 : 0;
}

void DataEntryControls::place(const Stack& views)
{
    placeButtons(views.upper.top(), views.upper.height(), F0, 1, 1);
    placeButtons(views.middle.top(), views.middle.height(), F1, 5, 1);
    placeButtons(views.lower.top(), views.lower.height(), AV, 7, 2);
    const int wellX = kMargin - m_nWellWidth - 2 * kGap;
    for (int well = 0; well < kWells; ++well) {
        const QRect beside = button(well)->geometry();
        m_wells[static_cast<std::size_t>(well)]->setGeometry(wellX, beside.top(), m_nWellWidth,
                                                             beside.height());
    }
}

void DataEntryControls::placeButtons(int top, int height, int firstButton, int count, int columns)
{
    // One column of buttons leaves room for the colour wells; two columns share the margin.
    const int usable = columns == 1 ? kMargin - m_nWellWidth - 4 * kGap : kMargin - 3 * kGap;
    const int buttonWidth = (usable - (columns - 1) * kGap) / columns;
    const int rows = (count + columns - 1) / columns;
    const int rowHeight = std::max(height / std::max(rows, 1), 1);
    const int buttonHeight = std::max(std::min(rowHeight - kGap, 24), 1);
    for (int i = 0; i < count; ++i)
        button(firstButton + i)
            ->setGeometry(kGap + (i % columns) * (buttonWidth + kGap), top + (i / columns) * rowHeight,
                          buttonWidth, buttonHeight);
}
