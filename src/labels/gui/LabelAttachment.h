#pragma once
// Fits a document's labels to the windows that show them: the label strip under the views and
// the boundary lines through them, on the window's own time axis (zoom and scroll included),
// following the document's labels and the window's axis. The app calls these when it makes
// each window (the FFT/LPC window, which has no time axis, names its frame's segments). Main
// thread only.
class DocumentLabels;
class FFTLPCWindow;
class LabelBoundaryOverlay;
class LabelStripView;
class SpectrogramPitchWindow;
class dataentryGraphicalController;
class dataentryTraceContoller;

struct LabelWidgets {
    LabelStripView* strip = nullptr;
    LabelBoundaryOverlay* boundaries = nullptr;
};

LabelWidgets attachLabels(dataentryTraceContoller& controller, DocumentLabels* labels);
LabelWidgets attachLabels(dataentryGraphicalController& controller, DocumentLabels* labels);
LabelWidgets attachLabels(SpectrogramPitchWindow& window, DocumentLabels* labels);
// The FFT/LPC window names the segments its frame lies in, following the labels.
void attachLabels(FFTLPCWindow& window, DocumentLabels* labels);
