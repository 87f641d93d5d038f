#include "dataentry/gui/graphical/viewF0.h"

viewF0::viewF0(QWidget* parent) : TrackPlotView(3000, {{"f0", Row::f0, Row::av}}, parent) {}

TrackPlotView::ValueGrid viewF0::valueGrid() const
{
    // The pitch display range is in Hz; the plot's scale is in tenths of a hertz.
    const MyDocument& doc = *document();
    return {static_cast<double>(doc.m_nPitchDisplayLow), static_cast<double>(doc.m_nPitchDisplayHigh),
            static_cast<double>(doc.m_nPitchFreqGrid), _nScale() / 10.0, "Hz"};
}
