#pragma once
// The check that an import refuses a damaged file: the import of `text` read as the file `name`
// throws an error whose text holds `reason` and, unless `line` is 0, that names that line.
#include "interchange/Interchange.h"

#include <gtest/gtest.h>

inline void expectRefused(const std::string& text, const std::string& name, int line,
                          const std::string& reason)
{
    SCOPED_TRACE(text);
    try {
        importDocument(text, name);
        ADD_FAILURE() << "accepted";
    } catch (const InterchangeError& e) {
        EXPECT_NE(e.what.find(reason), std::string::npos) << e.what;
        EXPECT_TRUE(line == 0 || e.line == line) << "line " << e.line << ": " << e.what;
    }
}
