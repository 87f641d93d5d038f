#pragma once
// FormantRows: formant tracks made synthesis rows. The tracks are smoothed (a five-frame median,
// which removes single-frame slips without blurring transitions), clamped to their rows'
// limits with every formant at least 200 Hz above the one below, and the bandwidths kept within
// what voices show. At 22050 Hz the sixth to eighth formants sit above the fifth with wide
// bandwidths, so they add little where the recording has nothing there.
#include "copysynth/FormantTracker.h"
#include "copysynth/KlattRender.h"

#include <vector>

// Column f of `frames` takes frame f of the track.
void setFormants(std::vector<FrameValues>& frames, const FormantTrack& track, int outputRate);

// Keeps f1 .. f5 (row values) within their limits, f5 at most `top`, and 200 Hz apart.
void separateFormants(int freq[5], int top = 4999);
