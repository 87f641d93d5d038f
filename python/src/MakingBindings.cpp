// Documents made from other things: trace (the trace window's Enter All Data over a recording,
// as tessaphon-cli trace) and continuum (the steps between two documents). Both run without
// the interpreter lock; their keyword arguments are documented in tessaphon/__init__.py.
#include "Bindings.h"
#include "PythonDocument.h"
#include "Recording.h"
#include "Samples.h"
#include "continuum/Continuum.h"
#include "dataentry/TraceDataEntry.h"
#include "display/PitchTrackComputation.h"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace
{

std::unique_ptr<PythonDocument> trace(const SampleArray& samples, double rate, const SpectrogramOptions& o,
                                      const PitchSettings& pitch)
{
    o.check();
    const std::vector<float> values = samplesFrom(samples);
    checkedRate(rate);
    py::gil_scoped_release release;
    auto document = openedRecording(values, rate);
    document->buildDataTableDictionary();
    if (document->getChannel(0)->m_nColumnNum <= 0)
        throw BadArgument("samples: the recording is shorter than one frame");
    const double modelRate = document->getChannel(2)->m_dSampleRate;
    o.applyTo(*document, modelRate);
    document->pitchSettings() = pitch;
    try {
        TraceDataEntry::traceDocument(*document, o.columns, o.rows);
    } catch (const std::bad_alloc&) {
        throw OutOfMemory("samples: not enough memory for the analysis");
    } catch (const std::exception& e) {
        throw BadArgument(std::string("samples: Error in entering data values: ") + e.what());
    }
    return std::make_unique<PythonDocument>(std::move(document));
}

ContinuumSettings continuumSettings(int steps, const std::string& scale, const std::vector<std::string>& rows)
{
    ContinuumSettings settings;
    requireRange("steps", steps, 2, Continuum::kMaxSteps);
    settings.steps = steps;
    if (!FrequencyScale::parse(scale, settings.scale))
        throw BadArgument("scale \"" + scale + "\" is not one of hz, bark, erb, mel");
    for (const std::string& name : rows) {
        const int row = PythonDocument::rowNamed(name);
        if (row < 0)
            throw BadArgument("rows: no parameter named \"" + name + "\"");
        settings.rows.push_back(row);
    }
    return settings;
}

std::vector<std::unique_ptr<PythonDocument>> continuum(PythonDocument& a, PythonDocument& b, int steps,
                                                       const std::string& scale,
                                                       const std::vector<std::string>& rows)
{
    const ContinuumSettings settings = continuumSettings(steps, scale, rows);
    py::gil_scoped_release release;
    // The continuum builds table data in the documents it reads: it reads copies.
    const auto first = a.copyDocument(), last = b.copyDocument();
    if (!Continuum::compatible(*first, *last))
        throw BadArgument("a continuum needs the same number of frames and the same interval (" +
                          std::to_string(a.frames()) + " frames of " + std::to_string(a.intervalMS()) +
                          " ms, " + std::to_string(b.frames()) + " frames of " +
                          std::to_string(b.intervalMS()) + " ms)");
    std::vector<std::unique_ptr<PythonDocument>> documents;
    withFile("continuum", [&] {
        const Continuum continuum(*first, *last, settings);
        for (int step = 1; step <= continuum.steps(); ++step)
            documents.push_back(std::make_unique<PythonDocument>(continuum.makeStep(step)));
    });
    return documents;
}

} // namespace

void bindMaking(py::module_& m)
{
    m.def("trace", &trace);
    m.def("continuum", &continuum);
}
