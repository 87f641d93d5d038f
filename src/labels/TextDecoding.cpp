#include "labels/TextDecoding.h"

#include <cstdint>

namespace
{
bool decodeUtf16(std::string_view bytes, bool bigEndian, std::string& text, std::string& why)
{
    if (bytes.size() % 2 != 0) {
        why = "the UTF-16 text ends in the middle of a character";
        return false;
    }
    const auto unit = [&](std::size_t i) {
        const auto a = static_cast<std::uint8_t>(bytes[i]);
        const auto b = static_cast<std::uint8_t>(bytes[i + 1]);
        return static_cast<char32_t>(bigEndian ? (a << 8 | b) : (b << 8 | a));
    };
    text.clear();
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        char32_t cp = unit(i);
        if (cp >= 0xDC00 && cp <= 0xDFFF) {
            why = "the UTF-16 text holds an unpaired surrogate at byte " + std::to_string(i);
            return false;
        }
        if (cp >= 0xD800 && cp <= 0xDBFF) {
            const char32_t low = i + 3 < bytes.size() ? unit(i + 2) : 0;
            if (low < 0xDC00 || low > 0xDFFF) {
                why = "the UTF-16 text holds an unpaired surrogate at byte " + std::to_string(i);
                return false;
            }
            cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
            i += 2;
        }
        appendUtf8(text, cp);
    }
    return true;
}
} // namespace

void appendUtf8(std::string& out, char32_t cp)
{
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

bool isValidUtf8(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const auto c = static_cast<std::uint8_t>(text[i]);
        const std::size_t more = c < 0x80           ? 0
                                 : (c >> 5) == 0x6  ? 1
                                 : (c >> 4) == 0xE  ? 2
                                 : (c >> 3) == 0x1E ? 3
                                                    : 9;
        if (more == 9 || i + more >= text.size())
            return false;
        for (std::size_t k = 1; k <= more; ++k)
            if ((static_cast<std::uint8_t>(text[i + k]) & 0xC0) != 0x80)
                return false;
        i += more + 1;
    }
    return true;
}

bool decodeText(std::string_view bytes, std::string& text, std::string& why)
{
    if (bytes.size() >= 2 && bytes[0] == '\xFE' && bytes[1] == '\xFF')
        return decodeUtf16(bytes.substr(2), true, text, why);
    if (bytes.size() >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE')
        return decodeUtf16(bytes.substr(2), false, text, why);
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF")
        bytes.remove_prefix(3);
    if (isValidUtf8(bytes)) {
        text.assign(bytes);
        return true;
    }
    text.clear();
    for (const char c : bytes)
        appendUtf8(text, static_cast<std::uint8_t>(c));
    return true;
}
