#pragma once
// The command groups of tessaphon-cli, each registering its subcommands on the application
// (see main.cpp). A new command goes into the group it belongs to, or a new group here.
#include <CLI/CLI.hpp>

void addDocumentCommands(CLI::App& app);
void addAnalysisCommands(CLI::App& app);
void addSliceCommands(CLI::App& app);
void addContinuumCommand(CLI::App& app);
void addInterchangeCommands(CLI::App& app);
void addPhonemesCommand(CLI::App& app);
void addCopySynthCommand(CLI::App& app);
