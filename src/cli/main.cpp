// tessaphon-cli: the headless side of Tessaphon (documents, synthesis, analysis).
#include "cli/CliErrors.h"
#include "cli/Commands.h"
#include "document/DocumentException.h"

#include <iostream>
#include <new>

namespace
{

// A failure no command turned into a message still ends as one line naming the file in hand.
int reportUncaught(const std::string& what)
{
    const std::string& file = fileInHand();
    std::cerr << "tessaphon-cli: " << (file.empty() ? std::string() : file + ": ") << what << "\n";
    return ExitBadInput;
}

} // namespace

int main(int argc, char** argv)
{
    // Diagnostics of the core go to standard error, and only with --verbose.
    setCliVerbose(false);

    CLI::App app{"tessaphon-cli: Klatt synthesis documents, WAVE files and their analysis"};
    app.name("tessaphon-cli");
    app.require_subcommand(1, 1);
    app.fallthrough(); // --verbose may follow the command's own options
    // The flag's callback runs before the command's, so the command's diagnostics are shown.
    app.add_flag_callback(
        "-v,--verbose", [] { setCliVerbose(true); },
        "Show the synthesizer's and the analysis's diagnostic lines");
    addDocumentCommands(app);
    addAnalysisCommands(app);
    addSliceCommands(app);
    addContinuumCommand(app);
    addInterchangeCommands(app);
    addCopySynthCommand(app);
    addPhonemesCommand(app);

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
        std::cerr << cliErrorLine(e) << "\n";
        return ExitBadInput;
    } catch (const CliFailuresReported&) {
        return ExitBadInput;
    } catch (const std::bad_alloc&) {
        return reportUncaught("not enough memory");
    } catch (const DocumentException& e) {
        return reportUncaught(e.name() + ": " + e.reason());
    }
    return ExitOk;
}
