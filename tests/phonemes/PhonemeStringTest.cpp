// Phoneme strings: ARPAbet and IPA become the same tokens; unknown symbols are named with
// their position.
#include "phonemes/PhonemeString.h"

#include "phonemes/PhonemeError.h"

#include <gtest/gtest.h>

namespace
{

const PhonemeInventory& table()
{
    return PhonemeInventory::americanEnglish();
}

std::string arpabetOf(const std::string& text)
{
    return PhonemeString::describe(PhonemeString::parse(text, table()));
}

std::string errorOf(const std::string& text)
{
    try {
        PhonemeString::parse(text, table());
    } catch (const PhonemeError& e) {
        return e.what();
    }
    return "no error";
}

} // namespace

TEST(PhonemeString, ArpabetCarriesStressWordsPunctuationAndHeldDurations)
{
    const auto tokens = PhonemeString::parseArpabet("B AE1 D | b eh2 d, AA1:300?", table());
    // What the user is shown holds each token's phoneme, stress, duration, mark and a word's start
    // after a phoneme; the starts the text does not show are checked on their own.
    const std::string shown = PhonemeString::describe(tokens);
    EXPECT_EQ(shown, "B AE1 D | B EH2 D , AA1:300 ?");
    ASSERT_EQ(tokens.size(), 9u);
    EXPECT_TRUE(tokens[0].wordStart);
    EXPECT_TRUE(tokens[7].wordStart);
    EXPECT_EQ(tokens[7].position, 20u);
    // It reads back as the same string; a vowel without digit is stressed.
    EXPECT_EQ(arpabetOf(shown), shown);
    EXPECT_EQ(arpabetOf("HH AH L OW"), "HH AH1 L OW1");

    EXPECT_EQ(errorOf("B AE1 XX D"), "unknown symbol \"XX\" at position 7");
    EXPECT_EQ(errorOf("B1 AE1"), "unknown symbol \"B1\" at position 1");
    EXPECT_EQ(errorOf("AA1:5"), "bad duration \"5\" at position 5 (10 to 10000 ms)");
    EXPECT_EQ(errorOf("AA1:X"), "bad duration \"X\" at position 5 (10 to 10000 ms)");
    EXPECT_EQ(errorOf("a bad bed"),
              "\"a bad bed\" is words, not phonemes: write them in capitals (ARPAbet) or "
              "between slashes (IPA)");
}

TEST(PhonemeString, IpaReadsLongestSpellingsStressMarksAndWordBoundaries)
{
    EXPECT_EQ(arpabetOf("/bæd bɛd?/"), "B AE1 D | B EH1 D ?");
    EXPECT_EQ(arpabetOf("/ɐ bˈæd bˈɛd/"), "AX0 | B AE1 D | B EH1 D");
    // Diphthongs and affricates are one phoneme; long vowels, ties, syllabic marks and syllable
    // dots carry nothing more.
    EXPECT_EQ(arpabetOf("/tʃˈeɪn dʒˈʌdʒ/"), "CH EY1 N | JH AH1 JH");
    EXPECT_EQ(arpabetOf("/ʃˈiː sˌiːz/"), "SH IY1 | S IY2 Z");
    EXPECT_EQ(arpabetOf("/bˈʌʔn̩ lˈɪ.ɾəl/"), "B AH1 Q N | L IH1 DX AX0 L");
    EXPECT_EQ(arpabetOf("/t͡ʃæt/"), "T SH AE1 T");
    EXPECT_EQ(arpabetOf("/ˈaɪ, ju./"), "AY1 , Y UW0 .");

    EXPECT_EQ(errorOf("/bæq/"), "unknown symbol \"q\" at position 4");
    EXPECT_EQ(errorOf("/æ ɬ/"), "unknown symbol \"ɬ\" at position 4");

    EXPECT_EQ(PhonemeString::detect("  /bæd/"), PhonemeString::Kind::Ipa);
    EXPECT_EQ(PhonemeString::detect("B AE1 D"), PhonemeString::Kind::Arpabet);
    EXPECT_EQ(PhonemeString::detect("a bad bed"), PhonemeString::Kind::Words);
}

TEST(PhonemeString, AnyBytesAreReadOrRefusedWithAMessage)
{
    // Pieces of real input and broken UTF-8, strung together at random: every string is either
    // read or refused with a PhonemeError, never anything else.
    const std::vector<std::string> pieces = {"/", "ˈ", "ˌ",  "ː", " ", "|", "AA1",  ":300",     ":",    "?",
                                             ".", "æ", "eɪ", "t", "ʃ", "n̩", "\xCC", "\xE2\x80", "\xFF", "B",
                                             "3", "x", "͡",   "[", "]", "'", "\t",   "AX0:10",   "ɚ",    ","};
    std::uint32_t state = 12345;
    auto next = [&] { return state = state * 1664525u + 1013904223u; };
    int read = 0;
    for (int n = 0; n < 3000; ++n) {
        std::string text;
        const int count = static_cast<int>(next() % 12);
        for (int k = 0; k < count; ++k)
            text += pieces[next() % pieces.size()];
        try {
            const auto tokens = PhonemeString::parse(text, table());
            for (const PhonemeToken& t : tokens)
                ASSERT_TRUE(t.phoneme || PhonemeString::isMark(t.mark)) << text;
            ++read;
        } catch (const PhonemeError&) {
        }
    }
    EXPECT_GT(read, 20); // some strings are read, not all refused
}
