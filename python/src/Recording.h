#pragma once
// A recording handed in from Python as the document the analyses read: its samples become the
// model channel (channel 2), as an opened WAVE file's do. No interpreter lock needed.
#include "document/MyDocument.h"

#include <memory>
#include <optional>
#include <vector>

// The samples at `rate` as the model of a new document, exactly as given. Throws BadArgument
// for no samples, an unusable rate or more than an hour; OutOfMemory.
std::unique_ptr<MyDocument> recordingDocument(const std::vector<float>& samples, double rate);
// The document tessaphon-cli opens from the 16-bit WAVE file of these samples (grid of the
// recording's length, samples quantized to 16 bits).
std::unique_ptr<MyDocument> openedRecording(const std::vector<float>& samples, double rate);

// The spectrogram panel's settings as the keyword arguments give them; those not given keep
// the panel's defaults for the recording's rate.
struct SpectrogramOptions {
    int columns = 500;
    int rows = 256;
    int window = 128;
    std::optional<int> frequencyRange;
    std::optional<int> order;
    double preemphasis = 0.98;
    int dynamicRange = 50;

    // Throws BadArgument naming the first argument out of its range.
    void check() const;
    // The panel's defaults for `rate`, then the options.
    void applyTo(MyDocument& document, double rate) const;
};
