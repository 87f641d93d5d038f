// Undo, redo and revert. Every edit stores a whole-document snapshot before it (undo list) and
// one after it (redo list); each list keeps the ten most recent, oldest first, and both share
// one position. A new edit never clears the lists: it only drops their oldest entries. Undo at
// position k restores the state before the k-th remembered edit, redo the state after it.
#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "document/ParameterDocumentText.h"

#include <algorithm>

namespace
{

// Appends a snapshot of the whole document (the text Save_STK_FileType writes with all rows).
// A full list drops its oldest entry, whose storage the new snapshot reuses.
void appendSnapshot(MyDocument& document, std::vector<std::string>& list, int depth)
{
    const std::size_t keep = static_cast<std::size_t>(std::max(depth, 1));
    std::string text;
    if (list.size() >= keep) {
        text = std::move(list.front());
        list.erase(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(list.size() - keep + 1));
    }
    writeParameterText(document, true, ParameterTextUse::Snapshot, text);
    list.push_back(std::move(text));
}

// Reads a snapshot and rebuilds the table data from the grid it filled.
void restoreSnapshot(MyDocument& document, const std::string& snapshot)
{
    if (!document.Read_STK_FileTypeDoUndo(snapshot))
        throw DocumentException("Error in reading the file", document.lastReadError());
    const std::uint8_t readFile = document.m_bReadFile;
    document.m_bReadFile = 1; // values and anchors come from the grid just read
    document.buildDataTableDictionary();
    document.m_bReadFile = readFile;
}

} // namespace

void MyDocument::saveUndo()
{
    appendSnapshot(*this, _arrayUndo, _nUndoRedoManCount);
    _nUndoRedoIndex = static_cast<std::int32_t>(_arrayUndo.size());
}

void MyDocument::saveRedo()
{
    appendSnapshot(*this, _arrayRedo, _nUndoRedoManCount);
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
    restoreSnapshot(*this, _arrayUndo[i]);
}

void MyDocument::doRedo()
{
    if (!canRedo())
        return;
    const std::size_t i =
        std::min<std::size_t>(static_cast<std::size_t>(_nUndoRedoIndex), _arrayRedo.size() - 1);
    ++_nUndoRedoIndex;
    restoreSnapshot(*this, _arrayRedo[i]);
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
    _nUndoRedoIndex = -1;
    updateChangeCount(ChangeCleared);
    return true;
}
