#include "cli/CliSupport.h"

#include "document/MyDocument.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>

std::string readWholeFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    if (!in)
        throw CliInputError{path, std::strerror(errno)};
    // One read of the size the file has now; a file that is not seekable (a pipe) is read to its end.
    std::string bytes;
    const std::streamoff size = in.tellg();
    if (size > 0) {
        bytes.resize(static_cast<std::size_t>(size));
        in.seekg(0);
        in.read(bytes.data(), size);
        bytes.resize(static_cast<std::size_t>(in.gcount()));
        in.clear();
    } else {
        in.clear();
        in.seekg(0);
    }
    char chunk[65536];
    while (in.read(chunk, sizeof chunk) || in.gcount() > 0)
        bytes.append(chunk, static_cast<std::size_t>(in.gcount()));
    if (in.bad())
        throw CliInputError{path, "read error"};
    return bytes;
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

std::unique_ptr<MyDocument> openDocument(const std::string& path, TableData table)
{
    return openDocumentBytes(path, readWholeFile(path), table);
}

std::unique_ptr<MyDocument> openDocumentBytes(const std::string& path, const std::string& bytes,
                                              TableData table)
{
    auto document = std::make_unique<MyDocument>();
    document->setFileURL(path);
    int errorCode = 0;
    if (!document->readFromData(bytes, "stk", &errorCode)) {
        const std::string& why = document->lastReadError();
        throw CliInputError{path, why.empty() ? "not a WAVE file or a parameter document" : why};
    }
    if (document->isTruncated())
        std::cerr << "tessaphon-cli: " << path << ": warning: only " << document->framesInFile() << " of "
                  << document->framesDeclared()
                  << " declared frames are present; the others hold default values\n";
    if (table == TableData::Build)
        document->buildDataTableDictionary();
    return document;
}
