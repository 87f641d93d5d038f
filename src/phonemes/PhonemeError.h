#pragma once
// The one failure of the phoneme subsystem: a table that cannot be read ("FILE:LINE: what"), an
// input symbol that is not in the inventory ("unknown symbol "X" at position N"), or English
// text the phonemizer could not take. The message is complete as it stands: callers show it.
#include <stdexcept>
#include <string>

class PhonemeError : public std::runtime_error
{
public:
    explicit PhonemeError(const std::string& message) : std::runtime_error(message) {}
};
