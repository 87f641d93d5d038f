#include "document/PcmWaveWriter.h"

#include <algorithm>

namespace
{

void appendLE(std::string& out, std::uint32_t v, int bytes)
{
    for (int k = 0; k < bytes; ++k)
        out.push_back(static_cast<char>((v >> (8 * k)) & 0xff));
}

} // namespace

std::string pcmWaveHeader(std::uint32_t samples, std::uint32_t sampleRate, int bits)
{
    const std::uint32_t bytesPerSample = static_cast<std::uint32_t>(bits / 8);
    const std::uint32_t dataSize = samples * bytesPerSample;
    std::string h;
    h.reserve(44);
    h += "RIFF";
    appendLE(h, 36 + dataSize + (dataSize & 1u), 4);
    h += "WAVEfmt ";
    appendLE(h, 16, 4);
    appendLE(h, 1, 2); // PCM
    appendLE(h, 1, 2); // mono
    appendLE(h, sampleRate, 4);
    appendLE(h, sampleRate * bytesPerSample, 4);
    appendLE(h, bytesPerSample, 2); // block align
    appendLE(h, static_cast<std::uint32_t>(bits), 2);
    h += "data";
    appendLE(h, dataSize, 4);
    return h;
}

bool writePcmWave(const std::int32_t* samples, std::size_t count, std::uint32_t sampleRate, int bits,
                  const PieceWriter& write)
{
    const std::string header = pcmWaveHeader(static_cast<std::uint32_t>(count), sampleRate, bits);
    if (!write(header.data(), header.size()))
        return false;
    const std::size_t width = static_cast<std::size_t>(bits / 8);
    constexpr std::size_t kPieceSamples = 16384;
    char piece[3 * kPieceSamples];
    for (std::size_t first = 0; first < count; first += kPieceSamples) {
        const std::size_t n = std::min(kPieceSamples, count - first);
        for (std::size_t k = 0; k < n; ++k) {
            const auto v = static_cast<std::uint32_t>(samples[first + k]);
            for (std::size_t b = 0; b < width; ++b)
                piece[width * k + b] = static_cast<char>((v >> (8 * b)) & 0xff);
        }
        if (!write(piece, width * n))
            return false;
    }
    // RIFF chunks are padded to an even size: 24-bit data of an odd sample count gets one byte.
    const char pad = 0;
    return (width * count) % 2 == 0 || write(&pad, 1);
}
