// Reading ARPAbet and IPA phoneme strings.
#include "phonemes/PhonemeString.h"

#include "phonemes/PhonemeError.h"

#include <cctype>
#include <charconv>

namespace
{

[[noreturn]] void unknownSymbol(std::string_view symbol, std::size_t position)
{
    throw PhonemeError("unknown symbol \"" + std::string(symbol) + "\" at position " +
                       std::to_string(position));
}

// Characters before byte `offset` of UTF-8 text, plus one.
std::size_t characterPosition(std::string_view text, std::size_t offset)
{
    std::size_t position = 1;
    for (std::size_t i = 0; i < offset && i < text.size(); ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80)
            ++position;
    return position;
}

std::size_t utf8Length(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if ((lead & 0xE0) == 0xC0)
        return 2;
    if ((lead & 0xF0) == 0xE0)
        return 3;
    return 4;
}

void addMark(std::vector<PhonemeToken>& tokens, char mark, std::size_t position)
{
    PhonemeToken t;
    t.mark = mark;
    t.position = position;
    tokens.push_back(t);
}

// One ARPAbet word such as "AE1", "AA1:300" or "D?", starting at byte `at` of `text`.
void readArpabetSymbol(std::string_view text, std::size_t at, std::string_view word,
                       const PhonemeInventory& inventory, bool wordStart, std::vector<PhonemeToken>& tokens)
{
    std::string_view marks;
    while (!word.empty() && PhonemeString::isMark(word.back())) {
        marks = std::string_view(word.data() + word.size() - 1, marks.size() + 1);
        word.remove_suffix(1);
    }
    if (!word.empty()) {
        PhonemeToken t;
        t.position = characterPosition(text, at);
        t.wordStart = wordStart;
        std::string_view symbol = word;
        if (const std::size_t colon = symbol.find(':'); colon != std::string_view::npos) {
            const std::string_view ms = symbol.substr(colon + 1);
            const auto [end, error] = std::from_chars(ms.data(), ms.data() + ms.size(), t.durationMS);
            if (error != std::errc() || end != ms.data() + ms.size() || t.durationMS < 10 ||
                t.durationMS > 10000)
                throw PhonemeError("bad duration \"" + std::string(ms) + "\" at position " +
                                   std::to_string(characterPosition(text, at + colon + 1)) +
                                   " (10 to 10000 ms)");
            symbol = symbol.substr(0, colon);
        }
        if (!symbol.empty() && symbol.back() >= '0' && symbol.back() <= '2') {
            t.stress = symbol.back() - '0';
            symbol.remove_suffix(1);
        }
        t.phoneme = inventory.find(symbol);
        if (!t.phoneme || (t.stress >= 0 && !t.phoneme->syllabic()))
            unknownSymbol(word.substr(0, symbol.size() + (t.stress >= 0 ? 1 : 0)), t.position);
        // A vowel written without its digit is taken as stressed.
        if (t.phoneme->syllabic() && t.stress < 0)
            t.stress = 1;
        tokens.push_back(t);
    }
    for (std::size_t i = 0; i < marks.size(); ++i)
        addMark(tokens, marks[i], characterPosition(text, at + word.size() + i));
}

// Written without any stress mark, each word's first syllable carries the stress.
void stressFirstSyllables(std::vector<PhonemeToken>& tokens)
{
    bool stressed = false;
    for (PhonemeToken& t : tokens) {
        if (!t.phoneme || t.wordStart)
            stressed = false;
        if (t.phoneme && t.phoneme->syllabic() && !stressed) {
            t.stress = 1;
            stressed = true;
        }
    }
}

// How many bytes at text[i] carry nothing the rules use (0: none): slashes and brackets, a dot
// inside a word (a syllable break; before a space or the end it ends a sentence), length marks
// without a spelling of their own, tie bars and combining marks (syllabic, nasalised).
std::size_t silentIpaLength(std::string_view text, std::size_t i)
{
    const unsigned char c = static_cast<unsigned char>(text[i]);
    const std::string_view rest = text.substr(i);
    const bool syllableDot = c == '.' && i + 1 < text.size() &&
                             !std::isspace(static_cast<unsigned char>(text[i + 1])) && text[i + 1] != '/' &&
                             text[i + 1] != ']';
    if (c == '/' || c == '[' || c == ']' || syllableDot)
        return 1;
    if (rest.starts_with("ː") || rest.starts_with("͡") || rest.starts_with("‿") ||
        (c == 0xCC || (c == 0xCD && static_cast<unsigned char>(rest.size() > 1 ? rest[1] : 0) < 0xB0)))
        return utf8Length(c);
    return 0;
}

} // namespace

bool PhonemeString::isMark(char c)
{
    return c == ',' || c == ';' || c == ':' || c == '.' || c == '!' || c == '?';
}

PhonemeString::Kind PhonemeString::detect(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first != std::string_view::npos && (text[first] == '/' || text[first] == '['))
        return Kind::Ipa;
    for (char c : text)
        if (std::islower(static_cast<unsigned char>(c)))
            return Kind::Words;
    return Kind::Arpabet;
}

std::vector<PhonemeToken> PhonemeString::parseArpabet(std::string_view text,
                                                      const PhonemeInventory& inventory)
{
    std::vector<PhonemeToken> tokens;
    bool wordStart = true;
    std::size_t i = 0;
    while (i < text.size()) {
        if (std::isspace(static_cast<unsigned char>(text[i]))) {
            ++i;
            continue;
        }
        std::size_t end = i;
        while (end < text.size() && !std::isspace(static_cast<unsigned char>(text[end])))
            ++end;
        const std::string_view word = text.substr(i, end - i);
        if (word == "|" || word == "#") {
            wordStart = true;
        } else {
            const std::size_t before = tokens.size();
            readArpabetSymbol(text, i, word, inventory, wordStart, tokens);
            if (tokens.size() > before && (tokens.back().phoneme || tokens.back().mark))
                wordStart = tokens.back().mark != 0;
        }
        i = end;
    }
    return tokens;
}

std::vector<PhonemeToken> PhonemeString::parseIpa(std::string_view text, const PhonemeInventory& inventory)
{
    std::vector<PhonemeToken> tokens;
    bool wordStart = true;
    int stress = -1;
    std::size_t i = 0;
    while (i < text.size()) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        const std::string_view rest = text.substr(i);
        if (const std::size_t silent = silentIpaLength(text, i)) {
            i += silent;
            continue;
        }
        if (std::isspace(c)) {
            wordStart = true;
            ++i;
            continue;
        }
        if (isMark(static_cast<char>(c))) {
            addMark(tokens, static_cast<char>(c), characterPosition(text, i));
            wordStart = true;
            ++i;
            continue;
        }
        if (rest.starts_with("ˈ") || rest.starts_with("ˌ") || rest.starts_with("'")) {
            stress = rest.starts_with("ˌ") ? 2 : 1;
            i += rest.starts_with("'") ? 1 : 2;
            continue;
        }
        const Phoneme* found = nullptr;
        std::size_t length = std::min(inventory.longestIpa(), rest.size());
        for (; length > 0; --length)
            if ((found = inventory.findIpa(rest.substr(0, length))))
                break;
        if (!found)
            unknownSymbol(rest.substr(0, utf8Length(c)), characterPosition(text, i));
        PhonemeToken t;
        t.phoneme = found;
        t.position = characterPosition(text, i);
        t.wordStart = wordStart;
        if (found->syllabic()) {
            t.stress = stress < 0 ? 0 : stress;
            stress = -1;
        }
        tokens.push_back(t);
        wordStart = false;
        i += length;
    }
    if (text.find("ˈ") == std::string_view::npos && text.find("ˌ") == std::string_view::npos &&
        text.find('\'') == std::string_view::npos)
        stressFirstSyllables(tokens);
    return tokens;
}

std::vector<PhonemeToken> PhonemeString::parse(std::string_view text, const PhonemeInventory& inventory)
{
    switch (detect(text)) {
    case Kind::Ipa:
        return parseIpa(text, inventory);
    case Kind::Arpabet:
        return parseArpabet(text, inventory);
    case Kind::Words:
        break;
    }
    throw PhonemeError("\"" + std::string(text) +
                       "\" is words, not phonemes: write them in capitals (ARPAbet) "
                       "or between slashes (IPA)");
}

std::string PhonemeString::describe(const std::vector<PhonemeToken>& tokens)
{
    std::string text;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const PhonemeToken& t = tokens[i];
        if (!text.empty())
            text += (t.phoneme && t.wordStart && i > 0 && tokens[i - 1].phoneme) ? " | " : " ";
        if (!t.phoneme) {
            text += t.mark;
            continue;
        }
        text += t.phoneme->arpa;
        if (t.phoneme->syllabic())
            text += static_cast<char>('0' + (t.stress < 0 ? 0 : t.stress));
        if (t.durationMS > 0)
            text += ":" + std::to_string(t.durationMS);
    }
    return text;
}
