#include "display/SlicePlot.h"

#include "display/GridStep.h"
#include "display/SliceComputation.h"
#include "display/SpectralComparison.h"
#include "document/MyDocument.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

SlicePlotStyle SlicePlotStyle::fromDocument(const MyDocument& document, bool forScreen)
{
    SlicePlotStyle s;
    s.m_bFFTDrawLPC = document.m_bFFTDrawLPC != 0;
    s.m_bFFTAbsolute = document.m_bFFTAbsolute != 0;
    s.m_nFFTAbsoluteRange = document.m_nFFTAbsoluteRange;
    s.m_bFFTColor = document.m_bFFTColor != 0;
    s.m_nFFTfrequencyRange = document.m_nFFTfrequencyRange;
    s.m_bFFTDrawFrequencyGrid = forScreen || document.m_bFFTDrawFrequencyGrid;
    s.m_nFFTFrequencyGrid = document.m_nFFTFrequencyGrid;
    s.m_bFFTDrawDBGrid = forScreen || document.m_bFFTDrawDBGrid;
    s.m_nFFTDBGrid = document.m_nFFTDBGrid;
    return s;
}

double SlicePlotFrame::frequencyAt(double x) const
{
    return width > 0 ? (x - left) / width * frequencyRange : 0.0;
}

double SlicePlotFrame::levelAt(double y) const
{
    return height > 0 ? topDB - (y - top) / height * rangeDB : 0.0;
}

double SlicePlot::distance(const SliceComputation& a, const SliceComputation& b, double frequencyRange)
{
    if (a.m_dFFT.empty() || b.m_dFFT.empty() || a.m_bSilent || b.m_bSilent)
        return std::numeric_limits<double>::quiet_NaN();
    const bool envelopes = !a.m_dLPC.empty() && !b.m_dLPC.empty();
    return envelopeDistance(a.m_dFrequency, envelopes ? a.m_dLPC : a.m_dFFT, b.m_dFrequency,
                            envelopes ? b.m_dLPC : b.m_dFFT, frequencyRange);
}

namespace
{
const PlotColor kBlack{0, 0, 0};
const PlotColor kWhite{255, 255, 255};
const PlotColor kGrid{205, 205, 205};
const PlotColor kLabel{70, 70, 70};

struct CurveLook {
    PlotColor spectrum, envelope;
    bool dashed;
};

// The first slice blue (black), the overlay red (grey, dashed).
CurveLook lookOf(bool overlay, bool colour)
{
    if (colour)
        return overlay ? CurveLook{{225, 85, 40}, {150, 0, 0}, false}
                       : CurveLook{{60, 110, 210}, {0, 20, 120}, false};
    return overlay ? CurveLook{{140, 140, 140}, {110, 110, 110}, true}
                   : CurveLook{{90, 90, 90}, kBlack, false};
}

std::string format(const char* pattern, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, pattern, value);
    return text;
}

double loudest(const SliceComputation& s)
{
    return s.m_dFFT.empty() ? 0.0 : *std::max_element(s.m_dFFT.begin(), s.m_dFFT.end());
}

// One curve: levels at the slice's frequencies up to the range, clamped into the plot.
void drawCurve(PlotCanvas& canvas, const SlicePlotFrame& f, const SliceComputation& slice,
               const std::vector<double>& levels, double shift, PlotColor color, double width, bool dashed)
{
    std::vector<std::pair<double, double>> points;
    points.reserve(levels.size());
    for (std::size_t k = 0; k < levels.size() && k < slice.m_dFrequency.size(); ++k) {
        const double hz = slice.m_dFrequency[k];
        if (hz > f.frequencyRange)
            break;
        const double level = std::clamp(levels[k] - shift, f.topDB - f.rangeDB, f.topDB);
        points.emplace_back(f.left + hz / f.frequencyRange * f.width,
                            f.top + (f.topDB - level) / f.rangeDB * f.height);
    }
    canvas.polyline(points, color, width, dashed);
}

void drawFrequencyGrid(PlotCanvas& canvas, const SlicePlotFrame& f, const SlicePlotStyle& style,
                       double ascent)
{
    const double widest = canvas.textWidth(format("%.0f", f.frequencyRange)) + 8.0;
    const double step = gridStep(f.frequencyRange, f.width, style.m_nFFTFrequencyGrid, 6.0);
    if (step <= 0.0)
        return;
    const int labelEvery =
        std::max(1, static_cast<int>(std::ceil(widest / (step * f.width / f.frequencyRange))));
    const double baseline = f.top + f.height + ascent + 5.0;
    const long long lines = static_cast<long long>(std::floor(f.frequencyRange / step + 1e-9));
    for (long long j = 0; j <= lines; ++j) {
        const double x = f.left + j * step / f.frequencyRange * f.width;
        if (j > 0 && style.m_bFFTDrawFrequencyGrid)
            canvas.line(x, f.top, x, f.top + f.height, kGrid, 0.5);
        if (j % labelEvery == 0)
            canvas.text(x, baseline, format("%.0f", j * step), kLabel,
                        j == 0 ? TextAnchor::Left : TextAnchor::Centre);
    }
    canvas.text(f.left + f.width, baseline + ascent + 5.0, "Hz", kLabel, TextAnchor::Right);
}

void drawLevelGrid(PlotCanvas& canvas, const SlicePlotFrame& f, const SlicePlotStyle& style, double ascent)
{
    const double step = gridStep(f.rangeDB, f.height, style.m_nFFTDBGrid, 6.0);
    if (step <= 0.0)
        return;
    const int labelEvery =
        std::max(1, static_cast<int>(std::ceil((ascent + 4.0) / (step * f.height / f.rangeDB))));
    // Lines at whole multiples of the step, from the top edge down.
    const double first = std::floor(f.topDB / step + 1e-9) * step;
    for (int j = 0;; ++j) {
        const double level = first - j * step;
        if (level < f.topDB - f.rangeDB - 1e-9)
            break;
        const double y = f.top + (f.topDB - level) / f.rangeDB * f.height;
        if (style.m_bFFTDrawDBGrid && y > f.top + 0.5 && y < f.top + f.height - 0.5)
            canvas.line(f.left, y, f.left + f.width, y, kGrid, 0.5);
        if (j % labelEvery == 0)
            canvas.text(f.left - 4.0, y + ascent / 2.0, format("%.0f", level), kLabel, TextAnchor::Right);
    }
    canvas.text(f.left - 4.0, f.top - ascent / 2.0 - 3.0, "dB", kLabel, TextAnchor::Right);
}

// Legend entries after the title: a short line in the curve's look and its name.
double legendEntry(PlotCanvas& canvas, double x, double baseline, double ascent, const std::string& name,
                   PlotColor color, double width, bool dashed)
{
    const double y = baseline - ascent / 2.0;
    canvas.polyline({{x, y}, {x + 18.0, y}}, color, width, dashed);
    canvas.text(x + 22.0, baseline, name, kLabel, TextAnchor::Left);
    return x + 22.0 + canvas.textWidth(name) + 12.0;
}
} // namespace

SlicePlotFrame SlicePlot::draw(PlotCanvas& canvas, double width, double height, const SlicePlotStyle& style,
                               const SliceComputation& slice, const SliceComputation* overlay,
                               const std::string& title, const std::string& sliceName,
                               const std::string& overlayName)
{
    const double ascent = canvas.textAscent();
    SlicePlotFrame f;
    f.left = canvas.textWidth("-100") + 12.0;
    f.top = 2.0 * ascent + 16.0;
    // Room at the right for half of the last frequency label.
    const double right = std::max(12.0, canvas.textWidth("00000") / 2.0 + 4.0);
    f.width = std::max(1.0, width - f.left - right);
    f.height = std::max(1.0, height - f.top - 2.0 * ascent - 14.0);
    f.frequencyRange = std::max(1, style.m_nFFTfrequencyRange);
    f.rangeDB = std::max(1, style.m_nFFTAbsoluteRange);
    f.topDB = 0.0;

    canvas.fillRect(0, 0, width, height, kWhite);
    canvas.text(f.left, ascent + 3.0, title, kBlack, TextAnchor::Left);
    if (overlay) {
        const double d = distance(slice, *overlay, f.frequencyRange);
        canvas.text(f.left + f.width, ascent + 3.0,
                    std::isnan(d) ? std::string("distance -") : format("distance %.1f dB", d), kBlack,
                    TextAnchor::Right);
    }
    double x = f.left;
    const double legendBaseline = 2.0 * ascent + 9.0;
    for (int which = 0; which < (overlay ? 2 : 1); ++which) {
        const CurveLook look = lookOf(which == 1, style.m_bFFTColor);
        const std::string& name = which == 0 ? sliceName : overlayName;
        x = legendEntry(canvas, x, legendBaseline, ascent, name + " FFT", look.spectrum, 1.0, look.dashed);
        if (style.m_bFFTDrawLPC)
            x = legendEntry(canvas, x, legendBaseline, ascent, name + " LPC", look.envelope, 2.0,
                            look.dashed);
    }

    drawFrequencyGrid(canvas, f, style, ascent);
    drawLevelGrid(canvas, f, style, ascent);
    for (int which = 0; which < (overlay ? 2 : 1); ++which) {
        const SliceComputation& s = which == 0 ? slice : *overlay;
        const CurveLook look = lookOf(which == 1, style.m_bFFTColor);
        const double shift = style.m_bFFTAbsolute ? 0.0 : loudest(s);
        drawCurve(canvas, f, s, s.m_dFFT, shift, look.spectrum, 1.0, look.dashed);
        if (style.m_bFFTDrawLPC)
            drawCurve(canvas, f, s, s.m_dLPC, shift, look.envelope, 2.0, look.dashed);
    }
    canvas.strokeRect(f.left, f.top, f.width, f.height, kBlack);
    return f;
}
