// tessaphon-cli's analysis commands: pitch, formants, spectrogram. Each reads a WAVE file (or a
// parameter document that carries a model utterance), analyses the model channel with the
// option panels' default settings for its sample rate, changed by the options given, and writes
// CSV on standard output or a PNG image.
#include "cli/CliSupport.h"

#include "display/AnalysisReports.h"
#include "display/PitchTrackComputation.h"
#include "display/SpectrogramComputation.h"
#include "document/MyDocument.h"

#include <cmath>
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
    const auto document = openDocument(options.input);
    const Channels& model = modelChannel(*document, options.input);
    PitchTrackComputation track;
    if (!track.DoPitchCepstral(model, options.settings))
        throw CLI::ValidationError("--step", "the step is shorter than one sample or makes too many frames");
    std::cout << pitchTrackCsv(track, options.settings.m_dPitchStepSize);
}

void addPitchCommand(CLI::App& app)
{
    auto options = std::make_shared<PitchOptions>();
    CLI::App* pitch =
        app.add_subcommand("pitch", "Cepstral pitch track of a recording as CSV (time_ms,f0_hz)");
    pitch->add_option("input", options->input, "WAVE file (or parameter document with a model)")->required();
    PitchSettings& s = options->settings;
    pitch->add_option("--window", s.m_dPitchWindowLength, "Analysis window in ms")
        ->capture_default_str()
        ->check(CLI::Range(1.0, 1000.0));
    pitch->add_option("--step", s.m_dPitchStepSize, "Analysis step in ms")
        ->capture_default_str()
        ->check(CLI::Range(0.01, 10000.0));
    pitch->add_option("--low", s.m_dCalculationLow, "Lowest pitch in Hz")
        ->capture_default_str()
        ->check(CLI::Range(1.0, 10000.0));
    pitch->add_option("--high", s.m_dCalculationHigh, "Highest pitch in Hz")
        ->capture_default_str()
        ->check(CLI::Range(1.0, 10000.0));
    pitch->add_option("--deviation", s.m_dFreqDeviation, "Largest frame-to-frame jump kept, in Hz")
        ->capture_default_str()
        ->check(CLI::NonNegativeNumber);
    pitch
        ->add_option("--threshold", s.m_dPitchTrackingThreshHold,
                     "Energy gate in per cent of the loudest frame")
        ->capture_default_str()
        ->check(CLI::Range(0.0, 100.0));
    pitch->callback([options] { commandPitch(*options); });
}

// ----- formants and spectrogram -----

struct SpectrogramOptions {
    std::string input;
    std::string output;
    int columns = 500;
    int rows = 256;
    int window = 0;
    int range = 0;
    int order = 0;
    double preemphasis = 0.0;
    int dynamicRange = 0;
    bool formants = false;
    CLI::App* command = nullptr;
};

// The spectrogram panel's Default values for the recording's rate, then the options given.
SpectrogramSettings settingsFor(const SpectrogramOptions& o, MyDocument& document, double sampleRate)
{
    document.setAnalysisDefaults(sampleRate);
    SpectrogramSettings s = SpectrogramSettings::fromDocument(document);
    auto given = [&](const char* name) { return o.command->count(name) > 0; };
    if (given("--window"))
        s.m_nSpecWindowLength = o.window;
    if (given("--range"))
        s.m_nSpecfrequencyRange = o.range;
    if (given("--order"))
        s.m_nSpecLPCNumberofCoefficients = o.order;
    if (given("--preemphasis"))
        s.m_dPreEmphasis = o.preemphasis;
    if (given("--dynamic-range"))
        s.m_nSpecDynamicRange = o.dynamicRange;
    return s;
}

SpectrogramComputation computeSpectrogram(const SpectrogramOptions& o, bool tracking)
{
    const auto document = openDocument(o.input);
    const Channels& model = modelChannel(*document, o.input);
    SpectrogramSettings settings = settingsFor(o, *document, model.m_dSampleRate);
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
    const SpectrogramComputation spectrogram = computeSpectrogram(o, o.formants);
    std::string png;
    if (!encodePng(spectrogramImage(spectrogram, o.formants), png))
        throw CliInputError{o.output, "the PNG image could not be made"};
    writeWholeFile(o.output, png);
}

void addSpectrogramOptions(CLI::App* command, SpectrogramOptions& o)
{
    o.command = command;
    command->add_option("input", o.input, "WAVE file (or parameter document with a model)")->required();
    command->add_option("--columns", o.columns, "Display width: analysis frames")
        ->capture_default_str()
        ->check(CLI::Range(1, 5000));
    command->add_option("--rows", o.rows, "Display height: levels per frame")
        ->capture_default_str()
        ->check(CLI::Range(1, 2000));
    command->add_option("--window", o.window, "FFT frame in samples (default 128)")
        ->check(CLI::Range(2, 8192));
    command->add_option("--range", o.range, "Frequency at the top row in Hz (default: by sample rate)")
        ->check(CLI::Range(1, 1000000));
    command->add_option("--order", o.order, "LPC order (default: by sample rate)")->check(CLI::Range(2, 400));
    command->add_option("--preemphasis", o.preemphasis, "Pre-emphasis coefficient, 0 = off (default 0.98)")
        ->check(CLI::Range(0.0, 1.0));
    command->add_option("--dynamic-range", o.dynamicRange, "Levels shown, in dB (default 50)")
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
    spectrogram->callback([options] { commandSpectrogram(*options); });
}

} // namespace

void addAnalysisCommands(CLI::App& app)
{
    addPitchCommand(app);
    addFormantsCommand(app);
    addSpectrogramCommand(app);
}
