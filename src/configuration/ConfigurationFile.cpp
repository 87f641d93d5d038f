#include "configuration/ConfigurationFile.h"

#include "document/AtomicFile.h"
#include "document/Log.h"
#include "document/MyDocument.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#ifndef TESSAPHON_VERSION
#define TESSAPHON_VERSION "0.1.0"
#endif

namespace
{
constexpr std::size_t kVersionBytes = 256;
constexpr std::uint32_t kMagic = 0x46435354; // "TSCF" read little-endian
constexpr std::int32_t kLayoutVersion = 1;
constexpr double kLongestUtteranceMS = 3600.0 * 1000.0;

// The settings a configuration carries, in file order after the header.
struct Image {
    double lengthMS = 0;
    std::int32_t interval = 0, parameterNumber = 0, showGridData = 0, doInterpolate = 0, doAnchor = 0;
    std::array<Color, 10> background{}, tracing{};
    std::array<ParameterDefinition, kParameterCount> parameters{};
};

// Writes values little-endian.
class Writer
{
public:
    std::string bytes;
    void u32(std::uint32_t v)
    {
        for (int i = 0; i < 4; ++i)
            bytes.push_back(static_cast<char>((v >> (8 * i)) & 0xff));
    }
    void i32(std::int32_t& v) { u32(static_cast<std::uint32_t>(v)); }
    void flag(std::uint8_t& v) { u32(v); }
    void u16(std::uint16_t& v)
    {
        bytes.push_back(static_cast<char>(v & 0xff));
        bytes.push_back(static_cast<char>(v >> 8));
    }
    void real(double& v)
    {
        std::uint64_t bits;
        std::memcpy(&bits, &v, 8);
        u32(static_cast<std::uint32_t>(bits));
        u32(static_cast<std::uint32_t>(bits >> 32));
    }
    bool failed() const { return false; }
};

// Reads values little-endian; past the end it reads zeros and remembers the failure.
class Reader
{
public:
    explicit Reader(const std::string& b, std::size_t at) : bytes(b), pos(at) {}
    const std::string& bytes;
    std::size_t pos;
    bool bad = false;
    std::uint32_t u32()
    {
        if (pos + 4 > bytes.size()) {
            bad = true;
            return 0;
        }
        std::uint32_t v = 0;
        for (int i = 0; i < 4; ++i)
            v |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[pos + i])) << (8 * i);
        pos += 4;
        return v;
    }
    void i32(std::int32_t& v) { v = static_cast<std::int32_t>(u32()); }
    void flag(std::uint8_t& v)
    {
        const std::uint32_t raw = u32();
        bad = bad || raw > 1;
        v = static_cast<std::uint8_t>(raw);
    }
    void u16(std::uint16_t& v)
    {
        if (pos + 2 > bytes.size()) {
            bad = true;
            return;
        }
        v = static_cast<std::uint16_t>(static_cast<unsigned char>(bytes[pos]) |
                                       (static_cast<unsigned char>(bytes[pos + 1]) << 8));
        pos += 2;
    }
    void real(double& v)
    {
        const std::uint64_t low = u32();
        const std::uint64_t bits = low | (static_cast<std::uint64_t>(u32()) << 32);
        std::memcpy(&v, &bits, 8);
        bad = bad || !std::isfinite(v);
    }
    bool failed() const { return bad; }
};

// Reads like the Reader it wraps but keeps nothing: a section is checked in full before any of it
// reaches the document.
class Checker
{
public:
    explicit Checker(Reader& r) : reader(r) {}
    Reader& reader;
    void i32(const std::int32_t&)
    {
        std::int32_t v;
        reader.i32(v);
    }
    void flag(const std::uint8_t&)
    {
        std::uint8_t v;
        reader.flag(v);
    }
    void real(const double&)
    {
        double v;
        reader.real(v);
    }
};

template <class Archive> void transferColor(Archive& a, Color& c)
{
    a.real(c.red);
    a.real(c.green);
    a.real(c.blue);
    a.real(c.alpha);
    std::uint8_t set = c.isSet ? 1 : 0;
    a.flag(set);
    c.isSet = set != 0;
}

// The analysis settings are fields of the document itself, transferred in place; the Checker
// reads them from a const document and changes nothing.
template <class Archive, class Document> void transferAnalysis(Archive& a, Document& d)
{
    a.i32(d.m_nFFTWindowLengthSelector), a.i32(d.m_nFFTWindowLength), a.i32(d.m_nFFTAppliedWindowLength);
    a.i32(d.m_nFFTfrequencyRange), a.i32(d.m_nFFTAverageStepSize), a.i32(d.m_nLPCNumberofCoefficients);
    a.flag(d.m_bFFTDrawLPC), a.flag(d.m_bFFTAbsolute), a.i32(d.m_nFFTAbsoluteRange), a.flag(d.m_bFFTInches);
    a.flag(d.m_bFFTColor), a.real(d.m_dFFTWidth), a.real(d.m_dFFTHeight), a.flag(d.m_bFFTDrawFrequencyGrid);
    a.i32(d.m_nFFTFrequencyGrid), a.flag(d.m_bFFTDrawDBGrid), a.i32(d.m_nFFTDBGrid);
    a.i32(d.m_nSpecWindowLengthSelector), a.i32(d.m_nSpecWindowLength), a.i32(d.m_nSpecDynamicRange);
    a.i32(d.m_nSpecfrequencyRange), a.real(d.m_dPreEmphasis), a.flag(d.m_bSpecDrawFormantTracking);
    a.i32(d.m_nSpecLPCNumberofCoefficients), a.flag(d.m_bSpecDrawFrequencyGrid),
        a.i32(d.m_nSpecFrequencyGrid);
    a.flag(d.m_bSpecDrawTimeGrid), a.i32(d.m_nSpecTimeGrid), a.i32(d.m_bSpecInches), a.real(d.m_dSpecWidth);
    a.real(d.m_dSpecHeight);
    a.real(d.m_dPitchWindowLength), a.real(d.m_dPitchStepSize), a.real(d.m_dFreqDeviation);
    a.real(d.m_dPitchTrackingThreshHold), a.real(d.m_dCalculationLow), a.real(d.m_dCalculationHigh);
    a.i32(d.m_nPitchDisplayLow), a.i32(d.m_nPitchDisplayHigh), a.flag(d.m_bPitchDrawFreqGrid);
    a.i32(d.m_nPitchFreqGrid), a.flag(d.m_bPitchDrawTimeGrid), a.i32(d.m_nPitchTimeGrid);
}

// The body after the header up to the analysis settings, the same code for writing and reading.
template <class Archive> void transfer(Archive& a, Image& image)
{
    a.real(image.lengthMS);
    a.i32(image.interval);
    a.i32(image.parameterNumber);
    a.i32(image.showGridData); // byte offset 284
    a.i32(image.doInterpolate);
    a.i32(image.doAnchor);
    for (Color& c : image.background)
        transferColor(a, c);
    for (Color& c : image.tracing)
        transferColor(a, c);
    for (ParameterDefinition& p : image.parameters) {
        a.i32(p.nDefaultValue), a.i32(p.nValue), a.i32(p.nMinValue), a.i32(p.nMaxValue);
        a.flag(p.bSelected);
        a.u16(p.mColor.red), a.u16(p.mColor.green), a.u16(p.mColor.blue);
        transferColor(a, p.nsSetColor);
    }
}

std::uint32_t checksum(const char* data, std::size_t size)
{
    std::uint32_t hash = 2166136261u;
    for (std::size_t i = 0; i < size; ++i)
        hash = (hash ^ static_cast<unsigned char>(data[i])) * 16777619u;
    return hash;
}

constexpr std::size_t kHeaderBytes = kVersionBytes + 12;

bool plausible(const Image& image)
{
    if (image.lengthMS < 0.0 || image.lengthMS > kLongestUtteranceMS)
        return false;
    for (const Color& c : image.background)
        if (c.red < 0 || c.red > 1 || c.green < 0 || c.green > 1 || c.blue < 0 || c.blue > 1)
            return false;
    return true;
}

void applyNewDocumentSettings(const Image& image, MyDocument& doc)
{
    doc._bShowGridData = image.showGridData != 0;
    doc.getChannel(0)->m_bDoInterpolate = image.doInterpolate != 0;
    doc.getChannel(0)->m_bDoAnchor = image.doAnchor != 0;
    for (int i = 0; i < 10; ++i) {
        doc.m_bgColor[i] = image.background[i];
        doc.m_ColorTracing[i] = image.tracing[i];
    }
    const std::int32_t interval = image.interval < 1 ? 10 : image.interval;
    for (int ch = 0; ch <= 2; ++ch) {
        Channels& c = *doc.getChannel(ch);
        c.m_nParameterNumber = image.parameterNumber;
        c.m_dLengthMS = image.lengthMS;
        c.m_nUpdateIntervalMS = interval;
        c.m_nColumnNum = static_cast<std::int32_t>(static_cast<long long>(image.lengthMS) / interval);
        for (int row = 0; row < kParameterCount; ++row) {
            ParameterDefinition p = image.parameters[row];
            // Names and definitions are the program's own texts, not the file's.
            p.strName = c.m_Parameters[row].strName;
            p.strDefinition = c.m_Parameters[row].strDefinition;
            c.m_Parameters[row] = p;
        }
    }
}
} // namespace

std::string ConfigurationFile::versionText()
{
    return std::string("Tessaphon ") + TESSAPHON_VERSION;
}

std::string ConfigurationFile::defaultPath()
{
    std::string base;
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg)
        base = xdg;
    else if (const char* home = std::getenv("HOME"); home && *home)
        base = std::string(home) + "/.config";
    else
        base = ".";
    return base + "/Tessaphon/TessaphonConf.cfg";
}

std::string ConfigurationFile::encode(const MyDocument& doc)
{
    Image image;
    const Channels& c = *doc.getChannel(0);
    image.lengthMS = c.m_dLengthMS;
    image.interval = c.m_nUpdateIntervalMS;
    image.parameterNumber = c.m_nParameterNumber;
    image.showGridData = doc._bShowGridData;
    image.doInterpolate = c.m_bDoInterpolate;
    image.doAnchor = c.m_bDoAnchor;
    std::copy_n(doc.m_bgColor.begin(), 10, image.background.begin());
    std::copy_n(doc.m_ColorTracing.begin(), 10, image.tracing.begin());
    std::copy_n(c.m_Parameters.begin(), kParameterCount, image.parameters.begin());

    Writer w;
    std::string version = versionText();
    version.resize(kVersionBytes, '\0');
    w.bytes = version;
    w.u32(kMagic);
    w.u32(kLayoutVersion);
    w.u32(0); // total size, filled in below
    transfer(w, image);
    // The writer goes through the same code as the reader, which needs mutable fields; it
    // changes nothing.
    transferAnalysis(w, const_cast<MyDocument&>(doc));
    const std::uint32_t total = static_cast<std::uint32_t>(w.bytes.size() + 4);
    for (int i = 0; i < 4; ++i)
        w.bytes[kVersionBytes + 8 + i] = static_cast<char>((total >> (8 * i)) & 0xff);
    w.u32(checksum(w.bytes.data(), w.bytes.size()));
    return w.bytes;
}

bool ConfigurationFile::decode(const std::string& bytes, MyDocument& doc, Scope scope)
{
    if (bytes.size() < kHeaderBytes + 4 || bytes.compare(0, 10, "Tessaphon ") != 0)
        return false;
    Reader header(bytes, kVersionBytes);
    if (header.u32() != kMagic || header.u32() != static_cast<std::uint32_t>(kLayoutVersion) ||
        header.u32() != bytes.size())
        return false;
    Reader tail(bytes, bytes.size() - 4);
    if (tail.u32() != checksum(bytes.data(), bytes.size() - 4))
        return false;

    // The whole body is read into scratch (the analysis settings only checked) before anything of
    // the document changes.
    Image image;
    Reader body(bytes, kHeaderBytes);
    transfer(body, image);
    const std::size_t analysisAt = body.pos;
    Checker check(body);
    transferAnalysis(check, std::as_const(doc));
    if (body.failed() || body.pos != bytes.size() - 4 || !plausible(image))
        return false;
    applyNewDocumentSettings(image, doc);
    if (scope == Scope::Everything) {
        Reader analysis(bytes, analysisAt);
        transferAnalysis(analysis, doc);
    }
    return true;
}

bool ConfigurationFile::read(const std::string& path, MyDocument& doc, Scope scope)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!decode(bytes, doc, scope)) {
        Log::line("configuration file ignored: " + path);
        return false;
    }
    return true;
}

bool ConfigurationFile::write(const std::string& path, const MyDocument& doc, std::string* error)
{
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::path target(path);
    if (target.has_parent_path())
        fs::create_directories(target.parent_path(), ec);
    if (const int failure = writeFileAtomically(path, encode(doc)); failure != 0) {
        if (error)
            *error = "cannot write " + path + ": " + std::strerror(failure);
        return false;
    }
    return true;
}

bool ConfigurationFile::writeShowGridData(const std::string& path, bool show)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    // Only a file of this very version is rewritten: its version text is what it starts with.
    const std::string version = versionText();
    if (bytes.size() <= version.size() ||
        bytes.compare(0, version.size() + 1, version.c_str(), version.size() + 1) != 0)
        return false;
    MyDocument image;
    if (!decode(bytes, image, Scope::Everything))
        return false;
    image._bShowGridData = show ? 1 : 0;
    return write(path, image);
}

void ConfigurationFile::install()
{
    MyDocument::setConfigurationLoader([](MyDocument& doc) {
        const std::string path = defaultPath();
        std::error_code ec;
        if (std::filesystem::exists(path, ec))
            read(path, doc, Scope::NewDocument);
        else
            write(path, doc);
    });
    MyDocument::setConfigurationWriter([](MyDocument& doc) {
        std::string error;
        if (!write(defaultPath(), doc, &error))
            Log::line(error);
    });
}
