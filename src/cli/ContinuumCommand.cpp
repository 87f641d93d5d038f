// tessaphon-cli continuum: the steps between two parameter documents, each with its WAVE file,
// and a manifest, in a folder of their own.
#include "cli/CliFiles.h"
#include "cli/Commands.h"
#include "cli/OutputFiles.h"
#include "cli/StimulusRun.h"
#include "cli/TaskRunner.h"

#include "continuum/Continuum.h"
#include "continuum/ContinuumWriter.h"
#include "document/MyDocument.h"

#include <filesystem>

namespace
{

struct ContinuumOptions {
    std::string a, b;
    ContinuumSettings settings;
    std::string scale = "hz";
    std::vector<std::string> rows;
    std::string folder;
    bool noWave = false;
    bool force = false;
    unsigned jobs = 0;
    std::shared_ptr<StimulusOutput> stimulus = std::make_shared<StimulusOutput>();
};

// Parameter rows by name (as the documents name them: f0, av, ..., gain).
std::vector<int> rowsNamed(const std::vector<std::string>& names)
{
    std::vector<int> rows;
    for (const std::string& name : names) {
        int found = -1;
        for (int row = 0; row < kParameterCount; ++row)
            if (name == kFactoryParameters[row].name)
                found = row;
        if (found < 0)
            throw CLI::ValidationError("--rows", "no parameter named \"" + name + "\"");
        rows.push_back(found);
    }
    return rows;
}

std::string describe(const std::string& path, const MyDocument& document)
{
    const Channels& c = *document.getChannel(0);
    return path + " (" + std::to_string(c.m_nColumnNum) + " frames of " +
           std::to_string(c.m_nUpdateIntervalMS) + " ms)";
}

// Each step's document and 16-bit WAVE file as the document saves them, and the manifest
// without figures.
void writePlainSteps(const ContinuumWriter& writer, unsigned jobs)
{
    const std::size_t failed = runTasks(
        static_cast<std::size_t>(writer.steps()), jobs, "continuum",
        [&](std::size_t i) { return writer.documentPath(static_cast<int>(i) + 1); },
        [&](std::size_t i) { writer.writeStep(static_cast<int>(i) + 1); });
    if (failed > 0)
        throw CliFailuresReported{};
    guardFile(writer.manifestPath(), [&] { writer.writeManifest(); });
}

void commandContinuum(ContinuumOptions& o)
{
    FrequencyScale::Kind scale;
    if (!FrequencyScale::parse(o.scale, scale))
        throw CLI::ValidationError("--scale", "\"" + o.scale + "\" is not one of hz, bark, erb, mel");
    o.settings.scale = scale;
    o.settings.rows = rowsNamed(o.rows);

    std::unique_ptr<MyDocument> a, b;
    guardFile(o.a, [&] { a = openDocument(o.a); });
    guardFile(o.b, [&] { b = openDocument(o.b); });
    if (!Continuum::compatible(*a, *b))
        throw CliInputError{describe(o.a, *a) + " and " + describe(o.b, *b),
                            "a continuum needs the same number of frames and the same interval"};
    std::unique_ptr<Continuum> continuum;
    guardFile(o.a, [&] { continuum = std::make_unique<Continuum>(*a, *b, o.settings); });
    a.reset();
    b.reset();

    namespace fs = std::filesystem;
    const std::string stem = fs::path(o.a).stem().string();
    const std::string folder =
        o.folder.empty() ? (fs::path(o.a).parent_path() / (stem + "-continuum")).string() : o.folder;
    ContinuumWriter writer(*continuum, folder, stem, !o.noWave);
    writer.setAudioExtension(o.stimulus->extension());
    // The checks come before anything is written: a refused output leaves the folder as it was.
    for (const std::string& output : writer.outputs())
        chooseOutput(o.folder.empty() ? "" : output, output, o.force, {o.a, o.b});
    std::error_code error;
    fs::create_directories(folder, error);
    if (error || !fs::is_directory(folder))
        throw CliInputError{folder, "cannot make the folder: " + error.message()};

    if (o.stimulus->plain() || o.noWave) {
        writePlainSteps(writer, o.jobs);
        return;
    }
    StimulusTasks tasks;
    tasks.count = static_cast<std::size_t>(continuum->steps());
    tasks.jobs = o.jobs;
    tasks.label = "continuum";
    tasks.file = [&](std::size_t i) { return writer.documentPath(static_cast<int>(i) + 1); };
    tasks.audioPath = [&](std::size_t i) { return writer.wavePath(static_cast<int>(i) + 1); };
    tasks.synthesize = [&](std::size_t i) { return writer.writeStepDocument(static_cast<int>(i) + 1); };
    const std::vector<StimulusFigures> figures = writeStimuli(tasks, *o.stimulus);
    guardFile(writer.manifestPath(), [&] { writer.writeManifest(&figures); });
}

} // namespace

void addContinuumCommand(CLI::App& app)
{
    auto o = std::make_shared<ContinuumOptions>();
    CLI::App* command = app.add_subcommand(
        "continuum", "Make the steps of a continuum between two documents, with WAVE files and a manifest");
    command->add_option("a", o->a, "First document (.stk): step 1")->required();
    command->add_option("b", o->b, "Last document (.stk): step N")->required();
    command->add_option("--steps", o->settings.steps, "Number of steps N, both documents included")
        ->required()
        ->check(CLI::Range(2, Continuum::kMaxSteps));
    command->add_option("--scale", o->scale, "Scale of the frequency rows: hz, bark, erb or mel")
        ->capture_default_str();
    command
        ->add_option("--rows", o->rows, "Rows to interpolate, e.g. f1,f2 (default: every row that differs)")
        ->delimiter(',');
    command->add_option("-o,--output,--out-dir", o->folder,
                        "Folder to write, made when missing, replacing its files (default: A-continuum)");
    command->add_flag("--no-wav", o->noWave, "Write the documents only");
    command->add_flag("--force", o->force, "Replace files of the default folder that already exist");
    command->add_option("-j,--jobs", o->jobs, "Steps made at once (default: one per core)")
        ->check(CLI::Range(1, 256));
    addStimulusOptions(command, o->stimulus);
    command->callback([o] { commandContinuum(*o); });
}
