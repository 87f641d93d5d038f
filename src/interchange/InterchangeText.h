#pragma once
// Small pieces of text reading shared by the interchange formats. Any thread.
#include "interchange/TimedParameters.h"

#include <string>
#include <string_view>
#include <vector>

struct NumberedLine {
    int number = 0;        // 1-based
    std::string_view text; // without its line end (LF or CR LF)
};

// The lines of `text`; a last line without a line end counts, an empty end does not.
std::vector<NumberedLine> numberedLines(std::string_view text);
// `text` without blanks (spaces, tabs) at either end.
std::string_view trimBlanks(std::string_view text);
// The fields of a line split at runs of blanks; at most `most` fields, the last of which then
// holds the rest of the line (0: no limit).
std::vector<std::string_view> blankFields(std::string_view line, std::size_t most = 0);
// A decimal number (sign, digits, fraction, exponent) that is the whole field.
bool parseDecimal(std::string_view field, double& value);
// Names joined with ", ".
std::string joinNames(const std::vector<std::string>& names);
// `text` in lower case (ASCII letters).
std::string lowered(std::string_view text);
// One line of a table of time points: fields[0] the time in ms, fields[i] (i >= 1) the value of
// the column whose index into out.columnRows is target[i - 1] (-1: a column not used). Throws
// InterchangeError naming `line` for a field that is not a number or a time that goes back.
void appendTimePoint(TimedParameters& out, int line, const std::vector<std::string_view>& fields,
                     const std::vector<int>& target);
