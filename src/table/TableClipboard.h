#pragma once
// Cells of the parameter table as tab-separated text, for the Copy and Paste commands: a
// header line with the parameter names, then one line per frame with the values of those
// parameters, so that a spreadsheet or a script reads a frame per row and a parameter per
// column. The text has LF line ends; pasted text may have CR LF.
//
// Rows are parameter rows 0..47 and columns table columns (1 = the first frame), as in
// TableEditing. Main thread only.
#include "document/MyDocument.h"

#include <string>

// The text of the cells of rows firstRow..lastRow in table columns firstColumn..lastColumn
// (the name column, 0, is left out). Empty when the span holds no frame. With `timeColumn`
// each line starts with a column "time_ms": the time each frame starts, in ms (the layout of
// exported tables).
enum class TimeColumn { Without, With };
std::string copyCellsAsText(MyDocument& doc, int firstRow, int lastRow, int firstColumn, int lastColumn,
                            TimeColumn timeColumn = TimeColumn::Without);

struct PasteOutcome {
    bool pasted = false;
    std::string message; // why nothing was pasted
    int frames = 0;      // lines of values pasted
    int rows = 0;        // parameters per line (the widest line)
};

// Writes the values of `text` with its first value at parameter row `row`, table column
// `tableColumn`: each line of values to the next frame, each field to the next row. A first
// line that is not all numbers is a header and is skipped; an empty field leaves its cell as
// it is. Each value is clamped to its row's limits as a typed value is, and the whole paste
// is one undo step (marked changed, redo recorded). Text that is not numbers, or values that
// would run past the last frame or the last row, change nothing and give a message.
PasteOutcome pasteCellsFromText(MyDocument& doc, int row, int tableColumn, const std::string& text);
