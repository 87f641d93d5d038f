// The table view itself: set-up, selection, typed entry, anchors from the context menu,
// reloading. The commands are in mainTableCommands.cpp, playback in mainTablePlayback.cpp.
#include "table/gui/mainTable.h"

#include "document/DocumentException.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "table/TableEditing.h"
#include "table/gui/Alert.h"
#include "table/gui/FrozenColumnView.h"
#include "table/gui/PlayCursor.h"
#include "table/gui/TablePlayback.h"
#include "table/gui/TableSelection.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMenu>
#include <QScrollBar>

#include <algorithm>
#include <new>

namespace
{
constexpr int kColumnWidth = 50;
constexpr int kNameColumnWidth = 56;
constexpr int kShownRowHeight = 16;
// A hidden parameter's row collapses to a hairline instead of disappearing.
constexpr int kHiddenRowHeight = 1;
// The context menu sets anchors only on rows at least this high (not on hidden rows).
constexpr int kAnchorRowHeight = 10;
} // namespace

mainTable::mainTable(MyDocument* doc, QWidget* parent)
    : QTableView(parent), m_pDoc(doc), m_pPlayback(std::make_unique<TablePlayback>(*this))
{
    // The model starts empty; the columns are looked up once the table data is there.
    m_pModel = new ParameterTableModel(m_pDoc, this);
    setModel(m_pModel);
    connect(m_pModel, &ParameterTableModel::valueTyped, this, &mainTable::typedValue);

    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                    QAbstractItemView::AnyKeyPressed);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setWordWrap(false);
    setCornerButtonEnabled(true);
    setContextMenuPolicy(Qt::DefaultContextMenu);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(kHiddenRowHeight);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    horizontalHeader()->setMinimumSectionSize(10);
    horizontalHeader()->setDefaultSectionSize(kColumnWidth);
    horizontalHeader()->setHighlightSections(true);
    QFont headerFont = horizontalHeader()->font();
    headerFont.setPointSizeF(std::max(7.0, headerFont.pointSizeF() - 1.0));
    horizontalHeader()->setFont(headerFont);

    // The names are pressed on the frozen view laid over column 0: they select rows.
    m_pFrozen = new FrozenColumnView(this);
    connect(m_pFrozen, &QWidget::customContextMenuRequested, this, [this](const QPoint& pos) {
        showAnchorMenu(m_pFrozen->indexAt(pos), m_pFrozen->viewport()->mapToGlobal(pos));
    });
    m_pPlayCursor = new PlayCursor(this);
    connect(this, &mainTable::playbackStarted, m_pPlayCursor, &PlayCursor::follow);
    m_pSelection = new TableSelection(*this, *m_pModel, *m_pFrozen);
    m_bSetUp = guarded(QStringLiteral("Error in starting the window"), [&] {
        if (m_pDoc->_dataTableDictionary.empty())
            m_pDoc->buildDataTableDictionary();
    });
    m_bSetUp = m_bSetUp && rebuildColumns();
    clearSelection();
}

mainTable::~mainTable()
{
    stopPlayback();
}

void mainTable::selectaColumn(int tableColumn)
{
    if (tableColumn < 0 || tableColumn >= m_pModel->columnCount())
        return;
    m_pSelection->selectColumn(tableColumn);
    scrollTo(m_pModel->index(0, tableColumn), QAbstractItemView::EnsureVisible);
}

void mainTable::selectAll()
{
    m_pSelection->selectAllRows();
}

std::pair<int, int> mainTable::selectedColumnSpan() const
{
    return m_pSelection->columnSpan();
}

std::pair<int, int> mainTable::selectedRowSpan() const
{
    return m_pSelection->rowSpan();
}

void mainTable::mousePressEvent(QMouseEvent* event)
{
    m_pSelection->cellPress(event, [this, event] { QTableView::mousePressEvent(event); });
}

void mainTable::mouseReleaseEvent(QMouseEvent* event)
{
    m_pSelection->cellRelease([this, event] { QTableView::mouseReleaseEvent(event); });
}

void mainTable::updateGeometries()
{
    QTableView::updateGeometries();
    if (m_pFrozen)
        m_pFrozen->followGeometry();
}

void mainTable::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    if (!index.isValid())
        return;
    const int left = horizontalScrollBar()->value();
    QTableView::scrollTo(index, hint);
    if (index.column() == 0) {
        horizontalScrollBar()->setValue(left); // the names never scroll sideways
        return;
    }
    // A column brought in from the left would land under the frozen names: move it out.
    const int hidden = columnWidth(0) - columnViewportPosition(index.column());
    if (hidden > 0)
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - hidden);
}

bool mainTable::rebuildColumns()
{
    return guarded(QStringLiteral("Error in creating columns"), [&] {
        m_pDoc->updateInterval(); // repairs an interval below 1 before the titles are made
        m_pModel->reload();
        horizontalHeader()->resizeSection(0, kNameColumnWidth);
        updateRowHeights();
    });
}

void mainTable::reloadData()
{
    m_pModel->reload();
    updateRowHeights();
    viewport()->update();
}

void mainTable::updateRowHeights()
{
    const int rows = m_pModel->rowCount();
    for (int row = 0; row < rows; ++row) {
        const int height = m_pModel->rowShown(row) ? kShownRowHeight : kHiddenRowHeight;
        if (verticalHeader()->sectionSize(row) != height)
            verticalHeader()->resizeSection(row, height);
    }
}

void mainTable::refreshTable()
{
    reloadData();
    _bSynthesize = true;
    m_pDoc->updateChangeCount(MyDocument::ChangeDone);
    emit documentChanged();
}

bool mainTable::guarded(const QString& button, const std::function<void()>& body)
{
    try {
        body();
        return true;
    } catch (const DocumentException& e) {
        Alert::show(window(), QString::fromStdString(e.name()), QString::fromStdString(e.reason()), button);
    } catch (const std::bad_alloc&) {
        Alert::show(window(), QStringLiteral("Memory Error"), QStringLiteral("Unable to allocate memory"),
                    button);
    } catch (const std::exception& e) {
        Alert::show(window(), QStringLiteral("Error"), QString::fromUtf8(e.what()), button);
    }
    return false;
}

void mainTable::typedValue(int row, int column, const QString& text)
{
    guarded(QStringLiteral("OK"), [&] {
        const TypedEntryOutcome outcome = typeValue(*m_pDoc, row, column, typedInteger(text.toStdString()));
        if (outcome == TypedEntryOutcome::Unchanged)
            return;
        _bSynthesize = true;
        // A single stored value leaves the columns as they were: only that cell is redrawn.
        if (outcome == TypedEntryOutcome::Stored)
            m_pModel->cellChanged(row, column);
        else
            reloadData();
        emit documentChanged();
    });
}

void mainTable::checkDataRange(int row)
{
    try {
        ::checkDataRange(*m_pDoc, row);
        reloadData();
    } catch (const std::exception& e) {
        Log::line(std::string("checkDataRange: ") + e.what()); // swallowed by design
    }
}

bool mainTable::rowTakesAnchor(int row) const
{
    return row >= 0 && rowHeight(row) >= kAnchorRowHeight;
}

void mainTable::setAnchorFlag(int row, int column, bool anchor)
{
    if (column < 1 || !rowTakesAnchor(row))
        return; // the name column and hidden rows take no anchor
    if (CellRef cell = m_pModel->cellAt(row, column)) {
        cell->set_bAnchor(anchor);
        update(m_pModel->index(row, column));
    }
}

void mainTable::addAnchor(int row, int column)
{
    setAnchorFlag(row, column, true);
}

void mainTable::removeAnchor(int row, int column)
{
    setAnchorFlag(row, column, false);
}

void mainTable::contextMenuEvent(QContextMenuEvent* event)
{
    showAnchorMenu(indexAt(event->pos()), event->globalPos());
}

void mainTable::showAnchorMenu(const QModelIndex& index, const QPoint& globalPos)
{
    const int row = index.isValid() ? index.row() : -1;
    const int column = index.isValid() ? index.column() : -1;
    QMenu menu(this);
    QAction* add = menu.addAction(QStringLiteral("Add Anchor"));
    QAction* remove = menu.addAction(QStringLiteral("Remove Anchor"));
    const bool usable = column >= 1 && rowTakesAnchor(row);
    add->setEnabled(usable);
    remove->setEnabled(usable);
    QAction* chosen = menu.exec(globalPos);
    if (chosen == add)
        addAnchor(row, column);
    else if (chosen == remove)
        removeAnchor(row, column);
}
