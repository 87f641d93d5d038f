#pragma once
// Replacing a file so that it holds either its old or its new bytes, never a mixture: the bytes
// go to a temporary file in the target's folder (".NAME.XXXXXX"), are flushed to the disk, and
// the temporary file is renamed over the target. The new file keeps the old one's permissions
// (0644 for a new file). Any thread; two writers of the same target leave one of the two texts.
#include <string>

// Returns 0 on success, otherwise the system's error number; on failure the target is
// untouched and no temporary file is left behind.
int writeFileAtomically(const std::string& path, const std::string& bytes);
