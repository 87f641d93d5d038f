#pragma once
// Diagnostic lines of the synthesizer, the analysis code, the audio layer and the document
// ("strat synthesize", "Requested LPC order too large\n", ...). They are never shown to the
// user. By default they go to standard output; a front end may install its own sink (the
// command-line tool sends them to standard error so that standard output holds results only).
// Thread-safe: the audio thread logs too.
#include <functional>
#include <string>

namespace Log
{
using Sink = std::function<void(const std::string& text)>;

// Replaces the sink; an empty function restores standard output.
void setSink(Sink sink);

// Writes the text as it stands (callers include the newline where the message has one).
void write(const std::string& text);

// printf-style convenience: the formats of the system's messages are printf formats.
void printf(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Writes the text followed by a newline.
void line(const std::string& text);
} // namespace Log
