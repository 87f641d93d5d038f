#include "dataentry/TraceDataEntry.h"

#include "document/MyDocument.h"
#include "document/TableValueWriter.h"
#include "document/UndoStep.h"
#include "table/TableEditing.h"

#include <algorithm>
#include <cmath>

namespace
{
// The values an entry gives its slots, by list index (several on one index: the last one wins).
class SlotEntries
{
public:
    SlotEntries(int slots, int columns)
        : m_value(static_cast<std::size_t>(slots), std::vector<int>(static_cast<std::size_t>(columns))),
          m_entered(static_cast<std::size_t>(slots), std::vector<char>(static_cast<std::size_t>(columns)))
    {
    }
    void set(int slot, int index, int value)
    {
        m_value.at(static_cast<std::size_t>(slot)).at(static_cast<std::size_t>(index)) = value;
        m_entered[static_cast<std::size_t>(slot)][static_cast<std::size_t>(index)] = 1;
    }
    // Puts every slot in its row, column by column, without making columns: an entered index
    // takes its value (and is shown in the lists), every cell of the row gets its text written
    // from its value, and with `clamp` each value is first brought within its cell's limits.
    // What writing the lists' cells back and checking the rows' range leaves, for any length.
    void put(MyDocument& doc, TraceTrackLists& lists, bool clamp) const
    {
        TableValueWriter table(doc);
        for (int slot = 0; slot < static_cast<int>(m_value.size()); ++slot)
            putRow(table, lists, slot, clamp);
        table.finish();
    }

private:
    void putRow(TableValueWriter& table, TraceTrackLists& lists, int slot, bool clamp) const
    {
        const int row = lists.row(slot);
        const auto& values = m_value[static_cast<std::size_t>(slot)];
        const auto& entered = m_entered[static_cast<std::size_t>(slot)];
        for (long long column = 1; column <= table.frames(); ++column) {
            const auto index = static_cast<std::size_t>(column - 1);
            int value = 0;
            if (!table.value(column, row, value))
                continue; // no cell: nothing entered there
            if (index < entered.size() && entered[index]) {
                value = values[index];
                lists.markEntered(slot, static_cast<int>(index));
            }
            if (clamp) {
                const ImageAndTextCell* cell = table.definitionCell(column, row);
                if (!cell)
                    continue;
                value = clampToLimits(*cell, value);
            }
            table.setValue(column, row, value);
        }
    }

    std::vector<std::vector<int>> m_value;
    std::vector<std::vector<char>> m_entered;
};

// True when every list index below `end` lies within the lists' columns, so that the entry
// cannot stop half way and may be put in place at once.
bool fitsLists(const TraceTrackLists& lists, long long end)
{
    return end >= 0 && end <= lists.columnCount(0);
}

// Formant frame f of `frames` to list index trunc(f x (columns / frames)).
template <typename Enter>
void eachFormant(int columns, int frames, const SpectrogramComputation& spectrogram, Enter&& enter)
{
    const double perFrame = static_cast<double>(columns) / frames;
    for (int slot = 0; slot < 5; ++slot)
        for (int f = 0; f < frames; ++f)
            enter(slot, static_cast<int>(std::trunc(f * perFrame)),
                  spectrogram.m_phsnFormants[static_cast<std::size_t>(f)][slot]);
}
} // namespace

void TraceDataEntry::enterPitch(MyDocument& doc, TraceTrackLists& lists, const PitchTrackComputation& pitch)
{
    const long long columns = doc.getChannel(0)->m_nColumnNum;
    const auto frames = static_cast<long long>(std::min<std::size_t>(
        static_cast<std::size_t>(std::max(pitch.m_nFrameCount, 0)), pitch.m_hdPitchFile.size()));
    // Frame i goes to column i + 1 without rescaling: the pitch step is expected to equal the
    // update interval. The last index is min(frames - 1, columns), one past the last column
    // when the track is longer than the grid; that index ends the entry (intended: the user
    // learns that the pitch step does not fit the grid).
    const long long last = std::min(frames - 1, columns);
    const auto valueAt = [&pitch](long long i) {
        const double hz = pitch.m_hdPitchFile[static_cast<std::size_t>(i)];
        const double whole = std::isfinite(hz) ? std::clamp(std::trunc(hz), -2.0e8, 2.0e8) : 0.0;
        return static_cast<int>(whole) * 10;
    };
    if (!fitsLists(lists, last + 1)) {
        for (long long i = 0; i <= last; ++i)
            lists.setValue(0, static_cast<int>(i), valueAt(i));
        lists.writeBack(doc, 0, false);
        return;
    }
    SlotEntries entries(1, lists.columnCount(0));
    for (long long i = 0; i <= last; ++i)
        entries.set(0, static_cast<int>(i), valueAt(i));
    entries.put(doc, lists, false);
}

void TraceDataEntry::enterFormants(MyDocument& doc, TraceTrackLists& lists,
                                   const SpectrogramComputation& spectrogram)
{
    const int columns = doc.getChannel(0)->m_nColumnNum;
    const int frames =
        std::min(spectrogram.m_nFormantsFrames, static_cast<int>(spectrogram.m_phsnFormants.size()));
    const bool enters = frames > 0 && spectrogram.m_bHaveFormants;
    if (!enters || (columns > 0 && fitsLists(lists, columns))) {
        SlotEntries entries(5, lists.columnCount(0));
        if (enters)
            eachFormant(columns, frames, spectrogram,
                        [&entries](int slot, int index, int value) { entries.set(slot, index, value); });
        entries.put(doc, lists, true);
        return;
    }
    eachFormant(columns, frames, spectrogram,
                [&lists](int slot, int index, int value) { lists.setValue(slot, index, value); });
    for (int slot = 0; slot < 5; ++slot)
        lists.writeBack(doc, slot, false);
    for (int row = 12; row >= 8; --row)
        checkDataRange(doc, row);
}

void TraceDataEntry::enterAmplitudes(MyDocument& doc, TraceTrackLists& lists,
                                     const SpectrogramComputation& spectrogram, const ShortRect& rect)
{
    const int columns = doc.getChannel(0)->m_nColumnNum;
    const int frames =
        std::min(spectrogram.m_nFormantsFrames, static_cast<int>(spectrogram.m_phsnFormants.size()));
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    const int range = doc.m_nSpecfrequencyRange;
    const bool fits = frames <= 0 || (columns > 0 && fitsLists(lists, columns));
    SlotEntries entries(5, fits ? lists.columnCount(0) : 0);
    {
        const TableValueWriter grid(doc); // reads the formants as they stand, making no column
        for (int slot = 0; slot < 5 && frames > 0; ++slot) {
            for (int j = 0; j < frames; ++j) {
                const int column = static_cast<int>(static_cast<long long>(j) * columns / frames);
                int formant = 0;
                grid.value(column + 1, 12 - slot, formant);
                const double frequency = formant;
                const int vertical =
                    range != 0 ? static_cast<int>(std::trunc(frequency * height / range)) : 0;
                const int horizontal = static_cast<int>(static_cast<long long>(j) * width / frames);
                const double amplitude = spectrogram.GetSpectrogramAmplitue(
                    height, width, doc.m_nSpecDynamicRange, kAmplitudeCeiling, vertical, horizontal);
                if (fits)
                    entries.set(slot, column, static_cast<int>(amplitude));
                else
                    lists.setValue(slot, column, static_cast<int>(amplitude));
            }
        }
    }
    if (fits) {
        entries.put(doc, lists, true);
        return;
    }
    for (int slot = 0; slot < 5; ++slot)
        lists.writeBack(doc, slot, false);
    for (int row = 29; row >= 25; --row)
        checkDataRange(doc, row);
}

TraceDataEntry::Outcome TraceDataEntry::enterAllData(MyDocument& doc, TraceTrackLists& pitch,
                                                     TraceTrackLists& formants, TraceTrackLists& amplitudes,
                                                     const PitchTrackComputation& pitchTrack,
                                                     const SpectrogramComputation& spectrogram)
{
    if (!doc.m_bSpecDrawFormantTracking)
        return Outcome::FormantTrackingOff;
    // One undo step, whatever the entry got to before a failure.
    asOneUndoStep(doc, [&] {
        enterPitch(doc, pitch, pitchTrack);
        enterFormants(doc, formants, spectrogram);
        enterAmplitudes(doc, amplitudes, spectrogram, spectrogram.m_rSpectrogram);
    });
    return Outcome::Entered;
}

int TraceDataEntry::entryAnalysisWidth(const MyDocument& doc, int width)
{
    return std::max(width, doc.getChannel(0)->m_nColumnNum);
}

TraceDataEntry::Outcome TraceDataEntry::traceDocument(MyDocument& doc, int width, int height)
{
    if (!doc.m_bSpecDrawFormantTracking)
        return Outcome::FormantTrackingOff;
    const Channels& model = *doc.getChannel(2);
    PitchTrackComputation pitchTrack;
    pitchTrack.DoPitchCepstral(model, PitchSettings::fromDocument(doc));
    SpectrogramComputation spectrogram(SpectrogramSettings::fromDocument(doc));
    spectrogram.compute(model, entryAnalysisWidth(doc, width), height);
    TraceTrackLists pitch = pitchLists();
    TraceTrackLists formants = formantLists();
    TraceTrackLists amplitudes = amplitudeLists();
    for (TraceTrackLists* lists : {&pitch, &formants, &amplitudes}) {
        lists->_bViewGridData = doc._bShowGridData != 0;
        lists->setup(doc);
    }
    return enterAllData(doc, pitch, formants, amplitudes, pitchTrack, spectrogram);
}
