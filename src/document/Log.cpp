#include "document/Log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace
{
std::mutex g_mutex;
Log::Sink g_sink;
} // namespace

void Log::setSink(Sink sink)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_sink = std::move(sink);
}

void Log::write(const std::string& text)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    if (g_sink) {
        g_sink(text);
    } else {
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
    }
}

void Log::printf(const char* format, ...)
{
    char buffer[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    write(buffer);
}

void Log::line(const std::string& text)
{
    write(text + "\n");
}
