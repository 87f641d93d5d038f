// The table's frame and anchor commands: adding and removing frames, clearing anchors,
// interpolating the selected rows, and copying and pasting cells as text. The operations on the table data
// are in FrameEditing and TableEditing; here they get the table's selection, its redraw and its alerts.
#include "table/gui/mainTable.h"

#include "document/MyDocument.h"
#include "table/FrameEditing.h"
#include "table/TableClipboard.h"
#include "table/TableEditing.h"
#include "table/gui/Alert.h"
#include "table/gui/addColumns.h"

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

QRect mainTable::selectedCellBlock() const
{
    const int rows = m_pModel->rowCount();
    const int frames = m_pModel->frameCount();
    if (const auto [first, last] = selectedColumnSpan(); first >= 1)
        return QRect(QPoint(first, 0), QPoint(last, rows - 1)); // the frames, all rows
    if (const auto [first, last] = selectedRowSpan(); first >= 0)
        return QRect(QPoint(1, first), QPoint(frames, last)); // the rows, all frames
    QRect block;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        block |= QRect(QPoint(range.left(), range.top()), QPoint(range.right(), range.bottom()));
    if (block.isEmpty() && currentIndex().isValid())
        block = QRect(currentIndex().column(), currentIndex().row(), 1, 1);
    if (!block.isEmpty() && block.left() < 1)
        block.setLeft(1); // the names are not values
    return block;
}

void mainTable::copySelection()
{
    guarded(QStringLiteral("OK"), [&] {
        const QRect block = selectedCellBlock();
        if (block.isEmpty())
            return;
        const std::string text =
            copyCellsAsText(*m_pDoc, block.top(), block.bottom(), block.left(), block.right());
        if (!text.empty())
            QGuiApplication::clipboard()->setText(QString::fromStdString(text));
    });
}

void mainTable::pasteAtSelection()
{
    guarded(QStringLiteral("OK"), [&] {
        const QRect block = selectedCellBlock();
        if (block.isEmpty()) {
            Alert::show(window(), QStringLiteral("Nothing Pasted"),
                        tr("Select the frame cell where the first value goes."), QStringLiteral("OK"));
            return;
        }
        const int row = block.top();
        const int column = block.left();
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
