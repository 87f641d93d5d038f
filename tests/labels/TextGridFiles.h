#pragma once
// TextGrid texts for tests, made here in both layouts: two tiers ("words", an interval tier of
// three intervals, one text with a doubled quote and one in IPA; "tones", a point tier of two
// points) over 0 .. 1.5 s. Encoders give the UTF-16 files with their byte-order marks. The
// items of one kind in one row of a label strip laid out over them, and their places; a text
// read as a TextGrid that must be accepted.
#include "labels/LabelStrip.h"
#include "labels/TextGridReader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

inline TextGrid read(const std::string& bytes)
{
    TextGrid grid;
    TextGridError error;
    EXPECT_TRUE(readTextGrid(bytes, grid, error)) << error.message("test");
    return grid;
}

inline std::vector<LabelStripItem> itemsOf(const std::vector<LabelStripItem>& items,
                                           LabelStripItem::Kind kind, std::size_t row)
{
    std::vector<LabelStripItem> out;
    for (const LabelStripItem& item : items)
        if (item.kind == kind && item.row == row)
            out.push_back(item);
    return out;
}

inline std::vector<double> xsOf(const std::vector<LabelStripItem>& items, LabelStripItem::Kind kind,
                                std::size_t row)
{
    std::vector<double> xs;
    for (const LabelStripItem& item : itemsOf(items, kind, row))
        xs.push_back(item.x);
    return xs;
}

inline std::string longTextGrid()
{
    return "File type = \"ooTextFile\"\n"
           "Object class = \"TextGrid\"\n"
           "\n"
           "xmin = 0 \n"
           "xmax = 1.5 \n"
           "tiers? <exists> \n"
           "size = 2 \n"
           "item []: \n"
           "    item [1]:\n"
           "        class = \"IntervalTier\" \n"
           "        name = \"words\" \n"
           "        xmin = 0 \n"
           "        xmax = 1.5 \n"
           "        intervals: size = 3 \n"
           "        intervals [1]:\n"
           "            xmin = 0 \n"
           "            xmax = 0.25 \n"
           "            text = \"\" \n"
           "        intervals [2]:\n"
           "            xmin = 0.25 \n"
           "            xmax = 0.8 \n"
           "            text = \"say \"\"wa\"\"\" \n"
           "        intervals [3]:\n"
           "            xmin = 0.8 \n"
           "            xmax = 1.5 \n"
           "            text = \"bɛd\" \n"
           "    item [2]:\n"
           "        class = \"TextTier\" \n"
           "        name = \"tones\" \n"
           "        xmin = 0 \n"
           "        xmax = 1.5 \n"
           "        points: size = 2 \n"
           "        points [1]:\n"
           "            number = 0.4 \n"
           "            mark = \"H*\" \n"
           "        points [2]:\n"
           "            number = 1.2 \n"
           "            mark = \"L%\" \n";
}

inline std::string shortTextGrid()
{
    return "File type = \"ooTextFile\"\n"
           "Object class = \"TextGrid\"\n"
           "\n"
           "0\n1.5\n<exists>\n2\n"
           "\"IntervalTier\"\n\"words\"\n0\n1.5\n3\n"
           "0\n0.25\n\"\"\n"
           "0.25\n0.8\n\"say \"\"wa\"\"\"\n"
           "0.8\n1.5\n\"bɛd\"\n"
           "\"TextTier\"\n\"tones\"\n0\n1.5\n2\n"
           "0.4\n\"H*\"\n"
           "1.2\n\"L%\"\n";
}

// UTF-8 to UTF-16 with a byte-order mark (code points below 0x10000 and pairs above).
inline std::string toUtf16(const std::string& utf8, bool bigEndian)
{
    std::string out = bigEndian ? std::string("\xFE\xFF") : std::string("\xFF\xFE");
    const auto put = [&](unsigned unit) {
        const char hi = static_cast<char>(unit >> 8), lo = static_cast<char>(unit & 0xFF);
        out += bigEndian ? hi : lo;
        out += bigEndian ? lo : hi;
    };
    for (std::size_t i = 0; i < utf8.size();) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        unsigned cp = c;
        std::size_t n = 1;
        if (c >= 0xF0)
            cp = c & 0x07, n = 4;
        else if (c >= 0xE0)
            cp = c & 0x0F, n = 3;
        else if (c >= 0xC0)
            cp = c & 0x1F, n = 2;
        for (std::size_t k = 1; k < n; ++k)
            cp = (cp << 6) | (static_cast<unsigned char>(utf8[i + k]) & 0x3F);
        i += n;
        if (cp >= 0x10000) {
            put(0xD800 + ((cp - 0x10000) >> 10));
            put(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            put(cp);
        }
    }
    return out;
}
