#pragma once
// Putting TimedParameters on a new document's frames. Main thread (makes a document).
#include "interchange/TimedParameters.h"

#include <memory>

class MyDocument;

// A new document (factory values, then the configuration, as every new document) whose length
// is the file's (lengthMS, or the last time point plus one frame), whose frames are the file's
// interval (or the document's own), and whose frames hold: the constants; the varied columns
// interpolated linearly between the time points onto each frame's start (held flat before the
// first and after the last); the rows the file does not name at their defaults. Values are
// rounded, then clamped to their rows' limits and counted in m_nClampedValues. Throws
// InterchangeError for a length of no frames or more frames than a document takes, and
// DocumentException when memory runs out.
std::unique_ptr<MyDocument> documentFromTimedParameters(const TimedParameters& parameters);
