#pragma once
// The formant plot of the graphical data-entry window: f1 .. f5 (rows 12 .. 8) in Hz, 5000 at
// the top edge, each in its own colour, with the spectrogram's frequency grid. A formant's
// point shows only where its parallel amplitude (a1f .. a5f) exceeds 10 dB.
// Main thread only.
#include "dataentry/gui/graphical/TrackPlotView.h"

class viewFormants : public TrackPlotView
{
    Q_OBJECT
public:
    explicit viewFormants(QWidget* parent = nullptr);

    // Track slots (_bActiveF, _tracingColor): 0 .. 4 = F1 .. F5.
    QColor _tracingColor(int slot) const { return tracks()[slot].color; }
    void setColor(const QColor& color, int formant) { setTrackColor(formant, color); }

protected:
    ValueGrid valueGrid() const override;
};
