#include "interchange/TsvFormat.h"

#include "document/MyDocument.h"
#include "document/TextFields.h"
#include "interchange/InterchangeText.h"
#include "interchange/ParameterNames.h"
#include "table/TableClipboard.h"

#include <algorithm>
#include <cctype>

namespace
{
std::vector<std::string_view> tabFields(std::string_view line)
{
    std::vector<std::string_view> fields = tabSeparated(line);
    for (std::string_view& field : fields)
        field = trimBlanks(field);
    // A line may end with a tab, as the parameter documents' lines do.
    while (fields.size() > 1 && fields.back().empty())
        fields.pop_back();
    return fields;
}

bool isTimeName(std::string_view name)
{
    return lowered(name) == "time_ms";
}

// The header: the row of each column after the time (-1: not used), unknown names noted.
std::vector<int> readHeader(const NumberedLine& line, TimedParameters& out)
{
    const std::vector<std::string_view> names = tabFields(line.text);
    if (!isTimeName(names.front()))
        throw InterchangeError{line.number,
                               "the first column is \"" + std::string(names.front()) + "\", not time_ms"};
    std::vector<int> target;
    for (std::size_t i = 1; i < names.size(); ++i) {
        const int row = parameterRowNamed(names[i]);
        if (row >= 0 && std::find(out.columnRows.begin(), out.columnRows.end(), row) != out.columnRows.end())
            throw InterchangeError{line.number, "\"" + std::string(names[i]) + "\" names a parameter twice"};
        if (row < 0)
            out.unknownNames.emplace_back(names[i]);
        target.push_back(row < 0 ? -1 : static_cast<int>(out.columnRows.size()));
        if (row >= 0)
            out.columnRows.push_back(row);
    }
    return target;
}

void readLine(const NumberedLine& line, const std::vector<int>& target, TimedParameters& out)
{
    const std::vector<std::string_view> f = tabFields(line.text);
    if (f.size() != target.size() + 1)
        throw InterchangeError{line.number, std::to_string(f.size()) + " values where the header names " +
                                                std::to_string(target.size() + 1) + " columns"};
    appendTimePoint(out, line.number, f, target);
}
} // namespace

bool looksLikeTsv(std::string_view text)
{
    const std::vector<NumberedLine> lines = numberedLines(text.substr(0, text.find('\n') + 1));
    return !lines.empty() && isTimeName(tabFields(lines.front().text).front());
}

bool readTsv(std::string_view text, TimedParameters& out, InterchangeError& error)
{
    TimedParameters parsed;
    try {
        std::vector<int> target;
        bool header = false;
        for (const NumberedLine& line : numberedLines(text)) {
            if (trimBlanks(line.text).empty())
                continue;
            if (!header)
                target = readHeader(line, parsed);
            else
                readLine(line, target, parsed);
            header = true;
        }
        if (!header)
            throw InterchangeError{0, "the file is empty"};
    } catch (const InterchangeError& e) {
        error = e;
        return false;
    }
    // The step between the first two times is the frames' length, when it is a whole number.
    if (parsed.times.size() >= 2) {
        const double step = parsed.times[1] - parsed.times[0];
        if (step >= 1.0 && step <= 1000.0 && step == static_cast<int>(step))
            parsed.intervalMS = static_cast<int>(step);
    }
    out = std::move(parsed);
    return true;
}

std::string writeTsv(MyDocument& document)
{
    const int frames = document.getChannel(0)->m_nColumnNum;
    if (frames <= 0)
        return "time_ms\n";
    return copyCellsAsText(document, 0, kParameterCount - 1, 1, frames, TimeColumn::With);
}
