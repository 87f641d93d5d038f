#pragma once
// The document-level operations behind the parameter table's commands: reading and replacing
// the cells of a row, typed entry, interpolation between anchors, range checks, applying the
// parameter settings to the cells, the sample-rate adjustment and the rebuild of the table
// data for a new length, interval and rate. They change the document's _dataTableDictionary
// in place and know nothing of the view: each answers what happened so that the view can
// reload and set its needs-synthesis flag.
//
// Column indices are table columns: 0 is the parameter-name column, table column k (k >= 1)
// is the frame stored under the key k x update interval. Rows are parameter rows 0..47.
// Main thread only. Values are in the parameters' own units (f0 in 0.1 Hz, ...).
#include "document/DataTableDictionary.h"
#include "document/MyDocument.h"

#include <array>
#include <string>
#include <vector>

// The frame columns of the table data in table-column order: element j is table column j + 1,
// nullptr where the dictionary lacks that column's key. Repairs an update interval below 1.
std::vector<CellArray*> frameColumns(MyDocument& doc);

// The number of frame columns of the table data (its columns but the name column).
int frameCount(const MyDocument& doc);

// The cells of one row from every frame column, in column order (index j = table column
// j + 1); nullptr where a column is missing. Empty for a row outside 0..47.
CellArray rowCellsArray(MyDocument& doc, int row);

// Puts `cell` into the column at table-column index `col` at `row`. Index 0 is the name
// column. A missing column or a row outside the column is ignored.
void replaceCellAt(MyDocument& doc, CellRef cell, int row, int col);

// The integer a typed text stands for: leading blanks, an optional sign, then digits
// ("12abc" is 12, "abc" is 0), saturating at the limits of int.
int typedInteger(const std::string& text);

// The value limited to the cell's range: the maximum first, then the minimum (so a cell whose
// minimum exceeds its maximum ends at the minimum).
int clampToLimits(const ImageAndTextCell& cell, int value);

// A new cell copied from `stored` that holds `value` clamped to its limits and shows it: what
// typed entry (and a paste) puts in place of the stored cell.
CellRef enteredCell(const ImageAndTextCell& stored, int value);

enum class TypedEntryOutcome {
    Unchanged,             // same value as shown, or no such cell: nothing recorded
    Stored,                // the value (clamped) replaced the cell; undo and redo recorded
    StoredAndInterpolated, // as Stored, and every row was re-interpolated between its anchors
};

// A value typed into the cell at `row`, table column `tableColumn` (>= 1): when it differs
// from the value shown, records an undo step, stores a copy of the cell with the value
// clamped to the parameter's limits (max first, then min), an anchor when channel 0's
// m_bDoAnchor is set, re-interpolates all rows when m_bDoInterpolate is set (an undo step of
// its own), marks the document changed and records the redo step.
TypedEntryOutcome typeValue(MyDocument& doc, int row, int tableColumn, int newValue);

// Fills, for every row first..last (limited to 0..47), the frames between consecutive
// anchors with the straight line between their values, truncated toward zero. Anchors and
// the frames outside them are untouched; filled cells are new cells copied from the old
// ones, and columns not made yet stay so (TableValueWriter). Records nothing: the undo/redo
// frame belongs to the command.
void interpolateRows(MyDocument& doc, int first, int last);

// The interpolate-all command on the document: undo step, every row interpolated, document
// marked changed, redo step.
void interpolateAll(MyDocument& doc);

// Clamps the row's value in every frame column to the parameter's limits (max first, then
// min) and resets the displayed text; the cells are changed in place.
void checkDataRange(MyDocument& doc, int row);

// Copies channel 0's parameter settings (default, limits, shown flag, set colour as
// background) into every cell of each row, the name column included, keeping the values;
// then AdjustSampleRate(doc, true) and marks the document changed. Columns not made yet stay
// so, made later with the new settings.
void saveParameters(MyDocument& doc);

// Sets channel 0's sample rate from the shown parameters (22050 Hz when any sixth to eighth
// formant parameter is shown, else 11025 Hz), derives the analysis frequency ranges and LPC
// orders from it, sets m_bSynthesize, and synthesizes when `synthesize` is true.
void AdjustSampleRate(MyDocument& doc, bool synthesize);

// Rebuilds the table data for the document's proposed length, interval and sample rate
// (m_dNewLengthMS, m_nNewUpdateIntervalMS, m_dNewSampleRate): records an undo step, makes
// fresh frames from the parameter records, carries the old frame values over by time, and
// stores the new rate, length, interval and frame count in channel 0. An interval below 1
// is taken as 10 and a negative length as 0. A length beyond one hour or more frames than
// MyDocument::kMaxFrames throw DocumentException "Document Too Long" with nothing changed.
// At an unchanged interval the columns not made yet stay so.
void saveoptionsFile(MyDocument& doc);

// What saveoptionsFile() would remove for the proposed length and interval: the frames whose
// time lies past the new length, and whether any of them holds a value other than a fresh
// frame's (its parameter record's value).
struct Shortening {
    int removedFrames = 0;
    bool removesValues = false;
};
Shortening proposedShortening(MyDocument& doc);

// A new frame cell made from a parameter record: name, definition, default, value, limits,
// shown flag, colour and background as given, anchor off, text = the record's value.
CellRef newFrameCell(const ParameterDefinition& record, const Color& background);

// Makes the columns of new frames of a document in one allocation each, every cell of a row
// sharing the row's definition (as newFrameCell makes them).
class FrameCellMaker
{
public:
    explicit FrameCellMaker(const MyDocument& doc);
    // Cells of rows 0..47; shown flag from the records, or on for all when `allShown`.
    CellArray column(bool allShown) const;

private:
    const Channels& m_channel;
    std::array<ImageAndTextCell, kParameterCount> m_models;
};
