#include "InterchangeRefusal.h"
#include "document/ParameterDefinition.h"
#include "interchange/Interchange.h"
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"

#include <gtest/gtest.h>

namespace
{
ImportedDocument importKlp(const std::string& text)
{
    return importDocument(text, "stimulus.klp");
}

// A stimulus as the older tools write it: comments, constants (some with no row here), a
// table at 5 ms with a notes column, f0 in tenths of Hz.
const char* const kStimulus = "# da-ta continuum, step 3\n"
                              "# made by hand\n"
                              "du 60\n"
                              "ui 10\n"
                              "sr 10000\n"
                              "nf 5\n"
                              "f4 3300\n"
                              "b4 250\n"
                              "__varied_params__\n"
                              "_msec  f0    av   f1   f2   oq  notes\n"
                              "0      1200  0    300  1700 50  burst here\n"
                              "# a comment inside the table\n"
                              "20     1100  60   501  1500 50\n"
                              "40     1000  60   700  1200 50  steady   vowel\n";
} // namespace

TEST(KlpImport, ReadsConstantsAndInterpolatesTheTableOntoTheFrames)
{
    ImportedDocument imported = importKlp(kStimulus);
    MyDocument& d = *imported.document;
    const Channels& c = *d.getChannel(0);
    EXPECT_EQ(c.m_nUpdateIntervalMS, 10);
    EXPECT_EQ(c.m_nColumnNum, 6); // du 60 at 10 ms
    EXPECT_DOUBLE_EQ(c.m_dLengthMS, 60.0);
    // Frames start at 0, 10, 20, ...: between the 0 and 20 ms rows, the midpoint.
    EXPECT_EQ(frameValue(d, 1, Row::f0), 1200);
    EXPECT_EQ(frameValue(d, 2, Row::f0), 1150);
    EXPECT_EQ(frameValue(d, 3, Row::f0), 1100);
    EXPECT_EQ(frameValue(d, 2, Row::av), 30);
    EXPECT_EQ(frameValue(d, 4, Row::f1), 601); // 600.5, rounded
    EXPECT_EQ(frameValue(d, 4, Row::f2), 1350);
    // After the last row the values are held.
    EXPECT_EQ(frameValue(d, 6, Row::f2), 1200);
    // Constants fill every frame; rows the file does not name keep their defaults.
    for (int frame = 1; frame <= 6; ++frame) {
        EXPECT_EQ(frameValue(d, frame, Row::f4), 3300);
        EXPECT_EQ(frameValue(d, frame, Row::b4), 250);
        EXPECT_EQ(frameValue(d, frame, Row::f3), 2500);
        EXPECT_EQ(frameValue(d, frame, Row::oq), 20); // oq here is in samples, not per cent: not taken
    }
    // One warning line names what has no row here.
    ASSERT_EQ(imported.warnings.size(), 1u);
    EXPECT_NE(imported.warnings[0].find("sr, nf, oq"), std::string::npos) << imported.warnings[0];
}

TEST(KlpImport, TakesEitherMarkerTheLengthFromTheLastRowAndCountsClampedValues)
{
    ImportedDocument a = importKlp("_varied_params_\nmsec f0 f1\n0 1000 500\n5 1000 550\n10 1000 600\n"
                                   "15 1000 9000\n");
    const Channels& c = *a.document->getChannel(0);
    // No du, no ui: the document's own 10 ms frames, the last time point plus one frame.
    EXPECT_EQ(c.m_nUpdateIntervalMS, 10);
    EXPECT_EQ(c.m_nColumnNum, 2);
    EXPECT_EQ(frameValue(*a.document, 2, Row::f1), 600);
    EXPECT_TRUE(a.warnings.empty());
    // A value beyond the row's limits is clamped and counted; below as well.
    ImportedDocument b = importKlp("__varied_params__\n_msec f1 av\n0 9000 -5\n10 100 20\n");
    EXPECT_EQ(b.document->m_nClampedValues, 3);
    EXPECT_EQ(frameValue(*b.document, 1, Row::f1), 1300);
    EXPECT_EQ(frameValue(*b.document, 1, Row::av), 0);
    EXPECT_EQ(frameValue(*b.document, 2, Row::f1), 200);
    ASSERT_EQ(b.warnings.size(), 1u);
    EXPECT_NE(b.warnings[0].find("3 values were outside"), std::string::npos) << b.warnings[0];
    // Constants alone, with a length, make a document too; older names map to their rows.
    ImportedDocument d = importKlp("du 30\nui 5\na3 45\nan 12\n");
    EXPECT_EQ(d.document->getChannel(0)->m_nColumnNum, 6);
    EXPECT_EQ(frameValue(*d.document, 6, Row::a3f), 45);
    EXPECT_EQ(frameValue(*d.document, 6, Row::anv), 12);
    // A table that starts late holds its first row before it.
    ImportedDocument late = importKlp("du 30\n__varied_params__\n_msec f1\n15 400\n25 600\n");
    EXPECT_EQ(frameValue(*late.document, 1, Row::f1), 400);
}

TEST(KlpImport, RefusesWhatItCannotReadNamingTheLine)
{
    expectRefused("du 50\n__varied_params__\ntime f0\n0 1000\n", "stimulus.klp", 3, "not msec");
    expectRefused("du 50\n__varied_params__\nmsec f0 f1\n0 1000 500\n10 1000\n", "stimulus.klp", 5,
                  "2 values where the header names 3");
    expectRefused("__varied_params__\nmsec f0\n0 1000\n20 1000\n10 1000\n", "stimulus.klp", 5, "goes back");
    expectRefused("__varied_params__\nmsec f0\n0 abc\n", "stimulus.klp", 3, "\"abc\"");
    expectRefused("du 50\nf0 1000 extra\n", "stimulus.klp", 2, "");
    expectRefused("# nothing\n__varied_params__\n", "stimulus.klp", 0, "no header");
    expectRefused("f0 1000\n", "stimulus.klp", 0, "no length");
    expectRefused("du 7200000\nf0 1000\n", "stimulus.klp", 0, "one hour");
    expectRefused("du 3\n", "stimulus.klp", 0, "shorter than one frame");
    expectRefused("ui 0\ndu 30\n", "stimulus.klp", 0, "ui");
    expectRefused("__varied_params__\nmsec f1 F1\n0 1 2\n", "stimulus.klp", 0, "twice");
}

TEST(KlpExport, RoundTripsEveryRowTheLayoutHolds)
{
    auto document = makeTestDocument(24, 5, 1);
    // A different value in every frame of some rows, a constant in others, off the defaults.
    for (int frame = 1; frame <= 24; ++frame) {
        setValue(*document, frame, Row::f0, 900 + 7 * frame);
        setValue(*document, frame, Row::f1, 250 + 31 * frame);
        setValue(*document, frame, Row::a4f, frame % 40);
        setValue(*document, frame, Row::anv, 33);
        setValue(*document, frame, Row::bnz, 100 + frame);
    }
    setValue(*document, 2, Row::b2f, 333); // one frame apart is not a constant
    const std::string klp = exportDocument(*document, InterchangeFormat::Klp);
    EXPECT_NE(klp.find("du 120\nui 5\n"), std::string::npos) << klp;
    EXPECT_NE(klp.find("\nanv 33\n"), std::string::npos) << klp; // constant rows are constants
    ImportedDocument back = importKlp(klp);
    EXPECT_TRUE(back.warnings.empty()) << back.warnings.front();
    ASSERT_EQ(back.document->getChannel(0)->m_nColumnNum, 24);
    ASSERT_EQ(back.document->getChannel(0)->m_nUpdateIntervalMS, 5);
    for (const int row : {Row::f0, Row::av,  Row::ah,  Row::af,  Row::tl,  Row::f1,  Row::f2,  Row::f3,
                          Row::f4, Row::f5,  Row::f6,  Row::b1,  Row::b6,  Row::a2f, Row::a4f, Row::a6f,
                          Row::ab, Row::b2f, Row::b6f, Row::fnp, Row::bnp, Row::fnz, Row::bnz, Row::anv})
        for (int frame = 1; frame <= 24; ++frame)
            ASSERT_EQ(frameValue(*back.document, frame, row), frameValue(*document, frame, row))
                << "row " << row << " frame " << frame;
}
