#include "document/MyDocument.h"

#include <gtest/gtest.h>

TEST(MyDocument, NewDocumentHasFactoryGridAndAnalysisSettings)
{
    MyDocument doc;
    Channels* c = doc.getChannel(0);
    EXPECT_EQ(c->m_nParameterNumber, 31);
    EXPECT_EQ(doc.m_nLPCNumberofCoefficients, 14);
    EXPECT_EQ(doc.m_nFFTAppliedWindowLength, 23);
    // Rebuilding restores the defaults: edits are lost.
    ASSERT_TRUE(doc.SetUpDataGridMemory());
    c->m_snppDataImage_Col_Row[3][Row::f1] = 700;
    doc.SetUpDataGridMemory();
    EXPECT_EQ(c->m_snppDataImage_Col_Row[3][Row::f1], 500);
}

TEST(MyDocument, ParameterTableQuirksAreKept)
{
    MyDocument doc;
    for (int ch = 0; ch < 4; ++ch) {
        const auto& p = doc.getChannel(ch)->m_Parameters;
        EXPECT_STREQ(p[Row::ah].strDefinition, " ah = Amplitude fo aspiration in dB (0 - 87) ");
        EXPECT_STREQ(p[Row::f6].strDefinition, " f6 = Sixth  formant frequency in Hz (1200 - 4999) ");
        EXPECT_EQ(p[Row::f6].nDefaultValue, 4990);
        EXPECT_EQ(p[Row::atu].nMaxValue, 87);
        EXPECT_FALSE(p[23].nsSetColor.isSet);
        EXPECT_FALSE(p[47].nsSetColor.isSet);
        EXPECT_TRUE(p[48].nsSetColor.isSet);
        EXPECT_TRUE(p[22].nsSetColor.isSet);
        EXPECT_EQ(p[Row::apv].bSelected, 1);
        EXPECT_EQ(p[Row::oq].bSelected, 0);
    }
    EXPECT_TRUE(doc.CheckParameterNew("b3f", false));
    EXPECT_FALSE(doc.CheckParameter("f9", true));
}

TEST(MyDocument, TableDataTakesGroupColoursAndRepairsTheInterval)
{
    // (Values and anchors from the grid: CellStorage.ColumnsAreMadeWhenFirstLookedUp...)
    MyDocument doc;
    doc.m_bgColor[2] = Color::rgb(0.5, 0.25, 1.0);
    doc.getChannel(0)->m_nUpdateIntervalMS = 0;
    doc.buildDataTableDictionary();
    EXPECT_EQ(doc.getChannel(0)->m_nUpdateIntervalMS, 10);
    EXPECT_EQ(doc._dataTableDictionary.cellAt(10, Row::f1)->_nsbgColor(), doc.m_bgColor[2]);
    EXPECT_EQ(doc._dataTableDictionary.cellAt(10, Row::f0)->_nsbgColor(), Color::white());
}
