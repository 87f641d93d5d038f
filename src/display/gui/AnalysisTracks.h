#pragma once
// Drawing of the automatic analysis tracks over a plot area (widget coordinates, y growing
// downward): the formant tracks of a spectrogram and a pitch track. Both map time linearly
// onto the area's width and a value range onto its height (the low value at the bottom
// edge), and draw only what lies inside the area. Main thread only (painting).
#include <QColor>
#include <QRect>

#include <array>
#include <vector>

class QPainter;
class SpectrogramComputation;

// The formant records of a computation, record i at x = left + i x width / records, each
// formant f (Hz, > 0) at y = bottom - f x height / frequencyRange, as a small dot in the colour
// of its slot (F1 first). Slots holding -1 (no formant) are not drawn. Nothing is drawn
// without formants.
void DrawFormantTracks(QPainter& painter, const QRect& area, const SpectrogramComputation& spectrogram,
                       int frequencyRange, const std::array<QColor, 5>& colors);

// A pitch track: value i (Hz) belongs to the time i x stepMS; the area spans 0 .. lengthMS
// across and lowHz .. highHz up. Voiced frames (value > 0) are dots; consecutive voiced frames
// are joined by a line. Frames of 0 (unvoiced) break the line.
void DrawPitchTrack(QPainter& painter, const QRect& area, const std::vector<double>& track, double stepMS,
                    double lengthMS, double lowHz, double highHz, const QColor& color);
