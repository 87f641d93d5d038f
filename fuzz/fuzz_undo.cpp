// Fuzzes the reader of undo snapshots, then undo itself: a snapshot that cannot be read makes
// doUndo raise "Error in reading the file" and nothing else.
#include "FuzzSupport.h"

#include "document/DocumentException.h"

#include <cstdint>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::makeSeedsIfAsked(*argc, *argv, fuzz::snapshotSeeds);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    MyDocument document;
    const bool read = document.Read_STK_FileTypeDoUndo(bytes);
    if (read)
        fuzz::checkReadDocument(document, true);

    // The same bytes as the undo list's only entry (documents too large to get table data
    // quickly are left to the reader check above).
    if (read && document.getChannel(0)->m_nColumnNum > fuzz::kRoundTripFrames)
        return 0;
    MyDocument undone;
    undone._arrayUndo.push_back(DocumentSnapshot::ofText(bytes));
    undone._nUndoRedoIndex = 1;
    try {
        undone.doUndo();
        fuzz::require(read);
    } catch (const DocumentException& e) {
        fuzz::require(!read && e.name() == "Error in reading the file");
    }
    return 0;
}
