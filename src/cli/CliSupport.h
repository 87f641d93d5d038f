#pragma once
// Shared conventions of tessaphon-cli's commands, so that every command behaves the same:
// - exit 0 on success, 1 on a usage error, 2 on a file that cannot be read, written or used,
//   with one line on standard error naming the file and the fault ("tessaphon-cli: FILE: WHAT");
// - standard output holds results only; the core's diagnostic lines go to standard error only
//   with --verbose; warnings are one line each on standard error;
// - outputs: never a file the command reads; a default output that exists is kept unless
//   --force; an explicit -o replaces; every write is atomic (temporary file + rename);
// - long runs show a progress bar on standard error when it is a terminal.
// Any thread may call these, except where a function says otherwise.
#include "cli/FileBytes.h"
#include "document/AtomicFile.h"

#include <CLI/CLI.hpp>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

class Channels;
class MyDocument;
struct RgbImage;

enum CliExit { ExitOk = 0, ExitUsage = 1, ExitBadInput = 2 };

// Thrown by a command to end with exit code 2 and the message "tessaphon-cli: FILE: WHAT".
struct CliInputError {
    std::string file;
    std::string what;
};
// Thrown when the failures were already reported, one line each: ends with exit code 2.
struct CliFailuresReported {
};
// The line a CliInputError is reported with (without the newline).
std::string cliErrorLine(const CliInputError& error);
// One warning line on standard error: "tessaphon-cli: FILE: warning: WHAT".
void cliWarning(const std::string& file, const std::string& what);

// --verbose: the core's diagnostic lines are shown on standard error (off by default).
void setCliVerbose(bool verbose);

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
// Appends the PNG image of an RGB image to `out`; false when libpng fails.
bool encodePng(const RgbImage& image, std::string& out);

// What names a file: its device and inode when it exists (so a file reached two ways is one),
// otherwise its path made absolute and normal.
std::string fileIdentity(const std::string& path);
// True when both paths name the same file (an existing file reached two ways counts).
bool sameFile(const std::string& a, const std::string& b);

// A set of files named once, asked about many times: a batch of many documents checks each
// output against every input without resolving the inputs again.
class FileSet
{
public:
    explicit FileSet(const std::vector<std::string>& paths);
    bool contains(const std::string& path) const;

private:
    std::unordered_set<std::string> m_identities;
};

// The output a command writes to: `explicitPath` (-o) when given, which may replace an existing
// file; otherwise `defaultPath`, which must not exist unless `force`. Neither may be one of the
// command's inputs. Throws CliInputError naming the refused output.
std::string chooseOutput(const std::string& explicitPath, const std::string& defaultPath, bool force,
                         const std::vector<std::string>& inputs);
std::string chooseOutput(const std::string& explicitPath, const std::string& defaultPath, bool force,
                         const FileSet& inputs);
// `path` with its extension replaced (".wav", ".stk").
std::string withExtension(const std::string& path, const char* extension);

// A range given upside down (--low 500 --high 50) is a usage error: throws CLI::ValidationError
// with a message naming both options, which ends with exit code 1.
void requireOrderedRange(const std::string& lowName, double low, const std::string& highName, double high);

// Runs `body` for one file: allocation failure and the document's exceptions become a
// CliInputError naming `path`, so that they end as one line and exit 2.
void guardFile(const std::string& path, const std::function<void()>& body);
// The file the current thread last read or wrote through the functions above, for failures
// that no guard caught.
const std::string& fileInHand();

// A progress bar on standard error ("label [#####     ] 12/200"), drawn only when standard
// error is a terminal, cleared when finished or destroyed. advance() may be called from any
// thread.
class ProgressBar
{
public:
    ProgressBar(std::string label, std::size_t total);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void advance(std::size_t steps = 1);
    // Writes a line (with its newline) on standard error without breaking the bar.
    void print(const std::string& line);
    void finish();
    bool shown() const { return m_bEnabled; }

private:
    void draw(std::size_t done);
    void clearLine();

    std::string m_strLabel;
    std::size_t m_nTotal;
    bool m_bEnabled;
    std::atomic<std::size_t> m_nDone{0};
    std::mutex m_mutex;
    int m_nDrawnCells = -1;
    std::chrono::steady_clock::time_point m_lastDraw{};
    bool m_bFinished = false;
};

// Runs tasks 0 .. count-1, up to `jobs` at once (0: one per core), each in a child process of
// its own, under a progress bar labelled `label`. Each task runs under guardFile(file(i), ...);
// a task that fails (or dies) is reported as its one line at once and the others go on.
// Returns the number of failed tasks. Call it from the main thread only.
std::size_t runTasks(std::size_t count, unsigned jobs, const std::string& label,
                     const std::function<std::string(std::size_t)>& file,
                     const std::function<void(std::size_t)>& work);

// Command groups, each registering its subcommands on the application.
void addDocumentCommands(CLI::App& app);
void addAnalysisCommands(CLI::App& app);
void addSliceCommands(CLI::App& app);
void addContinuumCommand(CLI::App& app);
void addInterchangeCommands(CLI::App& app);
void addPhonemesCommand(CLI::App& app);
