#pragma once
// pitchView: the cepstral pitch track of one channel (`_nChannel`) between the pitch display
// range, with time and frequency grids lined up under the spectrogram (the same margins) and
// the same time cursor. The track is computed on the main thread when the view is set up: a
// few tens of milliseconds for ten seconds of audio. Main thread only.
#include "display/PitchTrackComputation.h"
#include "display/gui/ChannelPlotView.h"
#include "display/gui/GraphGrids.h"

class pitchView : public ChannelPlotView
{
    Q_OBJECT
public:
    // Room below the plot for the time labels, in pixels (points in pictures).
    static constexpr int kTimeAxisHeight = 20;

    pitchView(MyDocument* document, int channel, QWidget* parent = nullptr);

    // Computes the track from the channel's samples and the document's pitch settings.
    void setup();
    const PitchTrackComputation& track() const { return m_track; }

    QRect plotArea() const override;
    // The labels (ms) of the time axis under `area`: inside its width, none meeting another.
    std::vector<GridLabel> timeAxisLabels(const QFontMetrics& metrics, const QRect& area) const;
    void drawPicture(QPainter& painter, const QRectF& area, bool forScreen) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    // Ticks and labels (ms) of the time axis under the plot area.
    void drawTimeAxis(QPainter& painter, const QRect& area) const;

    PitchTrackComputation m_track;
    double m_dStepMS = 10.0;
};
