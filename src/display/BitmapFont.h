#pragma once
// A 5 x 7 pixel font for the pictures the command-line tool rasterizes itself: printable ASCII,
// the Latin-1 letters most often met in names, and the IPA symbols and marks of phonetic
// labels. Text is UTF-8; glyph rows are given top first, bit 4 the leftmost pixel. Characters
// outside the font draw as blanks; combining marks take no room.
#include <cstddef>
#include <cstdint>
#include <string>

inline constexpr int kGlyphWidth = 5;
inline constexpr int kGlyphHeight = 7;
inline constexpr int kGlyphAdvance = 6; // glyph plus one column of space

// The seven rows of a character's glyph, or nullptr when the font has none.
const std::uint8_t* glyphRows(char32_t c);
// Combining diacritics: drawn as nothing, they take no column.
bool isCombiningMark(char32_t c);
// The code point at byte i of UTF-8 text, i moved past it; a byte that starts no valid
// sequence reads as U+FFFD and is passed alone.
char32_t nextCodePoint(const std::string& text, std::size_t& i);
// How many glyph columns the text takes.
int textColumns(const std::string& text);
