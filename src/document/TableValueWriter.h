#pragma once
// Changes values and clears anchors of a document's frames in its table data without making the columns that
// are not made yet: a made cell is replaced by a copy holding the new value (the table and the data-entry
// views hold the old one until they look again), and a column not made yet keeps waiting, made later from an
// image of the frames that holds the new value. An edit over every frame of an hour-long document then costs
// the blocks of frames it changes, not a cell per frame. Values are read as they stand, the ones written
// included. Main thread only; nothing else may change the table data while a writer is open.
#include "document/FrameImage.h"
#include "document/MyDocument.h"

#include <cstdint>
#include <memory>
#include <vector>

class TableValueWriter
{
public:
    explicit TableValueWriter(MyDocument& document);
    // Puts the changed frames in place (the writer's destructor does not).
    void finish();

    // Frame columns 1 .. frames().
    long long frames() const { return m_nColumns; }
    // The value in `row` of table column `column`; false when there is no such cell.
    bool value(long long column, int row, int& value) const;
    // The anchor flags of a column's rows, bit r for row r.
    std::uint64_t anchors(long long column) const;
    // The cell whose definition (limits included) `row` of a column has: the made cell, or for a
    // column not made yet the frames' model it will be made from; null when there is none.
    const ImageAndTextCell* definitionCell(long long column, int row) const;
    // Stores `value` (shown as its text) in an existing cell; answers false when there is none.
    bool setValue(long long column, int row, int value);
    // Clears the anchor flags of the rows `rows` (bit r for row r) of a column; a made cell is
    // changed in place.
    void clearAnchors(long long column, std::uint64_t rows);

private:
    // The index of a column's frame in the source's image when the column is not made yet and
    // the image holds its frame, else -1.
    long long pendingFrame(long long column) const;
    FrameImage::Block& editable(long long frame);
    // The block a frame of the source's image is read from: the changed one, if any.
    const FrameImage::Block& current(long long frame) const;

    DataTableDictionary& m_data;
    long long m_nInterval = 10;
    long long m_nColumns = 0;
    const TableColumnSource* m_source = nullptr;
    std::vector<std::shared_ptr<FrameImage::Block>> m_edited; // by block, null when unchanged
};
