#pragma once
#include <atomic>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>

// A progress bar on standard error ("label [#####     ] 12/200"), drawn only when standard
// error is a terminal, cleared when finished or destroyed. advance() may be called from any
// thread.
class ProgressBar
{
public:
    ProgressBar(std::string label, std::size_t total);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void advance(std::size_t steps = 1);
    // Writes a line (with its newline) on standard error without breaking the bar.
    void print(const std::string& line);
    void finish();
    bool shown() const { return m_bEnabled; }

private:
    void draw(std::size_t done);
    void clearLine();

    std::string m_strLabel;
    std::size_t m_nTotal;
    bool m_bEnabled;
    std::atomic<std::size_t> m_nDone{0};
    std::mutex m_mutex;
    int m_nDrawnCells = -1;
    std::chrono::steady_clock::time_point m_lastDraw{};
    bool m_bFinished = false;
};
