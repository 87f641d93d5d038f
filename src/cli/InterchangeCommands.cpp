// tessaphon-cli's interchange commands: import (a .klp or .tsv file made into a parameter
// document) and export (a parameter document written as .klp or .tsv).
#include "cli/CliFiles.h"
#include "cli/Commands.h"
#include "cli/OutputFiles.h"

#include "document/MyDocument.h"
#include "interchange/Interchange.h"

#include <filesystem>
#include <iostream>

namespace
{

struct InterchangeOptions {
    std::string input;
    std::string output;
    std::string format;
    bool force = false;
};

void commandImport(const InterchangeOptions& o)
{
    const std::string output = chooseOutput(o.output, withExtension(o.input, ".stk"), o.force, {o.input});
    const FileBytes bytes = readWholeFile(o.input);
    ImportedDocument imported;
    try {
        imported = importDocument(bytes.view(), o.input);
    } catch (const InterchangeError& e) {
        throw CliInputError{o.input, e.where()};
    }
    for (const std::string& warning : imported.warnings)
        cliWarning(o.input, warning);
    MyDocument& document = *imported.document;
    writeWholeFile(output, document.Save_STK_FileType50(document.m_bSaveAll != 0));
}

// The format named by --format, else by the output's extension.
InterchangeFormat exportFormat(const InterchangeOptions& o)
{
    InterchangeFormat format = InterchangeFormat::Tsv;
    if (!o.format.empty()) {
        if (!interchangeFormatNamed(o.format, format))
            throw CLI::ValidationError("--format", "\"" + o.format + "\" is not one of klp, tsv");
        return format;
    }
    const std::string extension = std::filesystem::path(o.output).extension().string();
    if (o.output.empty() || o.output == "-" ||
        !interchangeFormatNamed(extension.substr(extension.empty() ? 0 : 1), format))
        throw CLI::ValidationError("--format", "say which format to write: --format klp or --format tsv");
    return format;
}

void commandExport(const InterchangeOptions& o)
{
    const InterchangeFormat format = exportFormat(o);
    // "-o -" writes to standard output, for scripts.
    const bool toStandardOutput = o.output == "-";
    const std::string output =
        toStandardOutput ? std::string()
                         : chooseOutput(o.output, withExtension(o.input, interchangeExtension(format)),
                                        o.force, {o.input});
    auto document = openDocument(o.input);
    const std::string text = exportDocument(*document, format);
    if (toStandardOutput)
        std::cout << text;
    else
        writeWholeFile(output, text);
}

} // namespace

void addInterchangeCommands(CLI::App& app)
{
    auto in = std::make_shared<InterchangeOptions>();
    CLI::App* import = app.add_subcommand(
        "import", "Make a parameter document from a .klp (varied parameters) or .tsv (frames) file");
    import->add_option("input", in->input, "File to import (.klp or .tsv; other names by content)")
        ->required();
    import->add_option("-o,--output", in->output,
                       "Parameter document to write, replacing it (default: INPUT.stk)");
    import->add_flag("--force", in->force, "Replace the default output when it exists");
    import->callback([in] { commandImport(*in);
});

auto out = std::make_shared<InterchangeOptions>();
CLI::App* exporting =
    app.add_subcommand("export", "Write a parameter document as .klp (varied parameters) or .tsv (frames)");
exporting->add_option("input", out->input, "Parameter document (.stk)")->required();
exporting->add_option("--format", out->format, "klp or tsv (default: by the output's extension)");
exporting->add_option("-o,--output", out->output,
                      "File to write, replacing it; - for standard output (default: INPUT.klp or INPUT.tsv)");
exporting->add_flag("--force", out->force, "Replace the default output when it exists");
exporting->callback([out] { commandExport(*out); });
}
