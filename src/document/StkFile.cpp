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

// What the writer needs of one cell. A frame column missing from the table data (the column
// count changed without a rebuild) is written from the parameter record.
struct FrameCell {
    int value;
    bool selected;
    bool anchor;
};

FrameCell frameCell(const ImageAndTextCell& c)
{
    return {c._nValue(), c._bSelected(), c._bAnchor()};
}

// The cells the writer reads, column by column (k = 0 the row headers, 1 .. frames() the
// frames), rows in order. A document whose table data has not been built (read but never
// shown) is written from what the table data would be built with: the grid's values and anchor
// list when it has a grid, else the parameter records, without building it.
class TableReader
{
public:
    explicit TableReader(MyDocument& document) : m_channel(*document.getChannel(0))
    {
        const int interval = document.updateInterval();
        const int frames = std::max(m_channel.m_nColumnNum, 0);
        m_nFrames = frames;
        if (document._dataTableDictionary.empty()) {
            // The same limit as building the table data, which would refuse it.
            if (frames > MyDocument::kMaxFrames)
                throw DocumentException::tooManyFrames(frames, MyDocument::kMaxFrames);
            if (!m_channel.m_snppDataImage_Col_Row.empty())
                collectAnchors();
            return;
        }
        m_columns.resize(static_cast<std::size_t>(frames) + 1);
        for (int k = 0; k <= frames; ++k)
            m_columns[k] = document._dataTableDictionary.objectForKey(static_cast<long long>(k) * interval);
    }
    int frames() const { return m_nFrames; }

    // Cells must be asked for in order (column by column, rows in order) when the table data
    // is not built.
    FrameCell cell(int column, int row)
    {
        const ParameterDefinition& p = m_channel.m_Parameters[row];
        if (m_columns.empty())
            return unbuiltCell(column, row);
        const CellArray* cells = m_columns[column];
        if (cells && static_cast<std::size_t>(row) < cells->size() && (*cells)[row])
            return frameCell(*(*cells)[row]);
        return {p.nValue, p.bSelected != 0, false};
    }
    // The cells of a whole frame column when it has every row, or nullptr.
    const CellArray* fullColumn(int column) const
    {
        if (m_columns.empty())
            return nullptr;
        const CellArray* cells = m_columns[column];
        if (!cells || cells->size() < static_cast<std::size_t>(kParameterCount))
            return nullptr;
        for (int row = 0; row < kParameterCount; ++row)
            if (!(*cells)[row])
                return nullptr;
        return cells;
    }
    // The row header's selection flag (column "0").
    bool rowSelected(int row) const
    {
        if (m_columns.empty() || !m_columns[0] || static_cast<std::size_t>(row) >= m_columns[0]->size() ||
            !(*m_columns[0])[row])
            return m_channel.m_Parameters[row].bSelected != 0;
        return (*m_columns[0])[row]->_bSelected();
    }

private:
    // The anchor list as cell numbers (frame x rows + row) in writing order.
    void collectAnchors()
    {
        const auto& list = m_channel.m_pAnchorPosition;
        for (std::size_t i = 0; i + 1 < list.size(); i += 2) {
            const long long row = list[i], frame = list[i + 1];
            if (row >= 0 && row < kParameterCount && frame >= 0 && frame < m_nFrames)
                m_anchors.push_back(frame * kParameterCount + row);
        }
        std::sort(m_anchors.begin(), m_anchors.end());
    }

    FrameCell unbuiltCell(int column, int row)
    {
        const ParameterDefinition& p = m_channel.m_Parameters[row];
        const DataGrid& grid = m_channel.m_snppDataImage_Col_Row;
        const std::size_t frame = static_cast<std::size_t>(column - 1);
        const bool fromGrid = !grid.empty();
        const long long number = static_cast<long long>(frame) * kParameterCount + row;
        while (m_nNextAnchor < m_anchors.size() && m_anchors[m_nNextAnchor] < number)
            ++m_nNextAnchor;
        const bool anchor = m_nNextAnchor < m_anchors.size() && m_anchors[m_nNextAnchor] == number;
        const int value = fromGrid && frame < grid.size() ? grid[frame][row] : p.nValue;
        return {value, p.bSelected != 0, anchor};
    }

    const Channels& m_channel;
    int m_nFrames = 0;
    std::vector<const CellArray*> m_columns; // empty when the table data is not built
    std::vector<long long> m_anchors;
    std::size_t m_nNextAnchor = 0;
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
    for (int k = 1; k <= table.frames(); ++k) {
        const CellArray* column = table.fullColumn(k);
        char* out = line;
        for (int row = 0; row < kParameterCount; ++row) {
            const FrameCell cell = column ? frameCell(*(*column)[row]) : table.cell(k, row);
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
    writeSettings(document, head, anchors, snapshot ? kSnapshotMarker : kFileMarker);
    TenPerLine flags(head);
    for (int row = 0; row < kParameterCount; ++row) {
        MyDocument::EnterNumber(head, table.rowSelected(row) ? 1 : 0, false);
        flags.entryWritten();
    }
    flags.close();
    if (anchors > 0) {
        entries.close();
        head += anchorEntries;
    }
    for (int row = 0; row < kParameterCount; ++row)
        if (allRows || table.rowSelected(row))
            MyDocument::EnterParameter(head, c.m_Parameters[row].strName);
    MyDocument::EnterNumber(head, 0, true);
    text.insert(0, head);
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
