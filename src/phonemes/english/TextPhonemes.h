#pragma once
// TextPhonemes: a user's input read as the tool and the workbench read it: "/.../" is IPA, text
// without lower-case letters is ARPAbet, anything else English words, which the phonemizer turns
// into IPA first. Any thread.
#include "phonemes/PhonemeString.h"

#include <string>
#include <string_view>
#include <vector>

struct TextPhonemes {
    std::vector<PhonemeToken> tokens;
    std::string ipa; // what the phonemizer made of words (empty for phoneme input)

    // Throws PhonemeError: an unknown symbol (named with its position; for words, the position
    // in the phonemizer's IPA, which the message quotes), or a phonemizer that cannot start.
    static TextPhonemes read(std::string_view text, const PhonemeInventory& inventory);
    // The same, taking the text as English words whatever it looks like.
    static TextPhonemes readWords(std::string_view text, const PhonemeInventory& inventory);
};
