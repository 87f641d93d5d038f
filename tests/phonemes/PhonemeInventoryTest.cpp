// The phoneme table: the compiled-in one carries the published values within the parameters'
// limits; a user's table is read by its header and refused with the file and line at fault.
#include "phonemes/PhonemeInventory.h"

#include "document/ParameterDefinition.h"
#include "phonemes/PhonemeError.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace
{

bool within(int value, int row)
{
    return value >= kFactoryParameters[row].minValue && value <= kFactoryParameters[row].maxValue;
}

const std::string kVowelRow = "AA\tɑ\tvowel\t1\t240\t100\t730\t1090\t2440\t90\t70\t150\t0\t0\t0\t60\t"
                              "0\t0\t0\t0\t0\t0\t0\t0\t1500\t270\t0\t0\t0";

// A minimal table: the header, a vowel and the silence, with one field replaceable.
std::string smallTable(const std::string& vowelRow = kVowelRow)
{
    return "# a comment\narpa\tipa\tkind\tvoiced\tinh\tmin\tf1\tf2\tf3\tb1\tb2\tb3\tf1b\tf2b\tf3b\t"
           "av\tah\taf\tab\ta2f\ta3f\ta4f\ta5f\ta6f\tb6f\tfnz\tk\tburst\tvot\n" +
           vowelRow + "\nSIL\t_\tsilence\t0\t200\t200\t500\t1500\t2500\t60\t90\t150\t0\t0\t0\t" +
           "0\t0\t0\t0\t0\t0\t0\t0\t0\t1500\t270\t0\t0\t0\n";
}

std::string errorOf(const std::string& text)
{
    try {
        PhonemeInventory::parse(text, "mine.tsv");
    } catch (const PhonemeError& e) {
        return e.what();
    }
    return "no error";
}

} // namespace

TEST(PhonemeInventory, TheBuiltInTableHoldsThePublishedValuesWithinTheLimits)
{
    const PhonemeInventory& table = PhonemeInventory::americanEnglish();
    EXPECT_GE(table.phonemes().size(), 40u);
    for (const Phoneme& p : table.phonemes()) {
        SCOPED_TRACE(p.arpa);
        EXPECT_TRUE(within(p.f[0], Row::f1) && within(p.f[1], Row::f2) && within(p.f[2], Row::f3));
        for (int i = 0; i < 3; ++i) {
            EXPECT_TRUE(within(p.b[i], Row::b1));
            EXPECT_TRUE(p.fEnd[i] == 0 || within(p.fEnd[i], Row::f1 - i));
        }
        for (int v : {p.av, p.ah, p.af, p.ab, p.a[0], p.a[1], p.a[2], p.a[3], p.a[4]})
            EXPECT_TRUE(within(v, Row::av));
        EXPECT_TRUE(within(p.fnz, Row::fnz));
        EXPECT_TRUE(within(p.b6f, Row::b6f));
        EXPECT_LE(p.minimumMS, p.inherentMS);
        EXPECT_EQ(p.kind == Phoneme::Diphthong, p.fEnd[0] > 0);
    }
    // Vowels of the 1952 averages of men, a diphthong onset of the 1995 tables, fricative
    // amplitudes of the 1980 tables (durations: PhonemeRules.DurationsFollowTheRules).
    EXPECT_EQ(table.find("iy")->f, (std::array<int, 3>{270, 2290, 3010}));
    EXPECT_EQ(table.find("AA")->f, (std::array<int, 3>{730, 1090, 2440}));
    EXPECT_EQ(table.find("ER")->f, (std::array<int, 3>{490, 1350, 1690}));
    EXPECT_EQ(table.find("EY")->f, (std::array<int, 3>{476, 2089, 2691}));
    EXPECT_EQ(table.find("S")->a[4], 52);
    EXPECT_EQ(table.find("SH")->a[1], 57);
    // IPA spellings, the silence, and what is not there.
    EXPECT_EQ(table.findIpa("æ"), table.find("AE"));
    EXPECT_EQ(table.findIpa("tʃ"), table.find("CH"));
    EXPECT_TRUE(table.silence().silent());
    EXPECT_EQ(table.find("XX"), nullptr);
    EXPECT_EQ(table.findIpa("x"), table.find("K"));
    EXPECT_EQ(table.findIpa("ɬ"), nullptr);
}

TEST(PhonemeInventory, AUsersTableIsReadByItsHeaderAndErrorsNameFileAndLine)
{
    const PhonemeInventory own = PhonemeInventory::parse(smallTable(), "mine.tsv");
    ASSERT_EQ(own.phonemes().size(), 2u);
    EXPECT_EQ(own.find("AA")->b[1], 70);
    EXPECT_EQ(own.findIpa("ɑ"), own.find("AA"));

    // Columns in another order are read by name.
    std::string swapped = smallTable();
    swapped.replace(swapped.find("arpa\tipa"), 8, "ipa\tarpa");
    swapped.replace(swapped.find("AA\tɑ"), std::string("AA\tɑ").size(), "ɑ\tAA");
    swapped.replace(swapped.find("SIL\t_"), 5, "_\tSIL");
    EXPECT_EQ(PhonemeInventory::parse(swapped, "mine.tsv").find("AA")->f[0], 730);

    auto withField = [&](int field, const std::string& value) {
        std::string row = kVowelRow;
        std::size_t start = 0;
        for (int i = 0; i < field; ++i)
            start = row.find('\t', start) + 1;
        return smallTable(row.replace(start, row.find('\t', start) - start, value));
    };
    EXPECT_EQ(errorOf(withField(6, "1400")), "mine.tsv:3: AA: f1 = 1400 is outside 200..1300");
    EXPECT_EQ(errorOf(withField(7, "12x")), "mine.tsv:3: AA: \"12x\" is not a number (column f2)");
    EXPECT_EQ(errorOf(withField(2, "vowl")), "mine.tsv:3: unknown kind \"vowl\" of AA");
    EXPECT_EQ(errorOf(withField(5, "300")),
              "mine.tsv:3: AA: minimum duration 300 ms above the inherent 240 ms");
    EXPECT_EQ(errorOf(smallTable(kVowelRow + "\t5")), "mine.tsv:3: 30 fields where the header has 29");
    EXPECT_EQ(errorOf(smallTable(kVowelRow + "\n" + kVowelRow)), "mine.tsv:4: phoneme AA given twice");
    std::string noColumn = smallTable();
    noColumn.replace(noColumn.find("\tvot"), 4, "\tvto");
    EXPECT_EQ(errorOf(noColumn), "mine.tsv:2: unknown column \"vto\"");
    EXPECT_EQ(errorOf("# nothing\n"), "mine.tsv:1: no phonemes in the table");
    std::string noSilence = smallTable();
    noSilence.replace(noSilence.find("silence"), 7, "vowel");
    EXPECT_EQ(errorOf(noSilence), "mine.tsv:4: the table has no silence");

    const std::filesystem::path missing = std::filesystem::temp_directory_path() / "no-such-table.tsv";
    try {
        PhonemeInventory::readFile(missing.string());
        ADD_FAILURE() << "a missing file was read";
    } catch (const PhonemeError& e) {
        EXPECT_EQ(std::string(e.what()), missing.string() + ": cannot read the file");
    }
}
