// Reading the phoneme table: columns by the header's names, every value checked against the
// limits of the parameter it becomes.
#include "phonemes/PhonemeInventory.h"

#include "document/ParameterDefinition.h"
#include "document/TextFields.h"
#include "phonemes/PhonemeError.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <sstream>

namespace
{

std::vector<std::string> splitTabs(std::string_view line)
{
    std::vector<std::string> fields;
    for (std::string_view field : tabSeparated(line))
        fields.emplace_back(field);
    for (std::string& f : fields) {
        while (!f.empty() && (f.back() == ' ' || f.back() == '\r'))
            f.pop_back();
        f.erase(0, f.find_first_not_of(' ') == std::string::npos ? f.size() : f.find_first_not_of(' '));
    }
    return fields;
}

std::vector<std::string> splitCommas(const std::string& text)
{
    std::vector<std::string> parts;
    std::stringstream in(text);
    std::string part;
    while (std::getline(in, part, ','))
        if (!part.empty())
            parts.push_back(part);
    return parts;
}

bool parseKind(const std::string& text, Phoneme::Kind& kind)
{
    static const char* const names[] = {"vowel", "diphthong", "stop",  "affricate", "fricative",
                                        "nasal", "liquid",    "glide", "aspirate",  "silence"};
    for (int i = 0; i < 10; ++i)
        if (text == names[i]) {
            kind = static_cast<Phoneme::Kind>(i);
            return true;
        }
    return false;
}

// The numeric columns, in the order of the default table: where each value goes and the range
// it may take (a parameter column's range is its parameter's; a second target may also be 0).
struct Column {
    const char* name;
    int row; // parameter row giving the limits, or -1
    double low, high;
    bool zeroAllowed;
    void (*set)(Phoneme&, double);
};
int whole(double v)
{
    return static_cast<int>(v);
}
const Column kColumns[] = {
    {"voiced", -1, 0, 1, false, [](Phoneme& p, double v) { p.voiced = v != 0; }},
    {"inh", -1, 0, 5000, false, [](Phoneme& p, double v) { p.inherentMS = whole(v); }},
    {"min", -1, 0, 5000, false, [](Phoneme& p, double v) { p.minimumMS = whole(v); }},
    {"f1", Row::f1, 0, 0, false, [](Phoneme& p, double v) { p.f[0] = whole(v); }},
    {"f2", Row::f2, 0, 0, false, [](Phoneme& p, double v) { p.f[1] = whole(v); }},
    {"f3", Row::f3, 0, 0, false, [](Phoneme& p, double v) { p.f[2] = whole(v); }},
    {"b1", Row::b1, 0, 0, false, [](Phoneme& p, double v) { p.b[0] = whole(v); }},
    {"b2", Row::b2, 0, 0, false, [](Phoneme& p, double v) { p.b[1] = whole(v); }},
    {"b3", Row::b3, 0, 0, false, [](Phoneme& p, double v) { p.b[2] = whole(v); }},
    {"f1b", Row::f1, 0, 0, true, [](Phoneme& p, double v) { p.fEnd[0] = whole(v); }},
    {"f2b", Row::f2, 0, 0, true, [](Phoneme& p, double v) { p.fEnd[1] = whole(v); }},
    {"f3b", Row::f3, 0, 0, true, [](Phoneme& p, double v) { p.fEnd[2] = whole(v); }},
    {"av", Row::av, 0, 0, false, [](Phoneme& p, double v) { p.av = whole(v); }},
    {"ah", Row::ah, 0, 0, false, [](Phoneme& p, double v) { p.ah = whole(v); }},
    {"af", Row::af, 0, 0, false, [](Phoneme& p, double v) { p.af = whole(v); }},
    {"ab", Row::ab, 0, 0, false, [](Phoneme& p, double v) { p.ab = whole(v); }},
    {"a2f", Row::a2f, 0, 0, false, [](Phoneme& p, double v) { p.a[0] = whole(v); }},
    {"a3f", Row::a3f, 0, 0, false, [](Phoneme& p, double v) { p.a[1] = whole(v); }},
    {"a4f", Row::a4f, 0, 0, false, [](Phoneme& p, double v) { p.a[2] = whole(v); }},
    {"a5f", Row::a5f, 0, 0, false, [](Phoneme& p, double v) { p.a[3] = whole(v); }},
    {"a6f", Row::a6f, 0, 0, false, [](Phoneme& p, double v) { p.a[4] = whole(v); }},
    {"b6f", Row::b6f, 0, 0, false, [](Phoneme& p, double v) { p.b6f = whole(v); }},
    {"fnz", Row::fnz, 0, 0, false, [](Phoneme& p, double v) { p.fnz = whole(v); }},
    {"k", -1, 0, 1, false, [](Phoneme& p, double v) { p.k = v; }},
    {"burst", -1, 0, 1000, false, [](Phoneme& p, double v) { p.burstMS = whole(v); }},
    {"vot", -1, 0, 1000, false, [](Phoneme& p, double v) { p.votMS = whole(v); }},
};
constexpr int kColumnCount = sizeof kColumns / sizeof kColumns[0];

class TableReader
{
public:
    explicit TableReader(const std::string& fileName) : m_file(fileName) {}

    [[noreturn]] void fail(const std::string& what) const
    {
        throw PhonemeError(m_file + ":" + std::to_string(m_nLine) + ": " + what);
    }

    void header(const std::vector<std::string>& fields)
    {
        m_where.assign(kColumnCount + 3, -1);
        const char* fixed[] = {"arpa", "ipa", "kind"};
        for (std::size_t i = 0; i < fields.size(); ++i) {
            int found = -1;
            for (int c = 0; c < 3; ++c)
                if (fields[i] == fixed[c])
                    found = c;
            for (int c = 0; c < kColumnCount; ++c)
                if (fields[i] == kColumns[c].name)
                    found = c + 3;
            if (found < 0)
                fail("unknown column \"" + fields[i] + "\"");
            if (m_where[found] >= 0)
                fail("column \"" + fields[i] + "\" given twice");
            m_where[found] = static_cast<int>(i);
        }
        for (int c = 0; c < kColumnCount + 3; ++c)
            if (m_where[c] < 0)
                fail(std::string("no column \"") + (c < 3 ? fixed[c] : kColumns[c - 3].name) + "\"");
        m_nFields = fields.size();
    }

    Phoneme row(const std::vector<std::string>& fields) const
    {
        if (fields.size() != m_nFields)
            fail(std::to_string(fields.size()) + " fields where the header has " + std::to_string(m_nFields));
        Phoneme p;
        p.arpa = fields[m_where[0]];
        std::transform(p.arpa.begin(), p.arpa.end(), p.arpa.begin(),
                       [](unsigned char c) { return std::toupper(c); });
        if (p.arpa.empty())
            fail("a phoneme without an ARPAbet symbol");
        p.ipa = splitCommas(fields[m_where[1]]);
        if (!parseKind(fields[m_where[2]], p.kind))
            fail("unknown kind \"" + fields[m_where[2]] + "\" of " + p.arpa);
        for (int c = 0; c < kColumnCount; ++c)
            kColumns[c].set(p, number(fields[m_where[c + 3]], kColumns[c], p.arpa));
        if (p.minimumMS > p.inherentMS)
            fail(p.arpa + ": minimum duration " + std::to_string(p.minimumMS) + " ms above the inherent " +
                 std::to_string(p.inherentMS) + " ms");
        return p;
    }

    int m_nLine = 0;

private:
    double number(const std::string& text, const Column& column, const std::string& symbol) const
    {
        double v = 0.0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), v);
        if (error != std::errc() || end != text.data() + text.size() || text.empty())
            fail(symbol + ": \"" + text + "\" is not a number (column " + column.name + ")");
        double low = column.low, high = column.high;
        if (column.row >= 0) {
            low = kFactoryParameters[column.row].minValue;
            high = kFactoryParameters[column.row].maxValue;
        }
        if (column.zeroAllowed && v == 0.0)
            return v;
        if (!(v >= low && v <= high))
            fail(symbol + ": " + column.name + " = " + text + " is outside " + std::to_string(int(low)) +
                 ".." + std::to_string(int(high)));
        return v;
    }

    std::string m_file;
    std::vector<int> m_where;
    std::size_t m_nFields = 0;
};

} // namespace

PhonemeInventory PhonemeInventory::parse(std::string_view text, const std::string& fileName)
{
    PhonemeInventory inventory;
    TableReader reader(fileName);
    bool haveHeader = false;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos)
            end = text.size();
        const std::string_view line = text.substr(start, end - start);
        start = end + 1;
        ++reader.m_nLine;
        if (line.empty() || line[0] == '#' || line.find_first_not_of(" \t\r") == std::string_view::npos)
            continue;
        const std::vector<std::string> fields = splitTabs(line);
        if (!haveHeader) {
            reader.header(fields);
            haveHeader = true;
            continue;
        }
        Phoneme p = reader.row(fields);
        if (inventory.find(p.arpa))
            reader.fail("phoneme " + p.arpa + " given twice");
        for (const std::string& ipa : p.ipa)
            inventory.m_nLongestIpa = std::max(inventory.m_nLongestIpa, ipa.size());
        inventory.m_phonemes.push_back(std::move(p));
    }
    if (inventory.m_phonemes.empty())
        reader.fail("no phonemes in the table");
    if (std::none_of(inventory.m_phonemes.begin(), inventory.m_phonemes.end(),
                     [](const Phoneme& p) { return p.silent(); }))
        reader.fail("the table has no silence");
    return inventory;
}

PhonemeInventory PhonemeInventory::readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw PhonemeError(path + ": cannot read the file");
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad())
        throw PhonemeError(path + ": cannot read the file");
    return parse(text.str(), path);
}

const PhonemeInventory& PhonemeInventory::americanEnglish()
{
    static const PhonemeInventory inventory = parse(kAmericanEnglishTable, "american-english.tsv");
    return inventory;
}

const Phoneme* PhonemeInventory::find(std::string_view arpa) const
{
    for (const Phoneme& p : m_phonemes)
        if (p.arpa.size() == arpa.size() &&
            std::equal(arpa.begin(), arpa.end(), p.arpa.begin(),
                       [](char a, char b) { return std::toupper(static_cast<unsigned char>(a)) == b; }))
            return &p;
    return nullptr;
}

const Phoneme* PhonemeInventory::findIpa(std::string_view ipa) const
{
    for (const Phoneme& p : m_phonemes)
        for (const std::string& spelling : p.ipa)
            if (spelling == ipa)
                return &p;
    return nullptr;
}

const Phoneme& PhonemeInventory::silence() const
{
    return *std::find_if(m_phonemes.begin(), m_phonemes.end(), [](const Phoneme& p) { return p.silent(); });
}
