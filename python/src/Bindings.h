#pragma once
// The parts of the compiled module _tessaphon, each registered by its own file, and the
// documentation of tessaphon.Document (the module's functions are documented where
// tessaphon/__init__.py defines them).
#include <pybind11/pybind11.h>

void bindDocument(pybind11::module_& m);
void bindAudio(pybind11::module_& m);
void bindAnalysis(pybind11::module_& m);
void bindMaking(pybind11::module_& m);
void bindStimulus(pybind11::module_& m);
void bindCopySynth(pybind11::module_& m);

inline constexpr const char* docDocument =
    R"(A parameter document: 48 Klatt parameters over frames of interval_ms.

Make one with tessaphon.Document.new() (or Document(...) with the same
arguments), tessaphon.read(), tessaphon.trace() or
tessaphon.continuum(). Its values are a grid of signed 16-bit integers, one row per
frame and one column per parameter in the fixed row order of doc.names:

    f0 (0.1 Hz), av, ah, af, tl, f8..f1, b8..b1, ab, a8f..a1f, b8f..b1f,
    fnz, bnz, fnp, bnp, oq, anv, apv, atu, skew, gain

doc.params and doc["f1"] are numpy views onto the grid itself, not copies: what
you write through them is what tessaphon.synthesize() and Document.write() read.

Limits (Document.limits()): doc["f1"] = values rounds the values and clamps them
to the parameter's limits at once, as the workbench's table clamps a typed value.
A value written through a view is stored as written, and synthesis and saving use
it as it stands, as they do the values the trace entry writes (f0 = 0 for an
unvoiced frame lies below f0's limit on purpose); Document.clamp() brings every
value within its limits as typing it would.
)";

inline constexpr const char* docNew =
    R"(Document.new(length_ms=200, interval_ms=10, sample_rate=11025) -> Document

A new document with the factory values in every frame (as tessaphon-cli new):
length_ms // interval_ms frames. sample_rate is 11025 or 22050; 22050 shows the
sixth formant's row f6, which makes synthesis run at 22050 Hz with eight cascade
formants, as showing any sixth-to-eighth formant row does in the workbench.
Raises ValueError for a length outside 1 ms .. one hour, an interval outside
1 .. 1000 ms, or another rate.
)";

inline constexpr const char* docWrite = R"(write(path)

Saves the document as a parameter document (.stk), replacing the file atomically
(it holds either its old or its new bytes, never a mixture). Raises OSError
(with the file's name) when it cannot be written.
)";

inline constexpr const char* docParams =
    R"(The grid as a writable numpy int16 view, shape (frames, 48), columns in the order
of names. No copy: writes are seen by synthesize() and write(). The view keeps
the document alive.)";

inline constexpr const char* docGetItem =
    R"(doc["f1"]: one parameter's values over the frames, a writable numpy int16 view
(no copy). Raises KeyError for an unknown name.)";

inline constexpr const char* docSetItem =
    R"(doc["f1"] = values: sets a parameter in every frame from one number or one value
per frame; values are rounded and clamped to the parameter's limits at once.)";

inline constexpr const char* docSampleRate =
    R"(The rate of the next synthesis in Hz: 22050 when any sixth-to-eighth formant
row (f6..f8, b6..b8, a6f..a8f, b6f..b8f) is shown in selected, else 11025.)";

inline constexpr const char* docSelected =
    R"(Shown rows: a numpy bool array of 48 flags in row order (a copy). Assign 48 flags
to change them; showing a sixth-to-eighth formant row switches synthesis to 22050 Hz.
Rows not shown are still synthesized from their values; only shown rows' anchors
are saved.)";

inline constexpr const char* docAnchors =
    R"(Anchors: a numpy bool array of shape (frames, 48) (a copy). Assign an array of
that shape to replace them.)";
