// The table's Add Frames command and its dialog, run on a real table under the offscreen
// platform; the checks are on the document. (Remove Frames and the row commands, with the
// selections they take: SelectionTest.cpp.)
#include "FramesInTable.h"
#include "support/ModalAnswers.h"
#include "table/gui/addColumns.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QSpinBox>

namespace
{
// Five frames.
struct FrameCommands : FramesInTable {
    void SetUp() override { open(5, 700, 900); }
};
} // namespace

TEST_F(FrameCommands, DialogShowsAndStoresTheRememberedSettingsOnlyOnOK)
{
    doc._nindexModifyColumn = 1;
    doc._nDurationModifyColumn = 70;
    // Other settings chosen, then Cancel, then OK: the dialog shows what is remembered, and only
    // OK stores what was chosen.
    for (const bool ok : {false, true}) {
        addColumns dialog;
        whenModal<addColumns>([ok](addColumns* d) {
            EXPECT_EQ(d->_groupLocation()->checkedId(), 1);
            EXPECT_EQ(d->_duration()->value(), 70);
            d->_groupLocation()->button(0)->setChecked(true);
            d->_duration()->setValue(40);
            ok ? d->oktButton() : d->canceltButton();
        });
        EXPECT_EQ(dialog.showInWindow(nullptr, &doc), ok ? 1000 : 1001);
        EXPECT_EQ(doc._nindexModifyColumn, ok ? 0 : 1);
        EXPECT_EQ(doc._nDurationModifyColumn, ok ? 40 : 70);
    }
}

TEST_F(FrameCommands, AddFramesCommandInsertsAfterTheSelectedFrame)
{
    doc._nindexModifyColumn = 1;
    doc._nDurationModifyColumn = 20;
    table->selectaColumn(2);
    whenModal<addColumns>([](addColumns* d) { d->oktButton(); });
    table->_editAddColumns();

    EXPECT_EQ(f0s(), (std::vector<int>{1001, 1002, 1000, 1000, 1003, 1004, 1005}));
    EXPECT_EQ(table->model()->columnCount(), 8);
    EXPECT_TRUE(table->_bSynthesize);
    EXPECT_TRUE(doc.isDocumentEdited());
    EXPECT_EQ(doc._arrayUndo.size(), 1u);

    // Undo returns to the five frames (what the document's undo restores: UndoHistoryTest.cpp).
    table->undo();
    EXPECT_EQ(table->model()->columnCount(), 6);
}
