#include "labels/LabelPicture.h"

#include "display/RasterCanvas.h"

#include <algorithm>
#include <cmath>

RgbImage withLabelStrip(const RgbImage& picture, const LabelStrip& strip, double durationSeconds)
{
    if (strip.empty() || picture.width < 1 || picture.height < 1)
        return picture;
    const LabelStripFrame frame{0.0, static_cast<double>(picture.width), 0.0, 0.0, durationSeconds};
    RasterCanvas canvas(picture.width, 1);
    const int stripHeight = static_cast<int>(std::ceil(strip.height(canvas)));
    RasterCanvas below(picture.width, stripHeight);
    strip.draw(below, frame);

    RgbImage out;
    out.width = picture.width;
    out.height = picture.height + stripHeight;
    out.rgb = picture.rgb;
    out.rgb.insert(out.rgb.end(), below.image().rgb.begin(), below.image().rgb.end());
    // The boundaries run on through the picture, dotted so that what is under them still shows.
    for (const double x : strip.boundaryXs(frame)) {
        const int column = std::clamp(static_cast<int>(x), 0, picture.width - 1);
        for (int y = 0; y < picture.height; y += 3) {
            std::uint8_t* p = &out.rgb[(static_cast<std::size_t>(y) * out.width + column) * 3];
            p[0] = 30, p[1] = 60, p[2] = 170;
        }
    }
    return out;
}
