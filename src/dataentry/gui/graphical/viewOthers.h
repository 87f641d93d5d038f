#pragma once
// The amplitude plot of the graphical data-entry window: a1f .. a5f, av and apv (rows 29 .. 25,
// 1, 44) in dB, 90 at the top edge, over a fixed 0 .. 80 dB grid. Only the active track is
// drawn, every frame, in black, with a caption naming it at the top right.
// Main thread only.
#include "dataentry/gui/graphical/TrackPlotView.h"

class viewOthers : public TrackPlotView
{
    Q_OBJECT
public:
    explicit viewOthers(QWidget* parent = nullptr);

    // Track slots (_bActiveF): 0 .. 4 = a1f .. a5f, 5 = av, 6 = apv.

    // The caption of the active track, empty when none is active.
    QString caption() const;
    QRect captionBox() const override;

protected:
    ValueGrid valueGrid() const override { return {0.0, 80.0, 20.0, static_cast<double>(_nScale()), "dB"}; }
    bool drawsTrack(const Track& track) const override { return track.active; }
    void drawCaption(QPainter& painter) override;
};
