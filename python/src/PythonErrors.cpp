#include "PythonErrors.h"

#include "document/DocumentException.h"

#include <pybind11/pybind11.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>

namespace py = pybind11;

namespace
{

// OSError(errno, strerror, filename): Python picks the subclass (FileNotFoundError, ...) by errno.
void raiseFileSystemError(const FileSystemError& e)
{
    py::tuple args = py::make_tuple(e.error, std::strerror(e.error), e.path);
    PyErr_SetObject(PyExc_OSError, args.ptr());
}

} // namespace

void registerErrorTranslation(py::module_&)
{
    py::register_exception_translator([](std::exception_ptr failure) {
        try {
            if (failure)
                std::rethrow_exception(failure);
        } catch (const FileSystemError& e) {
            raiseFileSystemError(e);
        } catch (const FileMessageError& e) {
            PyErr_SetString(PyExc_OSError, e.message.c_str());
        } catch (const BadArgument& e) {
            PyErr_SetString(PyExc_ValueError, e.what());
        } catch (const OutOfMemory& e) {
            PyErr_SetString(PyExc_MemoryError, e.what());
        } catch (const DocumentException& e) {
            if (e.name() == DocumentException::memoryError().name())
                PyErr_SetString(PyExc_MemoryError, e.reason().c_str());
            else
                PyErr_SetString(PyExc_ValueError, e.what());
        }
    });
}

void withFile(const std::string& path, const std::function<void()>& body)
{
    try {
        body();
    } catch (const std::bad_alloc&) {
        throw OutOfMemory(path + ": not enough memory");
    } catch (const DocumentException& e) {
        if (e.name() == DocumentException::memoryError().name())
            throw OutOfMemory(path + ": " + e.reason());
        throw BadArgument(path + ": " + e.what());
    }
}

void requireRange(const char* name, double value, double low, double high)
{
    if (value >= low && value <= high)
        return;
    char message[160];
    std::snprintf(message, sizeof message, "%s must be between %g and %g (got %g)", name, low, high, value);
    throw BadArgument(message);
}
