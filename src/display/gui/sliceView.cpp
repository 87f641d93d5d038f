#include "display/gui/sliceView.h"

#include "display/gui/PainterCanvas.h"

#include <QPainter>

sliceView::sliceView(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
}

void sliceView::setSlices(SliceComputation synthesis, std::optional<SliceComputation> model,
                          const SlicePlotStyle& style, const QString& title)
{
    m_synthesis = std::move(synthesis);
    m_model = std::move(model);
    m_style = style;
    m_strTitle = title;
    update();
}

void sliceView::drawPicture(QPainter& painter, const QSizeF& size, const SlicePlotStyle& style) const
{
    PainterCanvas canvas(painter);
    SlicePlot::draw(canvas, size.width(), size.height(), style, m_synthesis, m_model ? &*m_model : nullptr,
                    m_strTitle.toStdString(), "synthesis", "model");
}

void sliceView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawPicture(painter, size(), m_style);
}
