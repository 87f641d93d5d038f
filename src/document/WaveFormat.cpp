#include "document/WaveFormat.h"

#include <cstring>

std::uint32_t readLE32(std::string_view bytes, std::uint64_t p)
{
    if (p + 4 > bytes.size())
        return 0;
    const auto* b = reinterpret_cast<const unsigned char*>(bytes.data() + p);
    return std::uint32_t(b[0]) | std::uint32_t(b[1]) << 8 | std::uint32_t(b[2]) << 16 |
           std::uint32_t(b[3]) << 24;
}

std::uint16_t readLE16(std::string_view bytes, std::uint64_t p)
{
    if (p + 2 > bytes.size())
        return 0;
    const auto* b = reinterpret_cast<const unsigned char*>(bytes.data() + p);
    return std::uint16_t(b[0] | b[1] << 8);
}

namespace
{
bool tagAt(std::string_view bytes, std::uint64_t p, const char* tag)
{
    return p + 4 <= bytes.size() && std::memcmp(bytes.data() + p, tag, 4) == 0;
}

// The format block holds 16 bytes; a shorter chunk leaves the rest 0, a longer one is skipped.
void readFormatBlock(std::string_view bytes, std::uint64_t p, std::uint32_t size, WaveFormat& f)
{
    char buffer[16] = {};
    for (std::uint64_t i = 0; i < 16 && i < size && p + i < bytes.size(); ++i)
        buffer[i] = bytes[p + i];
    const std::string_view block(buffer, sizeof buffer);
    f.formatCode = static_cast<std::int16_t>(readLE16(block, 0));
    f.channels = readLE16(block, 2);
    f.sampleRate = readLE32(block, 4);
    f.byteRate = readLE32(block, 8);
    f.blockAlign = readLE16(block, 12);
    f.bitsPerSample = readLE16(block, 14);
    f.haveFormat = true;
}
} // namespace

bool parseWaveFormat(std::string_view bytes, WaveFormat& f)
{
    f = WaveFormat();
    if (!tagAt(bytes, 0, "RIFF") || !tagAt(bytes, 8, "WAVE"))
        return false;
    const std::uint64_t length = bytes.size();
    if (length < 13) {
        f.headerCut = true;
        return false;
    }
    std::uint64_t p = 12;
    while (p < length) {
        const std::uint32_t size = readLE32(bytes, p + 4);
        // A format chunk that the file cuts short would be read as zeros (format code 0): the
        // file is refused as a cut header instead.
        if (p + 8 > length || (tagAt(bytes, p, "fmt ") && p + 8 + std::uint64_t(size) > length)) {
            f.headerCut = true;
            return false;
        }
        if (tagAt(bytes, p, "fmt ")) {
            readFormatBlock(bytes, p + 8, size, f);
            if (f.formatCode != 1 && f.formatCode != 3 && f.formatCode != 7)
                return false;
        } else if (tagAt(bytes, p, "data")) {
            f.dataPosition = p + 8;
            f.dataDeclared = size;
            // Only the bytes the file holds are samples: a chunk that declares more holds fewer.
            const std::uint64_t present = length > f.dataPosition ? length - f.dataPosition : 0;
            f.dataSize = size > present ? present : size;
            f.haveData = true;
            return f.dataPosition < length;
        }
        p += 8 + std::uint64_t(size);
    }
    return false;
}
