#pragma once
// The values of a TextGrid text, in order, with the line each starts on. Both text layouts hold
// the same values in the same order; the long one adds names ("xmin =", "intervals: size =")
// that are skipped here, and the indices of its blocks ("item [2]:"), kept so that the reader
// can check them against the counts. Any thread.
#include <string>
#include <string_view>
#include <vector>

struct TextGridToken {
    enum Kind { Number, Text, Flag, Index } kind = Number;
    int line = 0;
    double number = 0.0; // Number; Index: the index
    std::string text;    // Text: the text, quotes undone; Flag: "exists"/"absent"; Index: the block name
};

// Splits `text` (UTF-8) into tokens. False, with `line` and `why` set, for a text whose quote is
// never closed or a number out of range.
bool tokenizeTextGrid(std::string_view text, std::vector<TextGridToken>& tokens, int& line, std::string& why);
