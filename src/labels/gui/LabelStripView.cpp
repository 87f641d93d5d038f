#include "labels/gui/LabelStripView.h"

#include "display/gui/PainterCanvas.h"
#include "labels/gui/DocumentLabels.h"

#include <QEvent>
#include <QHelpEvent>
#include <QImage>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace
{
// A canvas measuring with `widget`'s font, for layouts made outside painting.
template <typename Body> auto withMeasuringCanvas(const QWidget& widget, Body body)
{
    // Measured at the widget's resolution, so that the sizes are those painted on it.
    QImage scratch(1, 1, QImage::Format_RGB32);
    scratch.setDotsPerMeterX(static_cast<int>(widget.logicalDpiX() / 0.0254 + 0.5));
    scratch.setDotsPerMeterY(static_cast<int>(widget.logicalDpiY() / 0.0254 + 0.5));
    QPainter painter(&scratch);
    painter.setFont(widget.font());
    PainterCanvas canvas(painter);
    return body(canvas);
}
} // namespace

LabelStripFrame labelFrameOnAxis(const QWidget& target, double x0, double xEnd, double seconds)
{
    LabelStripFrame frame;
    if (!(seconds > 0.0) || xEnd <= x0)
        return frame;
    const auto timeAt = [&](double x) { return (x - x0) / (xEnd - x0) * seconds; };
    frame.left = std::max(0.0, x0);
    frame.width = std::min<double>(target.width(), xEnd) - frame.left;
    frame.startSeconds = timeAt(frame.left);
    frame.endSeconds = timeAt(frame.left + frame.width);
    return frame;
}

LabelStripView::LabelStripView(DocumentLabels* labels, LabelFrameSource frame, QWidget* parent)
    : QWidget(parent), m_labels(labels), m_frame(std::move(frame))
{
    setObjectName(QStringLiteral("labelStrip"));
    setMouseTracking(true);
    connect(labels, &DocumentLabels::changed, this, &LabelStripView::labelsChanged);
    labelsChanged();
}

void LabelStripView::labelsChanged()
{
    setVisible(m_labels && !m_labels->strip().empty());
    updateGeometry();
    update();
}

QSize LabelStripView::sizeHint() const
{
    if (!m_labels || m_labels->strip().empty())
        return {0, 0};
    const double h = withMeasuringCanvas(*this, [&](PlotCanvas& c) { return m_labels->strip().height(c); });
    return {100, static_cast<int>(std::ceil(h)) + 1};
}

std::vector<LabelStripItem> LabelStripView::items() const
{
    if (!m_labels)
        return {};
    return withMeasuringCanvas(*this,
                               [&](PlotCanvas& c) { return m_labels->strip().layout(c, m_frame(*this)); });
}

void LabelStripView::paintEvent(QPaintEvent*)
{
    if (!m_labels)
        return;
    QPainter painter(this);
    painter.setFont(font());
    PainterCanvas canvas(painter);
    m_labels->strip().draw(canvas, m_frame(*this));
}

bool LabelStripView::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || !m_labels)
        return QWidget::event(event);
    // The whole text of the segment under the pointer, shortened or not.
    const auto* help = static_cast<QHelpEvent*>(event);
    const LabelStripFrame frame = m_frame(*this);
    const double rowHeight =
        withMeasuringCanvas(*this, [](PlotCanvas& c) { return LabelStrip::rowHeight(c); });
    const double seconds = frame.startSeconds + (help->pos().x() - frame.left) / std::max(frame.width, 1.0) *
                                                    (frame.endSeconds - frame.startSeconds);
    const auto row = static_cast<std::size_t>(std::max(0.0, help->pos().y() / rowHeight));
    QString text;
    std::size_t shownRow = 0;
    const TextGrid& grid = m_labels->grid();
    for (std::size_t t = 0; t < grid.tiers.size(); ++t) {
        if (!m_labels->isTierShown(t))
            continue;
        if (shownRow++ != row)
            continue;
        const LabelInterval* interval = grid.intervalAt(t, seconds);
        text = QString::fromStdString(grid.tiers[t].name) +
               (interval ? QStringLiteral(": ") + QString::fromStdString(interval->text) : QString());
    }
    if (text.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(help->globalPos(), text, this);
    return true;
}

LabelBoundaryOverlay::LabelBoundaryOverlay(DocumentLabels* labels, LabelFrameSource frame,
                                           std::vector<QWidget*> covered, QWidget* parent)
    : QWidget(parent), m_labels(labels), m_frame(std::move(frame))
{
    setObjectName(QStringLiteral("labelBoundaries"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    for (QWidget* widget : covered) {
        m_covered.emplace_back(widget);
        widget->installEventFilter(this);
    }
    connect(labels, &DocumentLabels::changed, this, qOverload<>(&QWidget::update));
    place();
    raise();
}

void LabelBoundaryOverlay::place()
{
    QRect area;
    for (const QPointer<QWidget>& widget : m_covered)
        if (widget)
            area = area.united(widget->geometry());
    setGeometry(area);
    raise();
    update();
}

bool LabelBoundaryOverlay::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
        place();
    return QWidget::eventFilter(watched, event);
}

std::vector<double> LabelBoundaryOverlay::boundaryXs() const
{
    if (!m_labels)
        return {};
    return m_labels->strip().boundaryXs(m_frame(*this));
}

void LabelBoundaryOverlay::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QPen pen(QColor(30, 60, 170, 170), 1.0, Qt::DotLine);
    painter.setPen(pen);
    for (const double x : boundaryXs())
        painter.drawLine(QPointF(x + 0.5, 0.0), QPointF(x + 0.5, height()));
}
