#pragma once
// The parameter names kept at the left edge of the table while the frame columns scroll: a
// second view over the table's own model and selection model that shows only column 0, laid
// over the table's left edge (its header part included). It keeps itself in step with the
// table it covers: vertical scrolling both ways, row heights (hidden parameters keep their
// hairline), the header height, and the width of column 0 both ways.
//
// It never takes the keyboard focus, never edits and never selects by itself; the table it
// covers watches the presses on its names (they select rows) and its context-menu requests. Owned by that
// table (a child widget). Main thread only; sizes in pixels.
#include <QTableView>

class FrozenColumnView : public QTableView
{
    Q_OBJECT
public:
    explicit FrozenColumnView(QTableView* table);

    // Places the view over the table's name column: call after the table's geometry, its
    // header height or the width of column 0 changed.
    void followGeometry();
    // Shows only the name column again and copies every row height: after the model was
    // reset or gained columns.
    void followColumnsAndRows();

private:
    QTableView* m_pTable;
};
