#pragma once
// The varied-parameter text layout (.klp) of the older command-line Klatt tools:
//   # comment lines anywhere
//   du 500                        constants, one "name value" per line (du: length in ms,
//   f4 3300                       ui: update interval in ms, others: a parameter for every frame)
//   __varied_params__             (also _varied_params_)
//   _msec f0 av f1 ... notes      the table's header: msec (or _msec) first
//   0 1000 60 500 ... free text   one row per time point, any step; notes is ignored
// f0 is in tenths of Hz, as here. Any thread.
#include "interchange/TimedParameters.h"

#include <string>
#include <string_view>

class MyDocument;

// Reads the layout into `out`; false with the line and the reason for text it cannot take.
// Names with no row here go to out.unknownNames (their values are not used).
bool readKlp(std::string_view text, TimedParameters& out, InterchangeError& error);
// The document's table data in the layout: du and ui, the rows the layout holds that are the
// same in every frame as constants, the others as the table (times at each frame's start).
// Main thread (reads the table data).
std::string writeKlp(MyDocument& document);
