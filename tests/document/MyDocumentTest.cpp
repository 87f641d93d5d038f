#include "document/MyDocument.h"
#include "document/DocumentException.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(MyDocument, NewDocumentHasFactoryGridAndSettings)
{
    MyDocument doc;
    Channels* c = doc.getChannel(0);
    EXPECT_EQ(c->m_nColumnNum, 20);
    EXPECT_EQ(c->m_nUpdateIntervalMS, 10);
    EXPECT_EQ(c->m_nParameterNumber, 31);
    EXPECT_DOUBLE_EQ(c->m_dLengthMS, 200.0);
    EXPECT_DOUBLE_EQ(c->m_dSampleRate, 11025.0);
    EXPECT_EQ(doc.fileType(), "stk");
    EXPECT_EQ(doc._nUndoRedoIndex, -1);
    EXPECT_FALSE(doc.isDocumentEdited());

    ASSERT_TRUE(doc.SetUpDataGridMemory());
    ASSERT_EQ(c->m_snppDataImage_Col_Row.size(), 22u);
    for (int col = 0; col < 20; ++col) {
        EXPECT_EQ(c->m_snppDataImage_Col_Row[col][Row::f0], 1000);
        EXPECT_EQ(c->m_snppDataImage_Col_Row[col][Row::av], 60);
        EXPECT_EQ(c->m_snppDataImage_Col_Row[col][Row::gain], 60);
    }
    // Rebuilding restores the defaults: edits are lost.
    c->m_snppDataImage_Col_Row[3][Row::f1] = 700;
    doc.SetUpDataGridMemory();
    EXPECT_EQ(c->m_snppDataImage_Col_Row[3][Row::f1], 500);

    c->m_nColumnNum = 0;
    EXPECT_TRUE(doc.SetUpDataGridMemory());
    EXPECT_EQ(c->m_snppDataImage_Col_Row.size(), 2u);
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
    EXPECT_FALSE(doc.CheckParameterNew("atv", false));
    EXPECT_TRUE(doc.CheckParameterNew("atv", true));
    EXPECT_FALSE(doc.CheckParameter("f9", true));
}

TEST(MyDocument, AnalysisDefaultsFollowTheSampleRate)
{
    MyDocument doc;
    EXPECT_EQ(doc.m_nSpecfrequencyRange, 5000);
    EXPECT_EQ(doc.m_nSpecLPCNumberofCoefficients, 14);
    EXPECT_EQ(doc.m_nLPCNumberofCoefficients, 14);
    EXPECT_EQ(doc.m_nFFTAppliedWindowLength, 23);
    doc.setAnalysisDefaults(22050.0);
    EXPECT_EQ(doc.m_nSpecfrequencyRange, 11000);
    EXPECT_EQ(doc.m_nSpecLPCNumberofCoefficients, 26);
}

TEST(MyDocument, TableDataFromRecordsAndFromGrid)
{
    MyDocument doc;
    doc.m_bgColor[2] = Color::rgb(0.5, 0.25, 1.0);
    doc.buildDataTableDictionary();
    ASSERT_EQ(doc._dataTableDictionary.count(), 21u);
    ASSERT_NE(doc._dataTableDictionary.objectForKey("0"), nullptr);
    ASSERT_NE(doc._dataTableDictionary.objectForKey("200"), nullptr);
    EXPECT_EQ(doc._dataTableDictionary.objectForKey("210"), nullptr);
    CellRef f1 = doc._dataTableDictionary.cellAt(10, Row::f1);
    EXPECT_EQ(f1->_nValue(), 500);
    EXPECT_EQ(f1->stringValue(), "500");
    EXPECT_EQ(f1->_nsbgColor(), doc.m_bgColor[2]);
    EXPECT_EQ(doc._dataTableDictionary.cellAt(10, Row::f0)->_nsbgColor(), Color::white());
    // Cells point at the constant texts, not copies.
    EXPECT_EQ(f1->_strDefinition(), doc.getChannel(0)->m_Parameters[Row::f1].strDefinition);

    // A read document takes values from the grid and anchors from the anchor list.
    Channels* c = doc.getChannel(0);
    doc.SetUpDataGridMemory();
    c->m_snppDataImage_Col_Row[4][Row::f2] = 1234;
    c->m_pAnchorPosition = {Row::f2, 4};
    doc.m_bReadFile = 1;
    c->m_nUpdateIntervalMS = 0; // repaired to 10
    doc.buildDataTableDictionary();
    EXPECT_EQ(c->m_nUpdateIntervalMS, 10);
    CellRef cell = doc._dataTableDictionary.cellAt(50, Row::f2);
    EXPECT_EQ(cell->_nValue(), 1234);
    EXPECT_TRUE(cell->_bAnchor());
    EXPECT_FALSE(doc._dataTableDictionary.cellAt(40, Row::f2)->_bAnchor());
}

TEST(Channels, FreshAndDuplicate)
{
    Channels a;
    EXPECT_DOUBLE_EQ(a.m_dSampleRate, 11025.0);
    EXPECT_EQ(a.m_nResolutionBits, 16);
    EXPECT_FALSE(a.hasAudio());
    EXPECT_EQ(*a.m_strTitle, "channel");

    Channels b;
    b.Duplicate(a); // no samples: an empty block, not a missing one
    ASSERT_TRUE(b.hasAudio());
    EXPECT_EQ(b.sampleCount(), 0u);

    a.m_hData = MemoryBlock::newHandleClear(4 * sizeof(float));
    a.m_dwFileLength = 4;
    a.samples()[3] = 0.5f;
    a.m_dSampleRate = 22050;
    a.m_bApplyCalibration = 1;
    b.Duplicate(a);
    EXPECT_EQ(b.sampleCount(), 4u);
    EXPECT_FLOAT_EQ(b.samples()[3], 0.5f);
    EXPECT_DOUBLE_EQ(b.m_dSampleRate, 22050);
    EXPECT_EQ(b.m_bApplyCalibration, 0); // the calibration switch is not copied
    *a.m_strTitle = "renamed";
    EXPECT_EQ(*b.m_strTitle, "renamed"); // the title is shared
    a.samples()[3] = 0.25f;
    EXPECT_FLOAT_EQ(b.samples()[3], 0.5f); // the samples are not
}

TEST(ImageAndTextCell, CopyLeavesTextAndIntValueParses)
{
    ImageAndTextCell a;
    a.set_nValue(42);
    a.set_bAnchor(true);
    a.setInttoStringValue(42);
    ImageAndTextCell b;
    b.setInttoStringValue(7);
    b.copy(a);
    EXPECT_EQ(b._nValue(), 42);
    EXPECT_TRUE(b._bAnchor());
    EXPECT_EQ(b.stringValue(), "7");
    b.setStringValue("  -15xyz");
    EXPECT_EQ(b.intValue(), -15);
    b.setStringValue("abc");
    EXPECT_EQ(b.intValue(), 0);
    b.setStringValue("99999999999999"); // saturates instead of wrapping
    EXPECT_EQ(b.intValue(), 2147483647);
}
