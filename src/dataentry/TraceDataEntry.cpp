#include "dataentry/TraceDataEntry.h"

#include "document/MyDocument.h"
#include "document/UndoStep.h"
#include "table/TableEditing.h"

#include <algorithm>
#include <cmath>

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
    for (long long i = 0; i <= last; ++i) {
        const double hz = pitch.m_hdPitchFile[static_cast<std::size_t>(i)];
        const double whole = std::isfinite(hz) ? std::clamp(std::trunc(hz), -2.0e8, 2.0e8) : 0.0;
        lists.setValue(0, static_cast<int>(i), static_cast<int>(whole) * 10);
    }
    lists.writeBack(doc, 0, false);
}

void TraceDataEntry::enterFormants(MyDocument& doc, TraceTrackLists& lists,
                                   const SpectrogramComputation& spectrogram)
{
    const int columns = doc.getChannel(0)->m_nColumnNum;
    const int frames =
        std::min(spectrogram.m_nFormantsFrames, static_cast<int>(spectrogram.m_phsnFormants.size()));
    if (frames > 0 && spectrogram.m_bHaveFormants) {
        const double perFrame = static_cast<double>(columns) / frames;
        for (int slot = 0; slot < 5; ++slot)
            for (int f = 0; f < frames; ++f) {
                const int column = static_cast<int>(std::trunc(f * perFrame));
                // Several frames on one column: the last one wins.
                lists.setValue(slot, column, spectrogram.m_phsnFormants[static_cast<std::size_t>(f)][slot]);
            }
    }
    for (int slot = 0; slot < 5; ++slot)
        lists.writeBack(doc, slot, false);
    for (int row = 12; row >= 8; --row)
        checkDataRange(doc, row);
}

void TraceDataEntry::enterAmplitudes(MyDocument& doc, TraceTrackLists& lists,
                                     const SpectrogramComputation& spectrogram, const ShortRect& rect)
{
    const int columns = doc.getChannel(0)->m_nColumnNum;
    const int interval = doc.updateInterval();
    const int frames =
        std::min(spectrogram.m_nFormantsFrames, static_cast<int>(spectrogram.m_phsnFormants.size()));
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    const int range = doc.m_nSpecfrequencyRange;
    for (int slot = 0; slot < 5 && frames > 0; ++slot) {
        for (int j = 0; j < frames; ++j) {
            const int column = static_cast<int>(static_cast<long long>(j) * columns / frames);
            const CellRef formant =
                doc._dataTableDictionary.cellAt(static_cast<long long>(column + 1) * interval, 12 - slot);
            const double frequency = formant ? formant->_nValue() : 0.0;
            const int vertical = range != 0 ? static_cast<int>(std::trunc(frequency * height / range)) : 0;
            const int horizontal = static_cast<int>(static_cast<long long>(j) * width / frames);
            const double amplitude = spectrogram.GetSpectrogramAmplitue(
                height, width, doc.m_nSpecDynamicRange, kAmplitudeCeiling, vertical, horizontal);
            lists.setValue(slot, column, static_cast<int>(amplitude));
        }
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
