#pragma once
// How the module's failures reach Python. C++ code (with or without the interpreter lock) throws
// the exceptions below or lets the core's own pass; the translator registered at import turns
// them into Python exceptions carrying the project's messages:
//   FileSystemError        -> OSError(errno, reason, file)  (FileNotFoundError, PermissionError, ...)
//   FileMessageError       -> OSError(message)
//   BadArgument            -> ValueError(message)
//   DocumentException      -> MemoryError for "Memory Error", else ValueError("name: reason")
//   std::bad_alloc         -> MemoryError
// withFile() puts the file's name in front of the message of whatever its body throws.
#include <functional>
#include <stdexcept>
#include <string>

namespace pybind11
{
class module_;
}

// A file that cannot be read or written: the system's error number and the file's name.
struct FileSystemError {
    std::string path;
    int error;
};

// A file that cannot be written, known by a message only: OSError with this message.
struct FileMessageError {
    std::string message;
};

// A bad argument or a damaged input: ValueError with this message.
class BadArgument : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Memory ran out: MemoryError with this message.
class OutOfMemory : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

void registerErrorTranslation(pybind11::module_& module);

// Runs `body`; the core's exceptions and allocation failures it throws come out as BadArgument or
// OutOfMemory whose message starts with "PATH: ".
void withFile(const std::string& path, const std::function<void()>& body);

// ValueError "NAME must be between LOW and HIGH (got VALUE)" unless low <= value <= high.
void requireRange(const char* name, double value, double low, double high);
