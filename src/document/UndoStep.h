#pragma once
// One edit as one undo step: the document's undo snapshot before it and its redo snapshot after
// it, whatever the edit did (changed the document, changed nothing, or threw part way). The two
// lists share one position, so a step without its redo snapshot would make the next Ctrl+Z undo
// two edits at once. Main thread only.
#include "document/MyDocument.h"

#include <type_traits>
#include <utility>

template <typename Edit> auto asOneUndoStep(MyDocument& document, Edit&& edit) -> decltype(edit())
{
    document.saveUndo();
    try {
        if constexpr (std::is_void_v<decltype(edit())>) {
            std::forward<Edit>(edit)();
            document.saveRedo();
        } else {
            auto result = std::forward<Edit>(edit)();
            document.saveRedo();
            return result;
        }
    } catch (...) {
        // Whatever the edit changed before it failed stays changed, and can be undone.
        document.saveRedo();
        throw;
    }
}
