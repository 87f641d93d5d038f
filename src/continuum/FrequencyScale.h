#pragma once
// The frequency scales a continuum is interpolated on: hertz (linear), Bark after Traunmueller
// (z = 26.81 f / (1960 + f) - 0.53), ERB-rate (21.4 log10(1 + 0.00437 f)) and mel
// (2595 log10(1 + f / 700)). Values in and out are in hertz; the scale's own unit in between.
// Plain values, any thread.
#include <string>

class FrequencyScale
{
public:
    enum Kind { Hz, Bark, Erb, Mel };

    explicit FrequencyScale(Kind kind = Hz) : m_kind(kind) {}
    Kind kind() const { return m_kind; }

    double fromHz(double hz) const;
    double toHz(double value) const;

    // "hz", "bark", "erb", "mel"; false for any other name.
    static bool parse(const std::string& name, Kind& kind);
    static const char* name(Kind kind);

private:
    Kind m_kind;
};
