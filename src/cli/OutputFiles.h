#pragma once
// The overwrite guard of tessaphon-cli's commands: never a file the command reads; a default
// output that exists is kept unless --force; an explicit -o replaces. Any thread.
#include "document/FileIdentity.h"

#include <string>
#include <vector>

// The output a command writes to: `explicitPath` (-o) when given, which may replace an existing
// file; otherwise `defaultPath`, which must not exist unless `force`. Neither may be one of the
// command's inputs. Throws CliInputError naming the refused output.
std::string chooseOutput(const std::string& explicitPath, const std::string& defaultPath, bool force,
                         const std::vector<std::string>& inputs);
std::string chooseOutput(const std::string& explicitPath, const std::string& defaultPath, bool force,
                         const FileSet& inputs);
