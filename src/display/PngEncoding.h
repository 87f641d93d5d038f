#pragma once
// The PNG file of an RGB image made by the analysis reports (8 bits a channel, no interlace),
// encoded by libpng. Any thread.
#include <string>

struct RgbImage;

// Appends the PNG image of `image` to `out`; false when libpng fails.
bool encodePng(const RgbImage& image, std::string& out);
