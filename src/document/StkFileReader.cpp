// Reading a parameter document's text (files and undo snapshots) in one pass over the bytes.
//
// Lines 1 to 3 are read by position (settings, synthesis configuration and version marker,
// colours). The sections after them are told apart by their content, which accepts every
// layout the writers have produced: lines of numbers before the names line are selection flags,
// lines of "name,column" entries are anchors, empty lines close sections, the first other line
// holds the parameter names, and every line after it holds the values of one frame.
#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "document/ParameterDocumentText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <new>
#include <string_view>
#include <unordered_map>

namespace
{

constexpr long long kMaxSampleRate = 1000000;

// The fields of a line, split at tabs. The tab that closes a line opens no empty field.
class Fields
{
public:
    explicit Fields(std::string_view line) : m_line(line) {}
    bool next(std::string_view& field)
    {
        if (m_nPos >= m_line.size())
            return false;
        const std::size_t tab = m_line.find('\t', m_nPos);
        const std::size_t end = tab == std::string_view::npos ? m_line.size() : tab;
        field = m_line.substr(m_nPos, end - m_nPos);
        m_nPos = tab == std::string_view::npos ? m_line.size() : tab + 1;
        return true;
    }

private:
    std::string_view m_line;
    std::size_t m_nPos = 0;
};

// A decimal integer at the start of the field (leading blanks, optional sign, digits), as the
// documents write them. Magnitudes saturate at 10^15; false when there are no digits.
bool parseInteger(std::string_view field, long long& value)
{
    std::size_t i = 0;
    while (i < field.size() && field[i] == ' ')
        ++i;
    bool negative = false;
    if (i < field.size() && (field[i] == '-' || field[i] == '+'))
        negative = field[i++] == '-';
    const std::size_t first = i;
    long long v = 0;
    for (; i < field.size() && field[i] >= '0' && field[i] <= '9'; ++i)
        v = std::min(v * 10 + (field[i] - '0'), 1000000000000000LL);
    value = negative ? -v : v;
    return i > first;
}

// The lines of a text one after the other, split at LF with a CR before it dropped; the empty
// piece after the last line end is not a line.
class Lines
{
public:
    explicit Lines(std::string_view text) : m_text(text) {}
    bool next(std::string_view& line)
    {
        if (m_text.empty())
            return false;
        const std::size_t end = m_text.find('\n');
        line = m_text.substr(0, end);
        m_text.remove_prefix(end == std::string_view::npos ? m_text.size() : end + 1);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        return true;
    }
    // The text not read yet.
    std::string_view rest() const { return m_text; }
    // How many lines the rest holds.
    std::size_t count() const
    {
        const auto ends = static_cast<std::size_t>(std::count(m_text.begin(), m_text.end(), '\n'));
        return ends + (!m_text.empty() && m_text.back() != '\n' ? 1 : 0);
    }

private:
    std::string_view m_text;
};

// Everything read from the text before it is applied to the document.
struct ParsedDocument {
    long long lengthMS = 0;
    double exactLengthMS = -1.0; // from a snapshot: the length before truncation, else -1
    long long sampleRate = 0;
    int interval = 10;
    int frames = 0;
    bool cascade = true;
    std::string_view marker;
    std::array<long long, 30> colours{};
    int colourCount = 0;
    std::array<std::uint8_t, kParameterCount> selected{};
    int selectedCount = 0;
    std::vector<std::int32_t> anchors; // (row, zero-based column) pairs
    std::vector<int> columnRows;       // the row of each field of the names line, -1 if unknown
    int knownRows = 0;
    std::string_view values;    // the text from the first value line on
    std::size_t valueLines = 0; // value lines read: those present, no more than the frames
};

// Parameter name -> row, with "atv" taken for apv in documents marked "30".
class NameIndex
{
public:
    NameIndex(const Channels& channel, bool atvIsApv)
    {
        for (int row = kParameterCount - 1; row >= 0; --row)
            if (const char* name = channel.m_Parameters[row].strName)
                m_rows[name] = row;
        if (atvIsApv)
            m_rows.emplace("atv", Row::apv);
    }
    int rowOf(std::string_view name) const
    {
        const auto it = m_rows.find(name);
        return it == m_rows.end() ? -1 : it->second;
    }

private:
    std::unordered_map<std::string_view, int> m_rows;
};

// A snapshot's fourth field: the exact length, taken only when it truncates to the first.
void readExactLength(std::string_view field, ParsedDocument& doc)
{
    double length = 0.0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), length);
    if (error == std::errc() && end == field.data() + field.size() && std::isfinite(length) &&
        length >= 0.0 && std::floor(length) == static_cast<double>(doc.lengthMS))
        doc.exactLengthMS = length;
}

bool readSettingsLine(std::string_view line, ParameterTextUse use, ParsedDocument& doc, std::string& reason)
{
    Fields fields(line);
    std::string_view f;
    long long interval = 0;
    if (!(fields.next(f) && parseInteger(f, doc.lengthMS) && fields.next(f) &&
          parseInteger(f, doc.sampleRate) && fields.next(f) && parseInteger(f, interval))) {
        reason = "the first line does not hold the length, sample rate and update interval";
        return false;
    }
    if (use == ParameterTextUse::Snapshot && fields.next(f))
        readExactLength(f, doc);
    if (doc.lengthMS < 0 || doc.lengthMS > MyDocument::kMaxLengthMS) {
        reason = "the length of " + std::to_string(doc.lengthMS) + " ms is out of range (0 to one hour)";
        return false;
    }
    if (doc.sampleRate < 1 || doc.sampleRate > kMaxSampleRate) {
        reason = "the sample rate of " + std::to_string(doc.sampleRate) + " Hz is out of range";
        return false;
    }
    if (interval > MyDocument::kMaxLengthMS) {
        reason = "the update interval of " + std::to_string(interval) + " ms is out of range";
        return false;
    }
    // An interval below 1 is read as 10, as everywhere the interval is used.
    doc.interval = interval < 1 ? 10 : static_cast<int>(interval);
    const long long frames = doc.lengthMS / doc.interval;
    if (frames > MyDocument::kMaxFrames) {
        reason = "the document has " + std::to_string(frames) + " frames; at most " +
                 std::to_string(MyDocument::kMaxFrames) + " are read";
        return false;
    }
    doc.frames = static_cast<int>(frames);
    return true;
}

bool readConfigurationLine(std::string_view line, ParsedDocument& doc, std::string& reason)
{
    Fields fields(line);
    std::string_view f;
    long long cascade = 0;
    if (!(fields.next(f) && parseInteger(f, cascade))) {
        reason = "the second line does not hold the synthesis configuration";
        return false;
    }
    doc.cascade = cascade != 0;
    // Field 1, the anchor count, is not trusted: the anchors are counted as they are read.
    for (int i = 1; i <= 9 && fields.next(f); ++i)
        if (i == 9)
            doc.marker = f;
    return true;
}

void readColourLine(std::string_view line, ParsedDocument& doc)
{
    Fields fields(line);
    std::string_view f;
    while (doc.colourCount < 30 && fields.next(f) && parseInteger(f, doc.colours[doc.colourCount]))
        ++doc.colourCount;
}

// A line every field of which is a number (and which has at least one field).
bool isNumberLine(std::string_view line)
{
    Fields fields(line);
    std::string_view f;
    long long v = 0;
    bool any = false;
    while (fields.next(f)) {
        if (!parseInteger(f, v))
            return false;
        any = true;
    }
    return any;
}

void readSelectionLine(std::string_view line, ParsedDocument& doc)
{
    Fields fields(line);
    std::string_view f;
    long long v = 0;
    while (doc.selectedCount < kParameterCount && fields.next(f) && parseInteger(f, v))
        doc.selected[doc.selectedCount++] = v != 0 ? 1 : 0;
}

// Entries "name,column"; entries with an unknown name or a column outside the frames are
// dropped.
void readAnchorLine(std::string_view line, const NameIndex& names, ParsedDocument& doc)
{
    Fields fields(line);
    std::string_view f;
    while (fields.next(f)) {
        const std::size_t comma = f.rfind(',');
        long long column = 0;
        if (comma == std::string_view::npos || !parseInteger(f.substr(comma + 1), column))
            continue;
        const int row = names.rowOf(f.substr(0, comma));
        if (row >= 0 && column >= 0 && column < doc.frames) {
            doc.anchors.push_back(row);
            doc.anchors.push_back(static_cast<std::int32_t>(column));
        }
    }
}

void readNamesLine(std::string_view line, const NameIndex& names, ParsedDocument& doc)
{
    Fields fields(line);
    std::string_view f;
    while (fields.next(f)) {
        const int row = names.rowOf(f);
        doc.columnRows.push_back(row);
        doc.knownRows += row >= 0 ? 1 : 0;
    }
}

bool parseDocument(const Channels& channel, std::string_view text, ParameterTextUse use, ParsedDocument& doc,
                   std::string& reason)
{
    Lines lines(text);
    std::string_view settings, configuration, line;
    if (!lines.next(settings) || !lines.next(configuration)) {
        reason = "the document is empty or ends after its first line";
        return false;
    }
    if (!readSettingsLine(settings, use, doc, reason) || !readConfigurationLine(configuration, doc, reason))
        return false;
    if (lines.next(line))
        readColourLine(line, doc);

    const NameIndex names(channel, doc.marker == "30");
    bool haveNames = false;
    while (!haveNames && lines.next(line)) {
        if (line.empty())
            continue;
        if (line.substr(0, line.find('\t')).find(',') != std::string_view::npos)
            readAnchorLine(line, names, doc);
        else if (isNumberLine(line))
            readSelectionLine(line, doc);
        else {
            readNamesLine(line, names, doc);
            haveNames = true;
        }
    }
    doc.values = lines.rest();
    doc.valueLines = std::min<std::size_t>(lines.count(), static_cast<std::size_t>(doc.frames));
    return true;
}

// Colour components are stored x 255 and truncated. A snapshot leaves a component alone when it
// already truncates to the stored number, so that undo does not coarsen the colours.
void applyColours(MyDocument& document, const ParsedDocument& doc, bool keepEquivalent)
{
    for (int i = 0; i < doc.colourCount; ++i) {
        Color& colour = document.m_bgColor[i / 3];
        double& component = i % 3 == 0 ? colour.red : i % 3 == 1 ? colour.green : colour.blue;
        const long long stored = std::clamp(doc.colours[i], 0LL, 255LL);
        if (keepEquivalent && colour.isSet && static_cast<long long>(component * 255.0) == stored)
            continue;
        component = stored / 255.0;
        colour.alpha = 1.0;
        colour.isSet = true;
    }
}

// A value for a grid cell of `row`. One outside the cell's 16-bit range would wrap into an
// unrelated number: it becomes the row's limit on its side instead, and is counted.
std::int16_t gridValue(const ParameterDefinition& row, long long value, long long& clamped)
{
    if (value >= INT16_MIN && value <= INT16_MAX)
        return static_cast<std::int16_t>(value);
    ++clamped;
    const long long limit = value > 0 ? row.nMaxValue : row.nMinValue;
    return static_cast<std::int16_t>(std::clamp<long long>(limit, INT16_MIN, INT16_MAX));
}

// Fills the grid from the value lines; answers how many values were clamped.
long long fillGrid(Channels& channel, const ParsedDocument& doc)
{
    long long value = 0;
    long long clamped = 0;
    Lines lines(doc.values);
    std::string_view line;
    for (std::size_t k = 0; k < doc.valueLines && lines.next(line); ++k) {
        GridColumn& column = channel.m_snppDataImage_Col_Row[k];
        Fields fields(line);
        std::string_view f;
        for (std::size_t j = 0; j < doc.columnRows.size() && fields.next(f); ++j) {
            const int row = doc.columnRows[j];
            if (row >= 0 && parseInteger(f, value))
                column[row] = gridValue(channel.m_Parameters[row], value, clamped);
        }
    }
    return clamped;
}

} // namespace

namespace
{

// Puts what was parsed into the document: the grid first (when memory runs out the settings stay
// as they were), then the settings, colours, flags and anchors, then the values through
// `fill`, which answers how many it clamped.
template <typename Fill>
int applyDocument(MyDocument& document, ParsedDocument& doc, ParameterTextUse use, std::string& reason,
                  Fill fill)
{
    Channels& c = *document.getChannel(0);
    const int columns = c.m_nColumnNum;
    c.m_nColumnNum = doc.frames;
    try {
        document.SetUpDataGridMemory();
        // Only the frames the text holds are stored; the others keep reading as the defaults.
        c.m_snppDataImage_Col_Row.store(doc.valueLines);
    } catch (const DocumentException& e) {
        c.m_nColumnNum = columns;
        reason = e.reason();
        return -1;
    } catch (const std::bad_alloc&) {
        c.m_nColumnNum = columns;
        reason = "Unable to allocate memory, in setupdatagrid";
        return -1;
    }
    c.m_dLengthMS = doc.exactLengthMS >= 0.0 ? doc.exactLengthMS : static_cast<double>(doc.lengthMS);
    c.m_dSampleRate = static_cast<double>(doc.sampleRate);
    c.m_nUpdateIntervalMS = doc.interval;
    c.m_bCascade_Parallel = doc.cascade ? 1 : 0;
    c.m_bParallel = doc.cascade ? 0 : 1;
    applyColours(document, doc, use == ParameterTextUse::Snapshot);
    for (int row = 0; row < doc.selectedCount; ++row)
        c.m_Parameters[row].bSelected = doc.selected[row];
    c.m_pAnchorPosition = std::move(doc.anchors);
    c.m_nNumberofAnchors = static_cast<std::int32_t>(c.m_pAnchorPosition.size() / 2);
    c.m_nParameterNumber = doc.knownRows;
    const long long clamped = fill(c);
    c.m_bHaveData = 1;
    c.m_bSynthesize = 1;
    if (use == ParameterTextUse::File) {
        document.noteFramesRead(static_cast<int>(doc.valueLines), doc.frames);
        document.m_bver50 = doc.marker == "50" ? 1 : 0;
        document.m_bAudiofile = 0;
        document.m_nClampedValues = clamped;
        document.setFileType("stk");
    }
    return 0;
}

} // namespace

int readParameterText(MyDocument& document, std::string_view text, ParameterTextUse use, std::string& reason)
{
    ParsedDocument doc;
    reason.clear();
    if (!parseDocument(*document.getChannel(0), text, use, doc, reason))
        return -1;
    return applyDocument(document, doc, use, reason, [&doc](Channels& c) { return fillGrid(c, doc); });
}

int readSnapshotImage(MyDocument& document, std::string_view head, const FrameImage& frames,
                      std::string& reason, bool* gridIsImage)
{
    ParsedDocument doc;
    reason.clear();
    if (!parseDocument(*document.getChannel(0), head, ParameterTextUse::Snapshot, doc, reason))
        return -1;
    // The frames stand for the value lines and anchor entries the text would have held after
    // the head: field j of a frame is the written row j, named in the head's names line.
    doc.valueLines = static_cast<std::size_t>(std::min(frames.frames(), doc.frames));
    const std::size_t fields = std::min<std::size_t>(doc.columnRows.size(), kParameterCount);
    for (std::size_t k = 0; k < doc.valueLines; ++k) {
        const std::uint64_t anchors = frames.anchors(static_cast<int>(k));
        for (std::size_t j = 0; anchors != 0 && j < fields; ++j)
            if ((anchors >> j) & 1u && doc.columnRows[j] >= 0) {
                doc.anchors.push_back(doc.columnRows[j]);
                doc.anchors.push_back(static_cast<std::int32_t>(k));
            }
    }
    bool identity = fields == kParameterCount;
    for (std::size_t j = 0; identity && j < fields; ++j)
        identity = doc.columnRows[j] == static_cast<int>(j);
    const bool whole = static_cast<int>(doc.valueLines) == frames.frames() && frames.frames() == doc.frames;
    *gridIsImage = identity && whole && !frames.hasWideValues();
    return applyDocument(document, doc, ParameterTextUse::Snapshot, reason, [&](Channels& c) {
        long long clamped = 0;
        for (std::size_t k = 0; k < doc.valueLines; ++k) {
            GridColumn& column = c.m_snppDataImage_Col_Row[k];
            for (std::size_t j = 0; j < fields; ++j)
                if (const int row = doc.columnRows[j]; row >= 0)
                    column[static_cast<std::size_t>(row)] = gridValue(
                        c.m_Parameters[row], frames.value(static_cast<int>(k), static_cast<int>(j)), clamped);
        }
        return clamped;
    });
}
