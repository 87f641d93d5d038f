// Storage that is not cleared before use (blocks written at once, grid columns stored only when
// written, WAVE images written in pieces) must never show anything but what was written.
#include "document/AtomicFile.h"
#include "document/BulkMemory.h"
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace
{

bool allZero(const std::uint8_t* bytes, std::size_t n)
{
    return std::all_of(bytes, bytes + n, [](std::uint8_t b) { return b == 0; });
}

} // namespace

TEST(LargeBuffers, ClearedBlocksAreZeroAtEverySizeAndUnclearedOnesKeepTheirPaddingZero)
{
    // Sizes on both sides of the heap / mapped-pages boundary, odd sizes among them. Blocks of the
    // same size are made, dirtied and dropped first, so that reused memory would show.
    for (std::size_t size : {std::size_t{0}, std::size_t{13}, std::size_t{4096}, bulk::kMappedBytes - 3,
                             bulk::kMappedBytes, std::size_t{5} << 20}) {
        {
            auto dirty = MemoryBlock::newHandle(size);
            ASSERT_TRUE(dirty);
            std::fill(dirty->bytes(), dirty->bytes() + size, 0xab);
        }
        auto clear = MemoryBlock::newHandleClear(size);
        ASSERT_TRUE(clear);
        EXPECT_EQ(clear->size(), size);
        EXPECT_TRUE(allZero(clear->bytes(), size)) << size;
        std::fill(clear->bytes(), clear->bytes() + size, 0xcd);
        clear.reset();

        auto block = MemoryBlock::newHandle(size);
        ASSERT_TRUE(block);
        EXPECT_EQ(block->size(), size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block->bytes()) % 8, 0u);
        // The bytes rounding the size up to whole doubles read as zero.
        const std::size_t padded = size == 0 ? 8 : (size + 7) / 8 * 8;
        EXPECT_TRUE(allZero(block->bytes() + size, padded - size)) << size;
    }
    EXPECT_FALSE(MemoryBlock::newHandle(SIZE_MAX - 2));
    EXPECT_FALSE(MemoryBlock::newHandleClear(std::size_t{1} << 41));
    EXPECT_EQ(bulk::allocate(SIZE_MAX - 4096, bulk::Fill::Uninitialised), nullptr);
    EXPECT_THROW(bulk::Allocator<double>().allocate(SIZE_MAX / 8), std::bad_alloc);
}

TEST(LargeBuffers, ADuplicateHoldsTheSourcesSamplesAndZerosWhereTheSourceHasNone)
{
    Channels source, copy;
    EXPECT_DOUBLE_EQ(source.m_dSampleRate, 11025.0);
    EXPECT_EQ(source.m_nResolutionBits, 16);
    EXPECT_EQ(*source.m_strTitle, "channel");
    EXPECT_FALSE(source.hasAudio());
    copy.Duplicate(source); // no samples: an empty block, not a missing one
    ASSERT_TRUE(copy.hasAudio());
    EXPECT_EQ(copy.sampleCount(), 0u);

    source.m_dwFileLength = 1000.0;
    source.m_dSampleRate = 22050;
    source.m_bApplyCalibration = 1;
    source.m_hData = MemoryBlock::newHandle(600 * sizeof(float)); // holds fewer than its length says
    std::fill(source.samples(), source.samples() + 600, 0.25f);
    copy.m_hData = MemoryBlock::newHandle(4000); // a dirty block that the duplicate replaces
    std::fill(copy.samples(), copy.samples() + 1000, 9.0f);
    copy.Duplicate(source);
    ASSERT_EQ(copy.sampleCount(), 1000u);
    EXPECT_TRUE(std::all_of(copy.samples(), copy.samples() + 600, [](float s) { return s == 0.25f; }));
    EXPECT_TRUE(std::all_of(copy.samples() + 600, copy.samples() + 1000, [](float s) { return s == 0.0f; }));
    EXPECT_TRUE(source.hasAudio());
    EXPECT_DOUBLE_EQ(copy.m_dSampleRate, 22050);
    EXPECT_EQ(copy.m_bApplyCalibration, 0); // the calibration switch is not copied
    *source.m_strTitle = "renamed";
    EXPECT_EQ(*copy.m_strTitle, "renamed"); // the title is shared, the samples are not
    source.samples()[0] = -1.0f;
    EXPECT_EQ(copy.samples()[0], 0.25f);

    // Taking the samples moves a block of exactly the duplicate's size, unless it is being played
    // (locked), which is copied and stays with the source.
    source.m_hData = MemoryBlock::newHandle(1000 * sizeof(float));
    std::fill(source.samples(), source.samples() + 1000, -0.5f);
    const MemoryBlock* block = source.m_hData.get();
    source.m_hData->lock();
    copy.DuplicateTakingSamples(source);
    EXPECT_EQ(source.m_hData.get(), block);
    EXPECT_NE(copy.m_hData.get(), block);
    EXPECT_EQ(copy.samples()[999], -0.5f);
    source.m_hData->unlock();
    copy.DuplicateTakingSamples(source);
    EXPECT_EQ(copy.m_hData.get(), block);
    EXPECT_FALSE(source.hasAudio());
    EXPECT_EQ(copy.m_dwFileLength, 1000.0);
}

TEST(LargeBuffers, ALengthDeclaredFarBeyondTheTextCostsOnlyTheFramesItHolds)
{
    // One hour declared, three value lines present.
    auto small = makeTestDocument(3, 10, 1);
    Channels* c = small->getChannel(0);
    setValue(*small, 2, Row::f1, 777);
    std::string text = small->parameterDocumentText(true);
    text.replace(0, text.find('\t'), "3600000");

    MyDocument document;
    ASSERT_EQ(document.Read_STK_FileType(text), 0) << document.lastReadError();
    c = document.getChannel(0);
    const DataGrid& grid = c->m_snppDataImage_Col_Row;
    EXPECT_EQ(c->m_nColumnNum, 360000);
    EXPECT_EQ(grid.size(), 360002u);
    EXPECT_EQ(document.framesInFile(), 3);
    EXPECT_EQ(grid[1][Row::f1], 777);
    // The frames the text lacks read as the defaults, the two spare columns as zeros.
    EXPECT_EQ(grid[359999][Row::gain], c->m_Parameters[Row::gain].nDefaultValue);
    EXPECT_EQ(grid[360000][Row::f0], 0);
    EXPECT_EQ(grid[360001][Row::f0], 0);
    EXPECT_EQ(grid.storedColumns(), 3u) << "reading stores nothing"; // about 300 bytes, not 36 MB
    // Copying the columns as a vector reads them the same way.
    const std::vector<GridColumn> firstFive(grid.begin(), grid.begin() + 5);
    ASSERT_EQ(firstFive.size(), 5u);
    EXPECT_EQ(firstFive[1][Row::f1], 777);
    EXPECT_EQ(firstFive[4][Row::f0], c->m_Parameters[Row::f0].nDefaultValue);
    EXPECT_EQ(grid.end() - grid.begin(), 360002);
    EXPECT_EQ(grid.storedColumns(), 3u);

    // A write stores the columns up to it, which keep what they read as.
    c->m_snppDataImage_Col_Row[10][Row::f2] = 1999;
    EXPECT_EQ(grid.storedColumns(), 11u);
    EXPECT_EQ(grid[10][Row::f2], 1999);
    EXPECT_EQ(grid[9][Row::f0], c->m_Parameters[Row::f0].nDefaultValue);
    EXPECT_EQ(grid[1][Row::f1], 777);
    // Past the end: a write goes nowhere, a read gives zeros.
    c->m_snppDataImage_Col_Row[360002][Row::f0] = 5;
    EXPECT_EQ(grid[360002][Row::f0], 0);
    EXPECT_EQ(grid.storedColumns(), 11u);

    // The table data costs 16 bytes a cell: every column's cells lie in one block.
    EXPECT_EQ(sizeof(ImageAndTextCell), 16u);
    document.m_bReadFile = 1;
    document.buildDataTableDictionary();
    ASSERT_EQ(document._dataTableDictionary.count(), 360001u);
    EXPECT_EQ(frameValue(document, 360000, Row::f0), c->m_Parameters[Row::f0].nDefaultValue);
    for (long long k : {1LL, 180000LL, 360000LL}) {
        const CellArray& column = *document._dataTableDictionary.objectForKey(k * 10);
        for (int row = 1; row < kParameterCount; ++row)
            ASSERT_EQ(reinterpret_cast<const char*>(column[row].get()) -
                          reinterpret_cast<const char*>(column[row - 1].get()),
                      16);
    }
}

TEST(LargeBuffers, TheWaveImageInPiecesIsTheWholeImageAndAFailedPieceStopsTheFile)
{
    auto document = makeTestDocument(300, 10, 1); // 33075 samples: several pieces
    Channels* c = document->getChannel(0);
    c->m_hData = MemoryBlock::newHandle(33075 * sizeof(float));
    c->m_dwFileLength = 33075.5; // a fractional length writes one sample more, which is 0
    for (int i = 0; i < 33075; ++i)
        c->samples()[i] = static_cast<float>((i % 200) / 100.0 - 1.0);
    const std::string image = document->save_Wave_FileType();
    ASSERT_EQ(image.size(), 48u + 2 * 33076u);
    EXPECT_EQ(image.substr(image.size() - 2), std::string(2, '\0'));

    // Written in pieces straight into the file.
    const TempDir folder;
    const std::string target = folder / "out.wav";
    ASSERT_EQ(
        writeFileAtomically(target, [&](const PieceWriter& write) { return document->writeWave(0, write); }),
        0);
    EXPECT_EQ(slurp(target), image);

    // A producer that fails half-way leaves the old file as it was and no temporary file.
    int pieceNumber = 0;
    const int error = writeFileAtomically(target, [&](const PieceWriter& write) {
        return document->writeWave(
            0, [&](const char* bytes, std::size_t size) { return ++pieceNumber < 3 && write(bytes, size); });
    });
    EXPECT_NE(error, 0);
    EXPECT_EQ(slurp(target), image);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path),
                            std::filesystem::directory_iterator()),
              1);
}
