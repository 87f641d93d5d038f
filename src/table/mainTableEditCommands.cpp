// The table's frame and anchor commands: adding and removing frames, clearing anchors and
// interpolating the selected rows. The operations on the table data are in FrameEditing and
// TableEditing; here they get the table's selection, its redraw and its alerts.
#include "table/mainTable.h"

#include "document/MyDocument.h"
#include "table/Alert.h"
#include "table/edit/FrameEditing.h"
#include "table/edit/TableEditing.h"
#include "table/addColumns.h"

void mainTable::_editAddColumns()
{
    guarded(QStringLiteral("OK"), [&] {
        addColumns dialog(window());
        if (dialog.showInWindow(window(), m_pDoc) == addColumns::kOK)
            modifyColumns();
    });
}

void mainTable::modifyColumns()
{
    if (!::modifyColumns(*m_pDoc, selectedColumnSpan().first))
        return;
    // Rebuilt like after an undo: new columns, and data-entry views set up on the new frames.
    m_pDoc->updateChangeCount(MyDocument::ChangeDone);
    afterSnapshotRestored();
}

void mainTable::_editRemoveColumns()
{
    guarded(QStringLiteral("OK"), [&] {
        const auto [first, last] = selectedColumnSpan();
        if (!removeColumns(*m_pDoc, first, last)) {
            Alert::show(window(), QStringLiteral("No Column Selected"),
                        QStringLiteral("Select a colum or a range of clumns first."), QStringLiteral("OK"));
            return;
        }
        clearSelection();
        m_pDoc->updateChangeCount(MyDocument::ChangeDone);
        afterSnapshotRestored();
    });
}

void mainTable::_anchorRemoveSelection()
{
    guarded(QStringLiteral("OK"), [&] {
        const auto [first, last] = selectedRowSpan();
        removeAnchors(*m_pDoc, first, last);
        reloadData();
    });
}

void mainTable::_anchorRemoveAll()
{
    guarded(QStringLiteral("OK"), [&] {
        removeAllAnchors(*m_pDoc);
        reloadData();
    });
}

void mainTable::_InterpolateSelection()
{
    guarded(QStringLiteral("OK"), [&] {
        const auto [first, last] = selectedRowSpan();
        if (first < 0)
            return;
        m_pDoc->saveUndo();
        interpolateRows(*m_pDoc, first, last);
        reloadData();
        _bSynthesize = true;
        m_pDoc->updateChangeCount(MyDocument::ChangeDone);
        m_pDoc->saveRedo();
        emit documentChanged();
    });
}
