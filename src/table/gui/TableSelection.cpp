#include "table/gui/TableSelection.h"

#include "table/gui/FrozenColumnView.h"
#include "table/gui/ParameterTableModel.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMouseEvent>
#include <QTableView>

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

TableSelection::TableSelection(QTableView& view, ParameterTableModel& model, FrozenColumnView& frozen)
    : QObject(&view), m_view(view), m_model(model), m_frozen(frozen)
{
    // The header and the names select through pressHeader and pressName, not through the
    // view's own column selection (which would mix rows and frames in one cell selection).
    for (QTableView* v : {&m_view, static_cast<QTableView*>(&m_frozen)}) {
        disconnect(v->horizontalHeader(), &QHeaderView::sectionPressed, v, nullptr);
        disconnect(v->horizontalHeader(), &QHeaderView::sectionEntered, v, nullptr);
    }
    connect(m_view.horizontalHeader(), &QHeaderView::sectionPressed, this,
            [this](int column) { pressHeader(column, m_pressModifiers); });
    connect(m_view.horizontalHeader(), &QHeaderView::sectionEntered, this, [this](int column) {
        if (column < 1 || m_columns.anchor < 0)
            return;
        m_columns.items = m_columns.beforeDrag;
        insertSpan(m_columns.items, m_columns.anchor, column);
        show();
    });
    m_view.horizontalHeader()->viewport()->installEventFilter(this);
    m_frozen.viewport()->installEventFilter(this);
    connect(m_view.selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &TableSelection::cellSelectionEdited);
    // New columns: the old column numbers mean other frames now.
    connect(&m_model, &QAbstractItemModel::modelReset, this, &TableSelection::forget);
}

bool TableSelection::eventFilter(QObject* watched, QEvent* event)
{
    const bool press = event->type() == QEvent::MouseButtonPress;
    const bool move = event->type() == QEvent::MouseMove;
    if ((press || move) && watched == m_view.horizontalHeader()->viewport()) {
        if (press)
            m_pressModifiers = static_cast<QMouseEvent*>(event)->modifiers();
    } else if ((press || move) && watched == m_frozen.viewport()) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        const int row = m_frozen.rowAt(mouse->position().toPoint().y());
        if (press && mouse->button() == Qt::LeftButton && row >= 0)
            pressName(row, mouse->modifiers());
        else if (move && (mouse->buttons() & Qt::LeftButton) && row >= 0 && m_rows.anchor >= 0) {
            m_rows.items = m_rows.beforeDrag;
            insertSpan(m_rows.items, m_rows.anchor, row);
            show();
        }
    }
    return QObject::eventFilter(watched, event);
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

void TableSelection::pressName(int row, Qt::KeyboardModifiers modifiers)
{
    if (row < 0 || row >= m_model.rowCount())
        return;
    m_columns = {};
    press(m_rows, row, modifiers);
    show();
}

void TableSelection::cellPress(QMouseEvent* event, const std::function<void()>& viewPress)
{
    // The view's own cell selection lets the rows go; a Shift-click extends them from their anchor.
    const IndexSelection rowsBefore = m_rows;
    viewPress();
    m_rows = rowsBefore;
    const QModelIndex index = m_view.indexAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || !index.isValid() || index.column() < 1 ||
        !(index.flags() & Qt::ItemIsEnabled))
        return;
    // The clicked cell stays the current one, ready for typing; its row is the selection.
    pressName(index.row(), event->modifiers());
}

void TableSelection::cellRelease(const std::function<void()>& viewRelease)
{
    // Releasing over a cell that was already shown selected narrows the view's selection to it;
    // the rows the press selected stay.
    const IndexSelection rowsBefore = m_rows;
    viewRelease();
    if (m_rows.items.empty() && !rowsBefore.items.empty()) {
        m_rows = rowsBefore;
        show();
    }
}

void TableSelection::pressHeader(int column, Qt::KeyboardModifiers modifiers)
{
    if (column < 1 || column >= m_model.columnCount())
        return; // the names' header selects nothing
    m_rows = {};
    press(m_columns, column, modifiers);
    show();
}

void TableSelection::selectColumn(int tableColumn)
{
    m_rows = {};
    m_columns = {};
    m_columns.items.insert(tableColumn);
    m_columns.anchor = tableColumn;
    show();
}

void TableSelection::selectAllRows()
{
    const int rows = m_model.rowCount();
    if (rows == 0)
        return;
    m_columns = {};
    m_rows = {};
    insertSpan(m_rows.items, 0, rows - 1);
    m_rows.anchor = 0;
    show();
}

std::pair<int, int> TableSelection::columnSpan() const
{
    return spanOf(m_columns.items, m_model.columnCount());
}

std::pair<int, int> TableSelection::rowSpan() const
{
    return spanOf(m_rows.items, m_model.rowCount());
}

void TableSelection::show()
{
    const int rows = m_model.rowCount();
    const int columns = m_model.columnCount();
    QItemSelection shown;
    if (rows > 0 && columns > 0) {
        forEachRun(m_rows.items, rows, [&](int first, int last) {
            shown.select(m_model.index(first, 0), m_model.index(last, columns - 1));
        });
        forEachRun(m_columns.items, columns, [&](int first, int last) {
            shown.select(m_model.index(0, first), m_model.index(rows - 1, last));
        });
    }
    // The frame headers stand out for selected frames only, not for every frame a row crosses.
    m_view.horizontalHeader()->setHighlightSections(!m_columns.items.empty());
    m_bShowing = true;
    m_view.selectionModel()->select(shown, QItemSelectionModel::ClearAndSelect);
    m_bShowing = false;
    m_view.viewport()->update();
    m_frozen.viewport()->update();
}

void TableSelection::cellSelectionEdited()
{
    if (m_bShowing || (m_rows.items.empty() && m_columns.items.empty()))
        return;
    forget();
    // What stays shown is the cell the user is at, if the change selected it.
    const QModelIndex current = m_view.currentIndex();
    m_bShowing = true;
    if (current.isValid() && m_view.selectionModel()->isSelected(current))
        m_view.selectionModel()->select(current, QItemSelectionModel::ClearAndSelect);
    else
        m_view.selectionModel()->clearSelection();
    m_bShowing = false;
}

void TableSelection::forget()
{
    m_rows = {};
    m_columns = {};
}
