#include "SynthesisTestSupport.h"

#include "document/DocumentException.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace
{

// A new document with its table data built and breathiness off in every column, so that its
// synthesis is the same on every run.
class SynthesizeTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Log::setSink([](const std::string&) {});
        rebuild();
    }
    void TearDown() override { Log::setSink({}); }

    void rebuild()
    {
        doc.buildDataTableDictionary();
        setRow(Row::atu, 0);
    }
    Channels& ch0() { return *doc.getChannel(0); }
    int columns() { return ch0().m_nColumnNum; }
    CellArray& column(int c) { return *doc._dataTableDictionary.objectForKey(c * ch0().m_nUpdateIntervalMS); }
    void setRow(int row, int value)
    {
        for (int c = 0; c <= columns(); ++c)
            column(c)[row]->set_nValue(value);
    }
    std::vector<float> audio(int channel, MyDocument* of = nullptr)
    {
        const Channels& c = *(of ? of : &doc)->getChannel(channel);
        return std::vector<float>(c.samples(), c.samples() + c.sampleCount());
    }
    // What the driver should produce: the engine run on columns 1.. of the table data.
    std::vector<float> expectedAudio(int rate, int cascade)
    {
        const int perFrame = ch0().m_nUpdateIntervalMS * rate / 1000;
        klatt_global_t g = preparedRun(rate, cascade, perFrame);
        std::vector<float> out;
        std::vector<int> frameOut(perFrame);
        CKlattEngine engine;
        for (int c = 1; c < columns(); ++c) {
            klatt_frame_t f{};
            for (int i = 0; i < klatt_frame_t::kFieldCount; ++i)
                f[i] = column(c)[i]->_nValue();
            engine.parwave(&g, &f, frameOut.data());
            for (int v : frameOut)
                out.push_back(static_cast<float>(v / 32768.0));
        }
        return out;
    }

    MyDocument doc;
};

} // namespace

TEST_F(SynthesizeTest, AudioIsTheEngineRunOverColumnsFromOneIntervalCutToTheLength)
{
    // 10 ms frames of 110 samples leave 115 of 2205 silent; 40 ms frames of 441 fill 200 ms
    // exactly; 50 ms holds 551 of the 2090 samples made, the rest is dropped; 3 s frames (33075
    // samples, longer than a second) leave the last of three columns unsynthesized.
    struct Case {
        int interval, columns;
        double lengthMS;
        std::size_t samples, synthesized;
    };
    for (const Case& c : {Case{10, 20, 200.0, 2205, 2090}, Case{40, 6, 200.0, 2205, 2205},
                          Case{10, 20, 50.0, 551, 551}, Case{3000, 3, 9000.0, 99225, 66150}}) {
        ch0().m_nUpdateIntervalMS = c.interval;
        ch0().m_nColumnNum = c.columns;
        ch0().m_dLengthMS = c.lengthMS;
        rebuild();
        // Column 0 (time 0) is never synthesized: give it a pitch no other column has.
        column(0)[Row::f0]->set_nValue(2500);
        for (int k = 1; k <= columns(); ++k) {
            column(k)[Row::f0]->set_nValue(900 + 20 * k);
            column(k)[Row::f1]->set_nValue(300 + 25 * k);
        }
        ch0().m_dSampleRate = 44100; // replaced: only two rates exist
        doc.Synthesize();
        EXPECT_EQ(ch0().m_dSampleRate, 11025.0);
        EXPECT_EQ(ch0().m_bIncraseSampleRate, 0);
        ASSERT_EQ(ch0().m_hData->size(), c.samples * 4);
        std::vector<float> want = expectedAudio(11025, 5);
        ASSERT_GE(want.size(), c.synthesized) << c.interval;
        want.resize(c.synthesized);
        want.resize(c.samples, 0.0f);
        EXPECT_EQ(audio(0), want) << c.interval << " ms frames, " << c.lengthMS << " ms";
    }
}

TEST_F(SynthesizeTest, AnyHighFormantParameterSwitchesTo22050Hz)
{
    ch0().m_Parameters[Row::a6f].bSelected = 1; // only a6f
    rebuild();
    column(3)[Row::f7]->set_nValue(5000); // only the eight-formant cascade hears f7
    doc.Synthesize();
    EXPECT_EQ(ch0().m_bIncraseSampleRate, 1);
    EXPECT_EQ(ch0().sampleCount(), 4410u);
    const std::vector<float> want = expectedAudio(22050, 8);
    const std::vector<float> got = audio(0);
    EXPECT_EQ(std::vector<float>(got.begin(), got.begin() + want.size()), want);
    EXPECT_NE(want, expectedAudio(22050, 5));

    ch0().m_Parameters[Row::a6f].bSelected = 0;
    doc.Synthesize();
    EXPECT_EQ(ch0().m_dSampleRate, 11025.0);
    EXPECT_EQ(ch0().m_bIncraseSampleRate, 0);
}

TEST_F(SynthesizeTest, OneColumnOrMissingColumnsGiveSilence)
{
    ch0().m_nColumnNum = 1;
    doc.Synthesize();
    EXPECT_EQ(audio(0), std::vector<float>(2205, 0.0f));

    // Columns missing from the table data read as all-zero frames: unvoiced and silent.
    ch0().m_nColumnNum = 20;
    for (int c = 1; c <= 20; ++c)
        doc._dataTableDictionary.removeObjectForKey(std::to_string(c * 10));
    doc.Synthesize();
    EXPECT_EQ(audio(0), std::vector<float>(2205, 0.0f));
}

TEST_F(SynthesizeTest, FlagsLogLinesAndSizesThatCannotBeMade)
{
    std::string log;
    Log::setSink([&log](const std::string& text) { log += text; });
    ch0().m_bSynthesize = 1;
    ch0().m_bSampleRateChanged = 1;
    ch0().m_nUpdateIntervalMS = 0; // repaired to 10
    doc.Synthesize();
    EXPECT_EQ(log, "strat synthesize\nend synthesize\ndone synthesize\n");
    EXPECT_EQ(ch0().m_bSynthesize, 0);
    EXPECT_EQ(ch0().m_bSampleRateChanged, 0);
    EXPECT_EQ(ch0().m_nUpdateIntervalMS, 10);
    EXPECT_EQ(ch0().sampleCount(), 2205u);

    ch0().m_dLengthMS = 1e30;
    try {
        doc.Synthesize();
        FAIL() << "no exception";
    } catch (const DocumentException& e) {
        EXPECT_EQ(e.name(), "Memory Error");
        EXPECT_EQ(e.reason(), "Unable to allocate memory");
    }
    // The previous synthesis was kept before the audio was replaced.
    EXPECT_EQ(doc.getChannel(1)->sampleCount(), 2205u);

    ch0().m_dLengthMS = -5.0; // a negative length gives an empty block, not a failure
    doc.Synthesize();
    ASSERT_TRUE(ch0().hasAudio());
    EXPECT_EQ(ch0().sampleCount(), 0u);

    // A frame too long to count in 32 bits is refused, like memory that cannot be had.
    ch0().m_dLengthMS = 200.0;
    ch0().m_nUpdateIntervalMS = 2147483647;
    EXPECT_THROW(doc.Synthesize(), DocumentException);
}

TEST_F(SynthesizeTest, SamplesBeyondFullScaleAreCountedWithTheirPeak)
{
    doc.Synthesize();
    EXPECT_EQ(doc.m_nClippedSamples, 0);
    EXPECT_EQ(doc.clippingReport(), "");
    // Below full scale the peak is the loudest sample's, before it is rounded to 16 bits.
    const std::vector<float> quiet = audio(0);
    const auto [low, high] = std::minmax_element(quiet.begin(), quiet.end());
    EXPECT_NEAR(doc.m_dPeakLevel, std::max(-*low, *high), 1.0 / 32768);

    // Loud voicing at full gain: the limited samples are the ones at full scale, and the peak
    // before limiting lies above it.
    setRow(Row::av, 87);
    setRow(Row::gain, 87);
    doc.Synthesize();
    const std::vector<float> samples = audio(0);
    const auto atLimit = std::count_if(samples.begin(), samples.end(),
                                       [](float s) { return s == -1.0f || s == 32767.0f / 32768.0f; });
    ASSERT_GT(doc.m_nClippedSamples, 0);
    EXPECT_EQ(doc.m_nClippedSamples, atLimit);
    const std::string report = doc.clippingReport();
    const std::string start = std::to_string(atLimit) + " samples clipped (peak ";
    ASSERT_EQ(report.substr(0, start.size()), start) << report;
    EXPECT_GT(std::stod(report.substr(start.size())), 0.0) << "a peak above full scale is above 0 dB";
    EXPECT_EQ(report.substr(report.size() - 4), " dB)");

    // The count belongs to the last synthesis only.
    setRow(Row::gain, 40);
    doc.Synthesize();
    EXPECT_EQ(doc.m_nClippedSamples, 0);
}

TEST_F(SynthesizeTest, SilentSynthesisIsReportedAsClippingIs)
{
    EXPECT_FALSE(doc.isSilent()) << "nothing is silent before a synthesis";
    EXPECT_EQ(doc.synthesisWarning(), "");
    doc.Synthesize();
    EXPECT_FALSE(doc.isSilent());
    EXPECT_EQ(doc.synthesisWarning(), "");

    // A gain between 4 and 15, or no voicing, writes nothing but zeros into a WAVE file.
    for (const auto& [row, value] : {std::pair{Row::gain, 10}, std::pair{Row::av, 0}}) {
        setRow(Row::gain, 60);
        setRow(Row::av, 60);
        setRow(Row::ah, 0);
        setRow(Row::af, 0);
        setRow(row, value);
        doc.Synthesize();
        const std::string image = doc.save_Wave_FileType();
        EXPECT_TRUE(std::all_of(image.begin() + 48, image.end(), [](char b) { return b == 0; })) << row;
        ASSERT_TRUE(doc.isSilent()) << "row " << row;
        EXPECT_NE(doc.synthesisWarning().find("silent"), std::string::npos) << doc.synthesisWarning();
        EXPECT_EQ(doc.clippingReport(), "");
    }
}

TEST_F(SynthesizeTest, ADocumentWithoutTableDataIsSynthesizedFromItsGridOrItsParameters)
{
    // A read document whose table data was never built sounds as it does once it is built: from
    // its grid, or without one from the parameters' own values.
    auto source = makeTestDocument(30, 10, 1);
    for (int k = 1; k <= 30; ++k) {
        setValue(*source, k, Row::f0, 900 + 13 * k);
        setValue(*source, k, Row::f2, 1200 + 31 * k);
        setValue(*source, k, Row::atu, 0);
    }
    const std::string text = source->parameterDocumentText(true);
    for (const bool withGrid : {true, false}) {
        MyDocument unbuilt, built;
        for (MyDocument* d : {&unbuilt, &built}) {
            ASSERT_EQ(d->Read_STK_FileType(text), 0);
            if (!withGrid) {
                d->getChannel(0)->m_snppDataImage_Col_Row.clear();
                d->getChannel(0)->m_Parameters[Row::atu].nValue = 0; // no noise
            }
        }
        built.m_bReadFile = 1;
        built.buildDataTableDictionary();
        unbuilt.Synthesize();
        built.Synthesize();
        EXPECT_TRUE(unbuilt._dataTableDictionary.empty());
        const std::vector<float> a = audio(0, &unbuilt);
        ASSERT_EQ(a.size(), 3307u);
        EXPECT_EQ(audio(0, &built), a) << withGrid;
        EXPECT_NE(*std::max_element(a.begin(), a.end()), 0.0f);
    }
}

TEST_F(SynthesizeTest, PreviousSynthesisMovesToChannelOneAndTheTailIsSilentWhateverTheMemoryHeld)
{
    // Blocks are not cleared before the frames are written: the part after the last frame must
    // be cleared all the same. Syntheses of the same size that fill their whole block are made
    // and dropped first, so that their memory is handed out again.
    const auto loud = [] {
        MyDocument other;
        other.getChannel(0)->m_nColumnNum = 22; // 21 frames: more than the 200 ms hold
        other.buildDataTableDictionary();
        other.Synthesize();
        other.Synthesize();
        return other.getChannel(0)->sampleCount();
    };
    ASSERT_EQ(loud(), 2205u);
    ch0().m_nColumnNum = 20; // 19 frames of 110 samples: 2090, the last 115 silent
    rebuild();
    doc.Synthesize();
    const std::vector<float> first = audio(0);
    ASSERT_EQ(first.size(), 2205u);
    EXPECT_TRUE(std::all_of(first.begin() + 2090, first.end(), [](float s) { return s == 0.0f; }));
    EXPECT_NE(first[2089], 0.0f);
    EXPECT_EQ(audio(1), first); // the first synthesis is copied to channel 1 too
    EXPECT_EQ(doc.getChannel(1)->m_dSampleRate, 11025.0);

    loud();
    setRow(Row::f0, 1400);
    doc.Synthesize(); // the previous synthesis moves to channel 1, the new one gets a fresh block
    EXPECT_EQ(audio(1), first);
    const std::vector<float> second = audio(0);
    ASSERT_NE(second, first);
    setRow(Row::f0, 1000);
    loud();
    doc.Synthesize();
    EXPECT_EQ(audio(0), first);
    EXPECT_EQ(audio(1), second);
}
