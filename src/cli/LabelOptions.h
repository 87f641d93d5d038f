#pragma once
// --labels FILE and --tier NAME, the TextGrid options of the picture commands: which file's
// segments to draw or name, and which of its tiers (all, when none is named).
#include "labels/LabelStrip.h"
#include "labels/TextGrid.h"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

struct LabelOptions {
    std::string file;
    std::vector<std::string> tiers;

    void add(CLI::App* command);
    bool given() const { return !file.empty(); }
    // The TextGrid of --labels; throws CliInputError naming the file and the line for one that
    // cannot be read, CLI::ValidationError for a --tier it does not hold.
    TextGrid load() const;
    // The strip of the chosen tiers of `grid`.
    LabelStrip strip(const TextGrid& grid) const;
};
