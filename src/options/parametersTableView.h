#pragma once
// The limits table of the parameter settings panel: one row per parameter with its name,
// minimum, maximum, default and description, over its own table data (keys "0" param, "1"
// Min, "2" Max, "3" Default, "4" Description; cells as in the parameter table). Editing a
// number replaces its cell with a copy carrying the new value; the same value changes
// nothing. Main thread only.
#include "document/DataTableDictionary.h"

#include <QTableView>

class MyDocument;
class LimitsModel;

class parametersTableView : public QTableView
{
    Q_OBJECT
public:
    explicit parametersTableView(QWidget* parent = nullptr);

    // Fills the table from channel 0's 48 parameter records.
    void setup(MyDocument* doc);
    // Puts the factory minimum, maximum and default of every row back into the table.
    void resettoDefault(MyDocument* doc);
    // The value of a number column ("1", "2", "3") at a row; 0 when missing.
    int valueAt(int column, int row) const;
    int rowCountOfNames() const;
    // Typed entry into a number column (what the editor does).
    void setValue(int column, int row, int value);

    DataTableDictionary _dataTableDictionary;

private:
    LimitsModel* m_pModel;
};
