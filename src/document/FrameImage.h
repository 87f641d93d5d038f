#pragma once
// The values and anchor flags of a document's frames, held compactly: in blocks of 256 frames,
// each block shared by every image that holds it unchanged. The undo and redo snapshots and the
// table data's columns not made yet hold images, so a snapshot that differs from the one before
// it in a few frames costs the blocks of those frames, not the whole document.
//
// Values are kept in 16 bits; a value beyond that range (a cell may hold any int) is kept beside
// its block. Anchor flags are one 64-bit word a frame, bit r for row r. An image never changes
// once made; a new one is made with a Builder. Frames are numbered from 0 (table column 1).
// Images and blocks may be read from any thread; a Builder belongs to one.
#include "document/ParameterDefinition.h"

#include <array>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

class FrameImage
{
public:
    static constexpr int kBlockFrames = 256;

    struct Block {
        std::array<std::array<std::int16_t, kParameterCount>, kBlockFrames> values{};
        std::array<std::uint64_t, kBlockFrames> anchors{};
        // Values beyond 16 bits: (frame in the block x kParameterCount + row, value), in order.
        std::vector<std::pair<std::uint32_t, std::int32_t>> wide;

        int value(int frame, int row) const;
        void setValue(int frame, int row, int value);
        // The same for a block already filled: any value, in any order.
        void replaceValue(int frame, int row, int value);
        friend bool operator==(const Block&, const Block&) = default;
    };
    using BlockRef = std::shared_ptr<const Block>;

    // Fills an image block by block, in order. Each block is written into a fresh one (or the
    // one a previous block left unused) and then kept, or exchanged for an equal block given as
    // a candidate, or for the block before it when that is equal, so that runs of equal frames
    // and unchanged stretches share their storage. Throws std::bad_alloc.
    class Builder
    {
    public:
        explicit Builder(int frames);
        std::size_t blockCount() const { return m_blocks.size(); }
        // The frames block b covers: first and one past the last.
        int firstFrame(std::size_t b) const { return static_cast<int>(b) * kBlockFrames; }
        int endFrame(std::size_t b) const;
        // Takes a block unchanged.
        void share(std::size_t b, BlockRef block);
        // The block to write b into, cleared.
        Block& open();
        // Keeps the block just written as block b, unless one of the candidates (any may be
        // null) or block b - 1 holds the same: then that one is kept.
        void close(std::size_t b, const BlockRef& candidate1, const BlockRef& candidate2);
        FrameImage take();

    private:
        int m_nFrames = 0;
        std::vector<BlockRef> m_blocks;
        std::shared_ptr<Block> m_open;
    };

    FrameImage() = default;
    int frames() const { return m_nFrames; }
    bool empty() const { return m_nFrames == 0; }
    int value(int frame, int row) const
    {
        return m_blocks[static_cast<std::size_t>(frame / kBlockFrames)]->value(frame % kBlockFrames, row);
    }
    std::uint64_t anchors(int frame) const
    {
        return m_blocks[static_cast<std::size_t>(frame / kBlockFrames)]->anchors[frame % kBlockFrames];
    }
    // Block b, or null past the last one.
    BlockRef block(std::size_t b) const { return b < m_blocks.size() ? m_blocks[b] : nullptr; }
    std::size_t blockCount() const { return m_blocks.size(); }
    // The anchors of all frames together.
    long long anchorCount() const;
    // Whether any value lies beyond 16 bits.
    bool hasWideValues() const;
    // Bytes of the blocks this image holds that `other` does not share (for memory accounting).
    std::size_t bytesNotIn(const FrameImage& other) const;

    // Frames taken out of and put into an image, read as `frames` long (frames past its end hold
    // the fill, frames past `frames` are dropped): `removed` frames from `at` on go, `inserted`
    // frames holding the fill and no anchor come in their place.
    struct Splice {
        int frames = 0;
        int at = 0;
        int removed = 0;
        int inserted = 0;
    };
    using Fill = std::array<int, kParameterCount>;
    // The image after the splice. Whole blocks that hold the same frames as here are shared: all
    // before `at`, and those after it when the frames move by whole blocks. Throws std::bad_alloc.
    FrameImage spliced(const Splice& splice, const Fill& fill) const;

private:
    // The block of this image that holds exactly frames first .. end - 1 of `b` (a block of the
    // same length starting at a block boundary), or null.
    BlockRef wholeBlock(int first, int end) const;
    // Copies frame `frame` of this image (the fill past its end) into frame `at` of `block`.
    void copyFrame(int frame, Block& block, int at, const Fill& fill) const;

    int m_nFrames = 0;
    std::vector<BlockRef> m_blocks;
};
