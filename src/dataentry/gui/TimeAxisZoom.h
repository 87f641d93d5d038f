#pragma once
// The horizontal zoom and scroll position shared by the stacked views of one data-entry window:
// one time axis for all of them. The views map frames to x through it; the window's scroll bar,
// its zoom commands (Ctrl++, Ctrl+-, Ctrl+0 "Fit All") and Ctrl+wheel over a view change it.
//
// A view W pixels wide shows the frames spread over a content width of W x zoom pixels, of which
// the part from `offset` to offset + W is visible. At zoom 1 (fit all) the content width is W
// and the offset 0, so every mapping is exactly the unzoomed one: frame under x = trunc(x x N / W),
// frame k drawn at trunc(k x W / N). Zooming never goes below fit all, nor above the zoom that
// gives one frame kMaxPixelsPerFrame pixels. Main thread only; units are view pixels.
#include <QObject>
#include <QPointer>

#include <functional>
#include <utility>

class QAction;
class QScrollBar;
class QWidget;

class TimeAxisZoom : public QObject
{
    Q_OBJECT
public:
    static constexpr double kMaxPixelsPerFrame = 40.0;
    static constexpr double kStepFactor = 2.0;   // Ctrl++ and Ctrl+- double and halve the zoom
    static constexpr double kWheelFactor = 1.25; // one notch of Ctrl+wheel

    explicit TimeAxisZoom(QObject* parent = nullptr);

    // The number of frames on the axis (read whenever the zoom limit is needed).
    void setFrameSource(std::function<int()> frames) { m_frames = std::move(frames); }
    // The width of the views (all views of a window are equally wide); keeps the zoom and the
    // time at the left edge.
    void setViewWidth(int width);
    int viewWidth() const { return m_width; }

    double zoom() const { return m_zoom; }
    int offset() const { return m_offset; }
    bool isFitAll() const { return m_zoom == 1.0; }
    double maximumZoom() const;

    // Mapping for a view `width` pixels wide showing `frames` frames.
    long long contentWidth(int width) const;
    // The frame under x; -1 when there are no frames or no width.
    int frameAt(double x, int frames, int width) const;
    // The x where frame position k (may be fractional) is drawn.
    double xOf(double k, int frames, int width) const;
    // The whole pixel where frame k's points start: trunc(k x content width / frames) - offset.
    int pixelOf(long long k, int frames, int width) const;
    // The first frame whose pixel reaches x (x may lie left of the view): clamps to 0.
    int firstFrameAt(int x, int frames, int width) const;
    // The x of the unzoomed view that shows what x shows now (the identity at fit all).
    double fitAllX(double x, int width) const;
    // The part of 0 .. lengthMS that the view shows.
    std::pair<double, double> visibleMS(double lengthMS, int width) const;
    // The time grid's step for that part: the document's step at fit all, and zoomed as long as
    // its lines stay close enough to be read; else a round step that gives lines about every
    // 50 pixels, so that a deep zoom still shows labelled times.
    double timeGridStep(double stepMS, double lengthMS, int width) const;

    // Zooms by `factor` keeping the content under view x where it is.
    void zoomBy(double factor, double anchorX);
    void zoomIn() { zoomBy(kStepFactor, m_width / 2.0); }
    void zoomOut() { zoomBy(1.0 / kStepFactor, m_width / 2.0); }
    void fitAll();
    void setOffset(int offset);

    // The scroll bar follows the axis (range 0 .. content width - view width, page = view
    // width) and scrolls it.
    void attach(QScrollBar* bar);
    // Ctrl+wheel over the widget zooms around the pointer; a horizontal or Shift+wheel scrolls.
    void watch(QWidget* view);
    // "Zoom In", "Zoom Out" and "Fit All" with their shortcuts, owned by `owner`.
    QList<QAction*> makeActions(QWidget* owner);

signals:
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void apply(double zoom, long long offset);
    void syncBar();

    std::function<int()> m_frames;
    int m_width = 0;
    double m_zoom = 1.0;
    int m_offset = 0;
    QPointer<QScrollBar> m_bar;
    bool m_bSyncing = false;
};
