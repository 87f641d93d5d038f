#pragma once
// Reading TextGrid files: the long text layout ("ooTextFile", `item [1]:` blocks with
// `xmin = 0` lines) and the short one (the same values one per line, without their names), as
// UTF-8 or UTF-16 with a byte-order mark; interval and point tiers, any number of them; texts
// with doubled quotes inside. A damaged file (truncated, a tier that runs backwards, counts that
// do not match, a binary TextGrid) is refused with the line where reading stopped; nothing of
// it is kept. Any thread.
#include "labels/TextGrid.h"

#include <string>
#include <string_view>

struct TextGridError {
    int line = 0; // 1-based; 0 when the fault is not on one line (the encoding)
    std::string what;
    // "FILE, line N: WHAT" (or "FILE: WHAT").
    std::string message(const std::string& file) const;
    // "line N: WHAT" (or "WHAT"), for messages that name the file themselves.
    std::string where() const;
};

// Reads the TextGrid in `bytes` into `grid`; `grid` is only replaced when the whole file reads.
bool readTextGrid(std::string_view bytes, TextGrid& grid, TextGridError& error);
// Reads the file at `path`; on failure `message` names the file and the line.
bool loadTextGridFile(const std::string& path, TextGrid& grid, std::string& message);
