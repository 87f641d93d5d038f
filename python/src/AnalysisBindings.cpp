// The analyses of a recording: pitch track, formant tracks, spectrogram, FFT/LPC slice and the
// spectral distance of two recordings, computed as tessaphon-cli computes them. Each runs
// without the interpreter lock. The keyword arguments and their documentation are in
// tessaphon/__init__.py.
#include "Bindings.h"
#include "Recording.h"
#include "Samples.h"
#include "display/PitchTrackComputation.h"
#include "display/SliceComputation.h"
#include "display/SpectralComparison.h"
#include "display/SpectrogramComputation.h"

#include <pybind11/stl.h>

#include <cmath>
#include <limits>

namespace py = pybind11;

namespace
{

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

py::tuple pitch(const SampleArray& samples, double rate, const PitchSettings& s)
{
    requireRange("window", s.m_dPitchWindowLength, 1.0, 1000.0);
    requireRange("step", s.m_dPitchStepSize, 0.01, 10000.0);
    requireRange("low", s.m_dCalculationLow, 1.0, 10000.0);
    requireRange("high", s.m_dCalculationHigh, 1.0, 10000.0);
    requireRange("deviation", s.m_dFreqDeviation, 0.0, std::numeric_limits<double>::max());
    requireRange("threshold", s.m_dPitchTrackingThreshHold, 0.0, 100.0);
    if (s.m_dCalculationLow > s.m_dCalculationHigh)
        throw BadArgument("low must not lie above high");
    const std::vector<float> values = samplesFrom(samples);
    PitchTrackComputation track;
    {
        py::gil_scoped_release release;
        const auto document = recordingDocument(values, checkedRate(rate));
        if (!track.DoPitchCepstral(*document->getChannel(2), s))
            throw BadArgument("the step is shorter than one sample or makes too many frames");
    }
    std::vector<double> times(static_cast<std::size_t>(track.m_nFrameCount));
    for (std::size_t i = 0; i < times.size(); ++i)
        times[i] = static_cast<double>(i) * s.m_dPitchStepSize;
    track.m_hdPitchFile.resize(times.size());
    return py::make_tuple(doubleArray(times), doubleArray(track.m_hdPitchFile));
}

SpectrogramComputation computeSpectrogram(const SampleArray& samples, double rate,
                                          const SpectrogramOptions& o, bool tracking)
{
    o.check();
    const std::vector<float> values = samplesFrom(samples);
    py::gil_scoped_release release;
    const auto document = recordingDocument(values, checkedRate(rate));
    o.applyTo(*document, rate);
    SpectrogramSettings settings = SpectrogramSettings::fromDocument(*document);
    settings.m_bSpecDrawFormantTracking = tracking;
    SpectrogramComputation spectrogram(settings);
    try {
        spectrogram.compute(*document->getChannel(2), o.columns, o.rows);
    } catch (const std::bad_alloc&) {
        throw OutOfMemory("not enough memory for a spectrogram of this size");
    }
    return spectrogram;
}

py::tuple formants(const SampleArray& samples, double rate, const SpectrogramOptions& o)
{
    const SpectrogramComputation s = computeSpectrogram(samples, rate, o, true);
    const int columns = s.m_nDisplayRange;
    const bool haveRecords = s.m_bHaveFormants && !s.m_phsnFormants.empty();
    py::array_t<double> times(columns);
    py::array_t<double> tracks({columns, 5});
    auto t = times.mutable_unchecked<1>();
    auto f = tracks.mutable_unchecked<2>();
    for (int c = 0; c < columns; ++c) {
        t(c) = c * (s.m_dwFileLength / columns) / s.m_dSampleRate * 1000.0;
        for (int slot = 0; slot < 5; ++slot) {
            const int hz = haveRecords ? s.m_phsnFormants[c][slot] : -1;
            f(c, slot) = hz < 0 ? kNaN : hz;
        }
    }
    return py::make_tuple(times, tracks);
}

py::array_t<double> spectrogram(const SampleArray& samples, double rate, const SpectrogramOptions& o)
{
    const SpectrogramComputation s = computeSpectrogram(samples, rate, o, false);
    const int columns = s.m_nDisplayRange, rows = s.m_nDisplayVerticalRange;
    py::array_t<double> levels({columns, rows});
    auto out = levels.mutable_unchecked<2>();
    for (int c = 0; c < columns; ++c)
        for (int r = 0; r < rows; ++r)
            out(c, r) = s.level(c, r);
    return levels;
}

// The FFT/LPC panel's settings: its defaults for the rate, then the arguments given.
SliceSettings sliceSettings(MyDocument& document, double rate, std::optional<int> window,
                            std::optional<int> applied, std::optional<int> order, std::optional<int> range)
{
    document.setAnalysisDefaults(rate);
    if (window) {
        // As the panel does on choosing a length: the whole transform is windowed.
        document.m_nFFTWindowLength = *window;
        document.m_nFFTAppliedWindowLength = static_cast<int>(*window * 1000.0 / rate);
    }
    if (applied)
        document.m_nFFTAppliedWindowLength = *applied;
    if (order)
        document.m_nLPCNumberofCoefficients = *order;
    if (range)
        document.m_nFFTfrequencyRange = *range;
    return SliceSettings::fromDocument(document);
}

py::tuple slice(const SampleArray& samples, double rate, double atMS, std::optional<int> window,
                std::optional<int> applied, std::optional<int> order, std::optional<int> range)
{
    if (window && (*window < 32 || *window > 8192 || (*window & (*window - 1)) != 0))
        throw BadArgument("window must be a power of two from 32 to 8192 (got " + std::to_string(*window) +
                          ")");
    if (applied)
        requireRange("applied", *applied, 1, 10000);
    if (order)
        requireRange("order", *order, 1, 400);
    if (range)
        requireRange("frequency_range", *range, 1, 1000000);
    requireRange("at_ms", atMS, 0.0, 1.0e9);
    const std::vector<float> values = samplesFrom(samples);
    SliceComputation slice;
    {
        py::gil_scoped_release release;
        const auto document = recordingDocument(values, checkedRate(rate));
        const Channels& model = *document->getChannel(2);
        const double start = std::trunc(atMS * rate / 1000.0);
        if (start >= static_cast<double>(model.sampleCount()))
            throw BadArgument("at_ms lies past the end of the recording");
        slice.m_settings = sliceSettings(*document, rate, window, applied, order, range);
        slice.compute(model, start);
    }
    std::vector<double> lpc = slice.m_dLPC;
    lpc.resize(slice.m_dFFT.size(), kNaN); // a silent frame has no envelope
    return py::make_tuple(doubleArray(slice.m_dFrequency), doubleArray(slice.m_dFFT), doubleArray(lpc));
}

py::tuple compare(const SampleArray& a, const SampleArray& b, double rate, const SpectrogramOptions& o)
{
    o.check();
    const std::vector<float> first = samplesFrom(a, "a"), second = samplesFrom(b, "b");
    RecordingComparison comparison;
    {
        py::gil_scoped_release release;
        const auto da = recordingDocument(first, checkedRate(rate));
        const auto db = recordingDocument(second, rate);
        o.applyTo(*da, rate);
        comparison.m_settings = SpectrogramSettings::fromDocument(*da);
        comparison.compare(*da->getChannel(2), *db->getChannel(2));
    }
    std::vector<double> times, distances;
    for (const FrameDistance& f : comparison.m_frames) {
        times.push_back(f.timeMS);
        distances.push_back(f.distanceDB);
    }
    return py::make_tuple(doubleArray(times), doubleArray(distances));
}

} // namespace

void bindAnalysis(py::module_& m)
{
    py::class_<PitchSettings>(m, "_PitchSettings")
        .def(py::init<>())
        .def_readwrite("window", &PitchSettings::m_dPitchWindowLength)
        .def_readwrite("step", &PitchSettings::m_dPitchStepSize)
        .def_readwrite("low", &PitchSettings::m_dCalculationLow)
        .def_readwrite("high", &PitchSettings::m_dCalculationHigh)
        .def_readwrite("deviation", &PitchSettings::m_dFreqDeviation)
        .def_readwrite("threshold", &PitchSettings::m_dPitchTrackingThreshHold);
    py::class_<SpectrogramOptions>(m, "_SpectrogramOptions")
        .def(py::init<>())
        .def_readwrite("columns", &SpectrogramOptions::columns)
        .def_readwrite("rows", &SpectrogramOptions::rows)
        .def_readwrite("window", &SpectrogramOptions::window)
        .def_readwrite("frequency_range", &SpectrogramOptions::frequencyRange)
        .def_readwrite("order", &SpectrogramOptions::order)
        .def_readwrite("preemphasis", &SpectrogramOptions::preemphasis)
        .def_readwrite("dynamic_range", &SpectrogramOptions::dynamicRange);
    m.def("pitch", &pitch);
    m.def("formants", &formants);
    m.def("spectrogram", &spectrogram);
    m.def("slice", &slice);
    m.def("compare", &compare);
}
