// The table's frame and anchor commands: adding and removing frames, clearing anchors,
// interpolating the selected rows, and copying and pasting cells as text. The operations on the table data
// are in FrameEditing and TableEditing; here they get the table's selection, its redraw and its alerts.
#include "table/mainTable.h"

#include "document/MyDocument.h"
#include "table/Alert.h"
#include "table/FrameEditing.h"
#include "table/TableClipboard.h"
#include "table/TableEditing.h"
#include "table/addColumns.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QItemSelectionModel>

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

void mainTable::copySelection()
{
    guarded(QStringLiteral("OK"), [&] {
        const auto [firstRow, lastRow] = selectedRowSpan();
        const auto [firstColumn, lastColumn] = selectedColumnSpan();
        const std::string text = copyCellsAsText(*m_pDoc, firstRow, lastRow, firstColumn, lastColumn);
        if (!text.empty())
            QGuiApplication::clipboard()->setText(QString::fromStdString(text));
    });
}

void mainTable::pasteAtSelection()
{
    guarded(QStringLiteral("OK"), [&] {
        int row = selectedRowSpan().first;
        const auto [column0, lastColumn] = selectedColumnSpan();
        // A whole row (selected by its name) takes the values from its first frame on.
        int column = column0 == 0 && lastColumn >= 1 ? 1 : column0;
        if (row < 0 && currentIndex().isValid()) {
            row = currentIndex().row();
            column = currentIndex().column();
        }
        if (row < 0 || column < 1) {
            Alert::show(window(), QStringLiteral("Nothing Pasted"),
                        tr("Select the frame cell where the first value goes."), QStringLiteral("OK"));
            return;
        }
        const std::string text = QGuiApplication::clipboard()->text().toStdString();
        const PasteOutcome outcome = pasteCellsFromText(*m_pDoc, row, column, text);
        if (!outcome.pasted) {
            Alert::show(window(), QStringLiteral("Nothing Pasted"), QString::fromStdString(outcome.message),
                        QStringLiteral("OK"));
            return;
        }
        reloadData();
        // The pasted cells stay selected, so that they can be seen and copied again.
        selectionModel()->select(
            QItemSelection(m_pModel->index(row, column),
                           m_pModel->index(row + outcome.rows - 1, column + outcome.frames - 1)),
            QItemSelectionModel::ClearAndSelect);
        _bSynthesize = true;
        emit documentChanged();
    });
}
