#pragma once
// LabelStrip: the segments of a TextGrid drawn under a time axis, one row per chosen tier:
// interval boundaries as lines, each interval's text centred in the part of it that shows and
// shortened with "..." to fit, point tiers as ticks with their texts. The same layout serves
// the windows (through the painter canvas) and the pictures the command-line tool writes, so
// text is measured with the canvas's own font. Coordinates are canvas units; times seconds.
// Any thread, one canvas at a time.
#include "display/PlotCanvas.h"
#include "labels/TextGrid.h"

#include <string>
#include <vector>

// Where the strip goes and which stretch of time it shows.
struct LabelStripFrame {
    double left = 0.0;  // x of startSeconds
    double width = 0.0; // x of endSeconds is left + width
    double top = 0.0;   // y of the strip's first row
    double startSeconds = 0.0;
    double endSeconds = 0.0;

    double xOf(double seconds) const;
};

// One thing the strip draws: a boundary or point tick at x, or a text in its box.
struct LabelStripItem {
    enum Kind { Boundary, Tick, Text } kind = Boundary;
    std::size_t row = 0; // row of the strip (0 = top)
    double x = 0.0;      // Boundary, Tick: the line's x; Text: the centre of its box
    double left = 0.0, right = 0.0, top = 0.0, bottom = 0.0; // Text: its box
    std::string text;                                        // Text: as drawn (maybe shortened)
};

class LabelStrip
{
public:
    LabelStrip() = default;
    // `tiers` are indices into grid.tiers, drawn top to bottom; indices past the end are left out.
    LabelStrip(const TextGrid& grid, std::vector<std::size_t> tiers);

    bool empty() const { return m_tiers.empty(); }
    std::size_t rows() const { return m_tiers.size(); }
    // Height of one row: room for a line of the canvas's text with a margin above and below.
    static double rowHeight(const PlotCanvas& canvas);
    double height(const PlotCanvas& canvas) const { return rowHeight(canvas) * static_cast<double>(rows()); }

    // What draw() draws, in drawing order, for tests and for hit-testing.
    std::vector<LabelStripItem> layout(const PlotCanvas& canvas, const LabelStripFrame& frame) const;
    void draw(PlotCanvas& canvas, const LabelStripFrame& frame) const;
    // The x of every boundary of the chosen interval tiers (and of every point) inside the frame,
    // for the lines the views draw through themselves.
    std::vector<double> boundaryXs(const LabelStripFrame& frame) const;

    // `text` shortened from its end (whole characters) with "..." until it is at most `room`
    // wide on `canvas`; empty when not even "..." fits.
    static std::string elide(const PlotCanvas& canvas, const std::string& text, double room);

private:
    void layoutIntervals(const PlotCanvas& canvas, const LabelStripFrame& frame, std::size_t row,
                         const LabelTier& tier, std::vector<LabelStripItem>& items) const;
    void layoutPoints(const PlotCanvas& canvas, const LabelStripFrame& frame, std::size_t row,
                      const LabelTier& tier, std::vector<LabelStripItem>& items) const;

    std::vector<LabelTier> m_tiers;
};
