// The compiled part of the tessaphon package. Imported by tessaphon/__init__.py, which adds the
// documented functions users call.
#include "Bindings.h"
#include "PythonErrors.h"
#include "document/Log.h"

PYBIND11_MODULE(_tessaphon, m)
{
    m.doc() = "Compiled core of tessaphon: use the functions of the tessaphon package.";
    // The core's diagnostic lines are for the workbench's developers, not for a notebook.
    Log::setSink([](const std::string&) {});
    registerErrorTranslation(m);
    bindDocument(m);
    bindAudio(m);
    bindAnalysis(m);
    bindMaking(m);
    bindStimulus(m);
    bindCopySynth(m);
}
