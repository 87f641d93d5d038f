#include "interchange/ParameterNames.h"

#include "document/ParameterDefinition.h"

#include <array>
#include <cctype>
#include <string>

namespace
{
struct NameRow {
    const char* name;
    int row;
};

// The varied-parameter layout's names, in the order its files list them.
const std::array<NameRow, 37> kKlpNames{{
    {"f0", Row::f0},   {"av", Row::av},   {"ah", Row::ah},   {"af", Row::af},   {"tl", Row::tl},
    {"f1", Row::f1},   {"b1", Row::b1},   {"f2", Row::f2},   {"b2", Row::b2},   {"f3", Row::f3},
    {"b3", Row::b3},   {"f4", Row::f4},   {"b4", Row::b4},   {"f5", Row::f5},   {"b5", Row::b5},
    {"f6", Row::f6},   {"b6", Row::b6},   {"fnp", Row::fnp}, {"bnp", Row::bnp}, {"fnz", Row::fnz},
    {"bnz", Row::bnz}, {"a2f", Row::a2f}, {"a3f", Row::a3f}, {"a4f", Row::a4f}, {"a5f", Row::a5f},
    {"a6f", Row::a6f}, {"ab", Row::ab},   {"b2f", Row::b2f}, {"b3f", Row::b3f}, {"b4f", Row::b4f},
    {"b5f", Row::b5f}, {"b6f", Row::b6f}, {"anv", Row::anv}, {"a1f", Row::a1f}, {"b1f", Row::b1f},
    {"an", Row::anv},  {"a1", Row::a1f},
}};
// Older names of the parallel amplitudes.
const std::array<NameRow, 5> kOlderNames{
    {{"a2", Row::a2f}, {"a3", Row::a3f}, {"a4", Row::a4f}, {"a5", Row::a5f}, {"a6", Row::a6f}}};

// The exported names: the layout's own, without a1f/b1f and the older names.
constexpr std::size_t kExported = 33;

bool sameName(std::string_view a, const char* b)
{
    std::size_t i = 0;
    for (; i < a.size() && b[i] != '\0'; ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return i == a.size() && b[i] == '\0';
}
} // namespace

int klpNameRow(std::string_view name)
{
    for (const NameRow& n : kKlpNames)
        if (sameName(name, n.name))
            return n.row;
    for (const NameRow& n : kOlderNames)
        if (sameName(name, n.name))
            return n.row;
    return -1;
}

const std::vector<int>& klpRows()
{
    static const std::vector<int> rows = [] {
        std::vector<int> r;
        for (std::size_t i = 0; i < kExported; ++i)
            r.push_back(kKlpNames[i].row);
        return r;
    }();
    return rows;
}

std::string_view klpRowName(int row)
{
    for (std::size_t i = 0; i < kExported; ++i)
        if (kKlpNames[i].row == row)
            return kKlpNames[i].name;
    return {};
}

int parameterRowNamed(std::string_view name)
{
    for (int row = 0; row < kParameterCount; ++row)
        if (sameName(name, kFactoryParameters[row].name))
            return row;
    return -1;
}
