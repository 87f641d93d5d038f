// tessaphon-cli's document commands: new, synth, info.
#include "cli/CliSupport.h"

#include "document/MyDocument.h"
#include "document/WaveFormat.h"

#include <cstdio>
#include <filesystem>
#include <iostream>

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
    std::string error;
    if (!document.writeSafelyToURL(output, "stk", &error))
        throw CliInputError{output, error};
}

std::string withExtension(const std::string& path, const char* extension)
{
    return std::filesystem::path(path).replace_extension(extension).string();
}

void commandSynth(const std::string& input, std::string output)
{
    auto document = openDocument(input);
    if (output.empty())
        output = withExtension(input, ".wav");
    document->Synthesize();
    writeWholeFile(output, document->save_Wave_FileType());
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
              << "selected:";
    for (int row = 0; row < kParameterCount; ++row)
        if (c->m_Parameters[row].bSelected)
            std::cout << " " << c->m_Parameters[row].strName;
    std::cout << "\n";
}

void commandInfo(const std::string& path)
{
    const std::string bytes = readWholeFile(path);
    WaveFormat format;
    if (parseWaveFormat(bytes, format)) {
        // Read it the way the workbench opens it, so that a file it refuses is refused here too.
        auto document = openDocument(path);
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
    auto document = openDocument(path);
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
    make->callback([=] { commandNew(*length, *interval, *output); });

    auto* synth = app.add_subcommand("synth", "Synthesize a parameter document into a 16-bit WAVE file");
    auto input = std::make_shared<std::string>();
    auto wave = std::make_shared<std::string>();
    synth->add_option("input", *input, "Parameter document (.stk)")->required();
    synth->add_option("-o,--output", *wave, "WAVE file to write (default: the input with .wav)");
    synth->callback([=] { commandSynth(*input, *wave); });

    auto* info = app.add_subcommand("info", "Describe a parameter document or a WAVE file");
    auto file = std::make_shared<std::string>();
    info->add_option("file", *file, "Parameter document or WAVE file")->required();
    info->callback([=] { commandInfo(*file); });
}
