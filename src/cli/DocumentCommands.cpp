// tessaphon-cli's document commands: new, synth (one document or a batch), info.
#include "cli/CliFiles.h"
#include "cli/Commands.h"
#include "cli/OutputFiles.h"
#include "cli/StimulusRun.h"
#include "cli/TaskRunner.h"

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

std::unique_ptr<MyDocument> synthesizeDocument(const std::string& input)
{
    // The table data is not built: synthesis reads the values it would hold from the grid.
    auto document = openDocument(input, TableData::Skip);
    document->Synthesize();
    return document;
}

struct SynthOptions {
    std::vector<std::string> inputs;
    std::string output;
    std::string outDir;
    std::string manifest;
    bool force = false;
    unsigned jobs = 0;
    std::shared_ptr<StimulusOutput> stimulus = std::make_shared<StimulusOutput>();
};

// The audio file of each input: beside it, or in --out-dir under the input's name.
std::vector<std::string> batchOutputs(const SynthOptions& o)
{
    std::vector<std::string> outputs;
    for (const std::string& input : o.inputs) {
        std::string wave = withExtension(input, o.stimulus->extension());
        if (!o.outDir.empty())
            wave = (std::filesystem::path(o.outDir) / std::filesystem::path(wave).filename()).string();
        outputs.push_back(wave);
    }
    return outputs;
}

// The manifest of a batch: one line per document with its audio file's figures.
void writeBatchManifest(const SynthOptions& o, const std::vector<std::string>& outputs,
                        const std::vector<StimulusFigures>& figures)
{
    std::string text = std::string("document,name,") + StimulusFigures::csvHeader() + "\n";
    for (std::size_t i = 0; i < figures.size(); ++i)
        text += o.inputs[i] + "," + outputs[i] + "," + figures[i].csvFields() + "\n";
    writeWholeFile(o.manifest, text);
}

void makeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error || !std::filesystem::is_directory(folder))
        throw CliInputError{folder, "cannot make the folder: " + (error ? error.message() : "not a folder")};
}

void commandSynth(const SynthOptions& o)
{
    if (!o.manifest.empty())
        chooseOutput(o.manifest, o.manifest, true, o.inputs);
    if (o.inputs.size() == 1 && o.outDir.empty() && o.manifest.empty()) {
        const std::string& input = o.inputs.front();
        const std::string output =
            chooseOutput(o.output, withExtension(input, o.stimulus->extension()), o.force, o.inputs);
        guardFile(input, [&] { writeDocumentAudio(*synthesizeDocument(input), output, *o.stimulus); });
        return;
    }
    if (!o.output.empty())
        throw CLI::ValidationError("-o", "one output file for several documents; use --out-dir");
    if (!o.outDir.empty())
        makeFolder(o.outDir);
    const std::vector<std::string> outputs = batchOutputs(o);
    // Every file is named once here, before the documents are shared out: checking each output
    // against every input and every earlier output stays linear in the number of documents.
    const FileSet inputs(o.inputs);
    std::vector<std::size_t> firstWithOutput(outputs.size());
    std::unordered_map<std::string, std::size_t> outputOwner;
    for (std::size_t i = 0; i < outputs.size(); ++i)
        firstWithOutput[i] = outputOwner.emplace(fileIdentity(outputs[i]), i).first->second;
    StimulusTasks tasks;
    tasks.count = o.inputs.size();
    tasks.jobs = o.jobs;
    tasks.label = "synth";
    tasks.file = [&](std::size_t i) { return o.inputs[i]; };
    tasks.audioPath = [&](std::size_t i) { return outputs[i]; };
    tasks.synthesize = [&](std::size_t i) {
        if (const std::size_t k = firstWithOutput[i]; k != i)
            throw CliInputError{outputs[i], "is also the output of " + o.inputs[k] + "; not written twice"};
        chooseOutput("", outputs[i], o.force, inputs);
        return synthesizeDocument(o.inputs[i]);
    };
    const std::vector<StimulusFigures> figures = writeStimuli(tasks, *o.stimulus);
    if (!o.manifest.empty())
        writeBatchManifest(o, outputs, figures);
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

    auto* synth = app.add_subcommand("synth", "Synthesize parameter documents into WAVE or FLAC files");
    auto so = std::make_shared<SynthOptions>();
    synth->add_option("input", so->inputs, "Parameter documents (.stk)")->required();
    synth->add_option("-o,--output", so->output, "WAVE file to write, replacing it (one document only)");
    synth->add_option("--out-dir", so->outDir,
                      "Folder for the audio files, made when missing (default: beside each document)");
    synth->add_option("--manifest", so->manifest,
                      "CSV file to write with each file's duration, rate, levels, clipped samples and gain");
    synth->add_flag("--force", so->force, "Replace WAVE files that already exist");
    synth->add_option("-j,--jobs", so->jobs, "Documents synthesized at once (default: one per core)")
        ->check(CLI::Range(1, 256));
    addStimulusOptions(synth, so->stimulus);
    synth->callback([so] { commandSynth(*so); });

    auto* info = app.add_subcommand("info", "Describe a parameter document or a WAVE file");
    auto file = std::make_shared<std::string>();
    info->add_option("file", *file, "Parameter document or WAVE file")->required();
    info->callback([=] { commandInfo(*file); });
}
