#include "labels/gui/LabelAttachment.h"

#include "dataentry/gui/TimeAxisZoom.h"
#include "dataentry/gui/graphical/TrackPlotView.h"
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/graphical/viewF0.h"
#include "dataentry/gui/graphical/viewFormants.h"
#include "dataentry/gui/graphical/viewOthers.h"
#include "dataentry/gui/trace/TraceView.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "dataentry/gui/trace/viewAmplitudes.h"
#include "dataentry/gui/trace/viewPitch.h"
#include "dataentry/gui/trace/viewSpectrogram.h"
#include "display/gui/FFTLPCWindow.h"
#include "display/gui/PainterCanvas.h"
#include "display/gui/SpectrogramPitchWindow.h"
#include "display/gui/spectrogramView.h"
#include "document/MyDocument.h"
#include "labels/gui/DocumentLabels.h"
#include "labels/gui/LabelStripView.h"

#include <QMainWindow>
#include <QPainter>
#include <QPen>
#include <QPointer>
#include <QVBoxLayout>

namespace
{
// The x of `view`'s x in `target`'s coordinates (both in one window).
double mapX(const QWidget& view, double x, const QWidget& target)
{
    return x + view.mapTo(view.window(), QPoint(0, 0)).x() - target.mapTo(target.window(), QPoint(0, 0)).x();
}

// A data-entry window's axis: frame k of the document at the views' TimeAxisZoom position.
template <typename View> LabelFrameSource frameAxis(View* view, MyDocument* document)
{
    QPointer<View> guard(view);
    return [guard, document](const QWidget& target) {
        if (!guard || !document)
            return LabelStripFrame{};
        const int frames = document->getChannel(0)->m_nColumnNum;
        const int interval = document->updateInterval();
        const TimeAxisZoom& axis = guard->timeAxis();
        const double x0 = mapX(*guard, axis.xOf(0, frames, guard->width()), target);
        const double xEnd = mapX(*guard, axis.xOf(frames, frames, guard->width()), target);
        return labelFrameOnAxis(target, x0, xEnd, static_cast<double>(frames) * interval / 1000.0);
    };
}

template <typename Controller>
LabelWidgets attachToDataEntry(Controller& controller, DocumentLabels* labels, QWidget* content,
                               std::vector<QWidget*> views, LabelFrameSource frame)
{
    LabelWidgets widgets;
    widgets.strip = new LabelStripView(labels, frame, content);
    widgets.boundaries = new LabelBoundaryOverlay(labels, frame, std::move(views), content);
    QObject::connect(labels, &DocumentLabels::changed, &controller, [&controller] { controller.relayout(); });
    for (QWidget* w : {static_cast<QWidget*>(widgets.strip), static_cast<QWidget*>(widgets.boundaries)})
        QObject::connect(controller.timeAxis(), &TimeAxisZoom::changed, w, qOverload<>(&QWidget::update));
    controller.setLabelStrip(widgets.strip);
    return widgets;
}
// The label strip in exported and printed pictures: the rows of the shown tiers under the
// views, their boundaries dotted through the views' plots, as the windows show them.
SpectrogramPitchWindow::PictureStrip pictureStrip(QPointer<DocumentLabels> labels)
{
    SpectrogramPitchWindow::PictureStrip strip;
    strip.height = [labels](QPainter& painter) {
        if (!labels || labels->strip().empty())
            return 0.0;
        PainterCanvas canvas(painter);
        return labels->strip().height(canvas) + 6.0; // 4 above the rows, 2 below
    };
    strip.draw = [labels](QPainter& painter, const QRectF& area, double seconds,
                          const std::vector<QRectF>& plots) {
        if (!labels || labels->strip().empty())
            return;
        PainterCanvas canvas(painter);
        LabelStripFrame frame;
        frame.left = area.left();
        frame.width = area.width();
        frame.top = area.top() + 4.0;
        frame.endSeconds = seconds;
        labels->strip().draw(canvas, frame);
        painter.save();
        painter.setPen(QPen(QColor(30, 60, 170), 0.5, Qt::DotLine));
        for (const double x : labels->strip().boundaryXs(frame))
            for (const QRectF& plot : plots)
                painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        painter.restore();
    };
    return strip;
}

} // namespace

LabelWidgets attachLabels(dataentryTraceContoller& controller, DocumentLabels* labels)
{
    QWidget* content = controller.window();
    return attachToDataEntry(
        controller, labels, content,
        {controller._viewPitch(), controller._viewSpectrogram(), controller._viewAmplitudes()},
        frameAxis<TraceView>(controller._viewPitch(), controller.document()));
}

LabelWidgets attachLabels(dataentryGraphicalController& controller, DocumentLabels* labels)
{
    QWidget* content = static_cast<QMainWindow*>(controller.window())->centralWidget();
    return attachToDataEntry(controller, labels, content,
                             {controller._viewF0(), controller._viewFormants(), controller._viewOthers()},
                             frameAxis<TrackPlotView>(controller._viewF0(), controller.document()));
}

LabelWidgets attachLabels(SpectrogramPitchWindow& window, DocumentLabels* labels)
{
    QWidget* views = window.takeCentralWidget();
    auto* box = new QWidget(&window);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(views, 1);
    QPointer<spectrogramView> spectrogram(window.spectrogram());
    MyDocument* document = window.spectrogram() ? window.document() : nullptr;
    const int channel = window.channel();
    // The channel's whole length over the spectrogram's plot area; the pitch track lies under it.
    const LabelFrameSource frame = [spectrogram, document, channel](const QWidget& target) {
        if (!spectrogram || !document)
            return LabelStripFrame{};
        const Channels& c = *document->getChannel(channel);
        const double seconds = c.m_dSampleRate > 0.0 ? c.sampleCount() / c.m_dSampleRate : 0.0;
        const QRect plot = spectrogram->plotArea();
        return labelFrameOnAxis(target, mapX(*spectrogram, plot.left(), target),
                                mapX(*spectrogram, plot.left() + plot.width(), target), seconds);
    };
    LabelWidgets widgets;
    widgets.strip = new LabelStripView(labels, frame, box);
    layout->addWidget(widgets.strip);
    window.setCentralWidget(box);
    widgets.boundaries = new LabelBoundaryOverlay(labels, frame, {views}, box);
    QObject::connect(labels, &DocumentLabels::changed, layout, &QLayout::invalidate);
    window.setPictureStrip(pictureStrip(labels));
    return widgets;
}

void attachLabels(FFTLPCWindow& window, DocumentLabels* labels)
{
    QPointer<DocumentLabels> guard(labels);
    window.setSegmentNamer([guard](double ms) { return guard ? guard->segmentNote(ms) : QString(); });
    QObject::connect(labels, &DocumentLabels::changed, &window, &FFTLPCWindow::recompute);
}
