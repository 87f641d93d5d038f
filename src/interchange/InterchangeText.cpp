#include "interchange/InterchangeText.h"

#include <cctype>
#include <charconv>
#include <cmath>

std::vector<NumberedLine> numberedLines(std::string_view text)
{
    std::vector<NumberedLine> lines;
    int number = 1;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos)
            end = text.size();
        std::string_view line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        lines.push_back({number++, line});
        start = end + 1;
    }
    return lines;
}

std::string_view trimBlanks(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::vector<std::string_view> blankFields(std::string_view line, std::size_t most)
{
    std::vector<std::string_view> fields;
    std::size_t pos = line.find_first_not_of(" \t");
    while (pos != std::string_view::npos) {
        if (most != 0 && fields.size() + 1 == most) {
            fields.push_back(trimBlanks(line.substr(pos)));
            break;
        }
        const std::size_t end = line.find_first_of(" \t", pos);
        fields.push_back(
            line.substr(pos, end == std::string_view::npos ? std::string_view::npos : end - pos));
        pos = end == std::string_view::npos ? end : line.find_first_not_of(" \t", end);
    }
    return fields;
}

bool parseDecimal(std::string_view field, double& value)
{
    if (!field.empty() && field.front() == '+')
        field.remove_prefix(1);
    if (field.empty())
        return false;
    const auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), value);
    return ec == std::errc() && end == field.data() + field.size() && std::isfinite(value);
}

std::string joinNames(const std::vector<std::string>& names)
{
    std::string out;
    for (const std::string& name : names)
        out += (out.empty() ? "" : ", ") + name;
    return out;
}

std::string lowered(std::string_view text)
{
    std::string out(text);
    for (char& c : out)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

void appendTimePoint(TimedParameters& out, int line, const std::vector<std::string_view>& fields,
                     const std::vector<int>& target)
{
    double time = 0.0;
    if (!parseDecimal(fields[0], time))
        throw InterchangeError{line, "the time \"" + std::string(fields[0]) + "\" is not a number"};
    if (!out.times.empty() && time < out.times.back())
        throw InterchangeError{line, "the time goes back (" + std::string(fields[0]) + " ms after " +
                                         std::to_string(out.times.back()) + " ms)"};
    std::vector<double> values(out.columnRows.size(), 0.0);
    for (std::size_t i = 1; i < fields.size(); ++i) {
        double value = 0.0;
        if (target[i - 1] < 0)
            continue;
        if (!parseDecimal(fields[i], value))
            throw InterchangeError{line, "\"" + std::string(fields[i]) + "\" in column " +
                                             std::to_string(i + 1) + " is not a number"};
        values[static_cast<std::size_t>(target[i - 1])] = value;
    }
    out.times.push_back(time);
    out.values.push_back(std::move(values));
}
