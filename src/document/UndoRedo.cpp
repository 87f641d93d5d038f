// Undo, redo and revert. Every edit stores a whole-document snapshot before it (undo list) and
// one after it (redo list); each list keeps the ten most recent, oldest first, and both share
// one position. A new edit never clears the lists: it only drops their oldest entries. Undo at
// position k restores the state before the k-th remembered edit, redo the state after it.
// A snapshot holds the whole document, but the frames an edit left alone are shared with the
// snapshots before it (DocumentSnapshot), so an edit costs about what it changed.
#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "document/ParameterDocumentText.h"

#include <algorithm>

// Appends a snapshot of the whole document: the head of its snapshot text and an image of its
// frames, whose blocks the table data has not changed since the last snapshot are shared with
// it. A full list drops its oldest entry.
void MyDocument::appendSnapshot(std::vector<DocumentSnapshot>& list)
{
    const std::size_t keep = static_cast<std::size_t>(std::max(_nUndoRedoManCount, 1));
    std::string head;
    FrameImage frames = writeSnapshotImage(*this, m_lastRecorded, head);
    if (list.size() >= keep)
        list.erase(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(list.size() - keep + 1));
    m_lastRecorded = frames;
    list.push_back(DocumentSnapshot::ofImage(std::move(head), std::move(frames)));
}

// Reads a snapshot and rebuilds the table data from the grid it filled (from the snapshot's own
// frames when the grid holds exactly those, which spares copying the grid).
void MyDocument::restoreSnapshot(const DocumentSnapshot& snapshot)
{
    bool gridIsImage = false;
    const bool read = snapshot.isImage() ? readSnapshotImage(*this, snapshot.text(), snapshot.frames(),
                                                             m_strReadError, &gridIsImage) == 0
                                         : Read_STK_FileTypeDoUndo(snapshot.text());
    if (!read)
        throw DocumentException("Error in reading the file", lastReadError());
    const std::uint8_t readFile = m_bReadFile;
    m_bReadFile = 1; // values and anchors come from the grid just read
    try {
        if (gridIsImage)
            buildTableDataFrom(snapshot.frames());
        else
            buildDataTableDictionary();
    } catch (...) {
        m_bReadFile = readFile;
        throw;
    }
    m_bReadFile = readFile;
}

void MyDocument::saveUndo()
{
    appendSnapshot(_arrayUndo);
    _nUndoRedoIndex = static_cast<std::int32_t>(_arrayUndo.size());
}

void MyDocument::saveRedo()
{
    appendSnapshot(_arrayRedo);
    _nUndoRedoIndex = static_cast<std::int32_t>(_arrayRedo.size());
}

bool MyDocument::canUndo() const
{
    return _nUndoRedoIndex > 0;
}

bool MyDocument::canRedo() const
{
    return _nUndoRedoIndex != -1 && _nUndoRedoIndex < static_cast<std::int32_t>(_arrayRedo.size());
}

bool MyDocument::canRevert() const
{
    return _bDoRevert != 0 && fileType() == "stk";
}

void MyDocument::doUndo()
{
    if (!canUndo())
        return;
    --_nUndoRedoIndex;
    if (_nUndoRedoIndex < 0 || _arrayUndo.empty())
        return;
    // The position follows the list saved last; when the redo list has grown past the undo list
    // (a change recorded with saveRedo alone), undo restores the newest "before" state.
    const std::size_t i =
        std::min<std::size_t>(static_cast<std::size_t>(_nUndoRedoIndex), _arrayUndo.size() - 1);
    restoreSnapshot(_arrayUndo[i]);
}

void MyDocument::doRedo()
{
    if (!canRedo())
        return;
    const std::size_t i =
        std::min<std::size_t>(static_cast<std::size_t>(_nUndoRedoIndex), _arrayRedo.size() - 1);
    ++_nUndoRedoIndex;
    restoreSnapshot(_arrayRedo[i]);
}

bool MyDocument::Read_STK_FileTypeDoUndo(const std::string& snapshot)
{
    return readParameterText(*this, snapshot, ParameterTextUse::Snapshot, m_strReadError) == 0;
}

// Goes back to the text of the last save (or of the file opened, when called without a save).
// The reverted document starts a new history: both snapshot lists are emptied, the position
// returns to -1 and the change count is cleared. The table data is rebuilt from the file.
bool MyDocument::doRevertDocumentToSaved()
{
    if (_fileData.empty()) {
        m_strReadError = "there is no saved document to go back to";
        return false;
    }
    const std::string saved = _fileData;
    const std::string typeName = _fileTypeName;
    int errorCode = 0;
    if (!readFromData(saved, typeName, &errorCode))
        return false;
    buildDataTableDictionary();
    _arrayUndo.clear();
    _arrayRedo.clear();
    m_lastRecorded = {};
    _nUndoRedoIndex = -1;
    updateChangeCount(ChangeCleared);
    return true;
}
