// tessaphon-cli phonemes: a parameter document made by rule from a phoneme string (ARPAbet or
// /IPA/) or from English words.
#include "cli/CliFiles.h"
#include "cli/Commands.h"
#include "cli/OutputFiles.h"

#include "document/MyDocument.h"
#include "phonemes/PhonemeDocument.h"
#include "phonemes/PhonemeError.h"
#include "phonemes/english/TextPhonemes.h"

#include <cctype>
#include <iostream>
#include <optional>

namespace
{

struct PhonemesOptions {
    std::string phonemes;
    std::string text;
    std::string output;
    std::string table;
    RuleSettings settings;
    bool force = false;
    bool print = false;
};

// The default output: the input's letters, words joined by '-' ("a bad bed" -> a-bad-bed.stk).
std::string defaultName(const std::string& input)
{
    std::string name;
    for (char c : input) {
        if (std::isalnum(static_cast<unsigned char>(c)))
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        else if (!name.empty() && name.back() != '-')
            name += '-';
        if (name.size() >= 40)
            break;
    }
    while (!name.empty() && name.back() == '-')
        name.pop_back();
    return (name.empty() ? std::string("phonemes") : name) + ".stk";
}

void commandPhonemes(PhonemesOptions& o)
{
    if (o.phonemes.empty() == o.text.empty())
        throw CLI::ValidationError("phonemes", "give either a phoneme string or --text WORDS");
    std::optional<PhonemeInventory> own;
    if (!o.table.empty())
        guardFile(o.table, [&] {
            try {
                own = PhonemeInventory::readFile(o.table);
            } catch (const PhonemeError& e) {
                // The message is "FILE:LINE: what"; the line goes with the file's name.
                const std::string what = e.what();
                const std::size_t colon = what.find(": ", o.table.size());
                if (!what.starts_with(o.table) || colon == std::string::npos)
                    throw CliInputError{o.table, what};
                throw CliInputError{what.substr(0, colon), what.substr(colon + 2)};
            }
        });
    const PhonemeInventory& inventory = own ? *own : PhonemeInventory::americanEnglish();

    TextPhonemes input;
    RuleFrames frames;
    try {
        input = o.text.empty() ? TextPhonemes::read(o.phonemes, inventory)
                               : TextPhonemes::readWords(o.text, inventory);
        frames = PhonemeRules::frames(input.tokens, inventory, o.settings);
    } catch (const PhonemeError& e) {
        throw CLI::ValidationError(o.text.empty() ? "phonemes" : "--text", e.what());
    }
    const std::string input0 = o.text.empty() ? o.phonemes : o.text;
    const std::string output =
        chooseOutput(o.output, defaultName(input0), o.force,
                     o.table.empty() ? std::vector<std::string>{} : std::vector<std::string>{o.table});
    guardFile(output, [&] {
        const auto document = PhonemeDocument::make(frames, o.settings.sampleRate);
        writeWholeFile(output, document->Save_STK_FileType50(document->m_bSaveAll != 0));
    });
    if (o.print)
        std::cout << "phonemes: " << frames.phonemes << "\n";
}

} // namespace

void addPhonemesCommand(CLI::App& app)
{
    auto o = std::make_shared<PhonemesOptions>();
    CLI::App* command = app.add_subcommand(
        "phonemes", "Make a parameter document by rule from phonemes (ARPAbet or /IPA/) or English words");
    command->add_option("phonemes", o->phonemes,
                        "Phonemes: ARPAbet with stress digits (\"B AE1 D\", \"|\" between words) or IPA "
                        "between slashes (\"/bæd/\")");
    command->add_option("--text", o->text, "English words instead of phonemes (\"a bad bed\")");
    command->add_option("-o,--output", o->output,
                        "Document to write, replacing it (default: from the input)");
    command->add_option("--rate", o->settings.sampleRate, "Sample rate of the document: 11025 or 22050")
        ->check(CLI::IsMember({11025, 22050}))
        ->capture_default_str();
    command->add_option("--f0", o->settings.f0Hz, "f0 at the start, Hz")
        ->check(CLI::Range(50.0, 500.0))
        ->capture_default_str();
    command->add_option("--speed", o->settings.speed, "Speaking-rate factor: 2 is twice as fast")
        ->check(CLI::Range(0.25, 4.0))
        ->capture_default_str();
    command->add_option("--table", o->table,
                        "Phoneme table (TSV) replacing the built-in American English one");
    command->add_flag("--force", o->force, "Replace the default output when it exists");
    command->add_flag("--print-phonemes", o->print,
                      "Print the phonemes the input became (\"phonemes: ...\")");
    command->callback([o] { commandPhonemes(*o); });
}
