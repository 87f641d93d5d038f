#pragma once
// What the parameter table needs of a data-entry window (graphical or tracing) that it
// opened: rebuild its views after undo, redo and revert replaced the table's cells, and
// rebuild after the analysis settings changed, and reach its window to close or raise it. The table owns the
// controller it holds.
class QWidget;

class DataEntryController
{
public:
    virtual ~DataEntryController();
    virtual void setupViews() = 0;
    // The document's analysis settings changed (an option panel closed with OK).
    virtual void analysisSettingsChanged() { setupViews(); }
    virtual QWidget* window() = 0;
};
