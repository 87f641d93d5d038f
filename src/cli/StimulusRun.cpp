#include "cli/StimulusRun.h"

#include "cli/ProgressBar.h"
#include "cli/TaskRunner.h"

#include "document/CountedText.h"
#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "stimulus/PendingStimuli.h"

#include <cmath>
#include <iostream>
#include <new>
#include <sys/mman.h>

namespace
{

void addValueOption(CLI::App* command, const std::shared_ptr<StimulusOutput>& output, const std::string& name,
                    const std::string& help)
{
    command->add_option_function<std::string>(
        "--" + name,
        [output, name](const std::string& value) {
            std::string error;
            if (!output->set(name, value, &error))
                throw CLI::ValidationError("--" + name, error);
        },
        help);
}

// A stimulus library failure names its file already: it becomes the command's one line as is.
template <typename Body> auto namingFile(const std::string& path, Body body)
{
    try {
        return body();
    } catch (const DocumentException& error) {
        if (error.name() == path)
            throw CliInputError{path, error.reason()};
        throw CliInputError{path, error.name() + ": " + error.reason()};
    }
}

Stimulus prepareDocument(const MyDocument& document, const StimulusOutput& output)
{
    const Channels& c = *document.getChannel(0);
    return Stimulus::prepare(c.samples(), c.sampleCount(), static_cast<int>(c.m_dSampleRate), output);
}

// One entry per task in memory shared with the worker processes, which fill their own.
struct SharedEntry {
    StimulusFigures figures;
    StimulusLevels levels;
};

class SharedEntries
{
public:
    explicit SharedEntries(std::size_t count)
        : m_nBytes(std::max<std::size_t>(1, count) * sizeof(SharedEntry))
    {
        void* p = ::mmap(nullptr, m_nBytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (p == MAP_FAILED)
            throw std::bad_alloc();
        m_pEntries = static_cast<SharedEntry*>(p);
        for (std::size_t i = 0; i < count; ++i)
            new (m_pEntries + i) SharedEntry();
    }
    ~SharedEntries() { ::munmap(m_pEntries, m_nBytes); }
    SharedEntries(const SharedEntries&) = delete;
    SharedEntries& operator=(const SharedEntries&) = delete;
    SharedEntry& operator[](std::size_t i) const { return m_pEntries[i]; }

private:
    std::size_t m_nBytes;
    SharedEntry* m_pEntries = nullptr;
};

// The gain all files share, after making sure it clips none of them (unless allowed).
double sharedGain(const StimulusTasks& tasks, const SharedEntries& entries, const StimulusOutput& output)
{
    std::vector<double> own;
    for (std::size_t i = 0; i < tasks.count; ++i)
        own.push_back(levelGainDb(output, entries[i].levels));
    const double gain = commonGainDb(own);
    std::size_t clipping = 0;
    for (std::size_t i = 0; i < tasks.count && !output.allowClip; ++i)
        if (output.level != StimulusOutput::Level::Unchanged &&
            gainClips(entries[i].levels, gain, output.bits)) {
            std::cerr << cliErrorLine({tasks.audioPath(i), clipRefusal(output, entries[i].levels, gain) +
                                                               " (one gain for all files)"})
                      << "\n";
            ++clipping;
        }
    if (clipping > 0)
        throw CliFailuresReported{};
    return gain;
}

std::vector<StimulusFigures> collect(const StimulusTasks& tasks, const SharedEntries& entries,
                                     std::size_t failed)
{
    if (failed > 0)
        throw CliFailuresReported{};
    std::vector<StimulusFigures> figures;
    for (std::size_t i = 0; i < tasks.count; ++i)
        figures.push_back(entries[i].figures);
    return figures;
}

} // namespace

void addStimulusOptions(CLI::App* command, const std::shared_ptr<StimulusOutput>& output)
{
    addValueOption(command, output, "rate",
                   "Output rate in Hz, 8000 to 192000 (default: the synthesis rate)");
    addValueOption(command, output, "normalize", "Level of each file: rms:DB or peak:DB, dB re full scale");
    command->add_flag_callback(
        "--same-gain", [output] { output->set("same-gain", "", nullptr); },
        "One gain for all files, set by the loudest, so that their relative levels are kept");
    command->add_flag_callback(
        "--allow-clip", [output] { output->set("allow-clip", "", nullptr); },
        "Write a gain that clips (limited to full scale) instead of refusing it");
    addValueOption(command, output, "ramp", "Raised-cosine onset and offset ramps of MS ms each");
    addValueOption(command, output, "pad", "Silence before and after: MS or BEFORE,AFTER in ms");
    addValueOption(command, output, "bits", "Sample width: 16 or 24 (default 16)");
    addValueOption(command, output, "format", "File format: wav or flac (default wav)");
}

StimulusFigures writeDocumentAudio(MyDocument& document, const std::string& path,
                                   const StimulusOutput& output)
{
    if (output.plain()) {
        // The document's own writer, piece by piece, exactly as synthesis has always been saved.
        writeWholeFile(path, [&document](const PieceWriter& write) { return document.writeWave(0, write); });
        // The file is written all the same: the samples beyond full scale were limited, and a
        // silent file is what the table asks for.
        if (const std::string warning = document.synthesisWarning(); !warning.empty())
            cliWarning(path, warning);
        const Channels& c = *document.getChannel(0);
        return plainFigures(c.samples(), c.sampleCount(), static_cast<int>(c.m_dSampleRate));
    }
    const StimulusFigures figures = namingFile(path, [&] {
        const Channels& c = *document.getChannel(0);
        return saveStimulus(path, c.samples(), c.sampleCount(), static_cast<int>(c.m_dSampleRate), output);
    });
    if (document.isSilent())
        cliWarning(path, document.synthesisWarning());
    if (figures.clipped > 0)
        cliWarning(path, countedText(figures.clipped, "sample", "samples") + " clipped at full scale");
    return figures;
}

std::vector<StimulusFigures> writeStimuli(const StimulusTasks& tasks, const StimulusOutput& output)
{
    const SharedEntries entries(tasks.count);
    // The filters are designed here once, not in every worker: the two rates synthesis runs at.
    if (output.rate != 0)
        for (const int synthesisRate : {11025, 22050})
            namingFile(tasks.file(0), [&] { prepareResampler(synthesisRate, output.rate); });
    if (!output.sameGain || output.level == StimulusOutput::Level::Unchanged) {
        const std::size_t failed =
            runTasks(tasks.count, tasks.jobs, tasks.label, tasks.file, [&](std::size_t i) {
                const std::unique_ptr<MyDocument> document = tasks.synthesize(i);
                entries[i].figures = writeDocumentAudio(*document, tasks.audioPath(i), output);
            });
        return collect(tasks, entries, failed);
    }
    // First pass: prepare and measure every file; the prepared samples wait in `pending`.
    const PendingStimuli pending;
    std::size_t failed = runTasks(tasks.count, tasks.jobs, tasks.label, tasks.file, [&](std::size_t i) {
        const std::unique_ptr<MyDocument> document = tasks.synthesize(i);
        const Stimulus stimulus =
            namingFile(tasks.audioPath(i), [&] { return prepareDocument(*document, output); });
        entries[i].levels = stimulus.levels();
        pending.keep(i, stimulus);
    });
    if (failed > 0)
        throw CliFailuresReported{};
    const double gain = sharedGain(tasks, entries, output);
    // Second pass: the writes, with the one gain, here: quantizing and writing take less than
    // starting a process for each file would.
    ProgressBar bar(tasks.label + " (writing)", tasks.count);
    for (std::size_t i = 0; i < tasks.count; ++i) {
        try {
            guardFile(tasks.audioPath(i), [&] {
                entries[i].figures = namingFile(tasks.audioPath(i), [&] {
                    return writeStimulus(tasks.audioPath(i), pending.take(i), gain, output);
                });
            });
            if (entries[i].figures.clipped > 0)
                bar.print(
                    cliErrorLine({tasks.audioPath(i),
                                  "warning: " + countedText(entries[i].figures.clipped, "sample", "samples") +
                                      " clipped at full scale"}) +
                    "\n");
        } catch (const CliInputError& error) {
            bar.print(cliErrorLine(error) + "\n");
            ++failed;
        }
        bar.advance();
    }
    return collect(tasks, entries, failed);
}
