// WAVE files: writing channel 0 as 16-bit mono PCM, reading a RIFF/WAVE image into the model
// channel (channel 2), decoding samples into a channel's block, and the open entry point that
// tries WAVE first and the parameter document second.
#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "document/WaveFormat.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <filesystem>

namespace
{

// The largest sample count a channel block is made for (4 GB of floats).
constexpr double kMaxChannelSamples = double(1u << 30);

void appendLE32(std::string& out, std::uint32_t v)
{
    const char b[4] = {char(v & 0xff), char((v >> 8) & 0xff), char((v >> 16) & 0xff), char((v >> 24) & 0xff)};
    out.append(b, 4);
}

void appendLE16(std::string& out, std::uint16_t v)
{
    const char b[2] = {char(v & 0xff), char((v >> 8) & 0xff)};
    out.append(b, 2);
}

// Truncation toward zero of a double into 64 bits; NaN and values beyond 64 bits give 0.
std::int64_t truncate64(double v)
{
    if (!(std::fabs(v) < 9.2e18))
        return 0;
    return static_cast<std::int64_t>(v);
}

// The 48-byte header of a 16-bit mono PCM image with `samples` samples. The size at offset 4
// is the sample data size (not the file size minus 8) and the format chunk is 20 bytes long
// with two trailing zero fields: every file the system has written looks so, and its readers
// (which walk chunks without pad bytes) depend on it.
std::string waveHeader(std::uint32_t samples, std::uint32_t sampleRate)
{
    std::string h;
    h.reserve(48);
    h += "RIFF";
    appendLE32(h, samples * 2u);
    h += "WAVE";
    h += "fmt ";
    appendLE32(h, 20);
    appendLE16(h, 1); // PCM
    appendLE16(h, 1); // mono
    appendLE32(h, sampleRate);
    appendLE32(h, sampleRate * 2u);
    appendLE16(h, 2);  // block align
    appendLE16(h, 16); // bits per sample
    appendLE16(h, 0);
    appendLE16(h, 0);
    h += "data";
    appendLE32(h, samples * 2u);
    return h;
}

bool hasRiffWaveTags(std::string_view bytes)
{
    return bytes.size() >= 12 && bytes.substr(0, 4) == "RIFF" && bytes.substr(8, 4) == "WAVE";
}

// Why the chunk walk refused the bytes, in words.
std::string waveRefusal(std::string_view bytes, const WaveFormat& f)
{
    if (f.headerCut || (bytes.size() < 12 && bytes.substr(0, 4) == "RIFF"))
        return "its header ends after " + std::to_string(bytes.size()) +
               (bytes.size() == 1 ? " byte" : " bytes");
    if (!hasRiffWaveTags(bytes))
        return "not a RIFF/WAVE file";
    if (f.haveFormat && f.formatCode != 1 && f.formatCode != 3 && f.formatCode != 7)
        return "unsupported WAVE format code " + std::to_string(f.formatCode) +
               " (only 1 PCM, 3 float and 7 mu-law are read)";
    if (!f.haveData)
        return "the WAVE file has no data chunk";
    return "the WAVE sample data starts at or past the end of the file";
}

// What the chunk walk found but the model channel cannot take; empty when it can.
std::string waveContentFault(const WaveFormat& f, double lengthMS, int interval)
{
    if (!f.haveFormat)
        return "the WAVE sample data comes before any format chunk";
    if (f.blockAlign == 0)
        return "the WAVE format chunk gives a block align of 0";
    if (f.sampleRate == 0)
        return "the WAVE format chunk gives a sample rate of 0";
    if (lengthMS > MyDocument::kMaxLengthMS || lengthMS / interval > MyDocument::kMaxFrames)
        return "the WAVE file is longer than one hour (" + std::to_string(static_cast<long long>(lengthMS)) +
               " ms)";
    return {};
}

// The display and calibration state of a freshly loaded model channel. The page and zoom
// limits come from channel 0's sample count, not the model's: the panes that show the model
// have always been scaled so.
void setUpModelChannel(Channels& model, const Channels& synthesis)
{
    model.m_bAnchorChannel = 1;
    model.m_nChannelsinFile = 1;
    model.m_bShow = 1;
    model.m_nOrder = 1;
    model.m_nResolutionBits = 32;
    model.m_nDataType = 3;
    model.m_dPageMin = 0.0;
    model.m_dPageMax = synthesis.m_dwFileLength;
    model.m_dPageSize = synthesis.m_dwFileLength;
    model.m_dMaxUnZoom = synthesis.m_dwFileLength;
    model.m_dMinUnZoom = 0.0;
    model.m_dReference = 0.0;
    model.m_dA3Cal = 0.0;
    model.m_dB2Cal = 0.0;
    model.m_dC1Cal = 1000.0;
    model.m_dD0Cal = 0.0;
    model.m_dADInputVoltageRangeMV = 1.0;
    model.m_dMaxRangeBits = 1.0;
    model.m_dGain = 1.0;
    model.m_dFilterRate = synthesis.m_dSampleRate * 0.5;
}

// Bytes no parameter document holds (it is text): NUL and the control characters other than
// tab, line feed and carriage return, looked for in the first 4 KB.
bool looksBinary(std::string_view bytes)
{
    const std::string_view head = bytes.substr(0, 4096);
    return std::any_of(head.begin(), head.end(), [](char ch) {
        const auto c = static_cast<unsigned char>(ch);
        return c < 0x20 && c != '\t' && c != '\n' && c != '\r';
    });
}

bool hasWaveName(const std::string& path)
{
    std::string ending = std::filesystem::path(path).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return ending == ".wav" || ending == ".wave";
}

// Why bytes that neither reader took were refused, decided by what they hold, not by the file's
// name: a RIFF image as a WAVE file, text as a parameter document, anything else in one line
// naming the file.
std::string refusalByContent(std::string_view bytes, const std::string& waveReason,
                             const std::string& documentReason, const std::string& path)
{
    if (bytes.substr(0, 4) == "RIFF")
        return waveReason;
    if (!looksBinary(bytes))
        return documentReason;
    const std::string name = path.empty() ? "the file" : std::filesystem::path(path).filename().string();
    return hasWaveName(path) ? name + " is not a WAVE file"
                             : name + " is neither a WAVE file nor a parameter document";
}

} // namespace

namespace
{
// The sample count of a channel's WAVE image. The image's loop runs while i < the length as a
// double, so a fractional length writes one sample more than the header counts.
double waveLength(const Channels& c)
{
    return c.m_dwFileLength > 0.0 && c.m_dwFileLength < kMaxChannelSamples ? c.m_dwFileLength : 0.0;
}
} // namespace

bool MyDocument::writeWave(int channel, const PieceWriter& write)
{
    Channels& c = *m_Channel[channel >= 0 && channel < 4 ? channel : 0];
    const double length = waveLength(c);
    const std::string header = waveHeader(static_cast<std::uint32_t>(length),
                                          static_cast<std::uint32_t>(truncate64(c.m_dSampleRate)));
    if (!write(header.data(), header.size()))
        return false;

    const auto written = static_cast<std::size_t>(std::ceil(length));
    const float* samples = c.m_hData ? static_cast<const float*>(c.m_hData->lock()) : nullptr;
    const std::size_t held = c.m_hData ? std::min(c.m_hData->size() / sizeof(float), written) : 0;
    // The samples go out in pieces of a fixed buffer; samples the block does not hold are 0.
    constexpr std::size_t kPieceSamples = 16384;
    unsigned char piece[2 * kPieceSamples];
    bool ok = true;
    for (std::size_t first = 0; ok && first < written; first += kPieceSamples) {
        const std::size_t count = std::min(kPieceSamples, written - first);
        for (std::size_t k = 0; k < count; ++k) {
            const std::size_t i = first + k;
            // No clipping: +1.0 becomes 32768, whose low 16 bits are -32768. Kept so on purpose.
            const auto v = i < held ? static_cast<std::uint16_t>(truncate64(samples[i] * 32768.0) & 0xffff)
                                    : std::uint16_t{0};
            piece[2 * k] = static_cast<unsigned char>(v & 0xff);
            piece[2 * k + 1] = static_cast<unsigned char>(v >> 8);
        }
        ok = write(reinterpret_cast<const char*>(piece), 2 * count);
    }
    if (c.m_hData)
        c.m_hData->unlock();
    return ok;
}

std::string MyDocument::save_Wave_FileType(int channel)
{
    std::string out;
    const Channels& c = *m_Channel[channel >= 0 && channel < 4 ? channel : 0];
    out.reserve(48 + 2 * static_cast<std::size_t>(std::ceil(waveLength(c))));
    writeWave(channel, [&out](const char* bytes, std::size_t size) {
        out.append(bytes, size);
        return true;
    });
    return out;
}

bool Channels::readData(const std::uint8_t* bytes, std::size_t byteCount, double length, double location,
                        int datasize, bool swap)
{
    if (!(length >= 0.0) || length > kMaxChannelSamples)
        return false;
    m_hData = MemoryBlock::newHandleClear(static_cast<std::size_t>(length * 4.0 + 100.0));
    if (!m_hData)
        return false;
    const auto n = static_cast<std::size_t>(length);
    // Bytes the file holds from the first sample on; samples beyond them stay 0.
    const std::size_t start = location >= 0.0 && location < static_cast<double>(byteCount)
                                  ? static_cast<std::size_t>(location)
                                  : byteCount;
    const std::size_t available = byteCount - start;
    float* out = static_cast<float*>(m_hData->lock());
    bool decoded = false;
    if (datasize == 12 || datasize == 16) {
        // 12-bit data is stored big-endian whatever the swap flag says.
        const bool swapBytes = datasize == 12 || swap;
        const double scale = datasize == 12 ? 2048.0 : 32768.0;
        const std::size_t count = std::min(n, available / 2);
        const std::uint8_t* p = bytes + start;
        for (std::size_t i = 0; i < count; ++i, p += 2) {
            const auto v = static_cast<std::uint16_t>(swapBytes ? (p[0] << 8 | p[1]) : (p[0] | p[1] << 8));
            out[i] = static_cast<float>(static_cast<std::int16_t>(v) / scale);
        }
        decoded = true;
    } else if (datasize == 32) {
        const std::size_t count = std::min(n, available / 4);
        if (count > 0)
            std::memcpy(out, bytes + start, count * 4);
        decoded = true;
    }
    // 8 bits and every other size are not decoded: the block stays zero.
    m_hData->unlock();
    return decoded;
}

bool MyDocument::setModelSamples(const std::vector<float>& samples, double sampleRate)
{
    if (samples.empty() || !(sampleRate >= 1.0) || static_cast<double>(samples.size()) > kMaxChannelSamples ||
        samples.size() / sampleRate * 1000.0 > kMaxLengthMS)
        return false;
    auto block = MemoryBlock::newHandleClear(samples.size() * sizeof(float) + 100);
    if (!block)
        throw DocumentException("Memory Error", "Unable to allocate memory");
    std::memcpy(block->bytes(), samples.data(), samples.size() * sizeof(float));
    Channels& model = *m_Channel[2];
    model.m_hData = std::move(block);
    model.m_dSampleRate = sampleRate;
    model.m_dwFileLength = static_cast<double>(samples.size());
    model.m_dLengthMS = samples.size() * 1000.0 / sampleRate;
    setUpModelChannel(model, *m_Channel[0]);
    updateChangeCount(ChangeDone);
    return true;
}

int MyDocument::Read_WAVE_FileType(std::string_view bytes)
{
    WaveFormat f;
    if (!parseWaveFormat(bytes, f)) {
        m_strReadError = waveRefusal(bytes, f);
        return -1;
    }
    Channels& model = *m_Channel[2];
    const double samples = f.blockAlign ? static_cast<double>(f.dataSize / f.blockAlign) : 0.0;
    const double lengthMS = f.sampleRate ? samples * 1000.0 / f.sampleRate : 0.0;
    const int interval = model.m_nUpdateIntervalMS < 1 ? 10 : model.m_nUpdateIntervalMS;
    if (std::string fault = waveContentFault(f, lengthMS, interval); !fault.empty()) {
        m_strReadError = std::move(fault);
        return -1;
    }

    m_nWaveSamplesPresent = static_cast<std::int64_t>(samples);
    m_nWaveSamplesDeclared = static_cast<std::int64_t>(f.dataDeclared / f.blockAlign);
    model.m_dSampleRate = f.sampleRate;
    model.m_dwFileLength = samples;
    model.m_dLengthMS = lengthMS;
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const auto location = static_cast<double>(f.dataPosition);
    // The load's result is not checked: an undecodable sample size leaves a silent block of the
    // right duration.
    if (f.formatCode == 3)
        model.readData(data, bytes.size(), samples, location, 32, false);
    else if (f.formatCode == 1)
        model.readData(data, bytes.size(), samples, location, f.bitsPerSample, false);
    else // mu-law is not decoded: the model keeps its duration with silent samples
        model.m_hData = MemoryBlock::newHandleClear(static_cast<std::size_t>(samples * 4.0 + 100.0));
    setUpModelChannel(model, *m_Channel[0]);

    updateChangeCount(ChangeDone);
    // The document becomes the parameter document beside the recording: x.wav -> x.stk.
    if (!fileURL().empty())
        setFileURL(std::filesystem::path(fileURL()).replace_extension(".stk").string());
    setFileType("stk");
    m_strReadError.clear();
    return 0;
}

bool MyDocument::readFromData(std::string bytes, const std::string& typeName, int* errorCode)
{
    if (!readFromBytes(bytes, typeName, errorCode))
        return false;
    _fileData = std::move(bytes);
    return true;
}

bool MyDocument::readFromBytes(std::string_view bytes, const std::string& typeName, int* errorCode)
{
    _dataTableDictionary.removeAllObjects();
    try {
        if (Read_WAVE_FileType(bytes) == 0) {
            Channels& model = *m_Channel[2];
            if (model.m_nUpdateIntervalMS < 1)
                model.m_nUpdateIntervalMS = 10;
            model.m_nColumnNum = static_cast<int>(model.m_dLengthMS / model.m_nUpdateIntervalMS);
            Channels& synthesis = *m_Channel[0];
            synthesis.m_dLengthMS = model.m_dLengthMS;
            synthesis.m_nUpdateIntervalMS = model.m_nUpdateIntervalMS;
            synthesis.m_nColumnNum = model.m_nColumnNum;
            SetUpDataGridMemory();
        } else {
            const std::string waveReason = m_strReadError;
            if (Read_STK_FileType(bytes) != 0) {
                m_strReadError = refusalByContent(bytes, waveReason, m_strReadError, fileURL());
                if (errorCode)
                    *errorCode = -4;
                return false;
            }
        }
    } catch (const DocumentException& e) {
        m_strReadError = e.reason();
        if (errorCode)
            *errorCode = -4;
        return false;
    }
    if (errorCode)
        *errorCode = 0;
    m_bReadFile = 1;
    _fileTypeName = typeName;
    std::string().swap(_fileData);
    return true;
}
