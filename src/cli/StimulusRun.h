#pragma once
// The output options of synth and continuum (--rate, --normalize, --same-gain, --allow-clip,
// --ramp, --pad, --bits, --format) and the writing of many audio files under them. With
// --same-gain the files are written in two passes: worker processes prepare and measure every
// file first, the one gain is chosen from all the figures (and refused before anything is
// written when it would clip a file), then the workers write. Call from the main thread.
#include "cli/CliFiles.h"
#include "stimulus/StimulusFile.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class MyDocument;

// Registers the output options on `command`; a bad value is a usage error naming the option.
void addStimulusOptions(CLI::App* command, const std::shared_ptr<StimulusOutput>& output);

// Writes the audio of a synthesized document to `path` as the output says (the document's own
// 16-bit writer when the output is plain) and answers the file's figures. Throws CliInputError
// naming the file.
StimulusFigures writeDocumentAudio(MyDocument& document, const std::string& path,
                                   const StimulusOutput& output);

// What one batch of audio files needs: `count` files; `file(i)` names task i in messages;
// `audioPath(i)` is where its audio goes; `synthesize(i)` runs in a worker process, makes
// (and may write) whatever goes with the audio and answers the synthesized document.
struct StimulusTasks {
    std::size_t count = 0;
    unsigned jobs = 0;
    std::string label;
    std::function<std::string(std::size_t)> file;
    std::function<std::string(std::size_t)> audioPath;
    std::function<std::unique_ptr<MyDocument>(std::size_t)> synthesize;
};

// Runs the tasks and answers the figures of every file, in order. Failed tasks are reported one
// line each as they fail; then CliFailuresReported is thrown.
std::vector<StimulusFigures> writeStimuli(const StimulusTasks& tasks, const StimulusOutput& output);
