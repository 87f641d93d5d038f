#include "table/TableClipboard.h"

#include "table/TableEditing.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace
{
std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    while (true) {
        const std::size_t end = text.find(separator, start);
        pieces.push_back(
            text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start));
        if (end == std::string_view::npos)
            return pieces;
        start = end + 1;
    }
}

std::string_view trimmed(std::string_view field)
{
    const auto blank = [](char c) { return c == ' ' || c == '\r' || c == '"'; };
    while (!field.empty() && blank(field.front()))
        field.remove_prefix(1);
    while (!field.empty() && blank(field.back()))
        field.remove_suffix(1);
    return field;
}

// A decimal number as spreadsheets write them: optional sign, digits, optional fraction.
bool isNumber(std::string_view field)
{
    std::size_t i = field.empty() || (field[0] != '-' && field[0] != '+') ? 0 : 1;
    const std::size_t digits = i;
    while (i < field.size() && field[i] >= '0' && field[i] <= '9')
        ++i;
    if (i == digits)
        return false;
    if (i < field.size() && field[i] == '.')
        for (++i; i < field.size() && field[i] >= '0' && field[i] <= '9'; ++i) {
        }
    return i == field.size();
}

// The values of the text: lines of fields, nullopt for an empty field. Trailing empty fields
// and empty lines at the end are dropped.
using ValueLine = std::vector<std::optional<int>>;

bool parseValues(std::string_view text, std::vector<ValueLine>& lines, std::string& message)
{
    std::vector<std::string_view> textLines = split(text, '\n');
    while (!textLines.empty() && trimmed(textLines.back()).empty())
        textLines.pop_back();
    for (std::size_t n = 0; n < textLines.size(); ++n) {
        std::vector<std::string_view> fields = split(textLines[n], '\t');
        for (std::string_view& f : fields)
            f = trimmed(f);
        while (!fields.empty() && fields.back().empty())
            fields.pop_back();
        const bool numbers = std::all_of(fields.begin(), fields.end(),
                                         [](std::string_view f) { return f.empty() || isNumber(f); });
        if (!numbers && n == 0)
            continue; // the header of parameter names
        ValueLine line;
        for (std::string_view f : fields) {
            if (!f.empty() && !isNumber(f)) {
                message = "“" + std::string(f) + "” in line " + std::to_string(n + 1) + " is not a number.";
                return false;
            }
            line.push_back(f.empty() ? std::nullopt : std::optional<int>(typedInteger(std::string(f))));
        }
        lines.push_back(std::move(line));
    }
    return true;
}

std::string plural(int count, const char* one, const char* many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}
} // namespace

std::string copyCellsAsText(MyDocument& doc, int firstRow, int lastRow, int firstColumn, int lastColumn,
                            TimeColumn timeColumn)
{
    const DataTableDictionary& data = doc._dataTableDictionary;
    const long long key = doc.updateInterval();
    firstRow = std::max(firstRow, 0);
    lastRow = std::min(lastRow, kParameterCount - 1);
    firstColumn = std::max(firstColumn, 1);
    lastColumn = std::min(lastColumn, frameCount(doc));
    if (firstRow > lastRow || firstColumn > lastColumn)
        return {};
    const Channels& c = *doc.getChannel(0);
    const bool timed = timeColumn == TimeColumn::With;
    const long long interval = timed ? doc.updateInterval() : 0;
    std::string text = timed ? "time_ms\t" : "";
    for (int row = firstRow; row <= lastRow; ++row) {
        text += c.m_Parameters[row].strName ? c.m_Parameters[row].strName : "";
        text += row < lastRow ? '\t' : '\n';
    }
    for (int column = firstColumn; column <= lastColumn; ++column) {
        if (timed)
            text += std::to_string((column - 1) * interval) + '\t';
        for (int row = firstRow; row <= lastRow; ++row) {
            int value = 0;
            if (data.valueAt(column * key, row, value)) // read without making the column
                text += std::to_string(value);
            text += row < lastRow ? '\t' : '\n';
        }
    }
    return text;
}

PasteOutcome pasteCellsFromText(MyDocument& doc, int row, int tableColumn, const std::string& text)
{
    PasteOutcome outcome;
    std::vector<ValueLine> lines;
    if (!parseValues(text, lines, outcome.message))
        return outcome;
    for (const ValueLine& line : lines)
        outcome.rows = std::max(outcome.rows, static_cast<int>(line.size()));
    outcome.frames = static_cast<int>(lines.size());
    if (outcome.rows == 0) {
        outcome.message = "There are no values to paste.";
        return outcome;
    }
    const int framesLeft = std::max(0, frameCount(doc) - tableColumn + 1);
    const int rowsLeft = std::max(0, kParameterCount - row);
    if (tableColumn < 1 || row < 0 || outcome.frames > framesLeft || outcome.rows > rowsLeft) {
        outcome.message = "The values of " + plural(outcome.frames, "frame", "frames") + " and " +
                          plural(outcome.rows, "parameter", "parameters") +
                          " do not fit here: from this cell on there " + (framesLeft == 1 ? "is " : "are ") +
                          plural(framesLeft, "frame", "frames") + " and " +
                          plural(rowsLeft, "parameter", "parameters") + ". Nothing was pasted.";
        return outcome;
    }

    doc.saveUndo();
    const long long interval = doc.updateInterval();
    for (int k = 0; k < outcome.frames; ++k) {
        CellArray* cells = doc._dataTableDictionary.objectForKey((tableColumn + k) * interval);
        for (std::size_t j = 0; j < lines[k].size(); ++j) {
            const std::size_t r = static_cast<std::size_t>(row) + j;
            if (lines[k][j] && cells && r < cells->size() && (*cells)[r])
                (*cells)[r] = enteredCell(*(*cells)[r], *lines[k][j]);
        }
    }
    doc.updateChangeCount(MyDocument::ChangeDone);
    doc.saveRedo();
    outcome.pasted = true;
    return outcome;
}
