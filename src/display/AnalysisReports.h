#pragma once
// Text and image renderings of finished analyses, for the command-line tool and for exports:
// the pitch track and the formant tracks as CSV, the normalized spectrogram as an RGB raster.
// Pure functions of the result objects; any thread.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

class PitchTrackComputation;
class SpectrogramComputation;

// "time_ms,f0_hz" and one line per frame; the time of frame i is i x stepMS.
std::string pitchTrackCsv(const PitchTrackComputation& track, double stepMS);

// "column,time_ms,f1,f2,f3,f4,f5" and one line per display column, -1 where a column has no
// formant in a slot. The time of column c is c x (samples / columns) / sample rate x 1000 ms.
// Without formant records every slot reads -1.
std::string formantTrackCsv(const SpectrogramComputation& spectrogram);

// 8-bit RGB pixels, rows from the top, three bytes per pixel.
struct RgbImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;
};

// The 257 grey levels of the spectrogram, from white (position 0, quietest) to black (256).
std::array<std::uint8_t, 257> grayRamp();

// The normalized spectrogram, one pixel per stored level: column x at pixel x, row 0 (0 Hz) at
// the bottom; a level v takes the ramp at trunc(v x 256 / dynamic range), clamped to the ramp.
// With drawFormants the formant tracks are drawn over it in red, three pixels tall.
RgbImage spectrogramImage(const SpectrogramComputation& spectrogram, bool drawFormants);
