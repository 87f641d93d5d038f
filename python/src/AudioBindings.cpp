// tessaphon.synthesize and read_wav: audio into the module (write_wav is in StimulusBindings.cpp).
#include "Bindings.h"
#include "PythonDocument.h"
#include "Samples.h"
#include "cli/FileBytes.h"
#include "document/MemoryBlock.h"

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

} // namespace

void bindAudio(py::module_& m)
{
    m.def("synthesize", &synthesize, py::arg("doc"));
    m.def("read_wav", &readWav, py::arg("path"));
}
