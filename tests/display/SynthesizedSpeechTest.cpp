// The analysis finds again what the project's own synthesizer was asked to say.
#include "display/SpectrogramComputation.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

// A steady vowel of one second: f0 in Hz, the first three formants in Hz.
std::unique_ptr<MyDocument> synthesizedVowel(double f0, int f1, int f2, int f3)
{
    auto document = makeTestDocument(100);
    const std::pair<int, int> values[] = {{Row::f0, static_cast<int>(f0 * 10)},
                                          {Row::f1, f1},
                                          {Row::f2, f2},
                                          {Row::f3, f3},
                                          {Row::b1, 90},
                                          {Row::b2, 110},
                                          {Row::b3, 170}};
    for (int k = 1; k <= 100; ++k)
        for (const auto& [row, value] : values)
            setValue(*document, k, row, value);
    Log::setSink([](const std::string&) {}); // the driver's progress lines
    document->Synthesize();
    Log::setSink({});
    return document;
}

} // namespace

TEST(SynthesizedSpeech, FormantsOfASynthesizedVowelAreFoundAgain)
{
    struct Case {
        double f0;
        int f1, f2, f3;
    };
    for (const Case& v : {Case{100.0, 700, 1220, 2600}, Case{130.0, 500, 1500, 2500}}) {
        const auto document = synthesizedVowel(v.f0, v.f1, v.f2, v.f3);
        Channels& audio = *document->getChannel(0);
        ASSERT_GT(audio.sampleCount(), 10000u);
        document->setAnalysisDefaults(audio.m_dSampleRate);

        SpectrogramComputation s(SpectrogramSettings::fromDocument(*document));
        ASSERT_TRUE(s.compute(audio, 100, 256));
        EXPECT_EQ(s.m_nDataStorageLength, 256); // max(11 x 14, 128, 256)
        EXPECT_EQ(s.m_nAllocatedStorageAmount, 100);
        EXPECT_TRUE(s.m_bHaveFormants);
        std::vector<double> slots[3];
        for (int i = 10; i < 90; ++i)
            for (int k = 0; k < 3; ++k)
                slots[k].push_back(s.m_phsnFormants[i][k]);
        // Normalized levels lie between 0 and the dynamic range away from the edges.
        for (int i = 10; i < 90; ++i)
            for (int y = 0; y < 256; ++y)
                ASSERT_TRUE(s.level(i, y) >= 0.0 && s.level(i, y) <= 50.0 + 1e-9) << i << "," << y;
        EXPECT_NEAR(signals::median(slots[0]), v.f1, v.f1 * 0.06) << v.f0;
        EXPECT_NEAR(signals::median(slots[1]), v.f2, v.f2 * 0.04) << v.f0;
        EXPECT_NEAR(signals::median(slots[2]), v.f3, v.f3 * 0.03) << v.f0;
    }
}
