#pragma once
// CopySynthesis: estimates every synthesis parameter of a recording, frame by frame, so that
// the synthesis of the result sounds and measures like the recording: voicing and f0 from a
// path search over autocorrelation candidates, f1..f5 (f6..f8 at 22050 Hz) and b1..b5 from LPC
// roots tracked by a path search under several formant ceilings (the smoothest kept), noise
// amplitudes from the band energies of unvoiced frames, and levels corrected by synthesizing
// the estimate and measuring it against the recording; the voice goes through the cascade or,
// when that comes closer to the recording, through the parallel branch with each formant's
// amplitude matched; the whole is scaled so nothing clips.
//
// One entry point serves the command-line tool, the workbench and the Python module, and one
// function turns its result into a document, so all three produce the same bytes.
//
// Threads: copySynthesize() may run on a worker thread (the synthesizer's carried-over state is
// the thread's own, and it is set and put back around each of its runs); applyCopySynthesis()
// belongs to the document's thread. Units: samples full scale +-1, rates in
// Hz, times in ms; frame values in the units of the parameter rows (f0 in 0.1 Hz, dB, Hz).
#include "document/ParameterDefinition.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class MyDocument;

struct CopySynthesisOptions {
    // Synthesis rate of the result: 11025 or 22050 (f6..f8 in use); 0 chooses 22050 when the
    // recording's rate is 22050 Hz or more, else 11025.
    int outputRate = 0;
    // Highest formant ceiling in Hz (the frequency the LPC analysis reaches); 0 = automatic:
    // several ceilings are tried and the one whose tracks are smoothest is kept.
    double maxFormantHz = 0.0;
    int intervalMS = 10; // frame duration, 1..100 ms
    // Analysis settings, as the other analysis commands take them.
    double pitchLowHz = 60.0;   // lowest f0 searched
    double pitchHighHz = 500.0; // highest f0 searched
    double pitchWindowMS = 0.0; // 0: three periods of the lowest f0 (at least 20 ms)
    int lpcOrder = 0;           // 0: 2 + 2 x ceiling / 1000, rounded to even
    double preEmphasis = 0.97;  // 0 = off
};

// What the estimation found, in a few figures (for a line on the terminal or the status bar).
struct CopySynthesisReport {
    int frames = 0;            // grid columns
    double voicedShare = 0.0;  // share of frames with voicing, 0..1
    bool silent = false;       // the recording holds no signal: the document is silent
    double maxFormantHz = 0.0; // the ceiling the formant tracks came from
    bool ceilingAutomatic = false;
    bool highFormants = false;    // f6..f8 in use (the synthesis runs at 22050 Hz)
    bool parallelVoicing = false; // the voice goes through the parallel branch (av 0, apv and a1f..a5f)
    int gain = 0;                 // the `gain` row's value
    double peakLevel = 0.0;       // peak of the result's synthesis, 1.0 = full scale
};

struct CopySynthesisResult {
    bool cancelled = false; // the progress callback asked to stop: nothing else is filled
    int intervalMS = 10;
    int sampleRate = 11025;
    double lengthMS = 0.0; // the recording's length; columns = trunc(lengthMS / intervalMS)
    // Grid columns 0 .. columns-1, each the 48 values in parameter row order. Column c is
    // synthesized over the recording's time c x interval onwards (the last column is never
    // synthesized and repeats the one before).
    std::vector<std::array<std::int32_t, kParameterCount>> frames;
    CopySynthesisReport report;
};

// Called now and then with the share of the work done (0..1); answering false cancels.
using CopySynthesisProgress = std::function<bool(double done)>;

// The estimation. `samples` holds `count` samples at `sampleRate` (8000 Hz or more), full scale
// +-1. Throws std::invalid_argument naming the fault for a recording shorter than two frames, a
// rate below 8000 Hz or options out of range (the message suits "FILE: message"). A recording
// without signal gives a silent result (report.silent). Throws std::bad_alloc when out of memory.
CopySynthesisResult copySynthesize(const float* samples, std::size_t count, double sampleRate,
                                   const CopySynthesisOptions& options,
                                   const CopySynthesisProgress& progress = {});

// Makes the result the document's grid: length, interval and column count of channel 0, the
// rows shown (the twelve sixth-to-eighth formant rows exactly when the result runs at 22050 Hz),
// every value, and the table data rebuilt from them. The model channel and the file name are
// kept. The caller saves the undo step around it (saveUndo before, saveRedo after).
void applyCopySynthesis(const CopySynthesisResult& result, MyDocument& document);

// A new document (as MyDocument() makes one) holding the result.
std::unique_ptr<MyDocument> copySynthesisDocument(const CopySynthesisResult& result);

// One line on the result: "N frames, V% voiced, formant ceiling C Hz (automatic), voicing
// through the cascade (or: the parallel branch), gain G dB",
// or "the recording is silent: the document is silent" for a silent one.
std::string copySynthesisSummary(const CopySynthesisReport& report);
