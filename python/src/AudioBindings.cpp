// tessaphon.synthesize, read_wav, write_wav: audio in and out of the module.
#include "Bindings.h"
#include "PythonDocument.h"
#include "Samples.h"
#include "cli/FileBytes.h"
#include "document/AtomicFile.h"

namespace py = pybind11;

namespace
{

py::array_t<float> synthesize(PythonDocument& document)
{
    std::vector<float> samples;
    {
        py::gil_scoped_release release;
        samples = document.synthesize();
    }
    return floatArray(samples);
}

py::tuple readWav(const std::string& path)
{
    std::unique_ptr<MyDocument> document;
    {
        py::gil_scoped_release release;
        FileBytes bytes;
        if (const int error = bytes.read(path); error != 0)
            throw FileSystemError{path, error};
        withFile(path, [&] {
            document = std::make_unique<MyDocument>();
            if (document->Read_WAVE_FileType(bytes.view()) != 0) {
                const std::string& why = document->lastReadError();
                throw BadArgument(path + ": " + (why.empty() ? "not a usable WAVE file" : why));
            }
        });
    }
    const Channels& model = *document->getChannel(2);
    const float* data = model.samples();
    std::vector<float> samples(data, data + (data ? model.sampleCount() : 0));
    return py::make_tuple(floatArray(samples), model.m_dSampleRate);
}

void writeWav(const std::string& path, const SampleArray& samples, double rate)
{
    std::vector<float> values = samplesFrom(samples);
    checkedRate(rate);
    py::gil_scoped_release release;
    MyDocument document;
    withFile(path, [&] {
        if (!document.setModelSamples(values, rate))
            throw BadArgument(path + ": no samples, an unusable sample rate or more than an hour of audio");
    });
    values = {};
    const int error = writeFileAtomically(
        path, [&document](const PieceWriter& write) { return document.writeWave(2, write); });
    if (error != 0)
        throw FileSystemError{path, error};
}

} // namespace

void bindAudio(py::module_& m)
{
    m.def("synthesize", &synthesize, py::arg("doc"));
    m.def("read_wav", &readWav, py::arg("path"));
    m.def("write_wav", &writeWav, py::arg("path"), py::arg("samples"), py::arg("rate"));
}
