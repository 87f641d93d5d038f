#pragma once
// One synthesis parameter as a document defines it: names, limits, default, whether its row is
// shown, and its colour. Every channel holds 50 of these (`m_Parameters`); rows 0..47 are the
// Klatt parameters in the fixed row order below, 48 and 49 are spare.
//
// Row order (every reader and writer of the grid depends on it; high formants come first):
//   0 f0, 1 av, 2 ah, 3 af, 4 tl, 5..12 f8..f1, 13..20 b8..b1, 21 ab, 22..29 a8f..a1f,
//   30..37 b8f..b1f, 38 fnz, 39 bnz, 40 fnp, 41 bnp, 42 oq, 43 anv, 44 apv, 45 atu, 46 skew, 47 gain
// Units: f0 in 0.1 Hz, frequencies and bandwidths in Hz, amplitudes in dB, oq in samples,
// skew in half-samples.
#include "document/Color.h"

#include <cstdint>

constexpr int kParameterRecords = 50; // entries of m_Parameters
constexpr int kParameterCount = 48;   // rows that carry a parameter

struct ParameterDefinition {
    const char* strName = nullptr;       // points at a constant; not owned
    const char* strDefinition = nullptr; // likewise
    std::int32_t nDefaultValue = 0;
    std::int32_t nValue = 0;
    std::int32_t nMinValue = 0;
    std::int32_t nMaxValue = 0;
    std::uint8_t bSelected = 0;
    RGBColor16 mColor;
    Color nsSetColor; // unset for rows 23 and 47 after the factory set-up (see ParameterTable.cpp)
};

// The factory parameter table, rows 0..47 in row order (name, definition, default, min, max, shown).
struct ParameterFactoryRow {
    const char* name;
    const char* definition;
    std::int32_t defaultValue;
    std::int32_t minValue;
    std::int32_t maxValue;
    std::uint8_t selected;
};
extern const ParameterFactoryRow kFactoryParameters[kParameterCount];

// Row numbers used by name across the system.
// clang-format off
namespace Row {
enum : int {
    f0 = 0, av = 1, ah = 2, af = 3, tl = 4,
    f8 = 5, f7 = 6, f6 = 7, f5 = 8, f4 = 9, f3 = 10, f2 = 11, f1 = 12,
    b8 = 13, b7 = 14, b6 = 15, b5 = 16, b4 = 17, b3 = 18, b2 = 19, b1 = 20,
    ab = 21,
    a8f = 22, a7f = 23, a6f = 24, a5f = 25, a4f = 26, a3f = 27, a2f = 28, a1f = 29,
    b8f = 30, b7f = 31, b6f = 32, b5f = 33, b4f = 34, b3f = 35, b2f = 36, b1f = 37,
    fnz = 38, bnz = 39, fnp = 40, bnp = 41, oq = 42, anv = 43, apv = 44, atu = 45, skew = 46, gain = 47
};
} // namespace Row
// clang-format on

// The twelve rows of the sixth to eighth formants: showing any of them switches synthesis to
// 22050 Hz and eight cascade formants.
constexpr int kHighFormantRows[12] = {5, 6, 7, 13, 14, 15, 22, 23, 24, 30, 31, 32};
