#pragma once
// The files of tessaphon-cli's commands: whole files read and written (every write atomic:
// temporary file in the same folder, then rename), documents opened as the workbench opens them,
// and the recording an analysis reads. Failures throw CliInputError naming the file (see
// cli/CliErrors.h). Any thread may call these.
#include "cli/CliErrors.h"
#include "cli/FileBytes.h"
#include "document/AtomicFile.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

class Channels;
class MyDocument;

// Reads a whole file; throws CliInputError when it cannot be read.
FileBytes readWholeFile(const std::string& path);
// Writes a whole file atomically (temporary file in the same folder, then rename); throws
// CliInputError naming the file when it cannot be written.
void writeWholeFile(const std::string& path, const std::string& bytes);
// The same for a file made piece by piece: `produce` hands each piece to the writer it is given.
void writeWholeFile(const std::string& path, const std::function<bool(const PieceWriter&)>& produce);
// Opens a parameter document or a WAVE file as the workbench does; throws CliInputError. A
// document whose value lines stop before its declared length is read as far as it goes, and
// values too large for the grid are read as their rows' limits: one warning line each on
// standard error naming the file.
// Commands that only read the settings or the model recording skip building the table data
// (the cells that synthesis and saving read).
enum class TableData { Build, Skip };
std::unique_ptr<MyDocument> openDocument(const std::string& path, TableData table = TableData::Build);
// The same from bytes already read from `path`.
// The document does not keep the bytes (the tool never reverts).
std::unique_ptr<MyDocument> openDocumentBytes(const std::string& path, std::string_view bytes,
                                              TableData table);

// The channel every analysis reads: the model utterance of an opened file; throws
// CliInputError naming `path` when it holds no usable recording.
const Channels& modelChannel(const MyDocument& document, const std::string& path);

// `path` with its extension replaced (".wav", ".stk").
std::string withExtension(const std::string& path, const char* extension);
