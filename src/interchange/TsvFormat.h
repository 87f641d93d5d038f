#pragma once
// Tables of frames as spreadsheets and scripts keep them: tab-separated, a header line of
// parameter names with time_ms first, one line per frame, the values in the parameters' own
// units (f0 in tenths of Hz). The table's Copy writes the same layout without the time column.
// Any thread for reading; writing reads the table data (main thread).
#include "interchange/TimedParameters.h"

#include <string>
#include <string_view>

class MyDocument;

// Reads the table into `out` (times from time_ms); false with the line and the reason.
// Columns whose names have no row here go to out.unknownNames (their values are not used).
bool readTsv(std::string_view text, TimedParameters& out, InterchangeError& error);
// Every frame of the document's table data, all 48 parameters.
std::string writeTsv(MyDocument& document);
// True when `text` starts like such a table (its first field is time_ms).
bool looksLikeTsv(std::string_view text);
