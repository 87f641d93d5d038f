#pragma once
// Reads what a document's frames hold, cell by cell, the way the writers of its text see them,
// without making any column of the table data: a column made is read from its cells, one still
// to be made from what it would be made from, a missing one from the parameter records. A
// document whose table data has not been built (read but never shown) is read from what it
// would be built with: the grid's values and the anchor list, or the records. Internal to the
// document library. Main thread only.
#include "document/MyDocument.h"

#include <cstdint>
#include <vector>

// What the writers need of one cell.
struct FrameCell {
    int value;
    bool selected;
    bool anchor;
};

class TableReader
{
public:
    // Throws DocumentException "Document Too Long" for an unbuilt document of more frames than
    // building its table data would take.
    explicit TableReader(MyDocument& document);
    int frames() const { return m_nFrames; }

    // The cells of frame column `column` (1 .. frames()), rows in order. Columns must be read in
    // order when the table data is not built.
    void readColumn(int column, FrameCell (&cells)[kParameterCount]);
    // The row header's selection flag (column "0").
    bool rowSelected(int row) const;
    // The frames as an image. Blocks of frames whose columns are all still to be made are taken
    // from the table data's source as they are; the others are read, and kept as `previous`
    // holds them when they are the same there.
    FrameImage image(const FrameImage& previous);

private:
    void collectAnchors();
    FrameCell unbuiltCell(int column, int row);
    // Block b of the source's image when every column of it is still to be made, else null.
    FrameImage::BlockRef untouchedBlock(std::size_t b, int first, int end) const;

    MyDocument& m_document;
    const Channels& m_channel;
    int m_nFrames = 0;
    long long m_nInterval = 10;
    bool m_bBuilt = false;
    const CellArray* m_names = nullptr;
    std::vector<long long> m_anchors; // unbuilt: the anchor list as frame x rows + row, in order
    std::size_t m_nNextAnchor = 0;
};
