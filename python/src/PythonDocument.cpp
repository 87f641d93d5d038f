#include "PythonDocument.h"

#include "PythonErrors.h"
#include "cli/FileBytes.h"
#include "document/AtomicFile.h"
#include "synthesis/CKlattEngine.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

namespace
{

// A document read back from its own text: the grid then holds what its table data held.
std::unique_ptr<MyDocument> readBack(MyDocument& document)
{
    auto copy = std::make_unique<MyDocument>();
    copy->setFileURL(document.fileURL());
    if (copy->Read_STK_FileType(document.parameterDocumentText(true)) != 0)
        throw BadArgument("the document cannot be read back: " + copy->lastReadError());
    return copy;
}

} // namespace

PythonDocument::PythonDocument(std::unique_ptr<MyDocument> document) : m_document(std::move(document))
{
    if (!m_document->_dataTableDictionary.empty())
        m_document = readBack(*m_document);
    storeGrid();
}

void PythonDocument::storeGrid()
{
    Channels& c = *m_document->getChannel(0);
    DataGrid& grid = c.m_snppDataImage_Col_Row;
    const std::size_t wanted = static_cast<std::size_t>(std::max(c.m_nColumnNum, 0)) + 2;
    if (grid.size() < wanted)
        m_document->SetUpDataGridMemory();
    grid.store(grid.size());
    m_pGrid = grid.empty() ? nullptr : grid[0].data();
}

std::unique_ptr<PythonDocument> PythonDocument::read(const std::string& path,
                                                     std::vector<std::string>& warnings)
{
    FileBytes bytes;
    if (const int error = bytes.read(path); error != 0)
        throw FileSystemError{path, error};
    std::unique_ptr<PythonDocument> result;
    withFile(path, [&] {
        auto document = std::make_unique<MyDocument>();
        document->setFileURL(path);
        int errorCode = 0;
        if (!document->readFromBytes(bytes.view(), "stk", &errorCode)) {
            const std::string& why = document->lastReadError();
            throw BadArgument(path + ": " + (why.empty() ? "not a WAVE file or a parameter document" : why));
        }
        if (document->isTruncated())
            warnings.push_back(path + ": only " + std::to_string(document->framesInFile()) + " of " +
                               std::to_string(document->framesDeclared()) +
                               " declared frames are present; the others hold default values");
        if (document->m_nClampedValues > 0)
            warnings.push_back(path + ": " + std::to_string(document->m_nClampedValues) +
                               " values did not fit the grid and were clamped to their rows' limits");
        result = std::make_unique<PythonDocument>(std::move(document));
    });
    return result;
}

std::unique_ptr<PythonDocument> PythonDocument::make(double lengthMS, int intervalMS, int sampleRate)
{
    requireRange("length_ms", lengthMS, 1.0, MyDocument::kMaxLengthMS);
    requireRange("interval_ms", intervalMS, 1, 1000);
    if (sampleRate != 11025 && sampleRate != 22050)
        throw BadArgument("sample_rate must be 11025 or 22050 (got " + std::to_string(sampleRate) + ")");
    auto document = std::make_unique<MyDocument>();
    for (int ch = 0; ch < 3; ++ch) {
        Channels* c = document->getChannel(ch);
        c->m_dLengthMS = lengthMS;
        c->m_nUpdateIntervalMS = intervalMS;
        c->m_nColumnNum = static_cast<int>(lengthMS / intervalMS);
        c->m_dSampleRate = sampleRate;
        // The sixth formant shown switches synthesis to 22050 Hz, as showing it in the workbench does.
        c->m_Parameters[Row::f6].bSelected = sampleRate == 22050 ? 1 : 0;
    }
    document->SetUpDataGridMemory();
    return std::make_unique<PythonDocument>(std::move(document));
}

std::unique_ptr<MyDocument> PythonDocument::copyDocument()
{
    auto copy = std::make_unique<MyDocument>();
    copy->setFileURL(m_document->fileURL());
    if (copy->Read_STK_FileType(text()) != 0)
        throw BadArgument("the document cannot be read back: " + copy->lastReadError());
    return copy;
}

std::unique_ptr<PythonDocument> PythonDocument::copy()
{
    return std::make_unique<PythonDocument>(copyDocument());
}

int PythonDocument::frames() const
{
    const Channels& c = *m_document->getChannel(0);
    const auto stored = static_cast<long long>(c.m_snppDataImage_Col_Row.size());
    return static_cast<int>(std::clamp<long long>(c.m_nColumnNum, 0, std::max(stored - 2, 0LL)));
}

int PythonDocument::intervalMS() const
{
    return m_document->getChannel(0)->m_nUpdateIntervalMS;
}

double PythonDocument::lengthMS() const
{
    return m_document->getChannel(0)->m_dLengthMS;
}

int PythonDocument::sampleRate() const
{
    return m_document->synthesisSampleRate();
}

const ParameterDefinition& PythonDocument::parameter(int row) const
{
    return m_document->getChannel(0)->m_Parameters[row];
}

const char* PythonDocument::rowName(int row) const
{
    return parameter(row).strName;
}

int PythonDocument::rowNamed(const std::string& name)
{
    for (int row = 0; row < kParameterCount; ++row)
        if (name == kFactoryParameters[row].name)
            return row;
    return -1;
}

std::vector<bool> PythonDocument::selected() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<bool> shown(kParameterCount);
    for (int row = 0; row < kParameterCount; ++row)
        shown[row] = parameter(row).bSelected != 0;
    return shown;
}

void PythonDocument::setSelected(const std::vector<bool>& shown)
{
    if (shown.size() != kParameterCount)
        throw BadArgument("selected needs 48 flags, one per parameter row (got " +
                          std::to_string(shown.size()) + ")");
    std::lock_guard<std::mutex> lock(m_mutex);
    for (int ch = 0; ch < 3; ++ch)
        for (int row = 0; row < kParameterCount; ++row)
            m_document->getChannel(ch)->m_Parameters[row].bSelected = shown[row] ? 1 : 0;
}

std::vector<bool> PythonDocument::anchors() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const int count = frames();
    std::vector<bool> flags(static_cast<std::size_t>(count) * kParameterCount);
    const auto& list = m_document->getChannel(0)->m_pAnchorPosition;
    for (std::size_t i = 0; i + 1 < list.size(); i += 2) {
        const int row = list[i], frame = list[i + 1];
        if (row >= 0 && row < kParameterCount && frame >= 0 && frame < count)
            flags[static_cast<std::size_t>(frame) * kParameterCount + row] = true;
    }
    return flags;
}

void PythonDocument::setAnchors(const std::vector<bool>& flags)
{
    const std::size_t count = static_cast<std::size_t>(frames());
    if (flags.size() != count * kParameterCount)
        throw BadArgument("anchors needs frames x 48 flags");
    std::vector<std::int32_t> list;
    for (std::size_t frame = 0; frame < count; ++frame)
        for (int row = 0; row < kParameterCount; ++row)
            if (flags[frame * kParameterCount + row]) {
                list.push_back(row);
                list.push_back(static_cast<std::int32_t>(frame));
            }
    std::lock_guard<std::mutex> lock(m_mutex);
    Channels& c = *m_document->getChannel(0);
    c.m_nNumberofAnchors = static_cast<std::int32_t>(list.size() / 2);
    c.m_pAnchorPosition = std::move(list);
}

void PythonDocument::setRow(int row, const std::vector<double>& values)
{
    const int count = frames();
    if (values.size() != static_cast<std::size_t>(count))
        throw BadArgument(std::string(rowName(row)) + " needs " + std::to_string(count) +
                          " values, one per frame (got " + std::to_string(values.size()) + ")");
    for (double v : values)
        if (std::isnan(v))
            throw BadArgument(std::string(rowName(row)) + " values must be numbers, not NaN");
    std::lock_guard<std::mutex> lock(m_mutex);
    const ParameterDefinition& p = parameter(row);
    for (int frame = 0; frame < count; ++frame) {
        const double v = std::clamp(std::round(values[frame]), double(p.nMinValue), double(p.nMaxValue));
        m_pGrid[static_cast<std::size_t>(frame) * kGridRows + row] = static_cast<std::int16_t>(v);
    }
}

void PythonDocument::clampToLimits()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const int count = frames();
    for (int row = 0; row < kParameterCount; ++row) {
        const ParameterDefinition& p = parameter(row);
        for (int frame = 0; frame < count; ++frame) {
            std::int16_t& cell = m_pGrid[static_cast<std::size_t>(frame) * kGridRows + row];
            cell = static_cast<std::int16_t>(std::clamp<int>(cell, p.nMinValue, p.nMaxValue));
        }
    }
}

PythonDocument::Audio PythonDocument::synthesize()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    Audio audio;
    withFile(m_document->fileURL().empty() ? "synthesis" : m_document->fileURL(), [&] {
        // Every call starts from the engine's state at program start: the samples are those
        // tessaphon-cli writes for the document, whichever call and thread this is.
        CKlattEngine::resetCarriedState();
        m_document->Synthesize();
        Channels& current = *m_document->getChannel(0);
        audio.count = current.sampleCount();
        audio.block = std::move(current.m_hData);
        // The samples go to Python whole. The previous synthesis's block stands in for them, so
        // that the next run moves it aside, as the workbench's runs do, instead of copying the
        // new samples into channel 1.
        current.m_hData = std::move(m_document->getChannel(1)->m_hData);
    });
    return audio;
}

std::string PythonDocument::text()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_document->parameterDocumentText(m_document->m_bSaveAll != 0);
}

void PythonDocument::write(const std::string& path)
{
    std::string bytes;
    withFile(path, [&] { bytes = text(); });
    if (const int error = writeFileAtomically(path, bytes); error != 0)
        throw FileSystemError{path, error};
}
