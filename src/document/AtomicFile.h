#pragma once
// Replacing a file so that it holds either its old or its new bytes, never a mixture: the bytes
// go to a temporary file in the target's folder (".NAME.XXXXXX"), are flushed to the disk, and
// the temporary file is renamed over the target. The new file keeps the old one's permissions
// (0644 for a new file). Any thread; two writers of the same target leave one of the two texts.
#include <cstddef>
#include <functional>
#include <string>

// Writes one piece of a file's bytes; answers false when it could not be written.
using PieceWriter = std::function<bool(const char* bytes, std::size_t size)>;

// Returns 0 on success, otherwise the system's error number; on failure the target is
// untouched and no temporary file is left behind.
int writeFileAtomically(const std::string& path, const std::string& bytes);
// The same for bytes made piece by piece: `produce` hands each piece to the writer it is given
// and answers false when a piece could not be written (or made).
int writeFileAtomically(const std::string& path, const std::function<bool(const PieceWriter&)>& produce);
