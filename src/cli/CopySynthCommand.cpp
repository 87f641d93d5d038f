// tessaphon-cli copysynth: every synthesis parameter estimated from a recording, written as a
// parameter document of the recording's length (the workbench's Automatic Copy Synthesis).
#include "cli/CliErrors.h"
#include "cli/CliFiles.h"
#include "cli/Commands.h"
#include "cli/OutputFiles.h"
#include "cli/ProgressBar.h"
#include "cli/RangedOption.h"

#include "copysynth/CopySynthesis.h"
#include "document/MyDocument.h"

#include <cmath>
#include <iostream>
#include <new>
#include <stdexcept>

namespace
{

struct CopySynthOptions {
    std::string input;
    std::string output;
    bool force = false;
    CopySynthesisOptions estimation;
};

void commandCopySynth(const CopySynthOptions& o)
{
    const std::string output = chooseOutput(o.output, withExtension(o.input, ".stk"), o.force, {o.input});
    guardFile(o.input, [&] {
        const auto document = openDocument(o.input, TableData::Skip);
        const Channels& model = modelChannel(*document, o.input);
        CopySynthesisResult result;
        {
            ProgressBar bar("copysynth", 100);
            std::size_t shown = 0;
            const auto progress = [&](double done) {
                const std::size_t now = static_cast<std::size_t>(std::lround(done * 100.0));
                if (now > shown) {
                    bar.advance(now - shown);
                    shown = now;
                }
                return true;
            };
            try {
                result = copySynthesize(model.samples(), model.sampleCount(), model.m_dSampleRate,
                                        o.estimation, progress);
            } catch (const std::invalid_argument& e) {
                throw CliInputError{o.input, e.what()};
            } catch (const std::bad_alloc&) {
                throw CliInputError{o.input, "not enough memory for the analysis"};
            }
            bar.finish();
        }
        if (result.report.silent)
            std::cerr << "tessaphon-cli: " << o.input
                      << ": the recording is silent: the document is silent\n";
        applyCopySynthesis(result, *document);
        std::string error;
        if (!document->writeSafelyToURL(output, "stk", &error))
            throw CliInputError{output, error};
    });
}

} // namespace

void addCopySynthCommand(CLI::App& app)
{
    auto o = std::make_shared<CopySynthOptions>();
    CLI::App* c = app.add_subcommand(
        "copysynth",
        "Copy synthesis: every synthesis parameter estimated from a recording, as a parameter document");
    CopySynthesisOptions& e = o->estimation;
    c->add_option("input", o->input, "WAVE file (or parameter document with a model)")->required();
    c->add_option("-o,--output", o->output, "Parameter document to write (default: the input with .stk)");
    c->add_flag("--force", o->force, "Replace the default output when it exists");
    c->add_option("--rate", e.outputRate,
                  "Synthesis rate 11025 or 22050 (default: 22050 for recordings at 22050 Hz or more)")
        ->check(CLI::IsMember({11025, 22050}));
    c->add_option("--max-formant", e.maxFormantHz,
                  "Formant ceiling in Hz (default: automatic, the smoothest tracks)")
        ->check(CLI::Range(3000.0, 8000.0));
    addRangedOption(c, "--interval", e.intervalMS, "Frame interval in ms", 1, 100);
    addRangedOption(c, "--pitch-low", e.pitchLowHz, "Lowest pitch in Hz", 30.0, 1200.0);
    addRangedOption(c, "--pitch-high", e.pitchHighHz, "Highest pitch in Hz", 30.0, 1200.0);
    c->add_option("--pitch-window", e.pitchWindowMS,
                  "Pitch analysis window in ms (default: three periods of the lowest pitch)")
        ->check(CLI::Range(5.0, 1000.0));
    c->add_option("--order", e.lpcOrder, "LPC order (default: 2 + 2 x ceiling / 1000)")
        ->check(CLI::Range(2, 40));
    addRangedOption(c, "--preemphasis", e.preEmphasis, "Pre-emphasis coefficient, 0 = off", 0.0, 0.999);
    c->callback([o] {
        requireOrderedRange("--pitch-low", o->estimation.pitchLowHz, "--pitch-high",
                            o->estimation.pitchHighHz);
        commandCopySynth(*o);
    });
}
