#include "cli/OutputFiles.h"

#include "cli/CliErrors.h"

#include <filesystem>

std::string chooseOutput(const std::string& explicitPath, const std::string& defaultPath, bool force,
                         const std::vector<std::string>& inputs)
{
    return chooseOutput(explicitPath, defaultPath, force, FileSet(inputs));
}

std::string chooseOutput(const std::string& explicitPath, const std::string& defaultPath, bool force,
                         const FileSet& inputs)
{
    const std::string& path = explicitPath.empty() ? defaultPath : explicitPath;
    if (inputs.contains(path))
        throw CliInputError{path, "is an input of this command and is never written over; choose "
                                  "another output with -o"};
    std::error_code error;
    if (explicitPath.empty() && !force && std::filesystem::exists(path, error))
        throw CliInputError{path,
                            "exists and is kept; use --force to replace it, or -o to choose the output"};
    return path;
}
