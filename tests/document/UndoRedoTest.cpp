#include "document/DocumentException.h"
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

namespace
{

// One edit as every editor makes it: snapshot before, change, snapshot after.
void edit(MyDocument& document, int frame, int row, int value)
{
    document.saveUndo();
    setValue(document, frame, row, value);
    document.saveRedo();
}

} // namespace

TEST(UndoRedo, SnapshotsRestoreFramesSelectionAndEveryAnchor)
{
    auto document = makeTestDocument(5, 10, 1);
    Channels* c = document->getChannel(0);
    document->m_bver50 = 1;                              // as read from a file
    frameCell(*document, 2, Row::oq)->set_bAnchor(true); // anchor on a hidden row
    frameCell(*document, 5, Row::f0)->set_bAnchor(true);
    setValue(*document, 5, Row::f0, 1234);

    // An edit that adds frames and changes what is shown.
    document->saveUndo();
    c->m_dLengthMS = 80.0;
    c->m_nColumnNum = 8;
    c->m_Parameters[Row::oq].bSelected = 1;
    c->m_Parameters[Row::f0].bSelected = 0;
    document->SetUpDataGridMemory();
    document->buildDataTableDictionary();
    setValue(*document, 8, Row::f3, 2600);
    frameCell(*document, 6, Row::f0)->set_bAnchor(true); // f0 is hidden now
    document->saveRedo();

    document->doUndo();
    EXPECT_EQ(c->m_nColumnNum, 5);
    EXPECT_DOUBLE_EQ(c->m_dLengthMS, 50.0);
    EXPECT_EQ(document->_dataTableDictionary.count(), 6u);
    EXPECT_EQ(c->m_Parameters[Row::oq].bSelected, 0);
    EXPECT_EQ(c->m_Parameters[Row::f0].bSelected, 1);
    EXPECT_TRUE(frameCell(*document, 2, Row::oq)->_bAnchor());
    EXPECT_TRUE(frameCell(*document, 5, Row::f0)->_bAnchor());
    EXPECT_FALSE(frameCell(*document, 4, Row::f0)->_bAnchor());
    EXPECT_EQ(frameValue(*document, 5, Row::f0), 1234);
    EXPECT_EQ(frameCell(*document, 5, Row::f0)->stringValue(), "1234");

    document->doRedo();
    EXPECT_EQ(c->m_nColumnNum, 8);
    EXPECT_EQ(document->_dataTableDictionary.count(), 9u);
    EXPECT_EQ(frameValue(*document, 8, Row::f3), 2600);
    EXPECT_EQ(c->m_Parameters[Row::f0].bSelected, 0);
    EXPECT_TRUE(frameCell(*document, 6, Row::f0)->_bAnchor());
    EXPECT_FALSE(frameCell(*document, 2, Row::oq)->_bAnchor());
    // Undo does not touch the file identity.
    EXPECT_EQ(document->fileType(), "stk");
    EXPECT_EQ(document->m_bver50, 1);
}

TEST(UndoRedo, AFractionalLengthComesBackExactly)
{
    // 4567 samples at 11025 Hz last 414.2403... ms: not a whole number of milliseconds.
    MyDocument document;
    const std::string recording = waveImage(1, 1, 11025, 2, 16, pcm16(std::vector<std::int16_t>(4567, 100)));
    ASSERT_TRUE(openBytes(document, recording, "wav")) << document.lastReadError();
    Channels* c = document.getChannel(0);
    const double length = c->m_dLengthMS;
    ASSERT_EQ(length, 4567 * 1000.0 / 11025);

    // A length changed by an edit comes back as it was on both sides of the edit.
    document.saveUndo();
    c->m_dLengthMS = 123.456789012345;
    c->m_nColumnNum = 12;
    document.SetUpDataGridMemory();
    document.buildDataTableDictionary();
    document.saveRedo();
    document.doUndo();
    EXPECT_EQ(c->m_dLengthMS, length);
    document.doRedo();
    EXPECT_EQ(c->m_dLengthMS, 123.456789012345);

    // The exact length is taken only when it agrees with the whole milliseconds before it.
    std::string snapshot = document.Save_STK_FileType(true);
    const std::size_t exact = snapshot.find("123.456789012345\t");
    ASSERT_NE(exact, std::string::npos) << snapshot.substr(0, 40);
    ASSERT_TRUE(document.Read_STK_FileTypeDoUndo(snapshot));
    EXPECT_EQ(c->m_dLengthMS, 123.456789012345);
    for (const char* bad : {"129.5", "nan", "-0.5", "12x", "1e308"}) {
        std::string damaged = snapshot;
        damaged.replace(exact, 16, bad);
        ASSERT_TRUE(document.Read_STK_FileTypeDoUndo(damaged)) << bad;
        EXPECT_EQ(c->m_dLengthMS, 123.0) << bad;
    }
    // A parameter document keeps whole milliseconds, as its readers expect.
    EXPECT_EQ(document.Save_STK_FileType50(true).substr(0, 15), "123\t11025\t10\t\r\n");
}

TEST(UndoRedo, DamagedSnapshotsAndUnevenListsFailCleanly)
{
    auto document = makeTestDocument(3, 10, 1);
    edit(*document, 1, Row::av, 40);
    document->_arrayUndo[0] = DocumentSnapshot::ofText("not a snapshot");
    try {
        document->doUndo();
        FAIL() << "no exception";
    } catch (const DocumentException& e) {
        EXPECT_EQ(e.name(), "Error in reading the file");
        EXPECT_FALSE(e.reason().empty());
    }
    EXPECT_FALSE(document->Read_STK_FileTypeDoUndo(""));

    // A change recorded with saveRedo alone leaves the redo list longer than the undo list:
    // undo then restores the newest "before" state instead of reading past the list.
    auto uneven = makeTestDocument(3, 10, 1);
    edit(*uneven, 1, Row::av, 41);
    setValue(*uneven, 2, Row::av, 42);
    uneven->saveRedo();
    EXPECT_EQ(uneven->_nUndoRedoIndex, 2);
    uneven->doUndo();
    EXPECT_EQ(frameValue(*uneven, 1, Row::av), 60);
    EXPECT_EQ(frameValue(*uneven, 2, Row::av), 60);
}

TEST(UndoRedo, RevertGoesBackToTheLastSave)
{
    const TempDir folder;
    const std::string path = folder / "revert.stk";
    auto document = makeTestDocument(6, 10, 1);
    EXPECT_FALSE(document->canRevert());
    EXPECT_FALSE(document->doRevertDocumentToSaved());

    setValue(*document, 3, Row::f2, 1800);
    frameCell(*document, 3, Row::f2)->set_bAnchor(true);
    std::string error;
    ASSERT_TRUE(document->writeSafelyToURL(path, "stk", &error)) << error;
    EXPECT_TRUE(document->canRevert());

    edit(*document, 3, Row::f2, 900);
    ASSERT_TRUE(document->doRevertDocumentToSaved()) << document->lastReadError();
    EXPECT_EQ(frameValue(*document, 3, Row::f2), 1800);
    EXPECT_TRUE(frameCell(*document, 3, Row::f2)->_bAnchor());
    // The reverted document starts a new history and is unchanged.
    EXPECT_FALSE(document->canUndo());
    EXPECT_TRUE(document->_arrayUndo.empty());
    EXPECT_TRUE(document->_arrayRedo.empty());
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_TRUE(document->canRevert());

    // Another type than "stk" cannot be reverted.
    document->setFileType("wav");
    EXPECT_FALSE(document->canRevert());
}
