#pragma once
// A picture over time (a spectrogram, one column per stretch of time) with a label strip added
// under it and the strip's boundaries drawn through it as dotted lines, for the pictures the
// command-line tool writes. Any thread.
#include "display/AnalysisReports.h"
#include "labels/LabelStrip.h"

// `picture` spans 0 .. durationSeconds from its left edge to its right; the result is as wide
// and taller by the strip's height. An empty strip gives the picture unchanged.
RgbImage withLabelStrip(const RgbImage& picture, const LabelStrip& strip, double durationSeconds);
