#include "table/gui/FrozenColumnView.h"

#include <QHeaderView>
#include <QScrollBar>

FrozenColumnView::FrozenColumnView(QTableView* table) : QTableView(table), m_pTable(table)
{
    setModel(table->model());
    setSelectionModel(table->selectionModel());
    setFocusPolicy(Qt::NoFocus);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // It shows the table's selection but never changes it: a press on a name selects the
    // parameter's row through the table it covers.
    setSelectionMode(QAbstractItemView::NoSelection);
    setVerticalScrollMode(table->verticalScrollMode());
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setWordWrap(false);
    setContextMenuPolicy(Qt::CustomContextMenu);

    QHeaderView* rows = verticalHeader();
    rows->hide();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setMinimumSectionSize(table->verticalHeader()->minimumSectionSize());
    QHeaderView* columns = horizontalHeader();
    columns->setMinimumSectionSize(table->horizontalHeader()->minimumSectionSize());
    columns->setSectionResizeMode(QHeaderView::Interactive);
    columns->setHighlightSections(table->horizontalHeader()->highlightSections());
    columns->setFont(table->horizontalHeader()->font());

    // Vertical scrolling both ways: the wheel over the names scrolls the table too.
    connect(verticalScrollBar(), &QAbstractSlider::valueChanged, table->verticalScrollBar(),
            &QAbstractSlider::setValue);
    connect(table->verticalScrollBar(), &QAbstractSlider::valueChanged, verticalScrollBar(),
            &QAbstractSlider::setValue);
    connect(table->verticalHeader(), &QHeaderView::sectionResized, this,
            [this](int row, int, int height) { setRowHeight(row, height); });
    // The width of the name column both ways: the user drags it on this view's header.
    connect(columns, &QHeaderView::sectionResized, this, [this](int column, int, int width) {
        if (column == 0 && m_pTable->columnWidth(0) != width)
            m_pTable->setColumnWidth(0, width);
    });
    connect(table->horizontalHeader(), &QHeaderView::sectionResized, this,
            [this](int column, int, int width) {
                if (column != 0)
                    return;
                if (columnWidth(0) != width)
                    setColumnWidth(0, width);
                followGeometry();
            });
    connect(model(), &QAbstractItemModel::modelReset, this, &FrozenColumnView::followColumnsAndRows);
    connect(model(), &QAbstractItemModel::columnsInserted, this, &FrozenColumnView::followColumnsAndRows);

    followColumnsAndRows();
    table->viewport()->stackUnder(this);
    show();
}

void FrozenColumnView::followColumnsAndRows()
{
    // With its updates off the header hides a section without working out where it was on
    // screen, a pass over every column: an hour of frames has 360,000 of them.
    const int columns = model()->columnCount();
    horizontalHeader()->setUpdatesEnabled(false);
    for (int column = 1; column < columns; ++column)
        if (!isColumnHidden(column))
            setColumnHidden(column, true);
    horizontalHeader()->setUpdatesEnabled(true);
    setColumnWidth(0, m_pTable->columnWidth(0));
    const int rows = model()->rowCount();
    for (int row = 0; row < rows; ++row)
        if (rowHeight(row) != m_pTable->rowHeight(row))
            setRowHeight(row, m_pTable->rowHeight(row));
    verticalScrollBar()->setValue(m_pTable->verticalScrollBar()->value());
    followGeometry();
}

void FrozenColumnView::followGeometry()
{
    const QRect header = m_pTable->horizontalHeader()->geometry();
    const QRect viewport = m_pTable->viewport()->geometry();
    horizontalHeader()->setFixedHeight(header.height());
    setGeometry(viewport.left(), header.top(), m_pTable->columnWidth(0),
                viewport.bottom() - header.top() + 1);
    // The geometry change may have changed the scroll range: take the table's position again.
    verticalScrollBar()->setValue(m_pTable->verticalScrollBar()->value());
}
