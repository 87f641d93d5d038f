#include "dataentry/gui/TimeAxisZoom.h"

#include "display/gui/GraphGrids.h"

#include <QAction>
#include <QScrollBar>
#include <QWheelEvent>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace
{
constexpr double kNotch = 120.0;        // wheel delta of one notch
constexpr int kScrollFraction = 10;     // a wheel notch scrolls a tenth of the view
constexpr double kCoarsestGrid = 100.0; // pixels between time lines that still read well
constexpr double kZoomedGrid = 50.0;    // pixels between time lines chosen for a deep zoom
} // namespace

TimeAxisZoom::TimeAxisZoom(QObject* parent) : QObject(parent) {}

double TimeAxisZoom::maximumZoom() const
{
    const int frames = m_frames ? m_frames() : 0;
    if (frames <= 0 || m_width <= 0)
        return 1.0;
    return std::max(1.0, frames * kMaxPixelsPerFrame / m_width);
}

void TimeAxisZoom::setViewWidth(int width)
{
    width = std::max(width, 0);
    if (width == m_width)
        return;
    // The time at the left edge stays where it is.
    const double leftFraction = m_width > 0 ? static_cast<double>(m_offset) / contentWidth(m_width) : 0.0;
    m_width = width;
    apply(m_zoom, std::llround(leftFraction * contentWidth(width)));
}

long long TimeAxisZoom::contentWidth(int width) const
{
    if (isFitAll())
        return width;
    return std::llround(width * m_zoom);
}

int TimeAxisZoom::frameAt(double x, int frames, int width) const
{
    if (frames <= 0 || width <= 0)
        return -1;
    if (isFitAll())
        return static_cast<int>(std::trunc(x * frames / width));
    return static_cast<int>(std::trunc((x + m_offset) * frames / static_cast<double>(contentWidth(width))));
}

double TimeAxisZoom::xOf(double k, int frames, int width) const
{
    if (frames <= 0)
        return 0.0;
    return k * static_cast<double>(contentWidth(width)) / frames - m_offset;
}

int TimeAxisZoom::pixelOf(long long k, int frames, int width) const
{
    if (frames <= 0)
        return 0;
    return static_cast<int>(k * contentWidth(width) / frames - m_offset);
}

int TimeAxisZoom::firstFrameAt(int x, int frames, int width) const
{
    if (frames <= 0 || width <= 0)
        return 0;
    return static_cast<int>(
        std::max(0LL, (static_cast<long long>(x) + m_offset) * frames / contentWidth(width)));
}

double TimeAxisZoom::fitAllX(double x, int width) const
{
    if (isFitAll())
        return x;
    return (x + m_offset) * width / static_cast<double>(contentWidth(width));
}

std::pair<double, double> TimeAxisZoom::visibleMS(double lengthMS, int width) const
{
    if (isFitAll() || width <= 0)
        return {0.0, lengthMS};
    const double content = static_cast<double>(contentWidth(width));
    return {m_offset * lengthMS / content, (m_offset + width) * lengthMS / content};
}

double TimeAxisZoom::timeGridStep(double stepMS, double lengthMS, int width) const
{
    if (isFitAll() || width <= 0)
        return stepMS;
    const auto [start, end] = visibleMS(lengthMS, width);
    const double range = end - start;
    if (stepMS > 0.0 && stepMS * width / range <= kCoarsestGrid)
        return stepMS;
    return gridStep(range, width, 0.0, kZoomedGrid);
}

void TimeAxisZoom::zoomBy(double factor, double anchorX)
{
    if (!(factor > 0.0) || m_width <= 0)
        return;
    const double content = static_cast<double>(contentWidth(m_width));
    const double anchor = anchorX + m_offset; // content position under the anchor
    const double zoom = std::clamp(m_zoom * factor, 1.0, maximumZoom());
    const double newContent = zoom == 1.0 ? m_width : std::round(m_width * zoom);
    apply(zoom, std::llround(anchor * newContent / content - anchorX));
}

void TimeAxisZoom::fitAll()
{
    apply(1.0, 0);
}

void TimeAxisZoom::setOffset(int offset)
{
    apply(m_zoom, offset);
}

void TimeAxisZoom::apply(double zoom, long long offset)
{
    // Values a hair above 1 would change the mapping by a pixel without showing more.
    if (zoom < 1.0 + 1e-9)
        zoom = 1.0;
    const double oldZoom = m_zoom;
    const int oldOffset = m_offset;
    m_zoom = zoom;
    const long long last = std::max(0LL, contentWidth(m_width) - m_width);
    m_offset = static_cast<int>(std::clamp(offset, 0LL, last));
    syncBar();
    if (m_zoom != oldZoom || m_offset != oldOffset)
        emit changed();
}

void TimeAxisZoom::attach(QScrollBar* bar)
{
    m_bar = bar;
    connect(bar, &QScrollBar::valueChanged, this, [this](int value) {
        if (!m_bSyncing)
            setOffset(value);
    });
    syncBar();
}

void TimeAxisZoom::syncBar()
{
    if (!m_bar)
        return;
    m_bSyncing = true;
    m_bar->setRange(0, static_cast<int>(std::max(0LL, contentWidth(m_width) - m_width)));
    m_bar->setPageStep(std::max(m_width, 1));
    m_bar->setSingleStep(std::max(m_width / kScrollFraction, 1));
    m_bar->setValue(m_offset);
    m_bar->setEnabled(!isFitAll());
    m_bSyncing = false;
}

void TimeAxisZoom::watch(QWidget* view)
{
    view->installEventFilter(this);
}

bool TimeAxisZoom::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Wheel)
        return QObject::eventFilter(watched, event);
    const auto* wheel = static_cast<QWheelEvent*>(event);
    const QPoint delta = wheel->angleDelta();
    if (wheel->modifiers() & Qt::ControlModifier) {
        const int notches = delta.y() != 0 ? delta.y() : delta.x();
        if (notches != 0)
            zoomBy(std::pow(kWheelFactor, notches / kNotch), wheel->position().x());
        return true;
    }
    // A horizontal wheel, or Shift with the vertical one, scrolls along the time axis.
    const int along = delta.x() != 0 ? delta.x() : (wheel->modifiers() & Qt::ShiftModifier ? delta.y() : 0);
    if (along == 0)
        return QObject::eventFilter(watched, event);
    setOffset(m_offset -
              static_cast<int>(std::lround(along / kNotch * std::max(m_width / kScrollFraction, 1))));
    return true;
}

QList<QAction*> TimeAxisZoom::makeActions(QWidget* owner)
{
    const auto make = [&](const QString& title, QList<QKeySequence> keys, void (TimeAxisZoom::*slot)()) {
        auto* action = new QAction(title, owner);
        action->setShortcuts(keys);
        action->setShortcutContext(Qt::WindowShortcut);
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    return {
        make(QStringLiteral("Zoom In"),
             {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)},
             &TimeAxisZoom::zoomIn),
        make(QStringLiteral("Zoom Out"), {QKeySequence(Qt::CTRL | Qt::Key_Minus)}, &TimeAxisZoom::zoomOut),
        make(QStringLiteral("Fit All"), {QKeySequence(Qt::CTRL | Qt::Key_0)}, &TimeAxisZoom::fitAll)};
}
