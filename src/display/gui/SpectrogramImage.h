#pragma once
// SpectrogramImage: turns the normalized levels of a SpectrogramComputation into a picture.
// Owns the level ramp (257 colours from silence to the loudest level) filled by SetColors;
// DrawSpectrogramBMP draws every stored value as one pixel of the ramp. Levels run from 0 (the
// bottom of the dynamic range and below) to the dynamic range in dB (the loudest frame).
//
// Plain object: a worker thread may draw into a QImage it owns (QImage is not a widget), so
// the picture is made together with the computation and the GUI thread only paints it.
#include <QImage>

#include <QRgb>
#include <algorithm>
#include <cmath>

#include <array>

class SpectrogramComputation;

class SpectrogramImage
{
public:
    static constexpr int kRampSize = 257;

    SpectrogramImage() { SetColors(); }

    // The ramp: white for silence through grey to black for the loudest level, with the
    // middle levels spread a little so that formant bands stand out from the floor.
    void SetColors();
    QRgb rampColor(int position) const { return m_ramp[static_cast<std::size_t>(position)]; }
    // Ramp position of a level: trunc(level x 256 / dynamicRange), kept within the ramp.
    // Inline and without branches on the level's value: it runs once for every pixel of a
    // picture. Clamping before the conversion makes it truncate exactly as trunc() would;
    // max(0, NaN) is 0, so an undefined level lands at the ramp's start.
    static int rampPosition(double level, int dynamicRange)
    {
        if (dynamicRange <= 0)
            return level > 0.0 ? kRampSize - 1 : 0;
        const double position = level * 256.0 / dynamicRange;
        return static_cast<int>(std::min(static_cast<double>(kRampSize - 1), std::max(0.0, position)));
    }

    // Draws `columns` x `rows` values of the computation into `image` (its whole area is the
    // display rectangle): the image is filled with the silence colour and framed, then value
    // (x, y) goes to the pixel at left + trunc(sx x) + p, bottom - (trunc(sy y) + p), with
    // sx = width / columns, sy = height / rows and p = trunc(sx) or 1 when that is 0. Pixels
    // that fall outside the image are left out. An image of another depth than 32 bits per pixel
    // is made Format_RGB32 first.
    void DrawSpectrogramBMP(QImage& image, const SpectrogramComputation& levels, int columns, int rows,
                            int dynamicRange) const;

    // The picture of a finished computation at its own display size (W x H pixels);
    // a null image when the computation holds no spectrogram.
    QImage DrawImage(const SpectrogramComputation& levels) const;

private:
    std::array<QRgb, kRampSize> m_ramp{};
};
