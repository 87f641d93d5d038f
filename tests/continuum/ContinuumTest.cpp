#include "continuum/Continuum.h"
#include "continuum/ContinuumWriter.h"
#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

TEST(Continuum, EndStepsAreTheDocumentsAndScalesConvertTheirUnits)
{
    auto a = makeTestDocument(20);
    auto b = makeTestDocument(20);
    // f0 in tenths of hertz: 100 Hz to 200 Hz; f2 1200 to 2200 Hz; a bandwidth and an amplitude.
    setRowValue(*a, Row::f0, 1000);
    setRowValue(*b, Row::f0, 2000);
    setRowValue(*a, Row::f2, 1200);
    setRowValue(*b, Row::f2, 2200);
    setRowValue(*a, Row::b1, 60);
    setRowValue(*b, Row::b1, 161);
    setRowValue(*b, Row::av, 51);
    // One frame apart: rows may differ in a single frame.
    a->_dataTableDictionary.cellAt(50, Row::f3)->set_nValue(2600);

    struct Case {
        FrequencyScale::Kind scale;
        int f0Mid, f2Mid;
    };
    // Midpoints on each scale (hertz, Bark, ERB-rate, mel), worked out by hand; f0 converted to
    // hertz and back (1442 on the mel scale if it were not).
    for (const Case& c : {Case{FrequencyScale::Hz, 1500, 1700}, Case{FrequencyScale::Bark, 1488, 1632},
                          Case{FrequencyScale::Erb, 1467, 1634}, Case{FrequencyScale::Mel, 1485, 1647}}) {
        ContinuumSettings settings;
        settings.steps = 3;
        settings.scale = c.scale;
        const Continuum continuum(*a, *b, settings);
        EXPECT_EQ(continuum.rows(), (std::vector<int>{Row::f0, Row::av, Row::f3, Row::f2, Row::b1}));
        const auto first = continuum.makeStep(1);
        const auto middle = continuum.makeStep(2);
        const auto last = continuum.makeStep(3);
        for (int row : continuum.rows())
            for (int frame = 1; frame <= 20; ++frame) {
                ASSERT_EQ(frameValue(*first, frame, row), frameValue(*a, frame, row)) << row << "/" << frame;
                ASSERT_EQ(frameValue(*last, frame, row), frameValue(*b, frame, row)) << row << "/" << frame;
            }
        const char* scale = FrequencyScale::name(c.scale);
        EXPECT_EQ(frameValue(*middle, 8, Row::f0), c.f0Mid) << scale;
        EXPECT_EQ(frameValue(*middle, 8, Row::f2), c.f2Mid) << scale;
        // Bandwidths and amplitudes are linear on every scale (110.5 rounds away from zero).
        EXPECT_EQ(frameValue(*middle, 8, Row::b1), 111) << scale;
        EXPECT_EQ(frameValue(*middle, 8, Row::av), 56) << scale; // 60 .. 51
        EXPECT_EQ(frameValue(*middle, 8, Row::f1), 500) << scale;
    }
}

TEST(Continuum, ChosenRowsLimitsAnchorsAndMismatches)
{
    auto a = makeTestDocument(12);
    auto b = makeTestDocument(12);
    setRowValue(*b, Row::f0, 1500);
    setRowValue(*b, Row::f1, 1200);
    // A's limits bound every step, even where B lies beyond them.
    a->getChannel(0)->m_Parameters[Row::f1].nMaxValue = 900;
    a->_dataTableDictionary.cellAt(30, Row::f1)->set_bAnchor(true);

    ContinuumSettings settings;
    settings.steps = 5;
    settings.rows = {Row::f1};
    const Continuum continuum(*a, *b, settings);
    for (int step = 1; step <= 5; ++step) {
        const auto document = continuum.makeStep(step);
        EXPECT_EQ(frameValue(*document, 5, Row::f0), 1000) << "f0 is not chosen: A's value";
        EXPECT_EQ(frameValue(*document, 5, Row::f1), std::min(900, 500 + (step - 1) * 175)) << step;
        EXPECT_TRUE(document->_dataTableDictionary.cellAt(30, Row::f1)->_bAnchor()) << "A's anchor kept";
        EXPECT_DOUBLE_EQ(continuum.rowMean(Row::f1, step), frameValue(*document, 1, Row::f1));
    }

    auto shorter = makeTestDocument(11);
    EXPECT_FALSE(Continuum::compatible(*a, *shorter));
    EXPECT_THROW(Continuum(*a, *shorter, settings), DocumentException);
    settings.steps = 1;
    EXPECT_THROW(Continuum(*a, *b, settings), DocumentException);
}

TEST(ContinuumWriter, ManifestHoldsWhatTheDocumentsHold)
{
    const TempDir folder;
    auto a = makeTestDocument(10);
    auto b = makeTestDocument(10);
    for (int frame = 1; frame <= 10; ++frame) {
        b->_dataTableDictionary.cellAt(frame * 10LL, Row::f2)->set_nValue(1000 + frame * 100);
        b->_dataTableDictionary.cellAt(frame * 10LL, Row::a2f)->set_nValue(frame * 5);
    }
    ContinuumSettings settings;
    settings.steps = 11;
    settings.scale = FrequencyScale::Bark;
    const Continuum continuum(*a, *b, settings);
    const ContinuumWriter writer(continuum, folder.path.string(), "da", false);
    EXPECT_EQ(writer.documentPath(1), folder / "da_01.stk");
    EXPECT_EQ(ContinuumWriter::stepStem("x", 7, 7), "x_7");
    EXPECT_EQ(ContinuumWriter::stepStem("x", 7, 100), "x_007");
    for (int step = 1; step <= 11; ++step)
        writer.writeStep(step);
    writer.writeManifest();

    EXPECT_EQ(slurp(writer.manifestPath()).rfind("step,weight,document,wave,f2,a2f\n", 0), 0u);
    const auto rows = readCsv(writer.manifestPath());
    ASSERT_EQ(rows.size(), 11u);
    for (int step = 1; step <= 11; ++step) {
        const auto& row = rows[static_cast<std::size_t>(step - 1)];
        EXPECT_EQ(std::stoi(row.at("step")), step);
        EXPECT_NEAR(std::stod(row.at("weight")), (step - 1) / 10.0, 1e-6);
        EXPECT_EQ(row.at("wave"), "");
        // Read the step's document back from its file and average its rows.
        MyDocument document;
        ASSERT_TRUE(openBytes(document, slurp(folder / row.at("document")))) << step;
        double f2Sum = 0, a2fSum = 0;
        for (int frame = 1; frame <= 10; ++frame) {
            f2Sum += frameValue(document, frame, Row::f2);
            a2fSum += frameValue(document, frame, Row::a2f);
        }
        EXPECT_NEAR(std::stod(row.at("f2")), f2Sum / 10, 1e-3) << step;
        EXPECT_NEAR(std::stod(row.at("a2f")), a2fSum / 10, 1e-3) << step;
    }
}
