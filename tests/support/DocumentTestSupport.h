#pragma once
// Helpers shared by the document tests: documents opened from bytes as the workbench opens a file,
// cell edits as the table makes them, and little-endian byte building for WAVE images (documents
// of a given size: TestDocuments.h).
#include "document/MyDocument.h"

#include <cstdint>
#include <string>
#include <vector>

// Opens a parameter document or a recording from its bytes and builds its table data; whether it
// could be read (the reason is the document's lastReadError()).
inline bool openBytes(MyDocument& document, const std::string& bytes, const char* type = "stk")
{
    int code = 0;
    if (!document.readFromData(bytes, type, &code))
        return false;
    document.buildDataTableDictionary();
    return true;
}

// The cell of frame k (1-based, as the table data keys it) and a row.
inline CellRef frameCell(MyDocument& document, int frame, int row)
{
    return document._dataTableDictionary.cellAt(static_cast<long long>(frame) * document.updateInterval(),
                                                row);
}

inline int frameValue(MyDocument& document, int frame, int row)
{
    return frameCell(document, frame, row)->_nValue();
}

inline void setValue(MyDocument& document, int frame, int row, int value)
{
    CellRef cell = frameCell(document, frame, row);
    cell->set_nValue(value);
    cell->setInttoStringValue(value);
}

inline void putLE16(std::string& out, std::uint16_t v)
{
    out += char(v & 0xff);
    out += char(v >> 8);
}

inline void putLE32(std::string& out, std::uint32_t v)
{
    putLE16(out, std::uint16_t(v & 0xffff));
    putLE16(out, std::uint16_t(v >> 16));
}

// A RIFF/WAVE image: a format chunk of `fmtSize` bytes (16 or more; extra bytes are zero)
// followed directly by a data chunk holding `data` with the declared size `dataSize`.
inline std::string waveImage(int formatCode, int channels, std::uint32_t rate, int blockAlign, int bits,
                             const std::string& data, std::uint32_t fmtSize = 16, long long dataSize = -1)
{
    std::string out = "RIFF";
    putLE32(out, 0);
    out += "WAVE";
    out += "fmt ";
    putLE32(out, fmtSize);
    putLE16(out, std::uint16_t(formatCode));
    putLE16(out, std::uint16_t(channels));
    putLE32(out, rate);
    putLE32(out, rate * std::uint32_t(blockAlign));
    putLE16(out, std::uint16_t(blockAlign));
    putLE16(out, std::uint16_t(bits));
    out.append(fmtSize - 16, '\0');
    out += "data";
    putLE32(out, dataSize < 0 ? std::uint32_t(data.size()) : std::uint32_t(dataSize));
    return out + data;
}

inline std::string pcm16(const std::vector<std::int16_t>& values)
{
    std::string out;
    for (std::int16_t v : values)
        putLE16(out, std::uint16_t(v));
    return out;
}
