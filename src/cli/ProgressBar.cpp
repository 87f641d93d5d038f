#include "cli/ProgressBar.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace
{
constexpr int kBarCells = 30;
constexpr auto kRedrawPeriod = std::chrono::milliseconds(100);
} // namespace

ProgressBar::ProgressBar(std::string label, std::size_t total)
    : m_strLabel(std::move(label)), m_nTotal(total), m_bEnabled(total > 0 && ::isatty(STDERR_FILENO) != 0)
{
    if (m_bEnabled) {
        std::lock_guard lock(m_mutex);
        draw(0);
    }
}

ProgressBar::~ProgressBar()
{
    finish();
}

void ProgressBar::advance(std::size_t steps)
{
    const std::size_t done = m_nDone += steps;
    if (!m_bEnabled)
        return;
    std::lock_guard lock(m_mutex);
    if (m_bFinished)
        return;
    const int cells = static_cast<int>(std::min(done, m_nTotal) * kBarCells / m_nTotal);
    const auto now = std::chrono::steady_clock::now();
    if (cells != m_nDrawnCells || now - m_lastDraw >= kRedrawPeriod || done >= m_nTotal)
        draw(done);
}

void ProgressBar::finish()
{
    if (!m_bEnabled)
        return;
    std::lock_guard lock(m_mutex);
    if (m_bFinished)
        return;
    m_bFinished = true;
    // Clear the line so that what follows (an error line, the shell prompt) starts clean.
    clearLine();
    std::fflush(stderr);
}

void ProgressBar::print(const std::string& line)
{
    std::lock_guard lock(m_mutex);
    const bool barShown = m_bEnabled && !m_bFinished;
    if (barShown)
        clearLine();
    std::fwrite(line.data(), 1, line.size(), stderr);
    if (barShown)
        draw(m_nDone);
    std::fflush(stderr);
}

void ProgressBar::clearLine()
{
    const std::string blank = "\r" + std::string(m_strLabel.size() + kBarCells + 32, ' ') + "\r";
    std::fwrite(blank.data(), 1, blank.size(), stderr);
}

void ProgressBar::draw(std::size_t done)
{
    done = std::min(done, m_nTotal);
    const int cells = static_cast<int>(done * kBarCells / m_nTotal);
    std::string line = "\r" + m_strLabel + " [" + std::string(cells, '#') +
                       std::string(kBarCells - cells, ' ') + "] " + std::to_string(done) + "/" +
                       std::to_string(m_nTotal);
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
    m_nDrawnCells = cells;
    m_lastDraw = std::chrono::steady_clock::now();
}
