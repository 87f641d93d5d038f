// tessaphon-cli's analysis commands: pitch, formants, spectrogram, and trace (the copy synthesis
// the trace window's Enter All Data makes, saved as a parameter document). Each reads a WAVE file (or a
// parameter document that carries a model utterance), analyses the model channel with the
// option panels' default settings for its sample rate, changed by the options given, and writes
// CSV on standard output or a PNG image.
#include "cli/AnalysisOverrides.h"
#include "cli/CliFiles.h"
#include "cli/Commands.h"
#include "cli/LabelOptions.h"
#include "cli/OutputFiles.h"
#include "cli/RangedOption.h"
#include "display/PngEncoding.h"

#include "dataentry/TraceDataEntry.h"
#include "display/AnalysisReports.h"
#include "display/PitchTrackComputation.h"
#include "display/SpectrogramComputation.h"
#include "document/MyDocument.h"
#include "labels/LabelPicture.h"

#include <cmath>
#include <filesystem>
#include <iostream>
#include <new>

namespace
{

// ----- pitch -----

struct PitchOptions {
    std::string input;
    PitchSettings settings; // the pitch panel's Default values
};

void commandPitch(const PitchOptions& options)
{
    requireOrderedRange("--low", options.settings.m_dCalculationLow, "--high",
                        options.settings.m_dCalculationHigh);
    const auto document = openDocument(options.input, TableData::Skip);
    const Channels& model = modelChannel(*document, options.input);
    PitchTrackComputation track;
    if (!track.DoPitchCepstral(model, options.settings))
        throw CLI::ValidationError("--step", "the step is shorter than one sample or makes too many frames");
    std::cout << pitchTrackCsv(track, options.settings.m_dPitchStepSize);
}

// The pitch settings as options named with `prefix` ("--PREFIXwindow", ...).
void addPitchOptions(CLI::App* command, PitchSettings& s, const std::string& prefix = "")
{
    const auto name = [&](const char* option) { return "--" + prefix + option; };
    addRangedOption(command, name("window"), s.m_dPitchWindowLength, "Analysis window in ms", 1.0, 1000.0);
    addRangedOption(command, name("step"), s.m_dPitchStepSize, "Analysis step in ms", 0.01, 10000.0);
    addRangedOption(command, name("low"), s.m_dCalculationLow, "Lowest pitch in Hz", 1.0, 10000.0);
    addRangedOption(command, name("high"), s.m_dCalculationHigh, "Highest pitch in Hz", 1.0, 10000.0);
    command->add_option(name("deviation"), s.m_dFreqDeviation, "Largest frame-to-frame jump kept, in Hz")
        ->capture_default_str()
        ->check(CLI::NonNegativeNumber);
    addRangedOption(command, name("threshold"), s.m_dPitchTrackingThreshHold,
                    "Energy gate in per cent of the loudest frame", 0.0, 100.0);
}

void addPitchCommand(CLI::App& app)
{
    auto options = std::make_shared<PitchOptions>();
    CLI::App* pitch =
        app.add_subcommand("pitch", "Cepstral pitch track of a recording as CSV (time_ms,f0_hz)");
    pitch->add_option("input", options->input, "WAVE file (or parameter document with a model)")->required();
    addPitchOptions(pitch, options->settings);
    pitch->callback([options] { commandPitch(*options); });
}

// ----- formants and spectrogram -----

struct SpectrogramOptions {
    std::string input;
    std::string output;
    int columns = 500;
    int rows = 256;
    bool formants = false;
    AnalysisOverrides overrides; // the spectrogram panel's settings
    LabelOptions labels;         // a TextGrid's segments under the picture
};

// `seconds`, when given, receives the recording's duration.
SpectrogramComputation computeSpectrogram(const SpectrogramOptions& o, bool tracking,
                                          double* seconds = nullptr)
{
    const auto document = openDocument(o.input, TableData::Skip);
    const Channels& model = modelChannel(*document, o.input);
    if (seconds)
        *seconds = static_cast<double>(model.sampleCount()) / model.m_dSampleRate;
    o.overrides.applyTo(*document, model.m_dSampleRate);
    SpectrogramSettings settings = SpectrogramSettings::fromDocument(*document);
    settings.m_bSpecDrawFormantTracking = tracking;
    SpectrogramComputation spectrogram(settings);
    try {
        spectrogram.compute(model, o.columns, o.rows);
    } catch (const std::bad_alloc&) {
        throw CliInputError{o.input, "not enough memory for a spectrogram of this size"};
    }
    return spectrogram;
}

void commandFormants(const SpectrogramOptions& o)
{
    std::cout << formantTrackCsv(computeSpectrogram(o, true));
}

void commandSpectrogram(const SpectrogramOptions& o)
{
    std::vector<std::string> inputs{o.input};
    if (o.labels.given())
        inputs.push_back(o.labels.file);
    chooseOutput(o.output, o.output, true, inputs);
    const TextGrid labels = o.labels.given() ? o.labels.load() : TextGrid();
    double seconds = 0.0;
    const SpectrogramComputation spectrogram = computeSpectrogram(o, o.formants, &seconds);
    RgbImage picture = spectrogramImage(spectrogram, o.formants);
    if (o.labels.given())
        picture = withLabelStrip(picture, o.labels.strip(labels), seconds);
    std::string png;
    if (!encodePng(picture, png))
        throw CliInputError{o.output, "the PNG image could not be made"};
    writeWholeFile(o.output, png);
}

void addSpectrogramOptions(CLI::App* command, SpectrogramOptions& o)
{
    command->add_option("input", o.input, "WAVE file (or parameter document with a model)")->required();
    addRangedOption(command, "--columns", o.columns, "Display width: analysis frames", 1, 5000);
    addRangedOption(command, "--rows", o.rows, "Display height: levels per frame", 1, 2000);
    AnalysisOverrides& a = o.overrides;
    a.add(command, "--window", "FFT frame in samples (default 128)", &MyDocument::m_nSpecWindowLength)
        ->check(CLI::Range(2, 8192));
    a.add(command, "--range", "Frequency at the top row in Hz (default: by sample rate)",
          &MyDocument::m_nSpecfrequencyRange)
        ->check(CLI::Range(1, 1000000));
    a.add(command, "--order", "LPC order (default: by sample rate)",
          &MyDocument::m_nSpecLPCNumberofCoefficients)
        ->check(CLI::Range(2, 400));
    a.add(command, "--preemphasis", "Pre-emphasis coefficient, 0 = off (default 0.98)",
          &MyDocument::m_dPreEmphasis)
        ->check(CLI::Range(0.0, 1.0));
    a.add(command, "--dynamic-range", "Levels shown, in dB (default 50)", &MyDocument::m_nSpecDynamicRange)
        ->check(CLI::Range(1, 200));
}

void addFormantsCommand(CLI::App& app)
{
    auto options = std::make_shared<SpectrogramOptions>();
    CLI::App* formants = app.add_subcommand(
        "formants", "Formant tracks from LPC roots as CSV (column,time_ms,f1..f5; -1 where none)");
    addSpectrogramOptions(formants, *options);
    formants->callback([options] { commandFormants(*options); });
}

void addSpectrogramCommand(CLI::App& app)
{
    auto options = std::make_shared<SpectrogramOptions>();
    CLI::App* spectrogram = app.add_subcommand("spectrogram", "Normalized spectrogram as a PNG image");
    addSpectrogramOptions(spectrogram, *options);
    spectrogram->add_option("-o,--output", options->output, "PNG file to write")->required();
    spectrogram->add_flag("--formants", options->formants, "Draw the formant tracks over it");
    options->labels.add(spectrogram);
    spectrogram->callback([options] { commandSpectrogram(*options); });
}

// ----- trace -----

struct TraceOptions {
    SpectrogramOptions spectrogram;
    PitchSettings pitch;
    std::string output;
    bool force = false;
};

// The document's analysis settings: the factory values for the recording's rate, changed by
// the options given.
void applyTraceSettings(const TraceOptions& o, MyDocument& document, double sampleRate)
{
    o.spectrogram.overrides.applyTo(document, sampleRate);
    document.pitchSettings() = o.pitch;
}

void commandTrace(const TraceOptions& o)
{
    const std::string& input = o.spectrogram.input;
    const std::string output = chooseOutput(o.output, withExtension(input, ".stk"), o.force, {input});
    guardFile(input, [&] {
        const auto document = openDocument(input);
        if (document->getChannel(0)->m_nColumnNum <= 0)
            throw CliInputError{input, "the recording is shorter than one frame"};
        const Channels& model = modelChannel(*document, input);
        applyTraceSettings(o, *document, model.m_dSampleRate);
        try {
            TraceDataEntry::traceDocument(*document, o.spectrogram.columns, o.spectrogram.rows);
        } catch (const std::bad_alloc&) {
            throw CliInputError{input, "not enough memory for the analysis"};
        } catch (const std::exception& e) {
            throw CliInputError{input, std::string("Error in entering data values: ") + e.what()};
        }
        std::string error;
        if (!document->writeSafelyToURL(output, "stk", &error))
            throw CliInputError{output, error};
    });
}

void addTraceCommand(CLI::App& app)
{
    auto options = std::make_shared<TraceOptions>();
    // The spectrogram's size decides its formant frames: by default the size of the trace
    // window's spectrogram in its default frame, so that the result equals the window's.
    options->spectrogram.columns = TraceDataEntry::kDefaultSpectrogramWidth;
    options->spectrogram.rows = TraceDataEntry::kDefaultSpectrogramHeight;
    CLI::App* trace = app.add_subcommand(
        "trace",
        "Copy synthesis: enter a recording's pitch, formants and amplitudes into a new parameter document");
    addSpectrogramOptions(trace, options->spectrogram);
    addPitchOptions(trace, options->pitch, "pitch-");
    trace->add_option("-o,--output", options->output,
                      "Parameter document to write (default: the input with .stk)");
    trace->add_flag("--force", options->force, "Replace the default output when it exists");
    trace->callback([options] { commandTrace(*options); });
}

} // namespace

void addAnalysisCommands(CLI::App& app)
{
    addPitchCommand(app);
    addFormantsCommand(app);
    addSpectrogramCommand(app);
    addTraceCommand(app);
}
