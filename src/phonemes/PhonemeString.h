#pragma once
// PhonemeString: reading a phoneme string into tokens of the inventory.
//
// ARPAbet: symbols separated by spaces, a vowel's stress as a trailing digit (0 unstressed,
// 1 primary, 2 secondary), "|" between words, punctuation (, ; : . ! ?) on its own or at the end
// of a symbol, and an optional held duration ":MS" after a symbol ("AA1:300").
// IPA: between slashes ("/bæd/"), spaces between words, the stress marks ˈ and ˌ before a
// syllable (a string without any stresses each word's first syllable), the spellings of the
// inventory read longest first; the length mark ː joins a
// spelling that has it and is ignored otherwise, as are syllable dots, tie bars and combining
// marks. Positions in messages count characters from 1.
#include "phonemes/PhonemeInventory.h"

#include <string>
#include <string_view>
#include <vector>

struct PhonemeToken {
    const Phoneme* phoneme = nullptr; // nullptr for a punctuation mark
    char mark = 0;                    // the punctuation mark of a token without phoneme
    int stress = -1;                  // 0, 1, 2 for syllables; -1 when none was given
    int durationMS = 0;               // a duration given in the input; 0 leaves it to the rules
    bool wordStart = false;           // the first phoneme of a word
    std::size_t position = 0;         // character position in the input, from 1
};

class PhonemeString
{
public:
    enum class Kind { Arpabet, Ipa, Words };
    // What a user's input is: "/.../" IPA; no lower-case letter ARPAbet; otherwise words.
    static Kind detect(std::string_view text);

    // Throw PhonemeError "unknown symbol "X" at position N" for a symbol not in the inventory.
    static std::vector<PhonemeToken> parseArpabet(std::string_view text, const PhonemeInventory& inventory);
    // The text may keep its slashes.
    static std::vector<PhonemeToken> parseIpa(std::string_view text, const PhonemeInventory& inventory);
    // ARPAbet or IPA as detect() tells; words are refused with a PhonemeError.
    static std::vector<PhonemeToken> parse(std::string_view text, const PhonemeInventory& inventory);

    // The tokens as ARPAbet ("B AE1 D | B EH1 D ."), as the user is shown what the input became.
    static std::string describe(const std::vector<PhonemeToken>& tokens);

    static bool isMark(char c);
};
