// tessaphon-cli's slice and compare commands. `slice` writes the FFT/LPC slice of a recording at
// a time as CSV, or its picture; `compare` measures frame by frame how far two recordings of one
// rate are apart in spectral shape, or with --summary judges the second as a copy synthesis of
// the first. Both analyse the model channel of what they open, with the
// option panels' default settings for its sample rate, changed by the options given.
#include "cli/AnalysisOverrides.h"
#include "cli/CliFiles.h"
#include "cli/Commands.h"
#include "cli/LabelOptions.h"
#include "cli/OutputFiles.h"
#include "copysynth/CopySynthesisFigures.h"
#include "display/PngEncoding.h"

#include "display/RasterCanvas.h"
#include "display/SliceComputation.h"
#include "display/SlicePlot.h"
#include "display/SpectralComparison.h"
#include "display/SvgCanvas.h"
#include "document/MyDocument.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <new>

namespace
{

// ----- slice -----

struct SliceOptions {
    std::string input;
    std::string output;
    double atMS = 0.0;
    bool lpc = false;
    AnalysisOverrides overrides; // the FFT/LPC panel's settings
    LabelOptions labels;         // the segment the slice falls in names it
};

// Pictures are 72 units an inch; a PNG has 100 pixels an inch.
constexpr double kPointsPerInch = 72.0;
constexpr double kPixelsPerInch = 100.0;

std::string lowerExtension(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    for (char& c : extension)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension;
}

void checkOutput(const SliceOptions& o)
{
    const std::string extension = lowerExtension(o.output);
    if (extension != ".png" && extension != ".svg")
        throw CLI::ValidationError("--output", "the picture must be a .png or .svg file: " + o.output);
    chooseOutput(o.output, std::string(), false, {o.input}); // never over the input
}

std::string csvOf(const SliceComputation& slice, bool lpc)
{
    std::string out = lpc ? "freq_hz,fft_db,lpc_db\n" : "freq_hz,fft_db\n";
    char line[96];
    for (std::size_t k = 0; k < slice.m_dFFT.size(); ++k) {
        std::snprintf(line, sizeof line, "%.2f,%.2f", slice.m_dFrequency[k], slice.m_dFFT[k]);
        out += line;
        if (lpc) {
            out += ',';
            // A silent frame has no envelope: the field stays empty.
            if (k < slice.m_dLPC.size()) {
                std::snprintf(line, sizeof line, "%.2f", slice.m_dLPC[k]);
                out += line;
            }
        }
        out += '\n';
    }
    return out;
}

// `segment`: the text of the labelled segment the slice falls in, empty when none.
std::string pictureOf(const SliceOptions& o, const MyDocument& document, const SliceComputation& slice,
                      const std::string& segment)
{
    SlicePlotStyle style = SlicePlotStyle::fromDocument(document, false);
    style.m_bFFTDrawLPC = o.lpc;
    const double inch = document.m_bFFTInches ? 1.0 : 1.0 / 2.54;
    const double width = document.m_dFFTWidth * inch, height = document.m_dFFTHeight * inch;
    char title[64];
    std::snprintf(title, sizeof title, "FFT/LPC at %.1f ms", o.atMS);
    std::string name = std::filesystem::path(o.input).filename().string();
    if (!segment.empty())
        name = "[" + segment + "]  " + name;
    if (lowerExtension(o.output) == ".svg") {
        SvgCanvas canvas(width * kPointsPerInch, height * kPointsPerInch);
        SlicePlot::draw(canvas, width * kPointsPerInch, height * kPointsPerInch, style, slice, nullptr,
                        std::string(title) + "  " + name, "", "");
        return canvas.document();
    }
    const int w = static_cast<int>(std::lround(width * kPixelsPerInch));
    const int h = static_cast<int>(std::lround(height * kPixelsPerInch));
    RasterCanvas canvas(w, h);
    SlicePlot::draw(canvas, w, h, style, slice, nullptr, std::string(title) + "  " + name, "", "");
    std::string png;
    if (!encodePng(canvas.image(), png))
        throw CliInputError{o.output, "the PNG image could not be made"};
    return png;
}

void commandSlice(const SliceOptions& o)
{
    if (!o.output.empty())
        checkOutput(o);
    const std::string segment = o.labels.given() ? o.labels.load().segmentAt(o.atMS / 1000.0) : std::string();
    auto document = openDocument(o.input, TableData::Skip);
    const Channels& model = modelChannel(*document, o.input);
    o.overrides.applyTo(*document, model.m_dSampleRate);
    const double start = std::trunc(o.atMS * model.m_dSampleRate / 1000.0);
    if (start >= static_cast<double>(model.sampleCount())) {
        char why[128];
        std::snprintf(why, sizeof why, "--at %.1f ms lies past the end of the recording (%.1f ms)", o.atMS,
                      model.sampleCount() * 1000.0 / model.m_dSampleRate);
        throw CLI::ValidationError("--at", why);
    }
    SliceComputation slice(SliceSettings::fromDocument(*document));
    slice.compute(model, start);
    if (o.output.empty())
        std::cout << csvOf(slice, o.lpc);
    else
        writeWholeFile(o.output, pictureOf(o, *document, slice, segment));
}

void addSliceCommand(CLI::App& app)
{
    auto o = std::make_shared<SliceOptions>();
    CLI::App* slice = app.add_subcommand(
        "slice", "FFT/LPC slice of a recording at a time: CSV (freq_hz,fft_db[,lpc_db]) or a picture");
    slice->footer("Levels are dB re full scale. The slice averages the spectra of 10 windows spread over\n"
                  "the 10 ms from --at on (the FFT/LPC window's defaults).");
    slice->add_option("input", o->input, "WAVE file (or parameter document with a model)")->required();
    slice->add_option("--at", o->atMS, "Start of the frame in ms")->required()->check(CLI::Range(0.0, 1.0e9));
    AnalysisOverrides& a = o->overrides;
    a.add<int>(slice, "--window", "Transform length in points (default 256)",
               [](MyDocument& d, double sampleRate, int window) {
                   // As the panel does on choosing a length: the whole transform is windowed.
                   d.m_nFFTWindowLength = window;
                   d.m_nFFTAppliedWindowLength = static_cast<int>(window * 1000.0 / sampleRate);
               })
        ->check(CLI::IsMember({32, 64, 128, 256, 512, 1024, 2048, 4096, 8192}));
    a.add(slice, "--applied", "Samples windowed, in ms (default: the transform's length)",
          &MyDocument::m_nFFTAppliedWindowLength)
        ->check(CLI::Range(1, 10000));
    a.add(slice, "--order", "LPC order (default: by sample rate)", &MyDocument::m_nLPCNumberofCoefficients)
        ->check(CLI::Range(1, 400));
    slice->add_flag("--lpc", o->lpc, "Add the LPC envelope (a third column, or a curve in the picture)");
    a.add(slice, "--range", "Highest frequency in Hz (default: by sample rate)",
          &MyDocument::m_nFFTfrequencyRange)
        ->check(CLI::Range(1, 1000000));
    slice->add_option("-o,--output", o->output,
                      "Write the picture instead (.png or .svg; replaced if it exists)");
    o->labels.add(slice);
    slice->callback([o] { commandSlice(*o); });
}

// ----- compare -----

struct CompareOptions {
    std::string first;
    std::string second;
    bool summary = false;
};

// The figures of a copy synthesis: the second recording judged against the first, at the
// first one's rate and with its analysis defaults.
void commandCompareSummary(MyDocument& first, const Channels& original, const Channels& synthesis)
{
    first.setAnalysisDefaults(original.m_dSampleRate);
    const CopySynthesisFigures figures = CopySynthesisFigures::measure(
        original, synthesis, PitchSettings::fromDocument(first), SpectrogramSettings::fromDocument(first));
    std::cout << figures.summaryLine() << '\n';
}

void commandCompare(const CompareOptions& o)
{
    const auto a = openDocument(o.first, TableData::Skip);
    const auto b = openDocument(o.second, TableData::Skip);
    const Channels& ca = modelChannel(*a, o.first);
    const Channels& cb = modelChannel(*b, o.second);
    if (o.summary) {
        try {
            commandCompareSummary(*a, ca, cb);
        } catch (const std::bad_alloc&) {
            throw CliInputError{o.second, "not enough memory to compare it"};
        }
        return;
    }
    if (ca.m_dSampleRate != cb.m_dSampleRate) {
        char why[160];
        std::snprintf(why, sizeof why, "sample rate %g Hz differs from %s (%g Hz)", ca.m_dSampleRate,
                      o.second.c_str(), cb.m_dSampleRate);
        throw CliInputError{o.first, why};
    }
    a->setAnalysisDefaults(ca.m_dSampleRate);
    RecordingComparison comparison(SpectrogramSettings::fromDocument(*a));
    comparison.compare(ca, cb);
    std::string out = "time_ms,distance_db\n";
    char line[96];
    for (const FrameDistance& f : comparison.m_frames) {
        std::snprintf(line, sizeof line, "%.0f,%.3f\n", f.timeMS, f.distanceDB);
        out += line;
    }
    std::cout << out;
}

void addCompareCommand(CLI::App& app)
{
    auto o = std::make_shared<CompareOptions>();
    CLI::App* compare = app.add_subcommand(
        "compare", "Spectral distance of two recordings of one rate, frame by frame (time_ms,distance_db)");
    compare->footer(
        "Every 10 ms: the RMS difference in dB of the two frames' zero-mean LPC envelopes from\n"
        "0 Hz to the frequency range (spectrogram defaults). Frames more than the dynamic range\n"
        "below their recording's loudest frame are skipped; the longer recording is cut.\n"
        "--summary: one line of key=value figures, the second recording brought to the first's\n"
        "rate by linear interpolation: mcd_db (mel-cepstral distance, 24 coefficients, 25 ms\n"
        "frames every 5 ms, frames within 40 dB of the loudest), level_db (median level\n"
        "difference of 20 ms frames within 30 dB of the loudest), f0_err_pct and f0_gross_pct\n"
        "(median relative f0 error and share of errors over 20 % in frames voiced in both),\n"
        "f1_err_pct and f2_err_pct (median relative formant errors there), clipped (samples of\n"
        "the second beyond full scale) and covoiced (frames voiced in both); nan = not measured.");
    compare->add_option("first", o->first, "WAVE file (or parameter document with a model)")->required();
    compare->add_option("second", o->second, "WAVE file of the same sample rate (any rate with --summary)")
        ->required();
    compare->add_flag("--summary", o->summary,
                      "One line judging SECOND as a copy synthesis of FIRST (see the footer)");
    compare->callback([o] { commandCompare(*o); });
}

} // namespace

void addSliceCommands(CLI::App& app)
{
    addSliceCommand(app);
    addCompareCommand(app);
}
