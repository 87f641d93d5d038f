#pragma once
// Counts in messages: "1 value", "2 values". Every message that says how many of something
// goes through here, so that none reads "1 values".
#include <string>

inline std::string countedText(long long count, const char* one, const char* many)
{
    return std::to_string(count) + " " + (count == 1 || count == -1 ? one : many);
}
