// tessaphon.synthesize, read_wav, write_wav: audio in and out of the module.
#include "Bindings.h"
#include "PythonDocument.h"
#include "Samples.h"
#include "cli/FileBytes.h"
#include "document/AtomicFile.h"
#include "document/MemoryBlock.h"

#include <algorithm>

namespace py = pybind11;

namespace
{

// The samples in the block the synthesis wrote them to, without a copy: the array owns it.
py::array_t<float> synthesize(PythonDocument& document)
{
    PythonDocument::Audio audio;
    {
        py::gil_scoped_release release;
        audio = document.synthesize();
    }
    if (!audio.block || audio.count == 0)
        return py::array_t<float>(0);
    MemoryBlock* block = audio.block.release();
    py::capsule owner(block, [](void* p) { delete static_cast<MemoryBlock*>(p); });
    return py::array_t<float>({static_cast<py::ssize_t>(audio.count)}, {py::ssize_t{sizeof(float)}},
                              block->floats(), owner);
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
    // The document's writer wraps a sample at or beyond full scale (+1.0 becomes -32768), as the
    // workbench always has; samples from Python are limited to the 16-bit range instead.
    for (float& v : values)
        v = std::clamp(v, -1.0f, 32767.0f / 32768.0f);
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
