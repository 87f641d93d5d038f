#include "options/ColorWell.h"

#include <QColorDialog>

ColorWell::ColorWell(QWidget* parent) : QPushButton(parent)
{
    setFixedSize(44, 22);
    setToolTip(tr("Choose a colour"));
    connect(this, &QPushButton::clicked, this, &ColorWell::choose);
    setColor(m_color);
}

void ColorWell::setColor(const Color& color)
{
    m_color = color.isSet ? color : Color::white();
    const QColor c = QColor::fromRgbF(static_cast<float>(m_color.red), static_cast<float>(m_color.green),
                                      static_cast<float>(m_color.blue));
    setStyleSheet(
        QStringLiteral("QPushButton { background-color: %1; border: 1px solid #808080; border-radius: 3px; }")
            .arg(c.name()));
}

void ColorWell::choose()
{
    const QColor start =
        QColor::fromRgbF(static_cast<float>(m_color.red), static_cast<float>(m_color.green),
                         static_cast<float>(m_color.blue), static_cast<float>(m_color.alpha));
    const QColor chosen = QColorDialog::getColor(start, this, tr("Colours"));
    if (!chosen.isValid())
        return;
    setColor(Color::rgb(chosen.redF(), chosen.greenF(), chosen.blueF(), chosen.alphaF()));
    emit colorChanged(m_color);
}
