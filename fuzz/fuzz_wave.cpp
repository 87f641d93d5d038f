// Fuzzes the WAVE reader: any bytes are refused with a reason or read into the model channel,
// whose block then holds every sample the channel counts.
#include "FuzzSupport.h"

#include <cstdint>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::makeSeedsIfAsked(*argc, *argv, fuzz::waveSeeds);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    MyDocument document;
    document.setFileURL("/fuzz/input.wav");
    if (document.Read_WAVE_FileType(bytes) != 0) {
        fuzz::require(!document.lastReadError().empty());
        fuzz::require(!document.getChannel(2)->hasAudio());
        return 0;
    }
    const Channels& model = *document.getChannel(2);
    fuzz::require(model.hasAudio());
    const std::size_t count = model.sampleCount();
    fuzz::require(count == static_cast<std::size_t>(model.m_dwFileLength));
    volatile float sum = 0.0f;
    for (std::size_t i = 0; i < count; ++i)
        sum = sum + model.samples()[i];
    fuzz::require(document.fileURL() == "/fuzz/input.stk");
    return 0;
}
