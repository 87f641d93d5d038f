#pragma once
// The F0 plot of the graphical data-entry window: row f0 in 0.1 Hz, 3000 (300 Hz) at the top
// edge, with the pitch display grid in Hz and time labels. A frame's point shows only where
// av exceeds 10 dB, so unvoiced frames show no pitch although their f0 is kept.
// Main thread only.
#include "dataentry/gui/graphical/TrackPlotView.h"

class viewF0 : public TrackPlotView
{
    Q_OBJECT
public:
    explicit viewF0(QWidget* parent = nullptr);

    bool _bActiveF0() const { return tracks()[0].active; }
    QColor _tracingColor() const { return tracks()[0].color; }
    void setColor(const QColor& color) { setTrackColor(0, color); }

protected:
    ValueGrid valueGrid() const override;
    bool timeLabels() const override { return true; }
};
