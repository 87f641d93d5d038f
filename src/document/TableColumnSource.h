#pragma once
// What the table data's columns are made from when they are first looked up, taken when the
// table data is built: the frames' values and anchor flags (an image of the grid, or none for a
// new document, whose frames all hold the parameter records' values) and, per row, the shown
// flag, the record's value and the shared definitions of the name and frame cells. A column
// made from it later is the column an immediate build would have made, and readers that must
// not make columns (saving, the undo snapshots) read a column's values from it instead.
#include "document/FrameImage.h"
#include "document/ImageAndTextCell.h"

#include <array>
#include <vector>

using CellArray = std::vector<CellRef>;

struct TableColumnSource {
    std::array<ImageAndTextCell, kParameterCount> nameModel, frameModel;
    std::array<bool, kParameterCount> shown{};
    std::array<int, kParameterCount> recordValue{};
    // Frame k - 1 of table column k; frames past its end hold the records' values and no anchor.
    FrameImage frames;

    // The cells of table column `col` (0 = the names). Throws std::bad_alloc.
    CellArray column(long long col) const;
    // What frame column `col` (>= 1) holds in `row`.
    int value(long long col, int row) const
    {
        const long long frame = col - 1;
        return frame < frames.frames() ? frames.value(static_cast<int>(frame), row) : recordValue[row];
    }
    std::uint64_t anchors(long long col) const
    {
        const long long frame = col - 1;
        return frame < frames.frames() ? frames.anchors(static_cast<int>(frame)) : 0;
    }
};
