#pragma once
// TraceDataEntry: enters the automatic analysis of the model utterance into the document's
// table data, as the trace window's Enter All Data does: the pitch track into f0, the formant
// tracks into f1 .. f5 and the spectrogram level under each formant into a1f .. a5f (av and apv
// are never entered). The trace window and tessaphon-cli share this code, so a document traced
// headlessly saves to the same bytes as one traced in the window.
//
// The lists are those of the window's three views (TraceTrackLists). The spectrogram entered
// from is not the picture on screen (one frame per pixel column) but an analysis of its own with
// at least one frame per document frame (entryAnalysisWidth), so that every frame is filled
// whatever the window's size and the window and tessaphon-cli enter the same values. Main
// thread only.
// Functions throw std::exception subclasses; whatever was entered before stays entered.
#include "dataentry/TraceTrackLists.h"
#include "display/PitchTrackComputation.h"
#include "display/SpectrogramComputation.h"
#include "document/ParameterDefinition.h"

class MyDocument;

class TraceDataEntry
{
public:
    // Pixel size of the trace window's spectrogram view in the window's default 800 x 400 frame.
    static constexpr int kDefaultSpectrogramWidth = 695;
    static constexpr int kDefaultSpectrogramHeight = 187;
    // Frames of the analysis that an entry reads: `width`, but never fewer than the document's
    // frames. The window asks with kDefaultSpectrogramWidth, as tessaphon-cli does by default.
    static int entryAnalysisWidth(const MyDocument& doc, int width = kDefaultSpectrogramWidth);
    // Full scale of the amplitude panel, dB.
    static constexpr double kAmplitudeCeiling = 90.0;

    // Rows of the tracks of each view, slot by slot.
    static TraceTrackLists pitchLists() { return TraceTrackLists({Row::f0}); }
    static TraceTrackLists formantLists()
    {
        return TraceTrackLists({Row::f1, Row::f2, Row::f3, Row::f4, Row::f5});
    }
    static TraceTrackLists amplitudeLists()
    {
        return TraceTrackLists({Row::a1f, Row::a2f, Row::a3f, Row::a4f, Row::a5f, Row::av, Row::apv});
    }

    // The pitch track into f0: frame i to list index i as trunc(Hz) x 10, for i up to
    // min(frames - 1, columns); a track longer than the grid writes one index past the last
    // column, which throws std::out_of_range after the earlier columns were set. Then row 0 is
    // written back without clamping.
    static void enterPitch(MyDocument& doc, TraceTrackLists& lists, const PitchTrackComputation& pitch);
    // Formant frame f to list index trunc(f x (columns / frames)) (the last frame wins), for the
    // five slots; then rows 12 .. 8 written back and clamped to their limits.
    static void enterFormants(MyDocument& doc, TraceTrackLists& lists,
                              const SpectrogramComputation& spectrogram);
    // For each formant frame j and slot i: the level of the spectrogram under formant i + 1 as
    // the grid now holds it in column trunc(j x columns / frames), read with
    // GetSpectrogramAmplitue on the display rectangle; then rows 29 .. 25 written back and
    // clamped.
    static void enterAmplitudes(MyDocument& doc, TraceTrackLists& lists,
                                const SpectrogramComputation& spectrogram, const ShortRect& rect);

    enum class Outcome { Entered, FormantTrackingOff };
    // The whole entry: nothing when formant tracking is off; otherwise one undo step (undo snapshot before,
    // redo snapshot after) around pitch, formants and amplitudes. Exceptions pass through, the
    // step saved.
    static Outcome enterAllData(MyDocument& doc, TraceTrackLists& pitch, TraceTrackLists& formants,
                                TraceTrackLists& amplitudes, const PitchTrackComputation& pitchTrack,
                                const SpectrogramComputation& spectrogram);

    // Headless copy synthesis: the document's pitch track and a spectrogram of
    // entryAnalysisWidth(doc, width) x height
    // of its model channel, entered with enterAllData over fresh lists. Returns the outcome.
    static Outcome traceDocument(MyDocument& doc, int width = kDefaultSpectrogramWidth,
                                 int height = kDefaultSpectrogramHeight);
};
