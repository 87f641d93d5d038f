// Formant tracks made synthesis rows.
#include "copysynth/FormantRows.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

constexpr int kMinSpacing = 200;
constexpr int kFreqRows[5] = {Row::f1, Row::f2, Row::f3, Row::f4, Row::f5};
constexpr int kBwRows[5] = {Row::b1, Row::b2, Row::b3, Row::b4, Row::b5};
constexpr int kFreqLow[5] = {200, 550, 1200, 1200, 1200};
constexpr int kFreqHigh[5] = {1300, 3000, 4999, 4999, 4999};
constexpr int kBwLow[5] = {40, 40, 40, 40, 40}; // the rows' minimum: voices differ widely here
constexpr int kBwHigh[5] = {400, 500, 700, 900, 1000};

// Median of the values at f-2 .. f+2 (fewer at the ends).
double median5(const std::vector<FormantFrame>& frames, std::size_t f, int k, bool bandwidth)
{
    std::array<double, 5> v{};
    int n = 0;
    for (long g = static_cast<long>(f) - 2; g <= static_cast<long>(f) + 2; ++g)
        if (g >= 0 && g < static_cast<long>(frames.size()))
            v[n++] = bandwidth ? frames[g].bw[k] : frames[g].freq[k];
    std::nth_element(v.begin(), v.begin() + n / 2, v.begin() + n);
    return v[n / 2];
}

} // namespace

void separateFormants(int freq[5], int top)
{
    for (int k = 0; k < 5; ++k)
        freq[k] = std::clamp(freq[k], kFreqLow[k], std::min(kFreqHigh[k], top));
    for (int k = 1; k < 5; ++k)
        freq[k] = std::max(freq[k], freq[k - 1] + kMinSpacing);
    // Pushed past the top: make room downwards.
    freq[4] = std::min(freq[4], top);
    for (int k = 3; k >= 0; --k)
        freq[k] = std::min(freq[k], freq[k + 1] - kMinSpacing);
}

void setFormants(std::vector<FrameValues>& frames, const FormantTrack& track, int outputRate)
{
    for (std::size_t f = 0; f < track.frames.size() && f < frames.size(); ++f) {
        FrameValues& v = frames[f];
        int freq[5];
        for (int k = 0; k < 5; ++k) {
            freq[k] = static_cast<int>(std::lround(median5(track.frames, f, k, false)));
            v[kBwRows[k]] = std::clamp(static_cast<int>(std::lround(median5(track.frames, f, k, true))),
                                       kBwLow[k], kBwHigh[k]);
        }
        // At 22050 Hz f6 takes the top of its row, so f5 stays 200 Hz below it.
        separateFormants(freq, outputRate == 22050 ? 4999 - kMinSpacing : 4999);
        for (int k = 0; k < 5; ++k)
            v[kFreqRows[k]] = freq[k];
        if (outputRate == 22050) {
            v[Row::f6] = 4999;
            v[Row::f7] = 6500;
            v[Row::f8] = 7500;
            v[Row::b6] = 1000;
            v[Row::b7] = 1500;
            v[Row::b8] = 2000;
        }
    }
}
