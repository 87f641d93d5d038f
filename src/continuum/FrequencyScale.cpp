#include "continuum/FrequencyScale.h"

#include <cmath>

double FrequencyScale::fromHz(double hz) const
{
    switch (m_kind) {
    case Bark:
        return 26.81 * hz / (1960.0 + hz) - 0.53;
    case Erb:
        return 21.4 * std::log10(1.0 + 0.00437 * hz);
    case Mel:
        return 2595.0 * std::log10(1.0 + hz / 700.0);
    case Hz:
        break;
    }
    return hz;
}

double FrequencyScale::toHz(double value) const
{
    switch (m_kind) {
    case Bark: {
        // z + 0.53 = 26.81 f / (1960 + f)  =>  f = 1960 (z + 0.53) / (26.81 - (z + 0.53))
        const double u = value + 0.53;
        return 1960.0 * u / (26.81 - u);
    }
    case Erb:
        return (std::pow(10.0, value / 21.4) - 1.0) / 0.00437;
    case Mel:
        return 700.0 * (std::pow(10.0, value / 2595.0) - 1.0);
    case Hz:
        break;
    }
    return value;
}

bool FrequencyScale::parse(const std::string& name, Kind& kind)
{
    for (Kind k : {Hz, Bark, Erb, Mel})
        if (name == FrequencyScale::name(k)) {
            kind = k;
            return true;
        }
    return false;
}

const char* FrequencyScale::name(Kind kind)
{
    switch (kind) {
    case Bark:
        return "bark";
    case Erb:
        return "erb";
    case Mel:
        return "mel";
    case Hz:
        break;
    }
    return "hz";
}
