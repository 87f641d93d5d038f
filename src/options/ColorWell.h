#pragma once
// A colour well: a button that shows a colour and lets the user pick another with the
// colour chooser. Holds the document's Color (components 0..1). Main thread only.
#include "document/Color.h"

#include <QPushButton>

class ColorWell : public QPushButton
{
    Q_OBJECT
public:
    explicit ColorWell(QWidget* parent = nullptr);
    const Color& color() const { return m_color; }
    void setColor(const Color& color);

signals:
    void colorChanged(const Color& color);

private:
    void choose();
    Color m_color = Color::white();
};
