// Parameter documents (type "stk"): the writer of the table data as tab-separated CR LF text,
// the atomic save, and the document's entry points to the reader (StkFileReader.cpp).
//
// Layout, one item per line: length ms, sample rate, update interval | cascade flag, anchor
// count, seven zeros, version marker | thirty colour components (x 255) | the 48 selection
// flags, ten per line | anchors "name,column", ten per line (only when there are any) |
// parameter names | one line of values per frame. Every number and name is followed by a tab.
#include "document/AtomicFile.h"
#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "document/ParameterDocumentText.h"
#include "document/TableReader.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstring>

namespace
{

constexpr int kFileMarker = 50;
// Snapshots carry the anchors of hidden rows too; their own marker keeps them apart from files.
constexpr int kSnapshotMarker = 51;

// Truncation toward zero into an int, saturating; NaN gives 0.
int truncateToInt(double v)
{
    if (std::isnan(v))
        return 0;
    if (v >= static_cast<double>(INT_MAX))
        return INT_MAX;
    if (v <= static_cast<double>(INT_MIN))
        return INT_MIN;
    return static_cast<int>(v);
}

// Writes a section of entries ten to a line: a line end after every tenth entry and one more
// when the section closes, so a section of a multiple of ten entries ends with an empty line.
class TenPerLine
{
public:
    explicit TenPerLine(std::string& text) : m_text(text) {}
    void entryWritten()
    {
        if (++m_nCount == 10) {
            MyDocument::EnterNumber(m_text, 0, true);
            m_nCount = 0;
        }
    }
    void close() { MyDocument::EnterNumber(m_text, 0, true); }

private:
    std::string& m_text;
    int m_nCount = 0;
};

// The shortest decimal text that reads back as the same double, and a tab.
void appendExactNumber(std::string& text, double value)
{
    char digits[32];
    char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    *end++ = '\t';
    text.append(digits, end);
}

void writeSettings(MyDocument& document, std::string& text, int anchors, int marker)
{
    Channels& c = *document.getChannel(0);
    MyDocument::EnterNumber(text, truncateToInt(c.m_dLengthMS), false);
    MyDocument::EnterNumber(text, truncateToInt(c.m_dSampleRate), false);
    MyDocument::EnterNumber(text, document.updateInterval(), false);
    // A snapshot also carries the length exactly: a document made from a recording has a
    // fractional length in ms, and the synthesis sizes its audio by it, so undo must give it
    // back unchanged. Readers of files never look past the third field.
    if (marker == kSnapshotMarker)
        appendExactNumber(text, c.m_dLengthMS);
    MyDocument::EnterNumber(text, 0, true);

    MyDocument::EnterNumber(text, c.m_bCascade_Parallel ? 1 : 0, false);
    MyDocument::EnterNumber(text, anchors, false);
    for (int i = 0; i < 7; ++i)
        MyDocument::EnterNumber(text, 0, false);
    MyDocument::EnterNumber(text, marker, false);
    MyDocument::EnterNumber(text, 0, true);

    for (int i = 0; i < 10; ++i) {
        const Color& colour = document.m_bgColor[i];
        MyDocument::EnterNumber(text, truncateToInt(colour.red * 255.0), false);
        MyDocument::EnterNumber(text, truncateToInt(colour.green * 255.0), false);
        MyDocument::EnterNumber(text, truncateToInt(colour.blue * 255.0), false);
    }
    MyDocument::EnterNumber(text, 0, true);
}

} // namespace

namespace
{

// The lines before the anchors: settings, configuration, colours and the selection flags.
void writeHead(MyDocument& document, const TableReader& table, long long anchors, int marker,
               std::string& head)
{
    writeSettings(document, head, static_cast<int>(std::min<long long>(anchors, INT_MAX)), marker);
    TenPerLine flags(head);
    for (int row = 0; row < kParameterCount; ++row) {
        MyDocument::EnterNumber(head, table.rowSelected(row) ? 1 : 0, false);
        flags.entryWritten();
    }
    flags.close();
}

// The names line of the rows written.
void writeNames(const Channels& c, const TableReader& table, bool allRows, std::string& head)
{
    for (int row = 0; row < kParameterCount; ++row)
        if (allRows || table.rowSelected(row))
            MyDocument::EnterParameter(head, c.m_Parameters[row].strName);
    MyDocument::EnterNumber(head, 0, true);
}

} // namespace

void writeParameterText(MyDocument& document, bool allRows, ParameterTextUse use, std::string& text)
{
    TableReader table(document);
    const Channels& c = *document.getChannel(0);
    const bool snapshot = use == ParameterTextUse::Snapshot;

    // One pass over the cells writes the value lines and collects the anchor entries; the lines
    // before the values (which need the anchor count) are put in front afterwards. Each line is
    // formatted on the stack and appended whole.
    text.clear();
    text.reserve(static_cast<std::size_t>(table.frames()) * kParameterCount * 5 + 64);
    std::string anchorEntries;
    TenPerLine entries(anchorEntries);
    int anchors = 0;
    constexpr std::size_t kLongestLine = kParameterCount * 12 + 2; // "-2147483648\t" a value
    char line[kLongestLine];
    FrameCell cells[kParameterCount];
    for (int k = 1; k <= table.frames(); ++k) {
        table.readColumn(k, cells);
        char* out = line;
        for (int row = 0; row < kParameterCount; ++row) {
            const FrameCell& cell = cells[row];
            if (cell.anchor && (snapshot || cell.selected)) {
                const char* name = c.m_Parameters[row].strName;
                anchorEntries += name ? name : "";
                anchorEntries += ',';
                MyDocument::EnterNumber(anchorEntries, k - 1, false);
                entries.entryWritten();
                ++anchors;
            }
            if (allRows || cell.selected) {
                out = std::to_chars(out, out + 11, cell.value).ptr;
                *out++ = '\t';
            }
        }
        *out++ = '\r';
        *out++ = '\n';
        text.append(line, out);
    }

    std::string head;
    head.reserve(anchorEntries.size() + 1024);
    writeHead(document, table, anchors, snapshot ? kSnapshotMarker : kFileMarker, head);
    if (anchors > 0) {
        entries.close();
        head += anchorEntries;
    }
    writeNames(c, table, allRows, head);
    text.insert(0, head);
}

FrameImage writeSnapshotImage(MyDocument& document, const FrameImage& previous, std::string& head)
{
    TableReader table(document);
    FrameImage frames = table.image(previous);
    head.clear();
    writeHead(document, table, frames.anchorCount(), kSnapshotMarker, head);
    writeNames(*document.getChannel(0), table, true, head);
    return frames;
}

void MyDocument::EnterNumber(std::string& text, int number, bool bCRLFOnly)
{
    if (bCRLFOnly) {
        text += "\r\n";
        return;
    }
    char digits[12];
    char* end = std::to_chars(digits, digits + 11, number).ptr;
    *end++ = '\t';
    text.append(digits, end);
}

void MyDocument::EnterParameter(std::string& text, const char* name)
{
    if (name)
        text += name;
    text += '\t';
}

std::string MyDocument::parameterDocumentText(bool allRows)
{
    std::string text;
    writeParameterText(*this, allRows, ParameterTextUse::File, text);
    return text;
}

std::string MyDocument::Save_STK_FileType50(bool allRows)
{
    std::string text = parameterDocumentText(allRows);
    updateChangeCount(ChangeDone);
    return text;
}

std::string MyDocument::Save_STK_FileType(bool allRows)
{
    std::string text;
    writeParameterText(*this, allRows, ParameterTextUse::Snapshot, text);
    return text;
}

int MyDocument::Read_STK_FileType(std::string_view bytes)
{
    return readParameterText(*this, bytes, ParameterTextUse::File, m_strReadError);
}

bool MyDocument::writeSafelyToURL(const std::string& path, const std::string& typeName, std::string* error)
{
    const std::string text = Save_STK_FileType50(m_bSaveAll != 0);
    const int errorNumber = writeFileAtomically(path, text);
    const bool saved = errorNumber == 0;
    // Revert reloads _fileData, so it keeps the text of the last save that reached the disk.
    _bDoRevert = saved ? 1 : 0;
    if (!saved) {
        if (error)
            *error = "cannot save \"" + path + "\": " + std::strerror(errorNumber);
        return false;
    }
    _fileTypeName = typeName;
    _fileData = text;
    setFileURL(path);
    setFileType(typeName);
    updateChangeCount(ChangeCleared);
    return true;
}
