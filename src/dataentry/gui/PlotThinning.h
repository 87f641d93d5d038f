#pragma once
// What a plot over a long document leaves out of its drawing without changing the picture: with
// hundreds of frames on one pixel column, a point drawn where one was already drawn in that
// column, and of a line's vertices within one column all but the first, the lowest, the highest
// and the last (the line then covers the same pixels). With a frame or more a column, nothing is
// left out. Frames must be given in order. Main thread only.
#include <QPainterPath>
#include <QPointF>

#include <vector>

class PointThinning
{
public:
    // Points of `side` pixels on a plot `height` pixels high.
    PointThinning(int height, int side);
    // Whether a point at the pixel (x, y) (its top left corner) shows anything not drawn yet;
    // points wholly above or below the plot show nothing.
    bool fresh(int x, int y);

private:
    int m_nHeight, m_nSide;
    int m_nColumn;
    std::vector<char> m_drawn; // by y + side + 1 in the current column
    std::vector<int> m_marked;
};

class LineThinning
{
public:
    // The next vertex of the current run of joined vertices.
    void add(const QPointF& p);
    // The run ends; the next vertex starts a new one.
    void breakRun();
    // The path so far, the vertices still held included.
    const QPainterPath& path();

private:
    struct Vertex {
        QPointF p;
        long long order = 0;
    };
    void flush();
    void emitVertex(const QPointF& p);

    QPainterPath m_path;
    bool m_bRunStarted = false; // the path's current subpath belongs to the current run
    bool m_bHolding = false;    // vertices of the current column are held
    int m_nColumn = 0;
    long long m_nOrder = 0;
    Vertex m_first, m_low, m_high, m_last;
};
