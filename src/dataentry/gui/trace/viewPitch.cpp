#include "dataentry/gui/trace/viewPitch.h"

#include "display/gui/AnalysisTracks.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QPainter>

namespace
{
const QColor kAnalysisColor(40, 90, 230); // the automatic track, behind the traced one
} // namespace

viewPitch::viewPitch(QWidget* parent) : TraceView(3000.0, {"f0"}, {Row::f0}, parent) {}

void viewPitch::setup()
{
    DoPitchCepstral();
    TraceView::setup();
}

void viewPitch::DoPitchCepstral()
{
    m_pitch = PitchTrackComputation();
    if (!_pDoc)
        return;
    m_pitch.DoPitchCepstral(*_pDoc->getChannel(2), PitchSettings::fromDocument(*_pDoc));
}

TraceView::ValueGrid viewPitch::valueGrid() const
{
    const MyDocument& doc = *_pDoc;
    // The display range and grid are in Hz; the scale is in tenths of a hertz.
    return {static_cast<double>(doc.m_nPitchDisplayLow), static_cast<double>(doc.m_nPitchDisplayHigh),
            doc.m_bPitchDrawFreqGrid ? static_cast<double>(doc.m_nPitchFreqGrid) : 0.0, fullScale() / 10.0,
            QStringLiteral("Hz")};
}

QString viewPitch::caption() const
{
    return QStringLiteral("F0");
}

QString viewPitch::valueText(int value) const
{
    return QStringLiteral("%1 Hz").arg(value / 10.0, 0, 'f', 1);
}

void viewPitch::drawAnalysis(QPainter& painter, const QRect&)
{
    if (!_pDoc || m_pitch.m_hdPitchFile.empty())
        return;
    // Frame i of the track belongs to column i + 1: the grid's time axis, no rescaling.
    const int interval = std::max(_pDoc->getChannel(0)->m_nUpdateIntervalMS, 1);
    const QRect area = contentRect();
    const double columnWidth = frameCount() > 0 ? static_cast<double>(area.width()) / frameCount() : 0.0;
    DrawPitchTrack(painter, area.translated(static_cast<int>(columnWidth / 2), 0), m_pitch.m_hdPitchFile,
                   interval, gridLengthMS(), 0.0, fullScale() / 10.0, kAnalysisColor);
}
