#include "cli/CliSupport.h"

#include "display/AnalysisReports.h"
#include "document/AtomicFile.h"
#include "document/CountedText.h"
#include "document/DocumentException.h"
#include "document/Log.h"
#include "document/MyDocument.h"

#include <png.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <malloc.h>
#include <map>
#include <new>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

std::atomic<bool> g_verbose{false};
thread_local std::string t_fileInHand;

void takeInHand(const std::string& path)
{
    t_fileInHand = path;
}

} // namespace

std::string cliErrorLine(const CliInputError& error)
{
    return "tessaphon-cli: " + error.file + ": " + error.what;
}

void cliWarning(const std::string& file, const std::string& what)
{
    const std::string line = "tessaphon-cli: " + file + ": warning: " + what + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void setCliVerbose(bool verbose)
{
    g_verbose = verbose;
    // The sink decides at each line, so that the flag may be parsed after the sink is set.
    Log::setSink([](const std::string& text) {
        if (g_verbose)
            std::fwrite(text.data(), 1, text.size(), stderr);
    });
}

FileBytes readWholeFile(const std::string& path)
{
    takeInHand(path);
    FileBytes bytes;
    if (const int error = bytes.read(path); error != 0)
        throw CliInputError{path, error == EIO ? "read error" : std::strerror(error)};
    return bytes;
}

void writeWholeFile(const std::string& path, const std::string& bytes)
{
    takeInHand(path);
    if (const int error = writeFileAtomically(path, bytes); error != 0)
        throw CliInputError{path, std::string("cannot write: ") + std::strerror(error)};
}

void writeWholeFile(const std::string& path, const std::function<bool(const PieceWriter&)>& produce)
{
    takeInHand(path);
    if (const int error = writeFileAtomically(path, produce); error != 0)
        throw CliInputError{path, std::string("cannot write: ") + std::strerror(error)};
}

std::unique_ptr<MyDocument> openDocument(const std::string& path, TableData table)
{
    const FileBytes bytes = readWholeFile(path);
    return openDocumentBytes(path, bytes.view(), table);
}

std::unique_ptr<MyDocument> openDocumentBytes(const std::string& path, std::string_view bytes,
                                              TableData table)
{
    auto document = std::make_unique<MyDocument>();
    document->setFileURL(path);
    int errorCode = 0;
    if (!document->readFromBytes(bytes, "stk", &errorCode)) {
        const std::string& why = document->lastReadError();
        throw CliInputError{path, why.empty() ? "not a WAVE file or a parameter document" : why};
    }
    if (document->isTruncated())
        cliWarning(path,
                   "only " + std::to_string(document->framesInFile()) + " of " +
                       countedText(document->framesDeclared(), "declared frame is", "declared frames are") +
                       " present; the others hold default values");
    if (document->isWaveShort())
        cliWarning(path, "the sample data stops early: it holds " +
                             countedText(document->waveSamplesPresent(), "sample", "samples") + " of the " +
                             std::to_string(document->waveSamplesDeclared()) + " it declares");
    if (document->m_nClampedValues > 0)
        cliWarning(path, document->m_nClampedValues == 1
                             ? "1 value did not fit the grid and was clamped to its row's limits"
                             : std::to_string(document->m_nClampedValues) +
                                   " values did not fit the grid and were clamped to their rows' limits");
    if (table == TableData::Build)
        document->buildDataTableDictionary();
    return document;
}

const Channels& modelChannel(const MyDocument& document, const std::string& path)
{
    const Channels& model = *document.getChannel(2);
    if (!model.hasAudio())
        throw CliInputError{path, "a parameter document without a model utterance: nothing to analyse"};
    if (model.sampleCount() == 0)
        throw CliInputError{path, "the recording holds no samples"};
    if (!(model.m_dSampleRate >= 1.0) || !std::isfinite(model.m_dSampleRate))
        throw CliInputError{path, "the recording has no usable sample rate"};
    return model;
}

bool encodePng(const RgbImage& image, std::string& out)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        return false;
    }
    // libpng reports failures by a long jump back here; nothing with a destructor lives in this
    // function, and the output string belongs to the caller.
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(
        png, &out,
        [](png_structp p, png_bytep data, png_size_t length) {
            static_cast<std::string*>(png_get_io_ptr(p))->append(reinterpret_cast<const char*>(data), length);
        },
        nullptr);
    png_set_IHDR(png, info, image.width, image.height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = 0; y < image.height; ++y)
        png_write_row(png, &image.rgb[static_cast<std::size_t>(y) * image.width * 3]);
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

std::string fileIdentity(const std::string& path)
{
    namespace fs = std::filesystem;
    struct stat status {
    };
    if (::stat(path.c_str(), &status) == 0)
        return "inode " + std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
    std::error_code error;
    return "path " + fs::weakly_canonical(path, error).string();
}

bool sameFile(const std::string& a, const std::string& b)
{
    return fileIdentity(a) == fileIdentity(b);
}

FileSet::FileSet(const std::vector<std::string>& paths)
{
    for (const std::string& path : paths)
        m_identities.insert(fileIdentity(path));
}

bool FileSet::contains(const std::string& path) const
{
    return m_identities.count(fileIdentity(path)) != 0;
}

std::string chooseOutput(const std::string& explicitPath, const std::string& defaultPath, bool force,
                         const std::vector<std::string>& inputs)
{
    return chooseOutput(explicitPath, defaultPath, force, FileSet(inputs));
}

std::string chooseOutput(const std::string& explicitPath, const std::string& defaultPath, bool force,
                         const FileSet& inputs)
{
    const std::string& path = explicitPath.empty() ? defaultPath : explicitPath;
    if (inputs.contains(path))
        throw CliInputError{path, "is an input of this command and is never written over; choose "
                                  "another output with -o"};
    std::error_code error;
    if (explicitPath.empty() && !force && std::filesystem::exists(path, error))
        throw CliInputError{path,
                            "exists and is kept; use --force to replace it, or -o to choose the output"};
    return path;
}

std::string withExtension(const std::string& path, const char* extension)
{
    return std::filesystem::path(path).replace_extension(extension).string();
}

void requireOrderedRange(const std::string& lowName, double low, const std::string& highName, double high)
{
    if (low < high)
        return;
    std::ostringstream message;
    message << lowName << " " << low << " is not below " << highName << " " << high
            << ": give the lower value to " << lowName;
    throw CLI::ValidationError(lowName + "/" + highName, message.str());
}

void guardFile(const std::string& path, const std::function<void()>& body)
{
    try {
        body();
    } catch (const std::bad_alloc&) {
        throw CliInputError{path, "not enough memory"};
    } catch (const DocumentException& e) {
        throw CliInputError{path, e.name() + ": " + e.reason()};
    } catch (const CLI::Error&) {
        throw; // a usage error stays one
    } catch (const std::exception& e) {
        throw CliInputError{path, e.what()};
    }
}

const std::string& fileInHand()
{
    return t_fileInHand;
}

namespace
{

// One task in a child process of its own: the synthesizer keeps process-wide state from one
// synthesis to the next, so a document synthesized in a fresh process is synthesized exactly as
// a single command does it. The child reports its failure line through `reportFd`.
[[noreturn]] void runChild(int reportFd, const std::string& file, const std::function<void()>& work)
{
    int status = ExitOk;
    try {
        guardFile(file, work);
    } catch (const CliInputError& error) {
        const std::string line = cliErrorLine(error) + "\n";
        [[maybe_unused]] const ssize_t n = ::write(reportFd, line.data(), line.size());
        status = ExitBadInput;
    }
    std::fflush(stdout);
    std::fflush(stderr);
    ::_exit(status);
}

struct RunningTask {
    std::size_t index;
    int reportFd;
};

// Waits for one child; answers whether its task failed, after reporting the failure.
bool reapChild(std::map<pid_t, RunningTask>& running, ProgressBar& bar,
               const std::function<std::string(std::size_t)>& file)
{
    int status = 0;
    pid_t pid;
    while ((pid = ::waitpid(-1, &status, 0)) < 0 && errno == EINTR) {
    }
    const auto it = running.find(pid);
    if (it == running.end())
        return false;
    const RunningTask task = it->second;
    running.erase(it);
    std::string report;
    char buffer[512];
    for (ssize_t n; (n = ::read(task.reportFd, buffer, sizeof buffer)) > 0;)
        report.append(buffer, static_cast<std::size_t>(n));
    ::close(task.reportFd);
    const bool failed = !WIFEXITED(status) || WEXITSTATUS(status) != ExitOk;
    if (failed && report.empty())
        report = cliErrorLine({file(task.index), WIFSIGNALED(status)
                                                     ? "stopped by signal " + std::to_string(WTERMSIG(status))
                                                     : "failed"}) +
                 "\n";
    if (failed)
        bar.print(report);
    bar.advance();
    return failed;
}

} // namespace

std::size_t runTasks(std::size_t count, unsigned jobs, const std::string& label,
                     const std::function<std::string(std::size_t)>& file,
                     const std::function<void(std::size_t)>& work)
{
    if (jobs == 0)
        jobs = std::max(1u, std::thread::hardware_concurrency());
    // Tidy the heap once here rather than in every child: a child's first allocations would
    // otherwise consolidate the parent's freed chunks, copying each page they touch.
    ::malloc_trim(0);
    ProgressBar bar(label, count);
    std::map<pid_t, RunningTask> running;
    std::size_t failed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (running.size() >= jobs)
            failed += reapChild(running, bar, file) ? 1 : 0;
        int report[2];
        if (::pipe(report) != 0) {
            bar.print(cliErrorLine({file(i), std::string("cannot start: ") + std::strerror(errno)}) + "\n");
            ++failed;
            continue;
        }
        std::fflush(stdout);
        std::fflush(stderr);
        const pid_t pid = ::fork();
        if (pid == 0) {
            ::close(report[0]);
            runChild(report[1], file(i), [&work, i] { work(i); });
        }
        ::close(report[1]);
        if (pid < 0) {
            ::close(report[0]);
            bar.print(cliErrorLine({file(i), std::string("cannot start: ") + std::strerror(errno)}) + "\n");
            ++failed;
            continue;
        }
        running[pid] = {i, report[0]};
    }
    while (!running.empty())
        failed += reapChild(running, bar, file) ? 1 : 0;
    return failed;
}

// ----- progress bar -----

namespace
{
constexpr int kBarCells = 30;
constexpr auto kRedrawPeriod = std::chrono::milliseconds(100);
} // namespace

ProgressBar::ProgressBar(std::string label, std::size_t total)
    : m_strLabel(std::move(label)), m_nTotal(total), m_bEnabled(total > 0 && ::isatty(STDERR_FILENO) != 0)
{
    if (m_bEnabled) {
        std::lock_guard lock(m_mutex);
        draw(0);
    }
}

ProgressBar::~ProgressBar()
{
    finish();
}

void ProgressBar::advance(std::size_t steps)
{
    const std::size_t done = m_nDone += steps;
    if (!m_bEnabled)
        return;
    std::lock_guard lock(m_mutex);
    if (m_bFinished)
        return;
    const int cells = static_cast<int>(std::min(done, m_nTotal) * kBarCells / m_nTotal);
    const auto now = std::chrono::steady_clock::now();
    if (cells != m_nDrawnCells || now - m_lastDraw >= kRedrawPeriod || done >= m_nTotal)
        draw(done);
}

void ProgressBar::finish()
{
    if (!m_bEnabled)
        return;
    std::lock_guard lock(m_mutex);
    if (m_bFinished)
        return;
    m_bFinished = true;
    // Clear the line so that what follows (an error line, the shell prompt) starts clean.
    clearLine();
    std::fflush(stderr);
}

void ProgressBar::print(const std::string& line)
{
    std::lock_guard lock(m_mutex);
    const bool barShown = m_bEnabled && !m_bFinished;
    if (barShown)
        clearLine();
    std::fwrite(line.data(), 1, line.size(), stderr);
    if (barShown)
        draw(m_nDone);
    std::fflush(stderr);
}

void ProgressBar::clearLine()
{
    const std::string blank = "\r" + std::string(m_strLabel.size() + kBarCells + 32, ' ') + "\r";
    std::fwrite(blank.data(), 1, blank.size(), stderr);
}

void ProgressBar::draw(std::size_t done)
{
    done = std::min(done, m_nTotal);
    const int cells = static_cast<int>(done * kBarCells / m_nTotal);
    std::string line = "\r" + m_strLabel + " [" + std::string(cells, '#') +
                       std::string(kBarCells - cells, ' ') + "] " + std::to_string(done) + "/" +
                       std::to_string(m_nTotal);
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
    m_nDrawnCells = cells;
    m_lastDraw = std::chrono::steady_clock::now();
}
