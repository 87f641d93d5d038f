// tessaphon.write_wav: the document's own 16-bit WAVE file, or with output options a stimulus
// file at another rate, at a level, with ramps and silence, 16 or 24 bits, WAVE or FLAC, as
// tessaphon-cli synth writes it with the same options. Runs without the interpreter lock; the
// keywords are documented in tessaphon/__init__.py.
#include "Bindings.h"
#include "PythonErrors.h"
#include "Samples.h"
#include "document/AtomicFile.h"
#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "stimulus/StimulusFile.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace py = pybind11;

namespace
{

using OptionTexts = std::vector<std::pair<std::string, std::string>>;

StimulusOutput outputOf(const OptionTexts& options)
{
    StimulusOutput output;
    for (const auto& [name, value] : options) {
        std::string error;
        if (!output.set(name, value, &error))
            throw BadArgument(error);
    }
    return output;
}

// The document's own 16-bit writer, as tessaphon-cli writes synthesis without output options.
void writePlain(const std::string& path, std::vector<float>& values, double rate)
{
    // The writer wraps a sample at or beyond full scale (+1.0 becomes -32768), as the workbench
    // always has; samples from Python are limited to the 16-bit range instead.
    for (float& v : values)
        v = std::clamp(v, -1.0f, 32767.0f / 32768.0f);
    MyDocument document;
    withFile(path, [&] {
        if (!document.setModelSamples(values, rate))
            throw BadArgument(path + ": no samples, an unusable sample rate or more than an hour of audio");
    });
    const int error = writeFileAtomically(
        path, [&document](const PieceWriter& write) { return document.writeWave(2, write); });
    if (error != 0)
        throw FileSystemError{path, error};
}

py::dict figuresDict(const StimulusFigures& f)
{
    py::dict d;
    d["duration_ms"] = f.durationMS;
    d["rate"] = f.rate;
    d["rms_db"] = f.rmsDb;
    d["peak_db"] = f.peakDb;
    d["clipped"] = f.clipped;
    d["gain_db"] = f.gainDb;
    return d;
}

py::dict writeWav(const std::string& path, const SampleArray& samples, double rate,
                  const OptionTexts& options)
{
    std::vector<float> values = samplesFrom(samples);
    checkedRate(rate);
    const StimulusOutput output = outputOf(options);
    StimulusFigures figures;
    {
        py::gil_scoped_release release;
        if (output.plain()) {
            writePlain(path, values, rate);
            figures = plainFigures(values.data(), values.size(), static_cast<int>(rate));
        } else {
            try {
                figures = saveStimulus(path, values.data(), values.size(), static_cast<int>(rate), output);
            } catch (const DocumentException& e) {
                // The stimulus writer names the file as the exception's name.
                if (e.reason().rfind("cannot write:", 0) == 0)
                    throw FileMessageError{e.name() + ": " + e.reason()};
                throw BadArgument(e.name() + ": " + e.reason());
            }
        }
    }
    return figuresDict(figures);
}

} // namespace

void bindStimulus(py::module_& m)
{
    m.def("write_wav", &writeWav);
}
