#include "display/gui/AnalysisTracks.h"

#include "display/SpectrogramComputation.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace
{
constexpr int kFormantDot = 3; // pixels
constexpr double kPitchDot = 2.5;
} // namespace

void DrawFormantTracks(QPainter& painter, const QRect& area, const SpectrogramComputation& spectrogram,
                       int frequencyRange, const std::array<QColor, 5>& colors)
{
    const int records =
        std::min(spectrogram.m_nFormantsFrames, static_cast<int>(spectrogram.m_phsnFormants.size()));
    if (!spectrogram.m_bHaveFormants || records <= 0 || frequencyRange <= 0 || area.isEmpty())
        return;
    const QRect clip = painter.hasClipping() ? area & painter.clipBoundingRect().toAlignedRect() : area;
    for (int i = 0; i < records; ++i) {
        const int x = area.left() + static_cast<int>(static_cast<long long>(i) * area.width() / records);
        if (x + kFormantDot < clip.left() || x > clip.right())
            continue;
        const FormantRecord& record = spectrogram.m_phsnFormants[static_cast<std::size_t>(i)];
        for (int slot = 0; slot < 5; ++slot) {
            const int f = record[static_cast<std::size_t>(slot)];
            if (f <= 0 || f > frequencyRange)
                continue;
            const int y =
                area.bottom() - static_cast<int>(static_cast<long long>(f) * area.height() / frequencyRange);
            painter.fillRect(x - kFormantDot / 2, y - kFormantDot / 2, kFormantDot, kFormantDot,
                             colors[static_cast<std::size_t>(slot)]);
        }
    }
}

void DrawPitchTrack(QPainter& painter, const QRect& area, const std::vector<double>& track, double stepMS,
                    double lengthMS, double lowHz, double highHz, const QColor& color)
{
    if (track.empty() || !(stepMS > 0.0) || !(lengthMS > 0.0) || !(highHz > lowHz) || area.isEmpty())
        return;
    const auto pointOf = [&](std::size_t i) {
        const double x = area.left() + i * stepMS * area.width() / lengthMS;
        const double y = area.bottom() - (track[i] - lowHz) * area.height() / (highHz - lowHz);
        return QPointF(x, y);
    };
    const auto visible = [&](std::size_t i) {
        return track[i] > 0.0 && std::isfinite(track[i]) && track[i] >= lowHz && track[i] <= highHz &&
               i * stepMS <= lengthMS;
    };
    QPainterPath line;
    std::vector<QPointF> centres;
    bool joined = false;
    for (std::size_t i = 0; i < track.size(); ++i) {
        if (!visible(i)) {
            joined = false;
            continue;
        }
        const QPointF p = pointOf(i);
        if (joined)
            line.lineTo(p);
        else
            line.moveTo(p);
        joined = true;
        centres.push_back(p);
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.strokePath(line, QPen(color, 1.2));
    // Each dot is filled on its own: one path of a thousand small ellipses makes the rasterizer
    // sweep the whole plot, and its even-odd rule would punch holes where neighbours overlap.
    // Dots outside a partial repaint's strip are skipped.
    const QRectF clip = painter.hasClipping() ? painter.clipBoundingRect() : QRectF();
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    for (const QPointF& c : centres)
        if (clip.isNull() || clip.adjusted(-kPitchDot, -kPitchDot, kPitchDot, kPitchDot).contains(c))
            painter.drawEllipse(c, kPitchDot / 2, kPitchDot / 2);
    painter.restore();
}
