#include "interchange/KlpFormat.h"

#include "document/MyDocument.h"
#include "interchange/InterchangeText.h"
#include "interchange/ParameterNames.h"
#include "table/TableEditing.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace
{
void noteUnknown(TimedParameters& out, std::string_view name)
{
    const std::string n(name);
    if (std::find(out.unknownNames.begin(), out.unknownNames.end(), n) == out.unknownNames.end())
        out.unknownNames.push_back(n);
}

class KlpReader
{
public:
    explicit KlpReader(TimedParameters& out) : m_out(out) {}

    // One line that is not blank and not a comment; throws InterchangeError.
    void take(const NumberedLine& line, std::string_view text)
    {
        if (m_phase == Constants && (text == "__varied_params__" || text == "_varied_params_"))
            m_phase = Header;
        else if (m_phase == Constants)
            constant(line, text);
        else if (m_phase == Header)
            header(line, text);
        else
            row(line, text);
    }

    void finish(int lastLine) const
    {
        if (m_phase == Header)
            throw InterchangeError{lastLine, "the varied parameters have no header line (msec, names...)"};
    }

private:
    void constant(const NumberedLine& line, std::string_view text)
    {
        const std::vector<std::string_view> f = blankFields(text);
        double value = 0.0;
        if (f.size() != 2 || !parseDecimal(f[1], value))
            throw InterchangeError{line.number, "expected a constant \"name value\", found \"" +
                                                    std::string(text) +
                                                    "\" (is the __varied_params__ line missing?)"};
        const std::string name = lowered(f[0]);
        if (name == "du") {
            if (!(value > 0.0))
                throw InterchangeError{line.number, "the length du must be above 0 ms"};
            m_out.lengthMS = value;
        } else if (name == "ui") {
            if (value < 1.0 || value > 1000.0 || value != std::floor(value))
                throw InterchangeError{line.number, "the update interval ui must be a whole 1 to 1000 ms"};
            m_out.intervalMS = static_cast<int>(value);
        } else if (const int r = klpNameRow(name); r >= 0) {
            m_out.constants.push_back({r, value});
        } else {
            noteUnknown(m_out, f[0]);
        }
    }

    void header(const NumberedLine& line, std::string_view text)
    {
        const std::vector<std::string_view> f = blankFields(text);
        const std::string first = lowered(f.front());
        if (first != "msec" && first != "_msec")
            throw InterchangeError{line.number, "the table's first column is \"" + std::string(f.front()) +
                                                    "\", not msec"};
        for (std::size_t i = 1; i < f.size(); ++i) {
            const std::string name = lowered(f[i]);
            int target = -1;
            if (name == "notes") {
                m_notes = i;
            } else if (const int r = klpNameRow(name); r < 0) {
                noteUnknown(m_out, f[i]);
            } else if (std::find(m_out.columnRows.begin(), m_out.columnRows.end(), r) !=
                       m_out.columnRows.end()) {
                throw InterchangeError{line.number, "\"" + std::string(f[i]) + "\" names a parameter twice"};
            } else {
                target = static_cast<int>(m_out.columnRows.size());
                m_out.columnRows.push_back(r);
            }
            m_target.push_back(target);
        }
        m_columns = f.size();
        m_phase = Rows;
    }

    void row(const NumberedLine& line, std::string_view text)
    {
        // Notes as the last column may hold blanks, or be left out.
        const bool notesLast = m_notes + 1 == m_columns;
        const std::vector<std::string_view> f = blankFields(text, notesLast ? m_columns : 0);
        if (f.size() != m_columns && !(notesLast && f.size() + 1 == m_columns))
            throw InterchangeError{line.number, std::to_string(f.size()) + " values where the header names " +
                                                    std::to_string(m_columns) + " columns"};
        appendTimePoint(m_out, line.number, f, m_target);
    }

    enum Phase { Constants, Header, Rows } m_phase = Constants;
    TimedParameters& m_out;
    std::vector<int> m_target; // per column after the time: index into columnRows, -1 ignored
    std::size_t m_columns = 0;
    std::size_t m_notes = 0; // 0: no notes column
};
} // namespace

bool readKlp(std::string_view text, TimedParameters& out, InterchangeError& error)
{
    TimedParameters parsed;
    KlpReader reader(parsed);
    const std::vector<NumberedLine> lines = numberedLines(text);
    try {
        for (const NumberedLine& line : lines) {
            const std::string_view t = trimBlanks(line.text);
            if (!t.empty() && t.front() != '#')
                reader.take(line, t);
        }
        reader.finish(lines.empty() ? 0 : lines.back().number);
    } catch (const InterchangeError& e) {
        error = e;
        return false;
    }
    out = std::move(parsed);
    return true;
}

std::string writeKlp(MyDocument& document)
{
    const Channels& c = *document.getChannel(0);
    const int interval = document.updateInterval();
    const auto frames = static_cast<std::size_t>(frameCount(document));
    // Read as the columns stand, without making those not made yet.
    const auto value = [&](std::size_t frame, int row) {
        int v = 0;
        const long long key = static_cast<long long>(frame + 1) * interval;
        return document._dataTableDictionary.valueAt(key, row, v) ? v : c.m_Parameters[row].nDefaultValue;
    };
    std::vector<int> varied;
    std::ostringstream out;
    out << "# Klatt parameters from Tessaphon: f0 in tenths of Hz, times in ms at each frame's start\n"
        << "du " << static_cast<long long>(static_cast<long long>(frames) * interval) << "\n"
        << "ui " << interval << "\n";
    for (const int row : klpRows()) {
        bool constant = frames > 0;
        for (std::size_t k = 1; k < frames && constant; ++k)
            constant = value(k, row) == value(0, row);
        if (constant)
            out << klpRowName(row) << " " << value(0, row) << "\n";
        else
            varied.push_back(row);
    }
    out << "__varied_params__\n_msec";
    for (const int row : varied)
        out << " " << std::setw(5) << klpRowName(row);
    out << "\n";
    for (std::size_t k = 0; k < frames; ++k) {
        out << std::setw(5) << static_cast<long long>(k) * interval;
        for (const int row : varied)
            out << " " << std::setw(5) << value(k, row);
        out << "\n";
    }
    return out.str();
}
