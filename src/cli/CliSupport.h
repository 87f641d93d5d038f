#pragma once
// Shared conventions of tessaphon-cli's commands: exit 0 on success, 1 on a usage error, 2 on
// unreadable or invalid input with one line on standard error naming the file and the fault.
// Standard output holds results only; the core's diagnostic lines go to standard error.
#include <CLI/CLI.hpp>

#include <memory>
#include <string>

class Channels;
class MyDocument;
struct RgbImage;

enum CliExit { ExitOk = 0, ExitUsage = 1, ExitBadInput = 2 };

// Thrown by a command to end with exit code 2 and the message "tessaphon-cli: FILE: WHAT".
struct CliInputError {
    std::string file;
    std::string what;
};

// Reads a whole file; throws CliInputError when it cannot be read.
std::string readWholeFile(const std::string& path);
// Writes a whole file atomically (temporary file beside it, then rename); throws CliInputError.
void writeWholeFile(const std::string& path, const std::string& bytes);
// Opens a parameter document or a WAVE file as the workbench does; throws CliInputError. A
// document whose value lines stop before its declared length is read as far as it goes,
// with one warning line on standard error naming the file and the frames present/declared.
// Commands that only analyse a recording skip building the table data (`withTableData`).
std::unique_ptr<MyDocument> openDocument(const std::string& path, bool withTableData = true);

// The channel every analysis reads: the model utterance of an opened file; throws
// CliInputError naming `path` when it holds no usable recording.
const Channels& modelChannel(const MyDocument& document, const std::string& path);
// Appends the PNG image of an RGB image to `out`; false when libpng fails.
bool encodePng(const RgbImage& image, std::string& out);

// Command groups, each registering its subcommands on the application.
void addDocumentCommands(CLI::App& app);
void addAnalysisCommands(CLI::App& app);
void addSliceCommands(CLI::App& app);
