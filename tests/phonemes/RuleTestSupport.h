#pragma once
// Shared by the phoneme tests: documents made by rule, their synthesis, and what the project's
// own analysis (LPC formants, FFT spectra) measures in them.
#include "analysis/CMathFunc.h"
#include "document/MyDocument.h"
#include "phonemes/PhonemeDocument.h"
#include "phonemes/PhonemeRules.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace ruletest
{

inline RuleFrames framesOf(const std::string& arpabet, const RuleSettings& settings = {})
{
    const PhonemeInventory& inventory = PhonemeInventory::americanEnglish();
    return PhonemeRules::frames(PhonemeString::parse(arpabet, inventory), inventory, settings);
}

// The synthesis of a document made by rule, full scale +-1.
inline std::vector<float> synthesize(const RuleFrames& frames, int sampleRate = 11025)
{
    const auto document = PhonemeDocument::make(frames, sampleRate);
    document->Synthesize();
    const MemoryBlock& block = *document->getChannel(0)->m_hData;
    const float* samples = block.floats();
    return std::vector<float>(samples, samples + block.size() / sizeof(float));
}

// The segment of a phoneme (the first with that ARPAbet symbol).
inline const Segment& segmentOf(const RuleFrames& frames, const std::string& arpa)
{
    return *std::find_if(frames.segments.begin(), frames.segments.end(),
                         [&](const Segment& s) { return s.phoneme->arpa == arpa; });
}

// F1 and F2 measured by LPC (order 14, 200 ms Hamming frames without pre-emphasis, long enough
// to span the f0 movement of an accent so that no harmonic pulls the estimate) at the middle of
// [fromMS, toMS): the medians over five frames 5 ms apart of the two lowest formants above 150 Hz.
inline std::pair<double, double> measureF1F2(const std::vector<float>& samples, double rate, double fromMS,
                                             double toMS)
{
    const int n = static_cast<int>(0.200 * rate);
    std::vector<double> f1s, f2s;
    CMathFunc math;
    const double mid = (fromMS + toMS) / 2.0;
    for (double ms = mid - 10.0; ms <= mid + 10.0; ms += 5.0) {
        const std::size_t start = static_cast<std::size_t>(ms / 1000.0 * rate) - n / 2;
        std::vector<double> frame(samples.begin() + start, samples.begin() + start + n + 1);
        const RootRecord* roots = math.DoLPC(frame.data(), 14, n, 0.0, 1, 0, 0, 5000, rate, 1, 1);
        if (!roots)
            continue;
        std::vector<double> found;
        for (int i = 0; i < roots->formantCount; ++i)
            if (roots->frequency[i] > 150.0)
                found.push_back(roots->frequency[i]);
        std::sort(found.begin(), found.end());
        if (found.size() >= 2) {
            f1s.push_back(found[0]);
            f2s.push_back(found[1]);
        }
    }
    auto median = [](std::vector<double> v) {
        if (v.empty())
            return 0.0;
        std::nth_element(v.begin(), v.begin() + v.size() / 2, v.end());
        return v[v.size() / 2];
    };
    return {median(f1s), median(f2s)};
}

// The frequency of the strongest point of the average spectrum (1024-point frames, Hamming
// window, no pre-emphasis) over [fromMS, toMS).
inline double spectralPeakHz(const std::vector<float>& samples, double rate, double fromMS, double toMS)
{
    const int n = 1024;
    std::vector<double> sum(n / 2, 0.0);
    CMathFunc math;
    for (double ms = fromMS; ms + 1000.0 * n / rate <= toMS; ms += 10.0) {
        const std::size_t start = static_cast<std::size_t>(ms / 1000.0 * rate);
        std::vector<double> frame(samples.begin() + start, samples.begin() + start + n);
        math.DoFFT_Real(frame.data(), n, 0.0, 1, 0, 0, 0, rate);
        for (int k = 0; k < n / 2; ++k)
            sum[k] += std::pow(10.0, frame[k] / 10.0);
    }
    const auto peak = std::max_element(sum.begin() + 1, sum.end()) - sum.begin();
    return peak * rate / n;
}

} // namespace ruletest
