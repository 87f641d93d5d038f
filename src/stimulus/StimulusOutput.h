#pragma once
// How finished synthesis becomes a stimulus file: the output rate, the level rule, ramps,
// silence before and after, the sample width and the file format. A plain record, copied freely;
// the same record serves the command-line options, the workbench's Audio Output panel and the
// Python module. Rates in Hz, levels in dB re full scale, times in ms.
#include <string>

struct StimulusOutput {
    enum class Level { Unchanged, Rms, Peak };
    enum class Format { Wav, Flac };

    static constexpr int kMinRate = 8000;
    static constexpr int kMaxRate = 192000;
    static constexpr double kMaxRampMS = 10000.0;
    static constexpr double kMaxPadMS = 60000.0;
    static constexpr double kLowestLevelDb = -100.0;

    int rate = 0; // 0: the synthesis rate
    Level level = Level::Unchanged;
    double levelDb = 0.0;
    bool sameGain = false;  // one gain for all files of a batch or continuum: the loudest decides
    bool allowClip = false; // write a gain that clips instead of refusing it
    double rampMS = 0.0;    // raised-cosine onset and offset, each this long
    double padBeforeMS = 0.0;
    double padAfterMS = 0.0;
    int bits = 16; // 16 or 24
    Format format = Format::Wav;
    // Set by set(): an option was given, even one with its default value.
    bool given = false;

    // Sets one option from its command-line text. `name` is the option without dashes: "rate"
    // (8000..192000), "normalize" ("rms:DB" or "peak:DB", DB from -100 to 0, or "off"),
    // "same-gain" and "allow-clip" (value "", "1"/"0", "true"/"false"), "ramp" (MS), "pad"
    // ("MS" or "BEFORE,AFTER"), "bits" (16 or 24), "format" ("wav" or "flac"). Answers false
    // with a message in `error` (the record is unchanged then).
    bool set(const std::string& name, const std::string& value, std::string* error);

    // True when the output is the synthesis as it always was: 16-bit WAVE at the synthesis rate
    // through the document's own writer, and no option given.
    bool plain() const;
    // ".wav" or ".flac".
    const char* extension() const;
    // The options as they would be given on the command line ("--rate 44100 --normalize
    // rms:-23 ..."), empty when plain: the round trip of set().
    std::string commandLine() const;
    // One line for people: "44100 Hz, RMS -23 dBFS, 10 ms ramps, 24-bit FLAC".
    std::string summary() const;
    // "rms:-23", "peak:-1" or "off".
    std::string normalizeText() const;
};
