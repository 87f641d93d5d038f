#include "labels/TextGridReader.h"
#include "labels/TextGridFiles.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <regex>

namespace
{
void expectTheTwoTiers(const TextGrid& grid, const char* layout)
{
    SCOPED_TRACE(layout);
    EXPECT_DOUBLE_EQ(grid.xmin, 0.0);
    EXPECT_DOUBLE_EQ(grid.xmax, 1.5);
    ASSERT_EQ(grid.tiers.size(), 2u);
    const LabelTier& words = grid.tiers[0];
    EXPECT_EQ(words.name, "words");
    EXPECT_FALSE(words.isPointTier);
    ASSERT_EQ(words.intervals.size(), 3u);
    EXPECT_EQ(words.intervals[0].text, "");
    EXPECT_DOUBLE_EQ(words.intervals[1].xmin, 0.25);
    EXPECT_DOUBLE_EQ(words.intervals[1].xmax, 0.8);
    EXPECT_EQ(words.intervals[1].text, "say \"wa\"");
    EXPECT_EQ(words.intervals[2].text, "bɛd");
    const LabelTier& tones = grid.tiers[1];
    EXPECT_EQ(tones.name, "tones");
    EXPECT_TRUE(tones.isPointTier);
    ASSERT_EQ(tones.points.size(), 2u);
    EXPECT_DOUBLE_EQ(tones.points[0].time, 0.4);
    EXPECT_EQ(tones.points[0].text, "H*");
    EXPECT_DOUBLE_EQ(tones.points[1].time, 1.2);
    EXPECT_EQ(tones.points[1].text, "L%");
}

std::string withCrLf(const std::string& text)
{
    return std::regex_replace(text, std::regex("\n"), "\r\n");
}

TextGridError refusal(const std::string& bytes)
{
    TextGrid grid;
    grid.xmax = 99.0; // must survive a refused read
    TextGridError error;
    EXPECT_FALSE(readTextGrid(bytes, grid, error));
    EXPECT_DOUBLE_EQ(grid.xmax, 99.0);
    EXPECT_TRUE(grid.tiers.empty());
    return error;
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}
} // namespace

TEST(TextGridReader, ReadsBothLayoutsInEveryEncoding)
{
    expectTheTwoTiers(read(longTextGrid()), "long UTF-8");
    expectTheTwoTiers(read(shortTextGrid()), "short UTF-8");
    expectTheTwoTiers(read("\xEF\xBB\xBF" + longTextGrid()), "long UTF-8 with BOM");
    expectTheTwoTiers(read(withCrLf(longTextGrid())), "long CR LF");
    expectTheTwoTiers(read(toUtf16(longTextGrid(), true)), "long UTF-16 BE");
    expectTheTwoTiers(read(toUtf16(longTextGrid(), false)), "long UTF-16 LE");
    expectTheTwoTiers(read(toUtf16(shortTextGrid(), true)), "short UTF-16 BE");
    expectTheTwoTiers(read(toUtf16(withCrLf(shortTextGrid()), false)), "short UTF-16 LE CR LF");
    // The "ooTextFile short" type and the "time =" name of newer point tiers read the same.
    std::string newer = replaced(longTextGrid(), "\"ooTextFile\"", "\"ooTextFile short\"");
    newer = replaced(newer, "number = 0.4", "time = 0.4");
    expectTheTwoTiers(read(newer), "variant names");
}

TEST(TextGridReader, TextsKeepTheirCharactersAndTiersMayBeEmptyOrMany)
{
    // A character beyond the 16-bit plane (a surrogate pair in UTF-16), a text over two lines.
    std::string grid = replaced(shortTextGrid(), "\"L%\"", "\"\xF0\x9F\x94\x8A\nnext\"");
    EXPECT_EQ(read(toUtf16(grid, false)).tiers[1].points[1].text, "\xF0\x9F\x94\x8A\nnext");
    // Latin-1 (not valid UTF-8) is taken as such.
    EXPECT_EQ(read(replaced(shortTextGrid(), "\"H*\"", "\"caf\xE9\"")).tiers[1].points[0].text,
              "caf\xC3\xA9");
    // No tiers at all, and many tiers.
    EXPECT_TRUE(read("File type = \"ooTextFile\"\nObject class = \"TextGrid\"\n0\n2\n<absent>\n").empty());
    std::string many = "File type = \"ooTextFile\"\nObject class = \"TextGrid\"\n0\n1\n<exists>\n40\n";
    for (int k = 0; k < 40; ++k)
        many += "\"IntervalTier\"\n\"t" + std::to_string(k) + "\"\n0\n1\n2\n0\n0.5\n\"a\"\n0.5\n1\n\"b\"\n";
    const TextGrid forty = read(many);
    ASSERT_EQ(forty.tiers.size(), 40u);
    EXPECT_EQ(forty.tiers[39].name, "t39");
    EXPECT_EQ(forty.tiers[39].intervals[1].text, "b");
}

TEST(TextGridReader, RefusesDamagedFilesNamingTheReasonAndTheLine)
{
    // Cut short at every line of the long layout: never accepted, always a line inside the file.
    const std::string full = longTextGrid(), brief = shortTextGrid();
    for (std::size_t at = full.find('\n'); at + 1 < full.size(); at = full.find('\n', at + 1))
        EXPECT_GE(refusal(full.substr(0, at + 1)).line, 1) << "cut after byte " << at;
    struct Case {
        std::string bytes;
        const char* reason;
        int line; // 0: any
    };
    const Case cases[] = {
        // Cut in the middle of a text: the line where the text opens.
        {full.substr(0, full.find("say") + 2), "never closed", 22},
        // An interval that starts before the one before it ends, one that ends before it starts,
        // a point before the one before it, a tier that ends before it starts.
        {replaced(full, "xmin = 0.8", "xmin = 0.7"), "runs backwards", 24},
        {replaced(full, "xmax = 0.8", "xmax = 0.2"), "runs backwards", 0},
        {replaced(full, "number = 1.2", "number = 0.3"), "point 2 of tier 2 \"tones\"", 37},
        {replaced(brief, "\"words\"\n0\n1.5", "\"words\"\n2\n1.5"), "runs backwards", 0},
        // Four intervals declared, three present (the block numbers give it away); two declared.
        {replaced(full, "intervals: size = 3", "intervals: size = 4"), "counts do not match", 27},
        {replaced(full, "intervals: size = 3", "intervals: size = 2"), "counts", 0},
        // Short layout: one tier declared, two present (where the second begins); three declared.
        {replaced(brief, "<exists>\n2", "<exists>\n1"), "counts do not match", 22},
        {replaced(brief, "<exists>\n2", "<exists>\n3"), "ends before", 0},
        // A count too large: the next value is not the time it should be; counts no file could
        // hold are refused before anything is made of them.
        {replaced(brief, "0\n1.5\n3\n", "0\n1.5\n4\n"), "do the counts match", 0},
        {replaced(brief, "0\n1.5\n3\n", "0\n1.5\n3000000000\n"), "cannot hold", 0},
        // Not a TextGrid, or not one this reader takes.
        {"ooBinaryFile\x08TextGrid", "binary", 0},
        {"", "ends before", 0},
        {replaced(full, "\"TextGrid\"", "\"Pitch\""), "not \"TextGrid\"", 0},
        {replaced(full, "\"TextTier\"", "\"Tier\""), "neither", 0},
        {toUtf16(full, true) + "x", "UTF-16", 0},
        {replaced(full, "xmax = 0.25", "xmax = 1e999"), "not a number", 0},
    };
    for (const Case& c : cases) {
        const TextGridError error = refusal(c.bytes);
        EXPECT_NE(error.what.find(c.reason), std::string::npos) << c.reason << ": " << error.what;
        EXPECT_TRUE(c.line == 0 || error.line == c.line) << c.reason << ": line " << error.line;
    }
}

TEST(TextGridReader, FindsTheSegmentOfATimeAndFileMessagesNameTheFileAndLine)
{
    const TextGrid grid = read(longTextGrid());
    EXPECT_EQ(grid.segmentAt(0.1), "");            // the first interval is empty
    EXPECT_EQ(grid.segmentAt(0.25), "say \"wa\""); // an interval owns its start
    EXPECT_EQ(grid.segmentAt(0.79), "say \"wa\"");
    EXPECT_EQ(grid.segmentAt(0.8), "bɛd");
    EXPECT_EQ(grid.segmentAt(1.5), "bɛd"); // the last owns its end too
    EXPECT_EQ(grid.segmentAt(1.6), "");
    EXPECT_EQ(grid.intervalAt(1, 0.4), nullptr); // a point tier has no intervals

    // Files: messages name the file and the line.
    const std::string path = testing::TempDir() + "damaged.TextGrid";
    std::ofstream(path, std::ios::binary) << replaced(longTextGrid(), "xmin = 0.8", "xmin = 0.7");
    TextGrid loaded;
    std::string message;
    EXPECT_FALSE(loadTextGridFile(path, loaded, message));
    EXPECT_EQ(message.rfind(path + ", line 24: interval 3 of tier 1 \"words\"", 0), 0u) << message;
    EXPECT_FALSE(loadTextGridFile(path + ".missing", loaded, message));
    EXPECT_NE(message.find(".missing"), std::string::npos);
    std::ofstream(path, std::ios::binary) << shortTextGrid();
    EXPECT_TRUE(loadTextGridFile(path, loaded, message)) << message;
    EXPECT_EQ(loaded.tiers.size(), 2u);
    std::remove(path.c_str());
}
