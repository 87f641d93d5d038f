#pragma once
// The analysis options of a tessaphon-cli command: each one given on the command line replaces
// one of the document's analysis settings after the factory values for the recording's rate
// were set; an option not given leaves the factory value. Added by the command's set-up, read
// by its callback, on the main thread.
#include "document/MyDocument.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class AnalysisOverrides
{
public:
    // What an option given does to the document (the recording's rate at hand).
    using Apply = std::function<void(MyDocument&, double sampleRate)>;

    // An option whose value goes into the document's `field` (its own or one of the analysis
    // settings it derives from).
    template <typename Field, typename Owner>
    CLI::Option* add(CLI::App* command, const std::string& name, const std::string& help, Field Owner::*field)
    {
        return add<Field>(command, name, help,
                          [field](MyDocument& d, double, Field value) { d.*field = value; });
    }

    // An option with its own way of applying the value given. The value lives as long as this
    // object: CLI11 writes it while parsing, applyTo reads it.
    template <typename T>
    CLI::Option* add(CLI::App* command, const std::string& name, const std::string& help,
                     std::function<void(MyDocument&, double sampleRate, T value)> apply)
    {
        auto value = std::make_shared<T>();
        CLI::Option* option = command->add_option(name, *value, help);
        m_options.emplace_back(option, [value, apply = std::move(apply)](MyDocument& d, double sampleRate) {
            apply(d, sampleRate, *value);
        });
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
