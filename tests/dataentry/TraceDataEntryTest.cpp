// The headless entry of an analysis into the table data: where each pitch and formant frame
// lands, what the amplitudes read, the range error of a pitch track longer than the grid, and
// the placeholders of the display lists.
#include "dataentry/TraceDataEntry.h"
#include "dataentry/StrokePlayback.h"
#include "document/MyDocument.h"
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"

#include <gtest/gtest.h>

namespace
{

// A document of `columns` 10 ms frames with its table data.
struct Grid {
    MyDocument doc;
    explicit Grid(int columns) { setTestFrames(doc, columns, 10, 1); }
    int value(int column, int row) { return frameValue(doc, column, row); }
    std::string text(int column, int row) { return frameCell(doc, column, row)->stringValue(); }
};

// A spectrogram of `frames` formant frames, frame f holding 1000 + f, 2000 + f, ... Hz, and a
// level of `level` dB everywhere on a display `frames` x 100.
SpectrogramComputation formantFrames(int frames, double level)
{
    SpectrogramComputation s;
    s.SetupDisplay(frames, 100, 11025.0);
    s.GetStorage();
    for (int f = 0; f < frames; ++f) {
        std::fill(s.frame(f), s.frame(f) + 100, level);
        for (int slot = 0; slot < 5; ++slot)
            s.m_phsnFormants[static_cast<std::size_t>(f)][static_cast<std::size_t>(slot)] =
                static_cast<std::int16_t>(1000 * (slot + 1) + f);
    }
    s.m_bHaveSpectrogram = 1;
    s.m_bHaveFormants = 1;
    return s;
}

} // namespace

TEST(TraceDataEntry, FormantFramesAreResampledOntoTheColumnsLastFrameWinning)
{
    Grid grid(50);
    TraceTrackLists lists = TraceDataEntry::formantLists();
    lists.setup(grid.doc);
    const SpectrogramComputation s = formantFrames(100, 50.0);
    TraceDataEntry::enterFormants(grid.doc, lists, s);
    for (int c = 0; c < 50; ++c) {
        // List index c is frame column c + 1 and gets frame 2c + 1; limits clamp f5.
        EXPECT_EQ(grid.value(c + 1, Row::f1), 1000 + 2 * c + 1) << c;
        EXPECT_EQ(grid.value(c + 1, Row::f2), 2000 + 2 * c + 1) << c;
        EXPECT_EQ(grid.text(c + 1, Row::f2), std::to_string(2000 + 2 * c + 1)) << c;
    }
    const ImageAndTextCell& f5 = *grid.doc._dataTableDictionary.cellAt(10, Row::f5);
    EXPECT_EQ(f5._nValue(), std::clamp(5001, f5._nMinValue(), f5._nMaxValue()));

    // Fewer frames than columns: the columns no frame reaches keep their values.
    Grid sparse(10);
    TraceTrackLists few = TraceDataEntry::formantLists();
    few.setup(sparse.doc);
    const int before = sparse.value(2, Row::f1);
    TraceDataEntry::enterFormants(sparse.doc, few, formantFrames(5, 50.0));
    EXPECT_EQ(sparse.value(1, Row::f1), 1000);
    EXPECT_EQ(sparse.value(2, Row::f1), before);
    EXPECT_EQ(sparse.value(3, Row::f1), 1001);
}

TEST(TraceDataEntry, PitchEntersWholeHertzAndATrackLongerThanTheGridFails)
{
    Grid grid(5);
    TraceTrackLists lists = TraceDataEntry::pitchLists();
    lists.setup(grid.doc);
    PitchTrackComputation pitch;
    pitch.m_hdPitchFile = {123.9, 0.0, 99.99, 250.5, 80.0};
    pitch.m_nFrameCount = 5;
    TraceDataEntry::enterPitch(grid.doc, lists, pitch);
    const int tenthsOfHertz[] = {1230, 0, 990, 2500, 800};
    for (int column = 1; column <= 5; ++column)
        EXPECT_EQ(grid.value(column, Row::f0), tenthsOfHertz[column - 1]) << column;
    EXPECT_EQ(grid.text(1, Row::f0), "1230");

    // Six frames on five columns: columns 1 .. 5 are set, then index 5 is out of range.
    pitch.m_hdPitchFile = {100, 110, 120, 130, 140, 150};
    pitch.m_nFrameCount = 6;
    EXPECT_THROW(TraceDataEntry::enterPitch(grid.doc, lists, pitch), std::out_of_range);
    EXPECT_EQ(grid.value(5, Row::f0), 1400);
}

TEST(TraceDataEntry, AmplitudesReadTheLevelUnderEachEnteredFormant)
{
    Grid grid(20);
    TraceTrackLists formants = TraceDataEntry::formantLists();
    TraceTrackLists amplitudes = TraceDataEntry::amplitudeLists();
    formants.setup(grid.doc);
    amplitudes.setup(grid.doc);
    SpectrogramComputation s = formantFrames(20, 10.0);
    // Row 1000 Hz of 5000 over 100 rows is row 20: louder there in every column.
    for (int f = 0; f < 20; ++f)
        for (int row = 20; row < 22; ++row)
            s.frame(f)[row] = 45.0;
    TraceDataEntry::enterFormants(grid.doc, formants, s);
    TraceDataEntry::enterAmplitudes(grid.doc, amplitudes, s, s.m_rSpectrogram);
    // Frame 0's f1 is 1000 Hz: 90 - 50 + 45 = 85 dB; f2 at 2000 Hz reads the floor, 50 dB.
    EXPECT_EQ(grid.value(1, Row::a1f), 85);
    EXPECT_EQ(grid.value(1, Row::a2f), 50);
    // av and apv are never entered.
    const int av = MyDocument().getChannel(0)->m_Parameters[Row::av].nValue;
    EXPECT_EQ(grid.value(1, Row::av), av);
}

TEST(TraceDataEntry, HiddenOldValuesShowPlaceholdersUntilTraced)
{
    Grid grid(4);
    TraceTrackLists lists = TraceDataEntry::amplitudeLists();
    lists._bViewGridData = false;
    lists.setup(grid.doc);
    ASSERT_EQ(lists.columnCount(0), 4);
    // One placeholder per column, shared by the slots; the traced lists hold the live cells.
    EXPECT_EQ(lists._arrayGridValues[0][1]->_nValue(), -1);
    EXPECT_EQ(lists._arrayGridValues[0][1], lists._arrayGridValues[6][1]);
    EXPECT_EQ(lists._arrayTracedValues[0][1], grid.doc._dataTableDictionary.cellAt(20, Row::a1f));
    lists.setValue(0, 1, 77);
    EXPECT_EQ(lists._arrayGridValues[0][1], lists._arrayTracedValues[0][1]);
    EXPECT_EQ(lists._arrayGridValues[0][2]->_nValue(), -1);
    EXPECT_THROW(lists.setValue(0, 4, 1), std::out_of_range);

    // A clamped write-back brings a traced value within the limits and sets its text.
    lists.setValue(0, 2, 500);
    lists.writeBack(grid.doc, 0, true);
    const ImageAndTextCell& cell = *grid.doc._dataTableDictionary.cellAt(30, Row::a1f);
    EXPECT_EQ(cell._nValue(), cell._nMaxValue());
    EXPECT_EQ(cell.stringValue(), std::to_string(cell._nMaxValue()));

    // A table of fewer than two entries gives empty lists.
    MyDocument empty;
    lists.setup(empty);
    EXPECT_EQ(lists.columnCount(0), 0);
}

// (One undo step: TraceWindow.EnterAllDataAndEachDragAreOneUndoStepEach.)
TEST(TraceDataEntry, EnteringAllDataOnAnHourMakesNoColumns)
{
    // An hour of frames as read from a file: its columns wait to be made until looked at.
    MyDocument doc;
    readTestFrames(doc, MyDocument::kMaxFrames, [](Channels&) {});
    doc.m_bSpecDrawFormantTracking = 1;
    const DataTableDictionary& data = doc._dataTableDictionary;
    const std::size_t pending = data.pendingCount();

    TraceTrackLists pitch = TraceDataEntry::pitchLists(), formants = TraceDataEntry::formantLists(),
                    amplitudes = TraceDataEntry::amplitudeLists();
    for (TraceTrackLists* lists : {&pitch, &formants, &amplitudes})
        lists->setup(doc);
    PitchTrackComputation track;
    track.m_hdPitchFile = {120.0, 130.0};
    track.m_nFrameCount = 2;
    // 1200 formant frames over 360000 columns: frame f on column 300 f + 1, f1 at 1000 + f Hz.
    ASSERT_EQ(
        TraceDataEntry::enterAllData(doc, pitch, formants, amplitudes, track, formantFrames(1200, 10.0)),
        TraceDataEntry::Outcome::Entered);
    EXPECT_GT(data.pendingCount(), pending - 10) << "the entry made no columns";
    EXPECT_EQ(frameValue(doc, 2, Row::f0), 1300);
    EXPECT_EQ(frameValue(doc, 301, Row::f1), 1001);
    const int f5Limit = frameCell(doc, 300001, Row::f5)->_nMaxValue();
    ASSERT_LT(f5Limit, 6000);
    EXPECT_EQ(frameValue(doc, 300001, Row::f5), f5Limit) << "5000 + f Hz brought within the limit";
    EXPECT_EQ(frameValue(doc, 300001, Row::a1f), 50);
}

TEST(StrokePlayback, ShortUtterancesPlayWholeLongOnesTheStrokeWithMargins)
{
    StrokeSpan stroke;
    EXPECT_EQ(StrokePlayback::columns(10000.0, 10, 1000, stroke), std::make_pair(-1, -1)) << "no stroke";
    for (int column : {510, 500, 505})
        stroke.add(column);
    EXPECT_EQ(stroke.first(), 500);
    EXPECT_EQ(stroke.last(), 510);
    // 3 s or less: the whole utterance.
    EXPECT_EQ(StrokePlayback::columns(3000.0, 10, 300, stroke), std::make_pair(0, 0));
    // Longer: 300 ms before and after, in whole frames (7 ms frames: 43 of them), within the table.
    EXPECT_EQ(StrokePlayback::columns(3001.0, 10, 1000, stroke), std::make_pair(470, 540));
    EXPECT_EQ(StrokePlayback::columns(10000.0, 7, 1000, stroke), std::make_pair(457, 553));
    StrokeSpan edges;
    edges.add(2);
    edges.add(995);
    EXPECT_EQ(StrokePlayback::columns(10000.0, 10, 1000, edges), std::make_pair(1, 1000));
    edges.reset();
    EXPECT_TRUE(edges.empty());
}
