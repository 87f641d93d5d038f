// Text in the pictures the command-line tool rasterizes: UTF-8 read as characters, the glyphs of
// phonetic labels present and told apart, widths counted in characters.
#include "display/BitmapFont.h"
#include "display/RasterCanvas.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <map>
#include <string>
#include <vector>

namespace
{

std::vector<char32_t> codePoints(const std::string& text)
{
    std::vector<char32_t> out;
    for (std::size_t i = 0; i < text.size();)
        out.push_back(nextCodePoint(text, i));
    return out;
}

// How many pixels of the canvas are not white, and the leftmost column holding one.
std::pair<int, int> ink(const RasterCanvas& canvas, int width, int height)
{
    int n = 0, left = width;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const PlotColor c = canvas.pixel(x, y);
            const bool inked = c.r != 255 || c.g != 255 || c.b != 255;
            n += inked;
            left = inked ? std::min(left, x) : left;
        }
    return {n, left};
}

} // namespace

TEST(RasterText, Utf8IsReadAsCharactersAndBadBytesOneByOne)
{
    EXPECT_EQ(codePoints("a\xC3\xA6\xC9\x9B\xE2\x80\xA6\xF0\x9F\x98\x80"),
              (std::vector<char32_t>{U'a', U'\u00E6', U'\u025B', U'\u2026', U'\U0001F600'}));
    // A lone continuation byte, a lead byte cut short, a sequence broken by ASCII.
    EXPECT_EQ(codePoints("\x80x\xC9"), (std::vector<char32_t>{0xFFFD, U'x', 0xFFFD}));
    EXPECT_EQ(codePoints("\xE2\x80y"), (std::vector<char32_t>{0xFFFD, 0xFFFD, U'y'}));
}

TEST(RasterText, EveryPrintableCharacterAndTheIpaOfLabelsHaveGlyphsOfTheirOwn)
{
    std::u32string wanted;
    for (char32_t c = U'!'; c <= U'~'; ++c)
        wanted += c;
    wanted += U"æɑɐɒɔəɚɛɜɝɪʊʌɨʉøœɯɤŋʃʒθðɹɾʔɡɫɬɲɣχçʁʎβɸɦːˈˌʰßäöüéèêàáåíóúñ";
    std::map<std::array<std::uint8_t, kGlyphHeight>, char32_t> seen;
    for (const char32_t c : wanted) {
        const std::uint8_t* rows = glyphRows(c);
        ASSERT_NE(rows, nullptr) << "U+" << std::hex << static_cast<unsigned>(c);
        std::array<std::uint8_t, kGlyphHeight> key{};
        bool inked = false;
        for (int r = 0; r < kGlyphHeight; ++r) {
            key[r] = rows[r];
            inked = inked || rows[r] != 0;
            EXPECT_EQ(rows[r] & ~0x1F, 0) << "U+" << std::hex << static_cast<unsigned>(c); // 5 columns
        }
        EXPECT_TRUE(inked);
        // Script g is the same letter as g, and the stress mark the same stroke as the apostrophe.
        const bool twin = c == U'\u0261' || c == U'\u02C8';
        const auto [at, fresh] = seen.emplace(key, c);
        EXPECT_TRUE(fresh || twin) << "U+" << std::hex << static_cast<unsigned>(c) << " draws as U+"
                                   << static_cast<unsigned>(at->second);
    }
    EXPECT_EQ(glyphRows(U' '), nullptr);
    EXPECT_EQ(glyphRows(0xFFFD), nullptr);
}

TEST(RasterText, WidthsCountCharactersAndCombiningMarksTakeNoRoom)
{
    RasterCanvas canvas(200, 20);
    const double one = canvas.textWidth("a");
    EXPECT_EQ(one, kGlyphWidth);
    EXPECT_EQ(canvas.textWidth("\xC9\x9B"), one); // ɛ: two bytes, one glyph
    const std::string word = "bɛd";
    EXPECT_EQ(canvas.textWidth(word), canvas.textWidth("bed"));
    EXPECT_EQ(canvas.textWidth("a\xCC\x83"), one); // a + combining tilde
    EXPECT_EQ(canvas.textWidth(""), 0.0);

    // A centred IPA word is drawn where its width says, and inks as much as its glyphs hold.
    canvas.text(100.0, 10.0, word, PlotColor{}, TextAnchor::Centre);
    int expected = 0;
    for (const char32_t c : {U'b', U'\u025B', U'd'})
        for (int r = 0; r < kGlyphHeight; ++r)
            expected += std::popcount(glyphRows(c)[r]);
    const auto [inked, first] = ink(canvas, 200, 20);
    EXPECT_EQ(inked, expected);
    EXPECT_EQ(first, std::lround(100.0 - canvas.textWidth(word) / 2.0)); // b's stem is its leftmost column
}
