// English words through the phonemizer.
#include "phonemes/english/TextPhonemes.h"

#include "phonemes/PhonemeError.h"

#include <gtest/gtest.h>

TEST(EnglishText, WordsBecomeTheInventorysPhonemesWithTheirPunctuation)
{
    const PhonemeInventory& table = PhonemeInventory::americanEnglish();
    const TextPhonemes bad = TextPhonemes::read("a bad bed", table);
    EXPECT_EQ(PhonemeString::describe(bad.tokens), "AX0 | B AE1 D | B EH1 D");
    EXPECT_FALSE(bad.ipa.empty());
    const TextPhonemes question = TextPhonemes::read("yes, she sells shoes?", table);
    EXPECT_EQ(PhonemeString::describe(question.tokens), "Y EH1 S , SH IY0 | S EH1 L Z | SH UW1 Z ?");
    // Phonemes are read as phonemes, even through the same door.
    EXPECT_EQ(PhonemeString::describe(TextPhonemes::read("B AE1 D", table).tokens), "B AE1 D");
    EXPECT_EQ(PhonemeString::describe(TextPhonemes::read("/bæd/", table).tokens), "B AE1 D");
    // "loch" ends in the velar fricative, read as /k/.
    EXPECT_EQ(PhonemeString::describe(TextPhonemes::read("loch", table).tokens), "L AA1 K");
    // A table without /b/: the message names the symbol and quotes the words' IPA.
    std::string text = kAmericanEnglishTable;
    const std::size_t b = text.find("\nB\tb\t");
    text.erase(b + 1, text.find('\n', b + 1) - b);
    const PhonemeInventory withoutB = PhonemeInventory::parse(text, "without-b.tsv");
    try {
        TextPhonemes::read("a bad bed", withoutB);
        ADD_FAILURE() << "no error";
    } catch (const PhonemeError& e) {
        EXPECT_EQ(std::string(e.what()),
                  "unknown symbol \"b\" at position 3 of the words' phonemes /ɐ bˈæd bˈɛd/");
    }
}
