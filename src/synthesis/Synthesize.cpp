// The synthesis driver: turns the document's table data into audio in the synthesis channel,
// one Klatt frame per table column, and keeps the previous synthesis in channel 1.
#include "synthesis/Synthesize.h"

#include "document/DocumentException.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "document/SynthesisHook.h"
#include "document/TableColumnSource.h"
#include "synthesis/CKlattEngine.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <new>
#include <vector>

namespace
{

constexpr std::int64_t kFrameBufferSamples = 22050;   // one second at the higher rate
constexpr std::size_t kNoPreviousSynthesisBytes = 99; // a block this small holds no synthesis

// Reads the table columns of a run in order, ahead of synthesis. Cells are separate objects
// spread over memory; read one at a time between two frames of synthesis, each read would wait
// for memory in turn. Instead the columns are looked up a batch at a time (the lookups of a
// batch overlap), and while the frames of one batch are synthesized the cells of the next are
// prefetched, one column per frame. Columns not made yet stay so: their values are read from
// what they would be made from.
class ColumnReader
{
public:
    // Columns 1 .. count-1 of the table, at keys c x interval.
    ColumnReader(const DataTableDictionary& table, std::int64_t count, std::int64_t interval)
        : m_table(table), m_count(count), m_interval(interval)
    {
        lookUp(1);
        for (int k = 0; k < kBatch; ++k)
            prefetchCells(k);
    }

    // Fills the frame from column c (1-based, called with c = 1, 2, ...); a missing column or
    // cell reads as 0.
    void read(std::int64_t c, klatt_frame_t& frame)
    {
        if (c >= m_first + kBatch) {
            take();
            lookUp(m_first + kBatch);
        }
        const int k = static_cast<int>(c - m_first);
        const std::int32_t* values = m_values[k];
        for (int i = 0; i < klatt_frame_t::kFieldCount; ++i)
            frame[i] = values[i];
        prefetchCells(k);
    }

private:
    static constexpr int kBatch = 16;

    // Looks up the batch of columns that starts at `first`.
    void lookUp(std::int64_t first)
    {
        m_nextFirst = first;
        for (int k = 0; k < kBatch; ++k) {
            const std::int64_t c = first + k;
            const DataTableDictionary::Peek peek =
                c < m_count ? m_table.peek(c * m_interval) : DataTableDictionary::Peek{};
            m_next[k] = peek.cells;
            m_nextPending[k] = peek.pending;
            if (!m_next[k])
                continue;
            const char* refs = reinterpret_cast<const char*>(m_next[k]->data());
            for (std::size_t offset = 0; offset < m_next[k]->size() * sizeof(CellRef); offset += 64)
                __builtin_prefetch(refs + offset);
        }
    }

    // The value of a cell lies near the start of the cell object: two lines cover it. The empty
    // asm statement keeps the loop: without it GCC drops a loop that only prefetches.
    void prefetchCells(int k) const
    {
        if (!m_next[k])
            return;
        for (const CellRef& cell : *m_next[k]) {
            const char* bytes = reinterpret_cast<const char*>(cell.get());
            asm volatile("" : : "r"(bytes));
            __builtin_prefetch(bytes);
            __builtin_prefetch(bytes + 32);
        }
    }

    // Makes the looked-up batch current: copies its values.
    void take()
    {
        m_first = m_nextFirst;
        const TableColumnSource* source = m_table.pendingSource();
        for (int k = 0; k < kBatch; ++k) {
            std::fill(std::begin(m_values[k]), std::end(m_values[k]), 0);
            if (source && m_nextPending[k] > 0) {
                for (int i = 0; i < klatt_frame_t::kFieldCount && i < kParameterCount; ++i)
                    m_values[k][i] = source->value(m_nextPending[k], i);
                continue;
            }
            const CellArray* column = m_next[k];
            if (!column)
                continue;
            const std::size_t n = std::min<std::size_t>(column->size(), klatt_frame_t::kFieldCount);
            for (std::size_t i = 0; i < n; ++i)
                m_values[k][i] = (*column)[i] ? (*column)[i]->_nValue() : 0;
        }
    }

    const DataTableDictionary& m_table;
    std::int64_t m_count, m_interval;
    std::int64_t m_first = 1 - kBatch; // no batch taken yet
    std::int64_t m_nextFirst = 1;
    const CellArray* m_next[kBatch] = {};
    long long m_nextPending[kBatch] = {}; // the announced index of a column not made, below 1 if none
    std::int32_t m_values[kBatch][klatt_frame_t::kFieldCount] = {};
};

// Reads the frames of a document whose table data has not been built: the values the table
// data would be built with, which are the grid's for a document that has a grid and the
// parameter records' for one that has none (saving reads such a document the same way).
class GridReader
{
public:
    explicit GridReader(const Channels& channel) : m_channel(channel) {}

    void read(std::int64_t c, klatt_frame_t& frame) const
    {
        const auto& grid = m_channel.m_snppDataImage_Col_Row;
        const std::size_t k = static_cast<std::size_t>(c - 1);
        if (k < grid.size()) {
            const GridColumn& column = grid[k];
            for (int i = 0; i < klatt_frame_t::kFieldCount; ++i)
                frame[i] = column[i];
            return;
        }
        for (int i = 0; i < klatt_frame_t::kFieldCount; ++i)
            frame[i] = m_channel.m_Parameters[i].nValue;
    }

private:
    const Channels& m_channel;
};

// Runs the engine over columns 1 .. count-1 into `samples` (`capacity` of them, `perFrame` per
// column); answers how many samples were written from the start.
template <typename Reader>
std::size_t synthesizeColumns(Reader& columns, std::int64_t count, CKlattEngine& engine, klatt_global_t& g,
                              klatt_frame_t& frame, int* frameOutput, float* samples, std::size_t capacity)
{
    const std::size_t perFrame = static_cast<std::size_t>(g.samples_per_frame);
    std::size_t written = 0;
    // The column at time 0 is never synthesized: the first frame is the column at one update
    // interval. Intended.
    for (std::int64_t c = 1; c < count; ++c) {
        // A grid longer than the document's length: the samples past the end of the block are
        // dropped, and once it is full the remaining columns are not synthesized.
        const std::size_t start = static_cast<std::size_t>(c - 1) * perFrame;
        if (start >= capacity && perFrame > 0)
            break;
        columns.read(c, frame);
        engine.parwave(&g, &frame, frameOutput);
        const std::size_t end = std::min(start + perFrame, capacity);
        for (std::size_t i = start; i < end; ++i)
            samples[i] =
                static_cast<float>(static_cast<std::int16_t>(frameOutput[i - start]) * 0.000030517578125);
        written = end;
    }
    return written;
}

// Keeps a block locked for the life of the guard.
class BlockLock
{
public:
    explicit BlockLock(MemoryBlock& block) : m_block(block), m_pBytes(block.lock()) {}
    ~BlockLock() { m_block.unlock(); }
    BlockLock(const BlockLock&) = delete;
    BlockLock& operator=(const BlockLock&) = delete;
    float* floats() { return static_cast<float*>(m_pBytes); }

private:
    MemoryBlock& m_block;
    void* m_pBytes;
};

// The engine's settings for one run: the natural voicing source, cascade or parallel as the
// channel says, five cascade formants at 11025 Hz or eight at 22050 Hz.
void setUpGlobals(klatt_global_t& g, const Channels& channel, int sampleRate, std::int64_t frameSamples)
{
    const bool highFormants = sampleRate == 22050;
    g.quiet = 1;
    g.glottal_source = 2;
    g.source_samples = CKlattEngine::natural_samples;
    g.source_sample_count = 100;
    g.source_sample_scale = 0.00001;
    g.output_select = 0;
    g.flutter_percent = 0;
    g.model = channel.m_bCascade_Parallel ? 1 : 2;
    g.cascade_formants = highFormants ? 8 : 5;
    g.sample_rate = sampleRate;
    g.samples_per_frame = static_cast<std::int32_t>(frameSamples);
}

// A new sample block for the channel's length at its sample rate, not cleared (the run writes
// every sample). A negative or meaningless length gives an empty block; one too large to
// address is an allocation failure. Answers the block's capacity in samples.
std::size_t newSampleBlock(Channels& channel)
{
    channel.m_dwFileLength = channel.m_dSampleRate * channel.m_dLengthMS / 1000.0;
    channel.m_hData.reset();
    const double length = channel.m_dwFileLength > 0.0 ? channel.m_dwFileLength : 0.0;
    if (length >= static_cast<double>(SIZE_MAX / sizeof(float)))
        throw DocumentException::memoryError();
    const std::size_t capacity = static_cast<std::size_t>(length);
    channel.m_hData = MemoryBlock::newHandle(capacity * sizeof(float));
    if (!channel.m_hData)
        throw DocumentException::memoryError();
    return capacity;
}

// The buffers of one run, allocated without throwing so that a failure is the document's
// memory error. The frame buffer holds one second at 22050 Hz, or the whole frame when an
// update interval is longer than that: a long interval never overflows it.
struct RunBuffers {
    explicit RunBuffers(std::int64_t frameSamples)
        : frameOutput(new (std::nothrow) int[std::max(frameSamples, kFrameBufferSamples)]),
          globals(new (std::nothrow) klatt_global_t{}), frame(new (std::nothrow) klatt_frame_t{})
    {
        if (!frameOutput || !globals || !frame)
            throw DocumentException::memoryError();
    }
    std::unique_ptr<int[]> frameOutput;
    std::unique_ptr<klatt_global_t> globals;
    std::unique_ptr<klatt_frame_t> frame;
};

// Runs the engine over the document's columns into the channel's block: from the table data
// when it is built, otherwise from the values it would be built with.
void runEngine(MyDocument& document, Channels& channel, RunBuffers& buffers, std::size_t capacity)
{
    klatt_global_t& g = *buffers.globals;
    CKlattEngine engine;
    engine.parwave_init(&g);
    BlockLock lock(*channel.m_hData);
    float* samples = lock.floats();
    std::size_t written = 0;
    if (document._dataTableDictionary.empty()) {
        GridReader columns(channel);
        written = synthesizeColumns(columns, channel.m_nColumnNum, engine, g, *buffers.frame,
                                    buffers.frameOutput.get(), samples, capacity);
    } else {
        ColumnReader columns(document._dataTableDictionary, channel.m_nColumnNum,
                             channel.m_nUpdateIntervalMS);
        written = synthesizeColumns(columns, channel.m_nColumnNum, engine, g, *buffers.frame,
                                    buffers.frameOutput.get(), samples, capacity);
    }
    // A document longer than its frames: the samples after the last frame are silence.
    std::fill(samples + written, samples + capacity, 0.0f);
}

} // namespace

void synthesizeDocument(MyDocument& document)
{
    Channels& channel = *document.getChannel(0);

    // Sample rate and frame length come first so that the frame buffer can be sized. A frame
    // whose sample count cannot be represented is refused like any other allocation failure.
    // Any parameter of the sixth to eighth formants in use needs 22050 Hz and eight cascade
    // formants.
    const int sampleRate = document.synthesisSampleRate();
    if (channel.m_nUpdateIntervalMS < 1)
        channel.m_nUpdateIntervalMS = 10;
    const std::int64_t frameSamples = std::int64_t{channel.m_nUpdateIntervalMS} * sampleRate / 1000;
    if (frameSamples > INT32_MAX)
        throw DocumentException::memoryError();
    auto buffers = std::make_unique<RunBuffers>(frameSamples);
    setUpGlobals(*buffers->globals, channel, sampleRate, frameSamples);
    channel.m_bIncraseSampleRate = sampleRate == 22050 ? 1 : 0;
    channel.m_dSampleRate = sampleRate;

    // The audio about to be replaced becomes the previous synthesis: its block moves to channel 1
    // rather than being copied there and then released.
    const bool hadPrevious = channel.m_hData && channel.m_hData->size() > kNoPreviousSynthesisBytes;
    if (hadPrevious)
        document.MoveCurrentToPrevious();
    const std::size_t capacity = newSampleBlock(channel);

    Log::line("strat synthesize");
    runEngine(document, channel, *buffers, capacity);
    Log::line("end synthesize");
    document.m_nClippedSamples = buffers->globals->clipped_samples;
    document.m_dPeakLevel = buffers->globals->peak_magnitude / 32768.0;
    document.m_nSynthesizedSamples = static_cast<std::int64_t>(capacity);
    buffers.reset();
    channel.m_bSynthesize = 0;
    channel.m_bSampleRateChanged = 0;

    if (!hadPrevious)
        document.CopyCurrentToPrevious();
    Log::line("done synthesize");
}

void installSynthesis()
{
    setSynthesisFunction(&synthesizeDocument);
}
