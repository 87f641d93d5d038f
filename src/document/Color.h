#pragma once
// Colours as the document keeps them. `Color` is a drawing colour (components 0..1) that may
// be unset (`isSet` false: "no colour object"); `RGBColor16` is a device triple (0..65535).
#include <cstdint>

struct Color {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double alpha = 1.0;
    bool isSet = false;

    static Color rgb(double r, double g, double b, double a = 1.0) { return Color{r, g, b, a, true}; }
    static Color white() { return rgb(1.0, 1.0, 1.0); }
    static Color black() { return rgb(0.0, 0.0, 0.0); }
    bool operator==(const Color&) const = default;
};

struct RGBColor16 {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
    bool operator==(const RGBColor16&) const = default;
};
