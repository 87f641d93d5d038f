#include "cli/LabelOptions.h"

#include "cli/CliFiles.h"
#include "labels/TextGridReader.h"

void LabelOptions::add(CLI::App* command)
{
    command->add_option("--labels", file, "TextGrid whose segments to show (long or short text layout)");
    command->add_option("--tier", tiers, "Tier of the TextGrid to show, by name (default: every tier)")
        ->needs("--labels");
}

TextGrid LabelOptions::load() const
{
    const FileBytes bytes = readWholeFile(file);
    TextGrid grid;
    TextGridError error;
    if (!readTextGrid(bytes.view(), grid, error))
        throw CliInputError{file, error.where()};
    for (const std::string& name : tiers) {
        bool found = false;
        for (const LabelTier& tier : grid.tiers)
            found = found || tier.name == name;
        if (!found)
            throw CLI::ValidationError("--tier", file + " has no tier named \"" + name + "\"");
    }
    return grid;
}

LabelStrip LabelOptions::strip(const TextGrid& grid) const
{
    std::vector<std::size_t> chosen;
    for (std::size_t t = 0; t < grid.tiers.size(); ++t) {
        bool wanted = tiers.empty();
        for (const std::string& name : tiers)
            wanted = wanted || grid.tiers[t].name == name;
        if (wanted)
            chosen.push_back(t);
    }
    return LabelStrip(grid, chosen);
}
