#include "cli/CliFiles.h"

#include "document/CountedText.h"
#include "document/MyDocument.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>

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

std::string withExtension(const std::string& path, const char* extension)
{
    return std::filesystem::path(path).replace_extension(extension).string();
}
