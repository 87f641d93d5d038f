#include "display/PngEncoding.h"

#include "display/AnalysisReports.h"

#include <png.h>

#include <csetjmp>

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
