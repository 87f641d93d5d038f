#include "cli/CliSupport.h"

#include "display/AnalysisReports.h"
#include "document/MyDocument.h"

#include <png.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

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

std::unique_ptr<MyDocument> openDocument(const std::string& path, bool withTableData)
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
        std::cerr << "tessaphon-cli: " << path << ": warning: only " << document->framesInFile() << " of "
                  << document->framesDeclared()
                  << " declared frames are present; the others hold default values\n";
    if (withTableData)
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
