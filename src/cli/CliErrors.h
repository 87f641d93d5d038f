#pragma once
// How every command of tessaphon-cli ends and reports: exit 0 on success, 1 on a usage error, 2 on
// a file that cannot be read, written or used, with one line on standard error naming the file
// and the fault ("tessaphon-cli: FILE: WHAT"); warnings are one line each on standard error; the
// core's diagnostic lines go to standard error only with --verbose. Standard output holds results
// only. Any thread may call these.
#include <functional>
#include <string>

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

// A range given upside down (--low 500 --high 50) is a usage error: throws CLI::ValidationError
// with a message naming both options, which ends with exit code 1.
void requireOrderedRange(const std::string& lowName, double low, const std::string& highName, double high);

// Runs `body` for one file: allocation failure and the document's exceptions become a
// CliInputError naming `path`, so that they end as one line and exit 2.
void guardFile(const std::string& path, const std::function<void()>& body);
// The file the current thread last read or wrote (see cli/CliFiles.h), for failures that no
// guard caught.
const std::string& fileInHand();
// Records the file the current thread is about to read or write.
void takeInHand(const std::string& path);
