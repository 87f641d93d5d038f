#pragma once
// A 5 x 7 pixel font for the pictures the command-line tool rasterizes itself: digits, the
// Latin letters and the punctuation of plot labels. Glyph rows are given top first, bit 4 the
// leftmost pixel. Characters outside the font draw as blanks.
#include <cstdint>

inline constexpr int kGlyphWidth = 5;
inline constexpr int kGlyphHeight = 7;
inline constexpr int kGlyphAdvance = 6; // glyph plus one column of space

// The seven rows of a character's glyph, or nullptr when the font has none.
const std::uint8_t* glyphRows(char c);
