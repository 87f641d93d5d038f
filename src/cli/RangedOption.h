#pragma once
// An option whose default the help shows and whose value must lie in [low, high] (CLI11's
// range check: a value outside is a usage error naming the option).
#include <CLI/CLI.hpp>

#include <string>

template <class T, class Bound>
CLI::Option* addRangedOption(CLI::App* command, const std::string& name, T& value, const std::string& help,
                             Bound low, Bound high)
{
    return command->add_option(name, value, help)->capture_default_str()->check(CLI::Range(low, high));
}
