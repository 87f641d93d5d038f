#pragma once
// SlicePlot: the picture of an FFT/LPC slice, laid out for any canvas size: the level spectrum
// and its LPC envelope over 0 .. frequency range, dB and frequency grids with labels, a title
// line and a legend; optionally a second slice (the model's) over the first in another colour
// (grey and dashed in black and white), with the spectral distance of the two in the top
// right corner. The screen, the exported pictures, the printer and `tessaphon-cli slice` all
// draw through this one layout.
//
// Levels: absolute shows dB re full scale from 0 dB down by the range; relative shows each
// slice against its own loudest bin (0 dB) down by the same range, so that a quiet synthesis
// and a loud recording can be compared by shape. Values outside the range are drawn at its
// edge. Pure function of its inputs; any thread.
#include "display/PlotCanvas.h"

#include <string>

class MyDocument;
class SliceComputation;

// The look of a slice picture (the document's FFT/LPC display settings).
struct SlicePlotStyle {
    bool m_bFFTDrawLPC = true;
    bool m_bFFTAbsolute = true;
    int m_nFFTAbsoluteRange = 80; // dB shown
    bool m_bFFTColor = true;
    int m_nFFTfrequencyRange = 5000; // Hz at the right edge
    bool m_bFFTDrawFrequencyGrid = true;
    int m_nFFTFrequencyGrid = 1000; // Hz between lines
    bool m_bFFTDrawDBGrid = true;
    int m_nFFTDBGrid = 20; // dB between lines

    // The document's settings. On screen the grids are always drawn; in pictures and prints
    // they follow the document's switches.
    static SlicePlotStyle fromDocument(const MyDocument& document, bool forScreen);
};

// Where things went, for pointing at the picture: the plot area and its scales.
struct SlicePlotFrame {
    double left = 0, top = 0, width = 0, height = 0; // plot area in canvas units
    double frequencyRange = 0;                       // Hz at the right edge
    double topDB = 0, rangeDB = 0;                   // level at the top edge, dB shown
    // Frequency (Hz) and level (dB) under a canvas point.
    double frequencyAt(double x) const;
    double levelAt(double y) const;
};

class SlicePlot
{
public:
    // Draws onto a canvas of width x height units. `overlay` may be nullptr; the names label
    // the two slices in the legend ("synthesis", "model").
    static SlicePlotFrame draw(PlotCanvas& canvas, double width, double height, const SlicePlotStyle& style,
                               const SliceComputation& slice, const SliceComputation* overlay,
                               const std::string& title, const std::string& sliceName,
                               const std::string& overlayName);

    // The spectral distance the corner shows: of the two LPC envelopes (of the spectra when
    // either has none) from 0 Hz to the frequency range. NaN when either slice is empty or
    // silent.
    static double distance(const SliceComputation& a, const SliceComputation& b, double frequencyRange);
};
