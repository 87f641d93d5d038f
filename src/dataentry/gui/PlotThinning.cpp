#include "dataentry/gui/PlotThinning.h"

#include <algorithm>
#include <climits>
#include <cmath>

PointThinning::PointThinning(int height, int side)
    : m_nHeight(std::max(height, 0)), m_nSide(side), m_nColumn(INT_MIN),
      m_drawn(static_cast<std::size_t>(m_nHeight + 2 * side + 2), 0)
{
}

bool PointThinning::fresh(int x, int y)
{
    // A point this far above the top edge may still reach in (an outline drawn around it does).
    const int above = m_nSide + 1;
    if (y < -above || y > m_nHeight)
        return false;
    if (x != m_nColumn) {
        for (int i : m_marked)
            m_drawn[static_cast<std::size_t>(i)] = 0;
        m_marked.clear();
        m_nColumn = x;
    }
    const int at = y + above;
    if (m_drawn[static_cast<std::size_t>(at)])
        return false;
    m_drawn[static_cast<std::size_t>(at)] = 1;
    m_marked.push_back(at);
    return true;
}

void LineThinning::add(const QPointF& p)
{
    const int column = static_cast<int>(std::floor(p.x()));
    if (m_bHolding && column != m_nColumn)
        flush();
    const Vertex v{p, m_nOrder++};
    if (!m_bHolding) {
        m_first = m_low = m_high = m_last = v;
        m_nColumn = column;
        m_bHolding = true;
        return;
    }
    if (p.y() < m_low.p.y())
        m_low = v;
    if (p.y() > m_high.p.y())
        m_high = v;
    m_last = v;
}

void LineThinning::breakRun()
{
    flush();
    m_bRunStarted = false;
}

const QPainterPath& LineThinning::path()
{
    flush();
    return m_path;
}

void LineThinning::flush()
{
    if (!m_bHolding)
        return;
    m_bHolding = false;
    Vertex held[] = {m_first, m_low, m_high, m_last};
    std::sort(std::begin(held), std::end(held),
              [](const Vertex& a, const Vertex& b) { return a.order < b.order; });
    long long emitted = -1;
    for (const Vertex& v : held) {
        if (v.order == emitted)
            continue;
        emitVertex(v.p);
        emitted = v.order;
    }
}

void LineThinning::emitVertex(const QPointF& p)
{
    if (m_bRunStarted) {
        m_path.lineTo(p);
        return;
    }
    m_path.moveTo(p);
    m_bRunStarted = true;
}
