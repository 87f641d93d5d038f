#include "cli/CliErrors.h"

#include "document/DocumentException.h"
#include "document/Log.h"

#include <CLI/CLI.hpp>

#include <atomic>
#include <cstdio>
#include <new>
#include <sstream>

namespace
{

std::atomic<bool> g_verbose{false};
thread_local std::string t_fileInHand;

} // namespace

void takeInHand(const std::string& path)
{
    t_fileInHand = path;
}

std::string cliErrorLine(const CliInputError& error)
{
    return "tessaphon-cli: " + error.file + ": " + error.what;
}

void cliWarning(const std::string& file, const std::string& what)
{
    const std::string line = "tessaphon-cli: " + file + ": warning: " + what + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void setCliVerbose(bool verbose)
{
    g_verbose = verbose;
    // The sink decides at each line, so that the flag may be parsed after the sink is set.
    Log::setSink([](const std::string& text) {
        if (g_verbose)
            std::fwrite(text.data(), 1, text.size(), stderr);
    });
}

void requireOrderedRange(const std::string& lowName, double low, const std::string& highName, double high)
{
    if (low < high)
        return;
    std::ostringstream message;
    message << lowName << " " << low << " is not below " << highName << " " << high
            << ": give the lower value to " << lowName;
    throw CLI::ValidationError(lowName + "/" + highName, message.str());
}

void guardFile(const std::string& path, const std::function<void()>& body)
{
    try {
        body();
    } catch (const std::bad_alloc&) {
        throw CliInputError{path, "not enough memory"};
    } catch (const DocumentException& e) {
        throw CliInputError{path, e.name() + ": " + e.reason()};
    } catch (const CLI::Error&) {
        throw; // a usage error stays one
    } catch (const std::exception& e) {
        throw CliInputError{path, e.what()};
    }
}

const std::string& fileInHand()
{
    return t_fileInHand;
}
