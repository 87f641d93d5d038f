// tessaphon-cli: the headless side of Tessaphon (documents, synthesis, analysis).
#include "cli/CliSupport.h"
#include "document/Log.h"

#include <cstdio>
#include <iostream>

int main(int argc, char** argv)
{
    // Diagnostics of the core go to standard error; standard output carries results only.
    Log::setSink([](const std::string& text) { std::fwrite(text.data(), 1, text.size(), stderr); });

    CLI::App app{"tessaphon-cli: Klatt synthesis documents, WAVE files and their analysis"};
    app.name("tessaphon-cli");
    app.require_subcommand(1, 1);
    addDocumentCommands(app);
    addAnalysisCommands(app);
    addSliceCommands(app);

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        app.exit(e);
        return ExitUsage;
    } catch (const CliInputError& e) {
        std::cerr << "tessaphon-cli: " << e.file << ": " << e.what << "\n";
        return ExitBadInput;
    }
    return ExitOk;
}
