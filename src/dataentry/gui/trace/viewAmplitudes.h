#pragma once
// The amplitude view of the trace window: a panel in dB (90 at the top edge) over which the
// user traces a1f .. a5f (slots 0 .. 4, in the colours of F1 .. F5), av and apv (slots 5 and
// 6, black). Tracing a formant in the spectrogram view traces its amplitude here at the same
// time (remoteTraceValue). Main thread only.
#include "dataentry/gui/trace/TraceView.h"

class viewAmplitudes : public TraceView
{
    Q_OBJECT
public:
    explicit viewAmplitudes(QWidget* parent = nullptr);

    // Stores an amplitude traced in the spectrogram view in slot `index` at list index
    // `column`, as a drag here would, and redraws.
    void remoteTraceValue(double amplitude, int column, int index);

protected:
    ValueGrid valueGrid() const override;
    QString caption() const override;
    QString valueText(int value) const override { return QStringLiteral("%1 dB").arg(value); }
    bool drawsSlot(int slot) const override { return slot < 5 || isActive(slot); }
    void afterCommit() override;
};
