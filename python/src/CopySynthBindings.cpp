// tessaphon.copysynth: every synthesis parameter estimated from a recording (the workbench's
// Automatic Copy Synthesis, as tessaphon-cli copysynth). Runs without the interpreter lock; its
// keyword arguments are documented in tessaphon/__init__.py.
#include "Bindings.h"
#include "PythonDocument.h"
#include "Recording.h"
#include "Samples.h"
#include "copysynth/CopySynthesis.h"
#include "synthesis/CKlattEngine.h"

#include <new>
#include <stdexcept>

namespace py = pybind11;

namespace
{

std::unique_ptr<PythonDocument> copysynth(const SampleArray& samples, double rate,
                                          const CopySynthesisOptions& o)
{
    const std::vector<float> values = samplesFrom(samples);
    checkedRate(rate);
    py::gil_scoped_release release;
    // The document tessaphon-cli opens from the WAVE file of these samples.
    auto document = openedRecording(values, rate);
    const Channels& model = *document->getChannel(2);
    CopySynthesisResult result;
    try {
        // The estimate is synthesized and measured: from the engine's state at program start,
        // as in the command-line tool.
        CKlattEngine::resetCarriedState();
        result = copySynthesize(model.samples(), model.sampleCount(), model.m_dSampleRate, o);
    } catch (const std::invalid_argument& e) {
        throw BadArgument(std::string("samples: ") + e.what());
    } catch (const std::bad_alloc&) {
        throw OutOfMemory("samples: not enough memory for the analysis");
    }
    applyCopySynthesis(result, *document);
    return std::make_unique<PythonDocument>(std::move(document));
}

} // namespace

void bindCopySynth(py::module_& m)
{
    py::class_<CopySynthesisOptions>(m, "_CopySynthesisOptions")
        .def(py::init<>())
        .def_readwrite("rate", &CopySynthesisOptions::outputRate)
        .def_readwrite("max_formant", &CopySynthesisOptions::maxFormantHz)
        .def_readwrite("interval_ms", &CopySynthesisOptions::intervalMS)
        .def_readwrite("pitch_low", &CopySynthesisOptions::pitchLowHz)
        .def_readwrite("pitch_high", &CopySynthesisOptions::pitchHighHz)
        .def_readwrite("pitch_window", &CopySynthesisOptions::pitchWindowMS)
        .def_readwrite("order", &CopySynthesisOptions::lpcOrder)
        .def_readwrite("preemphasis", &CopySynthesisOptions::preEmphasis);
    m.def("copysynth", &copysynth);
}
