#pragma once
// The workbench's audio output settings (Save Audio) kept beside the configuration file, in a
// small text file of their own: one "name value" line per option, as the command line names
// them ("rate 44100", "normalize rms:-23", "ramp 10"). The configuration file's binary layout is
// left as it is; these settings belong to the application, not to a document.
// Reading refuses a damaged file as a whole (the settings stay as they were); writing is atomic.
// The path is set once at start-up by the application (empty: nothing is kept, plain output).
// Any thread.
#include "stimulus/StimulusOutput.h"

#include <string>

class StimulusOutputFile
{
public:
    static constexpr const char* kFileName = "AudioOutput.txt";

    // The file used by load() and store(); the app sets it beside its configuration file.
    static void setDefaultPath(const std::string& path);
    static std::string defaultPath();

    static std::string encode(const StimulusOutput& output);
    // False, with `output` untouched, when a line is not a known option with a valid value.
    static bool decode(const std::string& text, StimulusOutput& output);

    // The settings of the default file: plain output when there is none (or it is damaged).
    static StimulusOutput load();
    // Writes the default file; false with a reason in `error` when it could not be written.
    static bool store(const StimulusOutput& output, std::string* error = nullptr);
};
