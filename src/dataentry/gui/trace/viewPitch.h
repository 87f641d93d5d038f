#pragma once
// The F0 view of the trace window: the model's cepstral pitch track drawn behind the traced f0
// (row 0, tenths of a hertz; the full scale of 3000 is 300 Hz at the top edge). set-up computes
// the pitch track on the main thread with the document's pitch settings (it is quick: one
// short transform per analysis step). A press anywhere in the view records an undo step and
// every release commits f0, active or not. Main thread only.
#include "dataentry/gui/trace/TraceView.h"
#include "display/PitchTrackComputation.h"

class viewPitch : public TraceView
{
    Q_OBJECT
public:
    explicit viewPitch(QWidget* parent = nullptr);

    void setup() override;
    // After undo, redo or revert: the lists rebuilt over the new cells, the pitch track kept.
    // Those change the table only; a new model or new settings come through setup().
    void setupAfterUndo() { TraceView::setup(); }
    // Computes the model's pitch track with the document's settings.
    void DoPitchCepstral();
    void setColor(const QColor& color) { TraceView::setColor(color, 0); }
    bool _bActiveF0() const { return isActive(0); }

    const PitchTrackComputation& pitchTrack() const { return m_pitch; }
    bool m_bHavePitch() const { return m_pitch.m_bHavePitch != 0; }
    int m_nFrameCount() const { return m_pitch.m_nFrameCount; }

protected:
    ValueGrid valueGrid() const override;
    QString caption() const override;
    bool timeLabels() const override { return true; }
    QString valueText(int value) const override;
    bool pressNeedsActiveTrack() const override { return false; }
    bool releaseNeedsActiveTrack() const override { return false; }
    bool commitsSlot(int) const override { return true; }
    void drawAnalysis(QPainter& painter, const QRect& clip) override;

private:
    PitchTrackComputation m_pitch;
};
