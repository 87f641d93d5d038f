#include "labels/TextGridReader.h"

#include "labels/TextDecoding.h"
#include "labels/TextGridTokens.h"

#include <cmath>
#include <fstream>
#include <sstream>

namespace
{
// A fault found while reading: the line and the words of a TextGridError.
struct Fault {
    int line;
    std::string what;
};

std::string describe(const TextGridToken& t)
{
    switch (t.kind) {
    case TextGridToken::Number: {
        std::ostringstream out;
        out << t.number;
        return "the number " + out.str();
    }
    case TextGridToken::Text:
        return "the text \"" + t.text + "\"";
    case TextGridToken::Flag:
        return "<" + t.text + ">";
    case TextGridToken::Index:
        return t.text + " [" + std::to_string(static_cast<long>(t.number)) + "]";
    }
    return {};
}

std::string seconds(double value)
{
    std::ostringstream out;
    out << value << " s";
    return out.str();
}

class Reader
{
public:
    Reader(std::vector<TextGridToken> tokens, int lastLine)
        : m_tokens(std::move(tokens)), m_lastLine(lastLine)
    {
    }

    TextGrid grid()
    {
        TextGrid grid;
        header();
        grid.xmin = number("the start time of the TextGrid");
        grid.xmax = number("the end time of the TextGrid");
        if (grid.xmax < grid.xmin)
            throw Fault{m_line, "the TextGrid ends (" + seconds(grid.xmax) + ") before it starts (" +
                                    seconds(grid.xmin) + ")"};
        const TextGridToken& exists = next("<exists> or <absent>");
        if (exists.kind != TextGridToken::Flag)
            throw Fault{exists.line, "expected <exists>, found " + describe(exists)};
        const long count = exists.text == "exists" ? this->count("the number of tiers") : 0;
        for (long k = 1; k <= count; ++k) {
            blockIndex("item", k, "tier", count);
            grid.tiers.push_back(tier(k));
        }
        if (m_pos < m_tokens.size())
            throw Fault{m_tokens[m_pos].line, "more follows the " + std::to_string(count) +
                                                  " tiers the file declares: the counts do not match"};
        return grid;
    }

private:
    const TextGridToken& next(const std::string& what)
    {
        if (m_pos >= m_tokens.size())
            throw Fault{m_lastLine, "the file ends before " + what + " (it is cut short)"};
        const TextGridToken& t = m_tokens[m_pos++];
        m_line = t.line;
        return t;
    }

    double number(const std::string& what)
    {
        const TextGridToken& t = next(what);
        if (t.kind != TextGridToken::Number)
            throw Fault{t.line, "expected " + what + ", found " + describe(t) + " (do the counts match?)"};
        return t.number;
    }

    std::string text(const std::string& what)
    {
        const TextGridToken& t = next(what);
        if (t.kind != TextGridToken::Text)
            throw Fault{t.line, "expected " + what + ", found " + describe(t) + " (do the counts match?)"};
        return t.text;
    }

    long count(const std::string& what)
    {
        const double n = number(what);
        // Each element takes at least two values: a count beyond that cannot be true.
        if (n < 0 || n != std::floor(n) || n > static_cast<double>(m_tokens.size()))
            throw Fault{m_line, what + " is " + std::to_string(n) + ", which the file cannot hold"};
        return static_cast<long>(n);
    }

    // The long layout numbers its blocks ("item [2]:"); a number that is not the one expected
    // means the counts and the blocks disagree.
    void blockIndex(const char* block, long expected, const std::string& what, long count)
    {
        if (m_pos >= m_tokens.size() || m_tokens[m_pos].kind != TextGridToken::Index)
            return;
        const TextGridToken& t = m_tokens[m_pos++];
        if (t.text != block || static_cast<long>(t.number) != expected)
            throw Fault{t.line, "found " + describe(t) + " where " + what + " " + std::to_string(expected) +
                                    " of " + std::to_string(count) +
                                    " was expected: the counts do not match"};
    }

    void header()
    {
        const std::string type = text("the file type \"ooTextFile\"");
        if (type.rfind("ooTextFile", 0) != 0)
            throw Fault{m_line, "the file type is \"" + type + "\", not \"ooTextFile\""};
        const std::string kind = text("the object class \"TextGrid\"");
        if (kind.rfind("TextGrid", 0) != 0)
            throw Fault{m_line, "the object class is \"" + kind + "\", not \"TextGrid\""};
    }

    LabelTier tier(long k)
    {
        LabelTier tier;
        const std::string cls = text("the class of tier " + std::to_string(k));
        if (cls != "IntervalTier" && cls != "TextTier")
            throw Fault{m_line, "tier " + std::to_string(k) + " has the class \"" + cls +
                                    "\", neither \"IntervalTier\" nor \"TextTier\""};
        tier.isPointTier = cls == "TextTier";
        tier.name = text("the name of tier " + std::to_string(k));
        const std::string name = "tier " + std::to_string(k) + " \"" + tier.name + "\"";
        tier.xmin = number("the start time of " + name);
        tier.xmax = number("the end time of " + name);
        if (tier.xmax < tier.xmin)
            throw Fault{m_line, name + " runs backwards: it ends (" + seconds(tier.xmax) +
                                    ") before it starts (" + seconds(tier.xmin) + ")"};
        const long n = count(tier.isPointTier ? "the number of points of " + name
                                              : "the number of intervals of " + name);
        elements(tier, n, name);
        return tier;
    }

    // The intervals or the points of a tier, each read after its block number (long layout).
    void elements(LabelTier& tier, long n, const std::string& name)
    {
        const std::string element = tier.isPointTier ? "point" : "interval";
        for (long i = 1; i <= n; ++i) {
            blockIndex(tier.isPointTier ? "points" : "intervals", i, element, n);
            const std::string which = element + " " + std::to_string(i) + " of " + name;
            if (tier.isPointTier)
                point(tier, which);
            else
                interval(tier, which);
        }
    }

    void interval(LabelTier& tier, const std::string& which)
    {
        LabelInterval interval;
        interval.xmin = number("the start of " + which);
        const int line = m_line;
        interval.xmax = number("the end of " + which);
        interval.text = text("the text of " + which);
        if (interval.xmax < interval.xmin)
            throw Fault{line, which + " runs backwards: it ends (" + seconds(interval.xmax) +
                                  ") before it starts (" + seconds(interval.xmin) + ")"};
        // A small overlap is the rounding of the times as written; more is a tier out of order.
        const double tolerance = 1e-9 * std::max(1.0, std::fabs(interval.xmin));
        if (!tier.intervals.empty() && interval.xmin < tier.intervals.back().xmax - tolerance)
            throw Fault{line, which + " starts (" + seconds(interval.xmin) +
                                  ") before the one before it ends (" + seconds(tier.intervals.back().xmax) +
                                  "): the tier runs backwards"};
        tier.intervals.push_back(std::move(interval));
    }

    void point(LabelTier& tier, const std::string& which)
    {
        LabelPoint point;
        point.time = number("the time of " + which);
        const int line = m_line;
        point.text = text("the text of " + which);
        if (!tier.points.empty() && point.time < tier.points.back().time)
            throw Fault{line, which + " (" + seconds(point.time) + ") comes before the one before it (" +
                                  seconds(tier.points.back().time) + "): the tier runs backwards"};
        tier.points.push_back(std::move(point));
    }

    std::vector<TextGridToken> m_tokens;
    std::size_t m_pos = 0;
    int m_line = 1;
    int m_lastLine;
};

int lineCount(std::string_view text)
{
    int lines = 1;
    for (const char c : text)
        lines += c == '\n' ? 1 : 0;
    if (!text.empty() && text.back() == '\n')
        --lines;
    return lines;
}
} // namespace

std::string TextGridError::where() const
{
    return line > 0 ? "line " + std::to_string(line) + ": " + what : what;
}

std::string TextGridError::message(const std::string& file) const
{
    return line > 0 ? file + ", line " + std::to_string(line) + ": " + what : file + ": " + what;
}

bool readTextGrid(std::string_view bytes, TextGrid& grid, TextGridError& error)
{
    if (bytes.substr(0, 12) == "ooBinaryFile") {
        error = {0, "a binary TextGrid: save it from the annotation program as a text file"};
        return false;
    }
    std::string text;
    if (!decodeText(bytes, text, error.what)) {
        error.line = 0;
        return false;
    }
    std::vector<TextGridToken> tokens;
    if (!tokenizeTextGrid(text, tokens, error.line, error.what))
        return false;
    try {
        Reader reader(std::move(tokens), lineCount(text));
        grid = reader.grid();
    } catch (const Fault& fault) {
        error = {fault.line, fault.what};
        return false;
    }
    return true;
}

bool loadTextGridFile(const std::string& path, TextGrid& grid, std::string& message)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        message = path + ": cannot be opened";
        return false;
    }
    std::ostringstream bytes;
    bytes << in.rdbuf();
    if (in.bad()) {
        message = path + ": cannot be read";
        return false;
    }
    TextGridError error;
    if (!readTextGrid(bytes.str(), grid, error)) {
        message = error.message(path);
        return false;
    }
    return true;
}
