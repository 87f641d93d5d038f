#pragma once
// Text files as annotation programs write them, decoded to UTF-8: UTF-8 with or without its
// byte-order mark, UTF-16 with its byte-order mark in either byte order, and, for older files
// that are not valid UTF-8, Latin-1. Any thread.
#include <string>
#include <string_view>

// Decodes `bytes` into `text`. False, with `why` set, for UTF-16 that is cut in the middle of a
// character or holds an unpaired surrogate.
bool decodeText(std::string_view bytes, std::string& text, std::string& why);
// True when `text` is valid UTF-8.
bool isValidUtf8(std::string_view text);
// Appends code point `cp` to `out` as UTF-8.
void appendUtf8(std::string& out, char32_t cp);
