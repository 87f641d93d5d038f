// Fuzzes the parameter document reader: any bytes are refused with a reason or read into a
// consistent grid, whose text written back is read again to the same text.
#include "FuzzSupport.h"

#include <cstdint>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::makeSeedsIfAsked(*argc, *argv, fuzz::documentSeeds);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    MyDocument document;
    if (document.Read_STK_FileType(bytes) != 0) {
        fuzz::require(!document.lastReadError().empty());
        return 0;
    }
    fuzz::checkReadDocument(document, false);
    return 0;
}
