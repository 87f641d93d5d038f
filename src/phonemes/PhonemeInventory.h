#pragma once
// PhonemeInventory: the phonemes synthesis by rule knows, each with its targets for the
// synthesizer's parameters, read from a tab-separated table (one row per phoneme, one column per
// target, '#' comment lines, a header line naming the columns). The default table (American
// English) is compiled into the program; a user's table replaces it.
//
// Units: frequencies and bandwidths in Hz, amplitudes in dB, durations in ms; `k` is a share
// (0..1). Every value is checked against its parameter's limits when the table is read. An
// inventory is immutable once read, so any thread may look things up in it.
#include <array>
#include <string>
#include <string_view>
#include <vector>

struct Phoneme {
    enum Kind { Vowel, Diphthong, Stop, Affricate, Fricative, Nasal, Liquid, Glide, Aspirate, Silence };

    std::string arpa;             // ARPAbet symbol, upper case
    std::vector<std::string> ipa; // IPA spellings
    Kind kind = Silence;
    bool voiced = false;
    int inherentMS = 0, minimumMS = 0;
    std::array<int, 3> f{}, b{}; // F1-F3 targets (loci of consonants) and bandwidths
    std::array<int, 3> fEnd{};   // a diphthong's second target; 0 for others
    int av = 0, ah = 0, af = 0, ab = 0;
    std::array<int, 5> a{}; // parallel amplitudes a2f .. a6f
    int b6f = 1500;         // parallel sixth-formant bandwidth
    int fnz = 270;
    double k = 0.0; // where a transition starts, as a share of the way to the vowel
    int burstMS = 0, votMS = 0;

    bool syllabic() const { return kind == Vowel || kind == Diphthong; }
    bool closure() const { return kind == Stop || kind == Affricate; }
    bool silent() const { return kind == Silence; }
};

class PhonemeInventory
{
public:
    // Reads a table from its text; `fileName` names it in messages. Throws PhonemeError
    // "FILE:LINE: what" for a missing or unknown column, a bad number, a value outside its
    // parameter's limits, a symbol given twice, or a table without phonemes.
    static PhonemeInventory parse(std::string_view text, const std::string& fileName);
    // Reads a table file; throws PhonemeError naming the file when it cannot be read.
    static PhonemeInventory readFile(const std::string& path);
    // The compiled-in American English table.
    static const PhonemeInventory& americanEnglish();

    const std::vector<Phoneme>& phonemes() const { return m_phonemes; }
    // The phoneme of an ARPAbet symbol (any case), or nullptr.
    const Phoneme* find(std::string_view arpa) const;
    // The phoneme of an IPA spelling, or nullptr.
    const Phoneme* findIpa(std::string_view ipa) const;
    // The silence every phrase starts and ends with (the table's first silence).
    const Phoneme& silence() const;
    // The longest IPA spelling of the table, in bytes (for longest-match reading).
    std::size_t longestIpa() const { return m_nLongestIpa; }

private:
    std::vector<Phoneme> m_phonemes;
    std::size_t m_nLongestIpa = 0;
};

// The text of the compiled-in table (made at build time from data/phonemes/american-english.tsv).
extern const char* const kAmericanEnglishTable;
