#include "dataentry/gui/graphical/viewFormants.h"

viewFormants::viewFormants(QWidget* parent)
    : TrackPlotView(5000,
                    {{"f1", Row::f1, Row::a1f},
                     {"f2", Row::f2, Row::a2f},
                     {"f3", Row::f3, Row::a3f},
                     {"f4", Row::f4, Row::a4f},
                     {"f5", Row::f5, Row::a5f}},
                    parent)
{
}

TrackPlotView::ValueGrid viewFormants::valueGrid() const
{
    const MyDocument& doc = *document();
    return {0.0, static_cast<double>(doc.m_nSpecfrequencyRange),
            static_cast<double>(doc.m_nSpecFrequencyGrid), static_cast<double>(_nScale()), "Hz"};
}
