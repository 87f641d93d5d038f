#include "labels/TextGridReader.h"
#include "labels/TextGridFiles.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace
{
TextGrid read(const std::string& bytes)
{
    TextGrid grid;
    TextGridError error;
    EXPECT_TRUE(readTextGrid(bytes, grid, error)) << error.message("test");
    return grid;
}

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
    EXPECT_EQ(words.intervals[2].text, "b\xC9\x9B"
                                       "d");
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
    std::string out;
    for (const char c : text)
        out += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return out;
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

TEST(TextGridReader, RefusesDamagedFilesNamingTheLine)
{
    // Cut short at every line of the long layout: never accepted, always a line inside the file.
    const std::string whole = longTextGrid();
    for (std::size_t at = whole.find('\n'); at + 1 < whole.size(); at = whole.find('\n', at + 1)) {
        TextGrid grid;
        TextGridError error;
        if (readTextGrid(whole.substr(0, at + 1), grid, error))
            ADD_FAILURE() << "accepted when cut after byte " << at;
        else
            EXPECT_GE(error.line, 1) << error.what;
    }
    // Cut in the middle of a text: the line where the text opens.
    TextGridError cut = refusal(whole.substr(0, whole.find("say") + 2));
    EXPECT_EQ(cut.line, 22);
    EXPECT_NE(cut.what.find("never closed"), std::string::npos) << cut.what;

    // An interval that starts before the one before it ends.
    TextGridError back = refusal(replaced(whole, "xmin = 0.8", "xmin = 0.7"));
    EXPECT_EQ(back.line, 24);
    EXPECT_NE(back.what.find("runs backwards"), std::string::npos) << back.what;
    // An interval that ends before it starts, a point before the one before it.
    EXPECT_NE(refusal(replaced(whole, "xmax = 0.8", "xmax = 0.2")).what.find("runs backwards"),
              std::string::npos);
    const TextGridError points = refusal(replaced(whole, "number = 1.2", "number = 0.3"));
    EXPECT_EQ(points.line, 37);
    EXPECT_NE(points.what.find("point 2 of tier 2 \"tones\""), std::string::npos) << points.what;
    // A tier that ends before it starts.
    EXPECT_NE(refusal(replaced(shortTextGrid(), "\"words\"\n0\n1.5", "\"words\"\n2\n1.5"))
                  .what.find("runs backwards"),
              std::string::npos);
}

TEST(TextGridReader, RefusesCountsThatDoNotMatch)
{
    // Long layout: four intervals declared, three present; the block numbers give it away.
    const TextGridError fewer =
        refusal(replaced(longTextGrid(), "intervals: size = 3", "intervals: size = 4"));
    EXPECT_EQ(fewer.line, 27);
    EXPECT_NE(fewer.what.find("counts do not match"), std::string::npos) << fewer.what;
    // Two intervals declared, three present.
    EXPECT_NE(
        refusal(replaced(longTextGrid(), "intervals: size = 3", "intervals: size = 2")).what.find("counts"),
        std::string::npos);
    // Short layout: one tier declared, two present; three declared, two present.
    const TextGridError extra = refusal(replaced(shortTextGrid(), "<exists>\n2", "<exists>\n1"));
    EXPECT_EQ(extra.line, 22); // where the second tier begins
    EXPECT_NE(extra.what.find("counts do not match"), std::string::npos) << extra.what;
    EXPECT_NE(refusal(replaced(shortTextGrid(), "<exists>\n2", "<exists>\n3")).what.find("ends before"),
              std::string::npos);
    // Short layout, a point count too large: the next value is not the time it should be.
    EXPECT_NE(
        refusal(replaced(shortTextGrid(), "0\n1.5\n3\n", "0\n1.5\n4\n")).what.find("do the counts match"),
        std::string::npos);
    // Counts that no file could hold are refused before anything is made of them.
    EXPECT_NE(
        refusal(replaced(shortTextGrid(), "0\n1.5\n3\n", "0\n1.5\n3000000000\n")).what.find("cannot hold"),
        std::string::npos);
}

TEST(TextGridReader, RefusesWhatIsNotATextGrid)
{
    EXPECT_NE(refusal("ooBinaryFile\x08TextGrid").what.find("binary"), std::string::npos);
    EXPECT_NE(refusal("").what.find("ends before"), std::string::npos);
    EXPECT_NE(refusal(replaced(longTextGrid(), "\"TextGrid\"", "\"Pitch\"")).what.find("not \"TextGrid\""),
              std::string::npos);
    EXPECT_NE(refusal(replaced(longTextGrid(), "\"TextTier\"", "\"Tier\"")).what.find("neither"),
              std::string::npos);
    EXPECT_NE(refusal(toUtf16(longTextGrid(), true) + "x").what.find("UTF-16"), std::string::npos);
    EXPECT_NE(refusal(replaced(longTextGrid(), "xmax = 0.25", "xmax = 1e999")).what.find("not a number"),
              std::string::npos);
}

TEST(TextGridReader, FindsTheSegmentOfATime)
{
    const TextGrid grid = read(longTextGrid());
    EXPECT_EQ(grid.segmentAt(0.1), "");            // the first interval is empty
    EXPECT_EQ(grid.segmentAt(0.25), "say \"wa\""); // an interval owns its start
    EXPECT_EQ(grid.segmentAt(0.79), "say \"wa\"");
    EXPECT_EQ(grid.segmentAt(0.8), "b\xC9\x9B"
                                   "d");
    EXPECT_EQ(grid.segmentAt(1.5), "b\xC9\x9B"
                                   "d"); // the last owns its end too
    EXPECT_EQ(grid.segmentAt(1.6), "");
    EXPECT_EQ(grid.intervalAt(1, 0.4), nullptr); // a point tier has no intervals
}

TEST(TextGridReader, FileMessagesNameTheFileAndLine)
{
    const std::string path = testing::TempDir() + "damaged.TextGrid";
    std::ofstream(path, std::ios::binary) << replaced(longTextGrid(), "xmin = 0.8", "xmin = 0.7");
    TextGrid grid;
    std::string message;
    EXPECT_FALSE(loadTextGridFile(path, grid, message));
    EXPECT_EQ(message.rfind(path + ", line 24: interval 3 of tier 1 \"words\"", 0), 0u) << message;
    EXPECT_FALSE(loadTextGridFile(path + ".missing", grid, message));
    EXPECT_NE(message.find(".missing"), std::string::npos);
    std::ofstream(path, std::ios::binary) << shortTextGrid();
    EXPECT_TRUE(loadTextGridFile(path, grid, message)) << message;
    EXPECT_EQ(grid.tiers.size(), 2u);
    std::remove(path.c_str());
}
