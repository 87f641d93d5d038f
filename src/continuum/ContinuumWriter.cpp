#include "continuum/ContinuumWriter.h"

#include "document/AtomicFile.h"
#include "document/DocumentException.h"
#include "document/MyDocument.h"

#include <cstdio>
#include <cstring>
#include <filesystem>

namespace
{

void writeOrThrow(const std::string& path, const std::string& bytes)
{
    if (const int error = writeFileAtomically(path, bytes); error != 0)
        throw DocumentException(path, std::string("cannot write: ") + std::strerror(error));
}

std::string fileName(const std::string& path)
{
    return std::filesystem::path(path).filename().string();
}

} // namespace

ContinuumWriter::ContinuumWriter(const Continuum& continuum, std::string folder, std::string stem,
                                 bool withWave)
    : m_continuum(continuum), m_strFolder(std::move(folder)), m_strStem(std::move(stem)),
      m_bWithWave(withWave)
{
}

std::string ContinuumWriter::stepStem(const std::string& stem, int step, int steps)
{
    const int width = static_cast<int>(std::to_string(steps).size());
    std::string number = std::to_string(step);
    if (static_cast<int>(number.size()) < width)
        number.insert(0, width - number.size(), '0');
    return stem + "_" + number;
}

std::string ContinuumWriter::documentPath(int step) const
{
    return (std::filesystem::path(m_strFolder) / (stepStem(m_strStem, step, m_continuum.steps()) + ".stk"))
        .string();
}

std::string ContinuumWriter::wavePath(int step) const
{
    if (!m_bWithWave)
        return {};
    return (std::filesystem::path(m_strFolder) /
            (stepStem(m_strStem, step, m_continuum.steps()) + m_strAudioExtension))
        .string();
}

std::string ContinuumWriter::manifestPath() const
{
    return (std::filesystem::path(m_strFolder) / "manifest.csv").string();
}

std::vector<std::string> ContinuumWriter::outputs() const
{
    std::vector<std::string> paths;
    for (int step = 1; step <= m_continuum.steps(); ++step) {
        paths.push_back(documentPath(step));
        if (m_bWithWave)
            paths.push_back(wavePath(step));
    }
    paths.push_back(manifestPath());
    return paths;
}

std::unique_ptr<MyDocument> ContinuumWriter::writeStepDocument(int step) const
{
    std::unique_ptr<MyDocument> document = m_continuum.makeStep(step);
    writeOrThrow(documentPath(step), document->Save_STK_FileType50(document->m_bSaveAll != 0));
    if (m_bWithWave)
        document->Synthesize();
    return document;
}

void ContinuumWriter::writeStep(int step) const
{
    const std::unique_ptr<MyDocument> document = writeStepDocument(step);
    if (m_bWithWave)
        writeOrThrow(wavePath(step), document->save_Wave_FileType());
}

std::string ContinuumWriter::manifestText(const std::vector<StimulusFigures>* figures) const
{
    std::string text = "step,weight,document,wave";
    for (int row : m_continuum.rows())
        text += std::string(",") + m_continuum.rowName(row);
    if (figures)
        text += std::string(",name,") + StimulusFigures::csvHeader();
    text += "\n";
    char number[64];
    for (int step = 1; step <= m_continuum.steps(); ++step) {
        std::snprintf(number, sizeof number, "%d,%.6g,", step, m_continuum.weight(step));
        text += number + fileName(documentPath(step)) + "," + (m_bWithWave ? fileName(wavePath(step)) : "");
        for (int row : m_continuum.rows()) {
            std::snprintf(number, sizeof number, ",%.3f", m_continuum.rowMean(row, step));
            text += number;
        }
        if (figures && static_cast<std::size_t>(step) <= figures->size())
            text += "," + fileName(wavePath(step)) + "," +
                    (*figures)[static_cast<std::size_t>(step) - 1].csvFields();
        text += "\n";
    }
    return text;
}

void ContinuumWriter::writeManifest(const std::vector<StimulusFigures>* figures) const
{
    writeOrThrow(manifestPath(), manifestText(figures));
}
