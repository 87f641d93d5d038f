// tessaphon-cli's document commands: new, synth (one document or a batch), info.
#include "cli/CliSupport.h"

#include "document/MyDocument.h"
#include "document/WaveFormat.h"

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <unordered_map>
#include <vector>

namespace
{

// The longest utterance the tool makes: one hour.
constexpr double kMaxLengthMS = 3600.0 * 1000.0;

void commandNew(double lengthMS, int intervalMS, const std::string& output)
{
    MyDocument document;
    for (int ch = 0; ch < 3; ++ch) {
        Channels* c = document.getChannel(ch);
        c->m_dLengthMS = lengthMS;
        c->m_nUpdateIntervalMS = intervalMS;
        c->m_nColumnNum = static_cast<int>(lengthMS / intervalMS);
    }
    document.SetUpDataGridMemory();
    document.buildDataTableDictionary();
    writeWholeFile(output, document.Save_STK_FileType50(document.m_bSaveAll != 0));
}

void synthesizeDocument(const std::string& input, const std::string& output)
{
    // The table data is not built: synthesis reads the values it would hold from the grid.
    auto document = openDocument(input, TableData::Skip);
    document->Synthesize();
    // The WAVE image goes to the file piece by piece, never held whole.
    writeWholeFile(output, [&document](const PieceWriter& write) { return document->writeWave(0, write); });
    // The file is written all the same: the samples beyond full scale were limited, and a
    // silent file is what the table asks for.
    if (const std::string warning = document->synthesisWarning(); !warning.empty())
        cliWarning(output, warning);
}

struct SynthOptions {
    std::vector<std::string> inputs;
    std::string output;
    std::string outDir;
    bool force = false;
    unsigned jobs = 0;
};

// The WAVE file of each input: beside it, or in --out-dir under the input's name.
std::vector<std::string> batchOutputs(const SynthOptions& o)
{
    std::vector<std::string> outputs;
    for (const std::string& input : o.inputs) {
        std::string wave = withExtension(input, ".wav");
        if (!o.outDir.empty())
            wave = (std::filesystem::path(o.outDir) / std::filesystem::path(wave).filename()).string();
        outputs.push_back(wave);
    }
    return outputs;
}

void commandSynth(const SynthOptions& o)
{
    if (o.inputs.size() == 1 && o.outDir.empty()) {
        const std::string& input = o.inputs.front();
        const std::string output = chooseOutput(o.output, withExtension(input, ".wav"), o.force, o.inputs);
        guardFile(input, [&] { synthesizeDocument(input, output); });
        return;
    }
    if (!o.output.empty())
        throw CLI::ValidationError("-o", "one output file for several documents; use --out-dir");
    if (!o.outDir.empty() && !std::filesystem::is_directory(o.outDir))
        throw CliInputError{o.outDir, "no such folder"};
    const std::vector<std::string> outputs = batchOutputs(o);
    // Every file is named once here, before the documents are shared out: checking each output
    // against every input and every earlier output stays linear in the number of documents.
    const FileSet inputs(o.inputs);
    std::vector<std::size_t> firstWithOutput(outputs.size());
    std::unordered_map<std::string, std::size_t> outputOwner;
    for (std::size_t i = 0; i < outputs.size(); ++i)
        firstWithOutput[i] = outputOwner.emplace(fileIdentity(outputs[i]), i).first->second;
    const std::size_t failed = runTasks(
        o.inputs.size(), o.jobs, "synth", [&](std::size_t i) { return o.inputs[i]; },
        [&](std::size_t i) {
            if (const std::size_t k = firstWithOutput[i]; k != i)
                throw CliInputError{outputs[i],
                                    "is also the output of " + o.inputs[k] + "; not written twice"};
            synthesizeDocument(o.inputs[i], chooseOutput("", outputs[i], o.force, inputs));
        });
    if (failed > 0)
        throw CliFailuresReported{};
}

void printDocumentInfo(MyDocument& document)
{
    Channels* c = document.getChannel(0);
    std::cout << "type: stk\n"
              << "length_ms: " << static_cast<long long>(c->m_dLengthMS) << "\n"
              << "interval_ms: " << c->m_nUpdateIntervalMS << "\n"
              << "frames: " << c->m_nColumnNum << "\n"
              << "frames_in_file: " << document.framesInFile() << "\n"
              << "sample_rate: " << static_cast<long long>(c->m_dSampleRate) << "\n"
              << "cascade: " << int(c->m_bCascade_Parallel) << "\n"
              << "anchors: " << c->m_nNumberofAnchors << "\n"
              << "clamped_values: " << document.m_nClampedValues << "\n"
              << "selected:";
    for (int row = 0; row < kParameterCount; ++row)
        if (c->m_Parameters[row].bSelected)
            std::cout << " " << c->m_Parameters[row].strName;
    std::cout << "\n";
}

void commandInfo(const std::string& path)
{
    const FileBytes bytes = readWholeFile(path);
    WaveFormat format;
    if (parseWaveFormat(bytes.view(), format)) {
        // Read it the way the workbench opens it, so that a file it refuses is refused here too.
        auto document = openDocumentBytes(path, bytes.view(), TableData::Skip);
        const Channels* model = document->getChannel(2);
        std::cout << "type: wave\n"
                  << "format: " << format.formatCode << "\n"
                  << "channels: " << format.channels << "\n"
                  << "bits: " << format.bitsPerSample << "\n"
                  << "sample_rate: " << format.sampleRate << "\n"
                  << "samples: " << static_cast<long long>(model->m_dwFileLength) << "\n"
                  << "length_ms: " << model->m_dLengthMS << "\n";
        return;
    }
    auto document = openDocumentBytes(path, bytes.view(), TableData::Skip);
    printDocumentInfo(*document);
}

} // namespace

void addDocumentCommands(CLI::App& app)
{
    auto* make = app.add_subcommand("new", "Make a new document with factory values and save it");
    auto length = std::make_shared<double>(200.0);
    auto interval = std::make_shared<int>(10);
    auto output = std::make_shared<std::string>();
    make->add_option("--length", *length, "Utterance length in ms")->check(CLI::Range(1.0, kMaxLengthMS));
    make->add_option("--interval", *interval, "Update interval (frame length) in ms")
        ->check(CLI::Range(1, 1000));
    make->add_option("-o,--output", *output, "Parameter document to write (.stk)")->required();
    make->callback([=] { guardFile(*output, [=] { commandNew(*length, *interval, *output); }); });

    auto* synth = app.add_subcommand("synth", "Synthesize parameter documents into 16-bit WAVE files");
    auto so = std::make_shared<SynthOptions>();
    synth->add_option("input", so->inputs, "Parameter documents (.stk)")->required();
    synth->add_option("-o,--output", so->output, "WAVE file to write, replacing it (one document only)");
    synth->add_option("--out-dir", so->outDir, "Folder for the WAVE files (default: beside each document)");
    synth->add_flag("--force", so->force, "Replace WAVE files that already exist");
    synth->add_option("-j,--jobs", so->jobs, "Documents synthesized at once (default: one per core)")
        ->check(CLI::Range(1, 256));
    synth->callback([so] { commandSynth(*so); });

    auto* info = app.add_subcommand("info", "Describe a parameter document or a WAVE file");
    auto file = std::make_shared<std::string>();
    info->add_option("file", *file, "Parameter document or WAVE file")->required();
    info->callback([=] { commandInfo(*file); });
}
