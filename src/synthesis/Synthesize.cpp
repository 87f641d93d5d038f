// The synthesis driver: turns the document's table data into audio in the synthesis channel,
// one Klatt frame per table column, and keeps the previous synthesis in channel 1.
#include "document/DocumentException.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "synthesis/CKlattEngine.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

namespace
{

constexpr std::int64_t kFrameBufferSamples = 22050;   // one second at the higher rate
constexpr std::size_t kNoPreviousSynthesisBytes = 99; // a block this small holds no synthesis

// True when any parameter of the sixth to eighth formants is in use: the run then needs
// 22050 Hz and eight cascade formants.
bool usesHighFormants(const Channels& c)
{
    return std::any_of(std::begin(kHighFormantRows), std::end(kHighFormantRows),
                       [&c](int row) { return c.m_Parameters[row].bSelected != 0; });
}

// Reads the table columns of a run ahead of synthesis, a batch at a time. Cells are separate
// objects spread over memory: read one column per frame between two frames of synthesis, each
// read waits for memory in turn; read in a batch, the reads overlap.
class ColumnReader
{
public:
    // Columns 1 .. count-1 of the table, at keys c x interval.
    ColumnReader(const DataTableDictionary& table, std::int64_t count, std::int64_t interval)
        : m_table(table), m_count(count), m_interval(interval)
    {
    }

    // Fills the frame from column c (1-based, read in order); a missing column or cell reads as 0.
    void read(std::int64_t c, klatt_frame_t& frame)
    {
        if (c < m_first || c >= m_first + kBatch)
            fill(c);
        const std::int32_t* values =
            &m_values[static_cast<std::size_t>(c - m_first) * klatt_frame_t::kFieldCount];
        for (int i = 0; i < klatt_frame_t::kFieldCount; ++i)
            frame[i] = values[i];
    }

private:
    static constexpr std::int64_t kBatch = 256;

    void fill(std::int64_t first)
    {
        m_first = first;
        const std::int64_t count = std::min(kBatch, m_count - first);
        // Every lookup of the batch first, then every cell: independent reads side by side.
        for (std::int64_t k = 0; k < count; ++k)
            m_columns[k] = m_table.objectForKey((first + k) * m_interval);
        std::fill(m_values.begin(), m_values.end(), 0);
        for (std::int64_t k = 0; k < count; ++k) {
            const CellArray* column = m_columns[k];
            if (!column)
                continue;
            std::int32_t* values = &m_values[static_cast<std::size_t>(k) * klatt_frame_t::kFieldCount];
            const std::size_t n = std::min<std::size_t>(column->size(), klatt_frame_t::kFieldCount);
            for (std::size_t i = 0; i < n; ++i)
                values[i] = (*column)[i] ? (*column)[i]->_nValue() : 0;
        }
    }

    const DataTableDictionary& m_table;
    std::int64_t m_count, m_interval;
    std::int64_t m_first = -kBatch; // no batch read yet
    std::vector<const CellArray*> m_columns = std::vector<const CellArray*>(kBatch);
    std::vector<std::int32_t> m_values = std::vector<std::int32_t>(kBatch * klatt_frame_t::kFieldCount);
};

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

} // namespace

void MyDocument::CopyCurrentToPrevious()
{
    m_Channel[1]->Duplicate(*m_Channel[0]);
}

void MyDocument::Synthesize()
{
    Channels& channel = *m_Channel[0];

    // Sample rate and frame length come first so that the frame buffer can be sized. It holds
    // one second at 22050 Hz, or the whole frame when an update interval is longer than that:
    // a long interval never overflows it. A frame whose sample count cannot be represented is
    // refused like any other allocation failure.
    const bool highFormants = usesHighFormants(channel);
    const int sampleRate = highFormants ? 22050 : 11025;
    if (channel.m_nUpdateIntervalMS < 1)
        channel.m_nUpdateIntervalMS = 10;
    const std::int64_t frameSamples = std::int64_t{channel.m_nUpdateIntervalMS} * sampleRate / 1000;
    if (frameSamples > INT32_MAX)
        throw DocumentException::memoryError();

    std::unique_ptr<int[]> frameOutput(new (std::nothrow) int[std::max(frameSamples, kFrameBufferSamples)]);
    std::unique_ptr<klatt_global_t> globals(new (std::nothrow) klatt_global_t{});
    std::unique_ptr<klatt_frame_t> frame(new (std::nothrow) klatt_frame_t{});
    if (!frameOutput || !globals || !frame)
        throw DocumentException::memoryError();

    klatt_global_t& g = *globals;
    g.quiet = 1;
    g.glottal_source = 2;
    g.source_samples = CKlattEngine::natural_samples;
    g.source_sample_count = 100;
    g.source_sample_scale = 0.00001;
    g.output_select = 0;
    g.flutter_percent = 0;
    g.model = channel.m_bCascade_Parallel ? 1 : 2;

    channel.m_bIncraseSampleRate = highFormants ? 1 : 0;
    channel.m_dSampleRate = sampleRate;
    g.cascade_formants = highFormants ? 8 : 5;
    g.sample_rate = sampleRate;
    g.samples_per_frame = static_cast<std::int32_t>(frameSamples);

    const bool hadPrevious = channel.m_hData && channel.m_hData->size() > kNoPreviousSynthesisBytes;
    if (hadPrevious)
        CopyCurrentToPrevious();

    channel.m_dSampleRate = g.sample_rate;
    channel.m_dwFileLength = channel.m_dSampleRate * channel.m_dLengthMS / 1000.0;
    channel.m_hData.reset();
    // A negative or meaningless length gives an empty block; one too large to address is an
    // allocation failure.
    const double length = channel.m_dwFileLength > 0.0 ? channel.m_dwFileLength : 0.0;
    if (length >= static_cast<double>(SIZE_MAX / sizeof(float)))
        throw DocumentException::memoryError();
    const std::size_t capacity = static_cast<std::size_t>(length);
    channel.m_hData = MemoryBlock::newHandleClear(capacity * sizeof(float));
    if (!channel.m_hData)
        throw DocumentException::memoryError();

    CKlattEngine engine;
    Log::line("strat synthesize");
    engine.parwave_init(&g);
    {
        BlockLock lock(*channel.m_hData);
        float* samples = lock.floats();
        const std::size_t perFrame = static_cast<std::size_t>(g.samples_per_frame);
        // The column at time 0 is never synthesized: the first frame is the column at one
        // update interval. Intended; the document's length leaves room for one frame less.
        ColumnReader columns(_dataTableDictionary, channel.m_nColumnNum, channel.m_nUpdateIntervalMS);
        for (std::int64_t c = 1; c < channel.m_nColumnNum; ++c) {
            columns.read(c, *frame);
            engine.parwave(&g, frame.get(), frameOutput.get());
            // Every column runs through the engine, but samples past the end of the block
            // (a grid longer than the document's length) are dropped.
            const std::size_t start = static_cast<std::size_t>(c - 1) * perFrame;
            const std::size_t end = std::min(start + perFrame, capacity);
            for (std::size_t i = start; i < end; ++i)
                samples[i] =
                    static_cast<float>(static_cast<std::int16_t>(frameOutput[i - start]) * 0.000030517578125);
        }
    }
    Log::line("end synthesize");
    frameOutput.reset();
    globals.reset();
    frame.reset();
    channel.m_bSynthesize = 0;
    channel.m_bSampleRateChanged = 0;

    if (!hadPrevious)
        CopyCurrentToPrevious();
    Log::line("done synthesize");
}
