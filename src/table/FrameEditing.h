#pragma once
// Frame and anchor editing on a document's table data (_dataTableDictionary): inserting and
// removing whole frames, and clearing anchor flags. The table view passes its selection as
// plain numbers (table column 0 is the parameter-name column, table column k is frame k;
// -1 means "nothing selected"), then rebuilds its columns and refreshes itself.
//
// Frames are counted from channel 0's length: nOld = trunc(m_dLengthMS) / interval. After an
// insertion or removal, m_nColumnNum = number of frame columns and m_dLengthMS = interval x
// m_nColumnNum. The grid (m_snppDataImage_Col_Row) is not touched: the table data is what
// synthesis and saving read. Columns not made yet stay so (they are made later from the frames
// as moved): adding or removing frames on an hour-long document makes only the new frames.
//
// Main thread only. Allocation failure throws DocumentException "Memory Error"; the table
// data is then left as it was.
#include "document/MyDocument.h"

// Places of _nindexModifyColumn (the rows of the dialog's radio group).
enum FramePlace { FramesAtBeginning = 0, FramesAfterSelection = 1, FramesAtEnd = 2 };

// Inserts _nDurationModifyColumn / interval new frames at _nindexModifyColumn, after
// `firstSelectedColumn` when the place is "after the selected frame". Records one undo step
// (undo snapshot before, redo snapshot after), always. Returns false, having changed nothing else, when the
// place is "after the selected frame" and nothing is selected; true when the table data was rebuilt (even
// with no frame added, for a duration shorter than one interval). More than kMaxFrames frames or one hour in
// all throw DocumentException "Document Too Long" before anything is built.
bool modifyColumns(MyDocument& doc, int firstSelectedColumn);

// Removes the frames of the span firstSelectedColumn .. lastSelectedColumn (a selection of
// frames 2 and 4 removes 2, 3 and 4; the name column counts as frame 1) and moves the later
// frames down. Records one undo step (undo and redo snapshots), always. Returns false, having changed nothing
// else, when nothing is selected (either index below 0).
bool removeColumns(MyDocument& doc, int firstSelectedColumn, int lastSelectedColumn);

// Clears the anchor flag in every frame of the rows firstRow .. lastRow (a span, including
// unselected rows inside it; rows beyond the table are ignored). No undo step: values do
// not change.
void removeAnchors(MyDocument& doc, int firstRow, int lastRow);
void removeAllAnchors(MyDocument& doc);

// The cells of one new frame, rows 0..47, from channel 0's parameter records (newFrameCell)
// with the row's group background, the shown flag on and no anchor.
CellArray newFrameCells(const MyDocument& doc);
