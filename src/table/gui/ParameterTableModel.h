#pragma once
// The item model of the parameter table over a document's _dataTableDictionary: one row per
// parameter, column 0 the parameter names ("param"), column k the frame stored under the key
// k x update interval (titled so). It shows the stored cells as they are: it never copies a
// cell, and it looks a column's cells up once per reload, not per paint, and only when the
// column is first asked for: a long document's columns are made as the view reaches them.
//
// Typed text is not stored by the model: it is handed to the table (valueTyped), whose
// command records undo and redo and then reloads. Main thread only.
#include <QAbstractTableModel>
#include <QFont>

#include "document/DataTableDictionary.h"

#include <functional>
#include <vector>

class MyDocument;

class ParameterTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    explicit ParameterTableModel(MyDocument* doc, QObject* parent = nullptr);

    // Looks the columns up again after the table data changed. A change of the column count
    // resets the model; otherwise every cell is reported changed (the view repaints only
    // what it shows). Starts empty: the first reload finds the columns. Table data of more
    // frames than a document holds (MyDocument::kMaxFrames) leaves the model empty and throws
    // DocumentException "Document Too Long"; so does running out of memory (bad_alloc).
    void reload();
    // Reports one cell changed (a typed value replaced it; the columns are the same).
    void cellChanged(int row, int column);

    // The stored cell at a table position, or nullptr.
    CellRef cellAt(int row, int column) const;
    // Whether the parameter of a row is shown (its name cell's _bSelected).
    bool rowShown(int row) const;
    int frameCount() const { return m_columns.empty() ? 0 : static_cast<int>(m_columns.size()) - 1; }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // More lines for the tooltip of frame `frame`'s header (1 = the first frame), empty for none:
    // the labels' boundaries that fall in the frame.
    void setFrameNote(std::function<QString(int frame)> note) { m_frameNote = std::move(note); }

signals:
    void valueTyped(int row, int column, const QString& text);

private:
    // Forgets the columns looked up; the count and the rows are taken again.
    void lookUpColumns();
    const CellArray* column(int tableColumn) const;

    MyDocument* m_pDoc;
    // Index = table column; nullptr where a key is missing or was not looked up yet.
    mutable std::vector<const CellArray*> m_columns;
    mutable std::vector<bool> m_lookedUp;
    int m_nRows = 0;
    int m_nInterval = 10;
    std::function<QString(int)> m_frameNote;
    QFont m_cellFont;
};
