#pragma once
// sliceView: paints the FFT/LPC slice of the synthesis and, when there is one, the model's
// slice over it (SlicePlot through a PainterCanvas). It owns the finished slices it paints;
// the window computes them. Main thread only.
#include "display/SliceComputation.h"
#include "display/SlicePlot.h"

#include <QWidget>

#include <optional>

class sliceView : public QWidget
{
    Q_OBJECT
public:
    explicit sliceView(QWidget* parent = nullptr);

    // The slices to show (the model's may be absent) and how.
    void setSlices(SliceComputation synthesis, std::optional<SliceComputation> model,
                   const SlicePlotStyle& style, const QString& title);
    const SliceComputation& synthesisSlice() const { return m_synthesis; }
    const std::optional<SliceComputation>& modelSlice() const { return m_model; }

    // Draws the picture onto any painter over `size` units (the screen, a file, a printer).
    void drawPicture(QPainter& painter, const QSizeF& size, const SlicePlotStyle& style) const;
    const QString& title() const { return m_strTitle; }

    QSize sizeHint() const override { return QSize(640, 420); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SliceComputation m_synthesis;
    std::optional<SliceComputation> m_model;
    SlicePlotStyle m_style;
    QString m_strTitle;
};
