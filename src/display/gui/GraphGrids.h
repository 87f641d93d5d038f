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

#include <optional>
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

// Where the value labels of a grid go: none; inside the area at its left edge, just above their
// lines; or outside it, right-aligned in the margin left of the area and centred on their lines.
enum class ValueLabels { None, Inside, Outside };

// Horizontal lines at low, low + step, ... up to high, at y = bottom - value x height /
// fullScale; lines above the top edge are left out. Lines are labelled with their value as
// `where` says (every line, or every second, ... line so that labels never overlap), and the
// topmost label carries the unit (`label`).
void DrawAnyGrid(QPainter& painter, const QRect& area, double low, double high, double step, double fullScale,
                 const QString& label, ValueLabels where = ValueLabels::Inside);

// The labels DrawAnyGrid draws for that grid, bottom to top, in the font of `metrics`.
std::vector<GridLabel> valueGridLabels(const QFontMetrics& metrics, const QRect& area, double low,
                                       double high, double step, double fullScale, const QString& unit,
                                       ValueLabels where);

// Appends to `kept` the labels of `labels`, in order, whose box lies inside `bounds` and meets
// neither a box of `taken` nor a label kept before it; the kept boxes join `taken`. Called
// with the labels that matter most first, so that those win where two would collide.
void keepClearLabels(const std::vector<GridLabel>& labels, const QRect& bounds, std::vector<QRect>& taken,
                     std::vector<GridLabel>& kept);

// A value grid as a plot describes it: lines from low to high at step, the value fullScale at the
// top edge, the unit on the topmost label.
struct ValueGrid {
    double low = 0.0, high = 0.0, step = 0.0, fullScale = 1.0;
    QString label;
};

// The visible part of a time axis and its grid step, in ms.
struct TimeSpan {
    double startMS = 0.0, endMS = 0.0, stepMS = 0.0;
};

// The labels of a plot that carries them inside `area`: the value labels of `grid` first, then,
// with `times`, the time labels along the top where they find room; none over `caption`.
std::vector<GridLabel> plotLabels(const QFontMetrics& metrics, const QRect& area, const ValueGrid& grid,
                                  const std::optional<TimeSpan>& times, const QRect& caption);

// Draws labels in the grid's label colour; with `backed` each on a light box, so that it
// stays readable over a picture or a track.
void DrawGridLabels(QPainter& painter, const std::vector<GridLabel>& labels, bool backed);
