#pragma once
// Writing a prepared stimulus with its gain: 16- or 24-bit WAVE through the project's PCM WAVE
// writer, or FLAC through libsndfile, always atomically (the file holds its old bytes or the new
// ones), and the figures of the file as written. Any thread. Failures throw DocumentException
// whose name is the file and whose reason says what went wrong; a refused gain writes nothing.
#include "stimulus/Stimulus.h"

#include <string>
#include <vector>

// The figures of one written file, measured on the samples as stored.
struct StimulusFigures {
    double durationMS = 0.0;
    int rate = 0;
    double rmsDb = 0.0;  // -infinity for silence
    double peakDb = 0.0; // -infinity for silence
    long long clipped = 0;
    double gainDb = 0.0;

    // "duration_ms,rate,rms_db,peak_db,clipped,gain_db" and one file's values in that order.
    static const char* csvHeader();
    std::string csvFields() const;
};

// The file image of the stimulus with `gainDb` applied, as the output's format and bits say;
// `figures` receives the figures of the samples as stored.
std::string encodeStimulus(const Stimulus& stimulus, double gainDb, const StimulusOutput& output,
                           StimulusFigures& figures);
// Writes the image to `path` atomically and answers its figures.
StimulusFigures writeStimulus(const std::string& path, const Stimulus& stimulus, double gainDb,
                              const StimulusOutput& output);
// One file from synthesized samples: prepares it, takes its own gain by the level rule, refuses
// a gain that clips unless the output allows it (DocumentException naming `path`), and writes.
StimulusFigures saveStimulus(const std::string& path, const float* samples, std::size_t count, int rate,
                             const StimulusOutput& output);
// The figures of a file written the document's own way (16 bits, truncated, no gain): what the
// manifest reports when no output option is given. Samples at or beyond full scale count as
// clipped (the writer wraps them around).
StimulusFigures plainFigures(const float* samples, std::size_t count, int rate);
