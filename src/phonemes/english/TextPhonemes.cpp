// Reading a user's input: phonemes directly, words through the phonemizer.
#include "phonemes/english/TextPhonemes.h"

#include "phonemes/PhonemeError.h"
#include "phonemes/english/EnglishPhonemizer.h"

TextPhonemes TextPhonemes::read(std::string_view text, const PhonemeInventory& inventory)
{
    if (PhonemeString::detect(text) == PhonemeString::Kind::Words)
        return readWords(text, inventory);
    TextPhonemes out;
    out.tokens = PhonemeString::parse(text, inventory);
    return out;
}

TextPhonemes TextPhonemes::readWords(std::string_view text, const PhonemeInventory& inventory)
{
    TextPhonemes out;
    out.ipa = EnglishPhonemizer::toIpa(text);
    try {
        out.tokens = PhonemeString::parseIpa(out.ipa, inventory);
    } catch (const PhonemeError& e) {
        throw PhonemeError(std::string(e.what()) + " of the words' phonemes /" + out.ipa + "/");
    }
    return out;
}
