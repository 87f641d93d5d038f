#pragma once
// The file text of a long parameter document for the benchmarks: `frames` frames whose values
// change every frame, written the way saved files are (a one-frame document's head, then one
// line of 48 values a frame).
#include "document/MyDocument.h"

#include <charconv>
#include <fstream>
#include <string>

inline std::string longDocumentText(int frames)
{
    MyDocument doc;
    Channels& c = *doc.getChannel(0);
    c.m_dLengthMS = 10.0;
    c.m_nColumnNum = 1;
    doc.SetUpDataGridMemory();
    doc.buildDataTableDictionary();
    std::string text = doc.parameterDocumentText(true);
    text.replace(0, text.find('\t'), std::to_string(frames * 10));
    text.resize(text.rfind("\r\n", text.size() - 3) + 2); // drop the one frame's values
    char number[16];
    for (int k = 0; k < frames; ++k) {
        for (int row = 0; row < kParameterCount; ++row) {
            const int base = c.m_Parameters[row].nValue;
            const int v = base > 0 ? base + (k * 7 + row) % 11 : base;
            text.append(number, std::to_chars(number, number + sizeof number, v).ptr);
            text += '\t';
        }
        text += "\r\n";
    }
    return text;
}

// A line of /proc/self/status in MB ("VmRSS:", "VmHWM:"); 0 when it is not there.
inline double statusMB(const char* field)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(field, 0) == 0)
            return std::stod(line.substr(std::string(field).size())) / 1024.0;
    return 0.0;
}
