#pragma once
// The chunk walk of a RIFF/WAVE image: finds the format block and the sample data. Reads only
// inside the given bytes. Chunk sizes are taken as they stand, without pad bytes (files written
// by Tessaphon and its predecessors rely on that), and a data size larger than the bytes that follow
// the data chunk's header is cut to those bytes (`dataDeclared` keeps what the chunk said).
#include <cstdint>
#include <string_view>

struct WaveFormat {
    std::int16_t formatCode = 0; // 1 PCM, 3 IEEE float, 7 mu-law
    std::uint16_t channels = 0;
    std::uint32_t sampleRate = 0;
    std::uint32_t byteRate = 0;
    std::uint16_t blockAlign = 0;
    std::uint16_t bitsPerSample = 0;
    bool haveFormat = false;
    std::uint64_t dataPosition = 0; // byte offset of the first sample
    std::uint64_t dataSize = 0;     // bytes of sample data present
    std::uint64_t dataDeclared = 0; // the size the data chunk declares
    bool haveData = false;
    // The file ends inside a chunk header or inside the format chunk, before any sample data.
    bool headerCut = false;
};

// True when the bytes are RIFF/WAVE with an accepted format code and a data chunk that starts
// inside the file; `format` holds what was found either way.
bool parseWaveFormat(std::string_view bytes, WaveFormat& format);

// Little-endian readers that answer 0 for bytes beyond the end.
std::uint32_t readLE32(std::string_view bytes, std::uint64_t position);
std::uint16_t readLE16(std::string_view bytes, std::uint64_t position);
