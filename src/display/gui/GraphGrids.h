#pragma once
// Labelled grids drawn behind the plots of the data-entry and analysis windows: a time grid of vertical
// lines and a value grid of horizontal lines. Both draw into `area` (widget coordinates,
// y growing downward, the value 0 at the bottom edge) with the painter's current clip.
// A step of 0 or less, or one so fine that lines would crowd closer than a few pixels,
// is replaced by a round step (1, 2 or 5 times a power of ten) that keeps them apart.
// Main thread only (painting).
#include "display/GridStep.h"

#include <QRect>
#include <QString>

class QPainter;

// Vertical lines at startMS, startMS + step, ... up to endMS, mapped linearly so that
// startMS is the left and endMS the right edge. With `labels` each line is labelled with
// its time in ms at the top of the area.
void TimeGrids(QPainter& painter, const QRect& area, double startMS, double endMS, double stepMS,
               bool labels);

// Horizontal lines at low, low + step, ... up to high, at y = bottom - value x height /
// fullScale; lines above the top edge are left out. Each line is labelled with its value
// in the left margin of the area, and the topmost label carries the unit (`label`).
void DrawAnyGrid(QPainter& painter, const QRect& area, double low, double high, double step, double fullScale,
                 const QString& label);
