#include "cli/CliSupport.h"

#include "document/MyDocument.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

void warn(const std::string& file, const std::string& what)
{
    std::fprintf(stderr, "tessaphon-cli: %s: warning: %s\n", file.c_str(), what.c_str());
}

std::string readWholeFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw CliInputError{path, std::strerror(errno)};
    std::ostringstream bytes;
    bytes << in.rdbuf();
    if (in.bad())
        throw CliInputError{path, "read error"};
    return bytes.str();
}

void writeWholeFile(const std::string& path, const std::string& bytes)
{
    const std::string temporary = path + ".tmp-tessaphon";
    std::FILE* out = std::fopen(temporary.c_str(), "wb");
    if (!out)
        throw CliInputError{path, std::strerror(errno)};
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size();
    const int savedErrno = errno;
    if (std::fclose(out) != 0 || !written) {
        std::remove(temporary.c_str());
        throw CliInputError{path, std::strerror(written ? errno : savedErrno)};
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        const int renameErrno = errno;
        std::remove(temporary.c_str());
        throw CliInputError{path, std::strerror(renameErrno)};
    }
}

std::unique_ptr<MyDocument> openDocument(const std::string& path)
{
    const std::string bytes = readWholeFile(path);
    auto document = std::make_unique<MyDocument>();
    document->setFileURL(path);
    int errorCode = 0;
    if (!document->readFromData(bytes, "stk", &errorCode)) {
        const std::string& why = document->lastReadError();
        throw CliInputError{path, why.empty() ? "not a WAVE file or a parameter document" : why};
    }
    if (document->isTruncated())
        warn(path, "only " + std::to_string(document->framesInFile()) + " of " +
                       std::to_string(document->framesDeclared()) +
                       " declared frames are present; the others hold default values");
    if (document->m_nClampedValues > 0)
        warn(path, std::to_string(document->m_nClampedValues) +
                       " values did not fit the grid and were clamped to their rows' limits");
    document->buildDataTableDictionary();
    return document;
}
