// The table's two selections: parameter rows, picked by their names or by clicking one of
// their cells, and frame columns, picked by their headers or by selectaColumn. They are kept
// apart from the view's cell selection, which only shows them: a clicked cell selects its row
// but never its frame, and a cell reached with the keys selects neither, so a frame command
// never takes a row for "every frame" and a row command never takes a frame for "every row".
#include "table/gui/mainTable.h"

#include "table/gui/FrozenColumnView.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMouseEvent>

#include <algorithm>

namespace
{
// (first, last) of the indices below `limit`, or (-1, -1).
std::pair<int, int> spanOf(const std::set<int>& items, int limit)
{
    const auto first = items.lower_bound(0);
    if (first == items.end() || *first >= limit)
        return {-1, -1};
    auto last = items.lower_bound(limit);
    --last;
    return {*first, *last};
}

void insertSpan(std::set<int>& items, int a, int b)
{
    for (int i = std::min(a, b); i <= std::max(a, b); ++i)
        items.insert(i);
}

// Adds each run of consecutive indices as one range: `add(first, last)`.
template <typename Add> void forEachRun(const std::set<int>& items, int limit, Add add)
{
    int first = -1, last = -1;
    for (int i : items) {
        if (i < 0 || i >= limit)
            continue;
        if (first >= 0 && i == last + 1) {
            last = i;
            continue;
        }
        if (first >= 0)
            add(first, last);
        first = last = i;
    }
    if (first >= 0)
        add(first, last);
}
} // namespace

void mainTable::setUpSelection()
{
    // The header and the names select through pressHeader and pressName, not through the
    // view's own column selection (which would mix rows and frames in one cell selection).
    for (QTableView* view : {static_cast<QTableView*>(this), static_cast<QTableView*>(m_pFrozen)}) {
        disconnect(view->horizontalHeader(), &QHeaderView::sectionPressed, view, nullptr);
        disconnect(view->horizontalHeader(), &QHeaderView::sectionEntered, view, nullptr);
    }
    connect(horizontalHeader(), &QHeaderView::sectionPressed, this,
            [this](int column) { pressHeader(column, m_pressModifiers); });
    connect(horizontalHeader(), &QHeaderView::sectionEntered, this, [this](int column) {
        if (column < 1 || m_columns.anchor < 0)
            return;
        m_columns.items = m_columns.beforeDrag;
        insertSpan(m_columns.items, m_columns.anchor, column);
        showSelection();
    });
    horizontalHeader()->viewport()->installEventFilter(this);
    m_pFrozen->viewport()->installEventFilter(this);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &mainTable::cellSelectionEdited);
    // New columns: the old column numbers mean other frames now.
    connect(m_pModel, &QAbstractItemModel::modelReset, this, &mainTable::forgetSelection);
}

bool mainTable::eventFilter(QObject* watched, QEvent* event)
{
    const bool press = event->type() == QEvent::MouseButtonPress;
    const bool move = event->type() == QEvent::MouseMove;
    if ((press || move) && watched == horizontalHeader()->viewport()) {
        if (press)
            m_pressModifiers = static_cast<QMouseEvent*>(event)->modifiers();
    } else if ((press || move) && watched == m_pFrozen->viewport()) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        const int row = m_pFrozen->rowAt(mouse->position().toPoint().y());
        if (press && mouse->button() == Qt::LeftButton && row >= 0)
            pressName(row, mouse->modifiers());
        else if (move && (mouse->buttons() & Qt::LeftButton) && row >= 0 && m_rows.anchor >= 0) {
            m_rows.items = m_rows.beforeDrag;
            insertSpan(m_rows.items, m_rows.anchor, row);
            showSelection();
        }
    }
    return QTableView::eventFilter(watched, event);
}

namespace
{
template <typename Selection> void press(Selection& s, int index, Qt::KeyboardModifiers modifiers)
{
    const bool extend = (modifiers & Qt::ShiftModifier) && s.anchor >= 0;
    const bool toggle = modifiers & Qt::ControlModifier;
    s.beforeDrag = toggle ? s.items : std::set<int>{};
    if (extend) {
        s.items = s.beforeDrag;
        insertSpan(s.items, s.anchor, index);
        return;
    }
    if (toggle) {
        if (!s.items.erase(index))
            s.items.insert(index);
    } else {
        s.items = {index};
    }
    s.anchor = index;
}
} // namespace

void mainTable::pressName(int row, Qt::KeyboardModifiers modifiers)
{
    if (row < 0 || row >= m_pModel->rowCount())
        return;
    m_columns = {};
    press(m_rows, row, modifiers);
    showSelection();
}

void mainTable::mousePressEvent(QMouseEvent* event)
{
    // The view's own cell selection lets the rows go; a Shift-click extends them from their anchor.
    const IndexSelection rowsBefore = m_rows;
    QTableView::mousePressEvent(event);
    m_rows = rowsBefore;
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || !index.isValid() || index.column() < 1 ||
        !(index.flags() & Qt::ItemIsEnabled))
        return;
    // The clicked cell stays the current one, ready for typing; its row is the selection.
    pressName(index.row(), event->modifiers());
}

void mainTable::mouseReleaseEvent(QMouseEvent* event)
{
    // Releasing over a cell that was already shown selected narrows the view's selection to it;
    // the rows the press selected stay.
    const IndexSelection rowsBefore = m_rows;
    QTableView::mouseReleaseEvent(event);
    if (m_rows.items.empty() && !rowsBefore.items.empty()) {
        m_rows = rowsBefore;
        showSelection();
    }
}

void mainTable::pressHeader(int column, Qt::KeyboardModifiers modifiers)
{
    if (column < 1 || column >= m_pModel->columnCount())
        return; // the names' header selects nothing
    m_rows = {};
    press(m_columns, column, modifiers);
    showSelection();
}

void mainTable::selectaColumn(int tableColumn)
{
    if (tableColumn < 0 || tableColumn >= m_pModel->columnCount())
        return;
    m_rows = {};
    m_columns = {};
    m_columns.items.insert(tableColumn);
    m_columns.anchor = tableColumn;
    showSelection();
    scrollTo(m_pModel->index(0, tableColumn), QAbstractItemView::EnsureVisible);
}

void mainTable::selectAll()
{
    const int rows = m_pModel->rowCount();
    if (rows == 0)
        return;
    m_columns = {};
    m_rows = {};
    insertSpan(m_rows.items, 0, rows - 1);
    m_rows.anchor = 0;
    showSelection();
}

std::pair<int, int> mainTable::selectedColumnSpan() const
{
    return spanOf(m_columns.items, m_pModel->columnCount());
}

std::pair<int, int> mainTable::selectedRowSpan() const
{
    return spanOf(m_rows.items, m_pModel->rowCount());
}

void mainTable::showSelection()
{
    const int rows = m_pModel->rowCount();
    const int columns = m_pModel->columnCount();
    QItemSelection shown;
    if (rows > 0 && columns > 0) {
        forEachRun(m_rows.items, rows, [&](int first, int last) {
            shown.select(m_pModel->index(first, 0), m_pModel->index(last, columns - 1));
        });
        forEachRun(m_columns.items, columns, [&](int first, int last) {
            shown.select(m_pModel->index(0, first), m_pModel->index(rows - 1, last));
        });
    }
    // The frame headers stand out for selected frames only, not for every frame a row crosses.
    horizontalHeader()->setHighlightSections(!m_columns.items.empty());
    m_bShowingSelection = true;
    selectionModel()->select(shown, QItemSelectionModel::ClearAndSelect);
    m_bShowingSelection = false;
    viewport()->update();
    m_pFrozen->viewport()->update();
}

void mainTable::cellSelectionEdited()
{
    if (m_bShowingSelection || (m_rows.items.empty() && m_columns.items.empty()))
        return;
    forgetSelection();
    // What stays shown is the cell the user is at, if the change selected it.
    const QModelIndex current = currentIndex();
    m_bShowingSelection = true;
    if (current.isValid() && selectionModel()->isSelected(current))
        selectionModel()->select(current, QItemSelectionModel::ClearAndSelect);
    else
        selectionModel()->clearSelection();
    m_bShowingSelection = false;
}

void mainTable::forgetSelection()
{
    m_rows = {};
    m_columns = {};
}
