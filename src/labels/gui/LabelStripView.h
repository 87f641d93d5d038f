#pragma once
// LabelStripView: the label strip of a document under the views of a window, on their time
// axis: one row per shown tier, boundaries as lines, texts centred in their intervals and
// shortened to fit, point tiers as ticks. It hides itself when there is nothing to show and
// asks its window for room (sizeHint) when the number of rows changes. Hovering over a
// segment shows its whole text. LabelBoundaryOverlay draws the same boundaries through the
// window's views. Main thread only.
#include "labels/LabelStrip.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <vector>

class DocumentLabels;

// Where a window's time axis lies in a widget's own coordinates, as the strip's frame (top 0).
using LabelFrameSource = std::function<LabelStripFrame(const QWidget& target)>;

class LabelStripView : public QWidget
{
    Q_OBJECT
public:
    LabelStripView(DocumentLabels* labels, LabelFrameSource frame, QWidget* parent);

    QSize sizeHint() const override;
    // What the strip draws at its present size, in its coordinates.
    std::vector<LabelStripItem> items() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    void labelsChanged();

    QPointer<DocumentLabels> m_labels;
    LabelFrameSource m_frame;
};

class LabelBoundaryOverlay : public QWidget
{
    Q_OBJECT
public:
    // Covers `covered` (siblings in `parent`), drawing the strip's boundaries through them;
    // the mouse goes through it to the views below.
    LabelBoundaryOverlay(DocumentLabels* labels, LabelFrameSource frame, std::vector<QWidget*> covered,
                         QWidget* parent);
    // The x of each boundary line, in the overlay's coordinates.
    std::vector<double> boundaryXs() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();

    QPointer<DocumentLabels> m_labels;
    LabelFrameSource m_frame;
    std::vector<QPointer<QWidget>> m_covered;
};

// The frame of a time axis that runs from 0 s at x0 to `seconds` at xEnd in `target`'s
// coordinates, clipped to the target's width.
LabelStripFrame labelFrameOnAxis(const QWidget& target, double x0, double xEnd, double seconds);
