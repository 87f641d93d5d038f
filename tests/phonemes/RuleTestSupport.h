#pragma once
// Shared by the phoneme tests: documents made by rule, their synthesis, and what the project's
// own analysis (the spectrogram's formant tracks, FFT spectra) measures in them.
#include "analysis/CMathFunc.h"
#include "display/SpectrogramComputation.h"
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

// A document made by rule, synthesized.
inline std::unique_ptr<MyDocument> synthesized(const RuleFrames& frames, int sampleRate = 11025)
{
    auto document = PhonemeDocument::make(frames, sampleRate);
    document->Synthesize();
    return document;
}

// The synthesis of a document made by rule, full scale +-1.
inline std::vector<float> synthesize(const RuleFrames& frames, int sampleRate = 11025)
{
    const auto document = synthesized(frames, sampleRate);
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

// F1 and F2 as the project's formant tracks show them: the spectrogram of the document's
// synthesis with the document's analysis settings (LPC frames as many ms long as the order,
// pre-emphasis, the tracks' bandwidth test), one column per ms; the medians of the first two
// track slots over the columns whose LPC frame lies in [fromMS, toMS).
inline std::pair<double, double> measureF1F2(const MyDocument& document, double fromMS, double toMS)
{
    const Channels& channel = *const_cast<MyDocument&>(document).getChannel(0);
    SpectrogramComputation spectrogram(SpectrogramSettings::fromDocument(document));
    const double lengthMS = 1000.0 * channel.m_dwFileLength / channel.m_dSampleRate;
    const int columns = static_cast<int>(lengthMS);
    if (!spectrogram.compute(channel, columns, 64) || !spectrogram.m_bHaveFormants)
        return {0.0, 0.0};
    const double frameMS = spectrogram.m_settings.m_nSpecLPCNumberofCoefficients;
    const double msPerColumn = lengthMS / columns;
    std::vector<double> f1s, f2s;
    for (int column = 0; column < columns; ++column) {
        const double start = column * msPerColumn;
        if (start < fromMS || start + frameMS > toMS)
            continue;
        const FormantRecord& record = spectrogram.m_phsnFormants[column];
        if (record[0] > 0 && record[1] > 0) {
            f1s.push_back(record[0]);
            f2s.push_back(record[1]);
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
