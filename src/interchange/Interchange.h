#pragma once
// Documents to and from the formats of other tools: the varied-parameter layout (.klp) of the
// older command-line Klatt tools and tab-separated tables of frames (.tsv). The parameter
// document format itself is not touched: these only make new documents and read existing
// ones. Main thread (documents).
#include "interchange/TimedParameters.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class MyDocument;

enum class InterchangeFormat { Klp, Tsv };

// "klp" or "tsv" (case does not matter); false for any other name.
bool interchangeFormatNamed(std::string_view name, InterchangeFormat& format);
// The format of a file: by its extension (.klp; .tsv, .txt), else by its first line.
InterchangeFormat interchangeFormatOf(const std::string& path, std::string_view text);
// The extension a file of the format gets (".klp", ".tsv").
const char* interchangeExtension(InterchangeFormat format);

struct ImportedDocument {
    std::unique_ptr<MyDocument> document;
    std::vector<std::string> warnings; // one line each: names with no row here, values clamped
};

// A new document from the bytes of a .klp or .tsv file (UTF-8, with or without its byte-order
// mark, or UTF-16 with one). Throws InterchangeError (its line, when there is one, is the
// file's) and DocumentException (memory).
ImportedDocument importDocument(std::string_view bytes, const std::string& path);
// The text of the document's table data in `format`.
std::string exportDocument(MyDocument& document, InterchangeFormat format);
