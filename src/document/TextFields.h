#pragma once
// The fields of one line of tab-separated text, as they stand (not trimmed): n tabs give n + 1
// fields, an empty line one empty field. The views point into `line`. Any thread.
#include <string_view>
#include <vector>

inline std::vector<std::string_view> tabSeparated(std::string_view line)
{
    std::vector<std::string_view> fields;
    std::size_t start = 0;
    while (true) {
        const std::size_t tab = line.find('\t', start);
        fields.push_back(line.substr(start, tab == std::string_view::npos ? tab : tab - start));
        if (tab == std::string_view::npos)
            return fields;
        start = tab + 1;
    }
}
