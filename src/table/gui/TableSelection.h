#pragma once
// The parameter table's two selections, kept apart from the view's cell selection, which only
// shows them: parameter rows, picked by their names (on the frozen column) or by clicking one of
// their cells, and frame columns, picked by their headers or by selectColumn. A press selects
// one, Ctrl toggles one, Shift extends from the last pressed one, a drag extends a press. A
// clicked cell selects its row but never its frame, and a cell reached with the keys selects
// neither, so a frame command never takes a row for "every frame" and a row command never takes
// a frame for "every row". Spans are (first, last) in table rows /
// table columns, or (-1, -1) when none. Owned by the table (mainTable); main thread only.
#include <QObject>

#include <functional>
#include <set>
#include <utility>

class FrozenColumnView;
class QMouseEvent;
class ParameterTableModel;
class QTableView;

class TableSelection : public QObject
{
    Q_OBJECT
public:
    // Takes over the header's and the names' presses of `view`, whose model is `model`.
    TableSelection(QTableView& view, ParameterTableModel& model, FrozenColumnView& frozen);

    std::pair<int, int> columnSpan() const;
    std::pair<int, int> rowSpan() const;
    // Exactly that frame column (table column >= 0).
    void selectColumn(int tableColumn);
    // Every parameter row, no frame.
    void selectAllRows();
    // Lets go of both (the columns were rebuilt: the old numbers mean other frames).
    void forget();
    // A mouse press and release on the view's cells, around the view's own handling of them
    // (viewPress, viewRelease): the rows stay selected through it, and a left click on a value
    // cell selects that cell's row (Shift extends, Ctrl toggles).
    void cellPress(QMouseEvent* event, const std::function<void()>& viewPress);
    void cellRelease(const std::function<void()>& viewRelease);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // One of the two selections: the indices and where the last plain or Ctrl press was.
    struct IndexSelection {
        std::set<int> items;
        int anchor = -1;
        std::set<int> beforeDrag; // what a Ctrl drag adds to
    };
    void pressName(int row, Qt::KeyboardModifiers modifiers);
    void pressHeader(int column, Qt::KeyboardModifiers modifiers);
    // Shows the two selections in the view's selection model.
    void show();
    // The user changed the cell selection (a cell clicked, keys): rows and columns let go.
    void cellSelectionEdited();

    QTableView& m_view;
    ParameterTableModel& m_model;
    FrozenColumnView& m_frozen;
    IndexSelection m_rows;
    IndexSelection m_columns;
    Qt::KeyboardModifiers m_pressModifiers;
    bool m_bShowing = false;
};
