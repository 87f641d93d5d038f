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

#include <vector>

class QFontMetrics;
class QPainter;

// One label of a grid: its text and the rectangle its text takes.
struct GridLabel {
    QRect box;
    QString text;
};

// Vertical lines at the multiples of the step between startMS and endMS, mapped linearly so that
// startMS is the left and endMS the right edge (a zoomed plot passes the part of its time range
// that it shows). With `labels`, lines are labelled with their time and unit ("120 ms") at the
// top of the area: every line, or every second, fifth, ... line as the widest label needs, so
// that labels never overlap; the line at the left edge is left to the value labels.
void TimeGrids(QPainter& painter, const QRect& area, double startMS, double endMS, double stepMS,
               bool labels);

// The labels TimeGrids draws for that range, left to right, in the font of `metrics`.
std::vector<GridLabel> timeGridLabels(const QFontMetrics& metrics, const QRect& area, double startMS,
                                      double endMS, double stepMS);

// Horizontal lines at low, low + step, ... up to high, at y = bottom - value x height /
// fullScale; lines above the top edge are left out. Each line is labelled with its value
// in the left margin of the area, and the topmost label carries the unit (`label`).
void DrawAnyGrid(QPainter& painter, const QRect& area, double low, double high, double step, double fullScale,
                 const QString& label);
