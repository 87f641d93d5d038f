#pragma once
// The analysis options of a tessaphon-cli command: each one given on the command line replaces
// one of the document's analysis settings after the factory values for the recording's rate
// were set; an option not given leaves the factory value. Added by the command's set-up, read
// by its callback, on the main thread.
#include "document/MyDocument.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <utility>
#include <vector>

class AnalysisOverrides
{
public:
    // What an option given does to the document (the recording's rate at hand).
    using Apply = std::function<void(MyDocument&, double sampleRate)>;

    // An option whose value `value` goes into the document's `field` (its own or one of the
    // analysis settings it derives from).
    template <typename T, typename Field, typename Owner>
    CLI::Option* add(CLI::App* command, const std::string& name, T& value, const std::string& help,
                     Field Owner::*field)
    {
        return add(command, name, value, help,
                   [&value, field](MyDocument& d, double) { d.*field = static_cast<Field>(value); });
    }

    // An option with its own way of applying it.
    template <typename T>
    CLI::Option* add(CLI::App* command, const std::string& name, T& value, const std::string& help,
                     Apply apply)
    {
        CLI::Option* option = command->add_option(name, value, help);
        m_options.emplace_back(option, std::move(apply));
        return option;
    }

    // The factory analysis settings for `sampleRate`, then every option given, in the order added.
    void applyTo(MyDocument& document, double sampleRate) const
    {
        document.setAnalysisDefaults(sampleRate);
        for (const auto& [option, apply] : m_options)
            if (option->count() > 0)
                apply(document, sampleRate);
    }

private:
    std::vector<std::pair<CLI::Option*, Apply>> m_options;
};
