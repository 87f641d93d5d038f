#pragma once
// The grid of a document: column-major, one column of 50 signed 16-bit cells per frame, plus
// two spare columns after the frames. A new grid holds the parameters' defaults in every frame
// column and zeros in the spare ones.
//
// Columns are stored only from the first one up to the last one written: the columns after
// them read as the defaults (or zeros) they were made with. A document whose value lines stop
// early, or one that declares an hour and holds a few frames, costs the frames it holds, not
// the frames it declares. Writing through the non-const operator[] stores every column up to
// the one written; code that only reads should read through a const reference.
// Main thread only, like the channel that owns it.
#include "document/BulkMemory.h"

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

constexpr int kGridRows = 50; // 16-bit cells per grid column

using GridColumn = std::array<std::int16_t, kGridRows>;

class DataGrid
{
public:
    // Reads the columns in order, stored or made, without storing any (random access).
    class const_iterator
    {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = GridColumn;
        using difference_type = std::ptrdiff_t;
        using pointer = const GridColumn*;
        using reference = const GridColumn&;

        const_iterator() = default;
        const_iterator(const DataGrid* grid, std::size_t index) : m_pGrid(grid), m_nIndex(index) {}
        reference operator*() const { return (*m_pGrid)[m_nIndex]; }
        pointer operator->() const { return &**this; }
        reference operator[](difference_type n) const { return *(*this + n); }
        const_iterator& operator++() { return *this += 1; }
        const_iterator operator++(int) { return std::exchange(*this, *this + 1); }
        const_iterator& operator--() { return *this -= 1; }
        const_iterator operator--(int) { return std::exchange(*this, *this - 1); }
        const_iterator& operator+=(difference_type n)
        {
            m_nIndex = static_cast<std::size_t>(static_cast<difference_type>(m_nIndex) + n);
            return *this;
        }
        const_iterator& operator-=(difference_type n) { return *this += -n; }
        friend const_iterator operator+(const_iterator i, difference_type n) { return i += n; }
        friend const_iterator operator+(difference_type n, const_iterator i) { return i += n; }
        friend const_iterator operator-(const_iterator i, difference_type n) { return i -= n; }
        friend difference_type operator-(const const_iterator& a, const const_iterator& b)
        {
            return static_cast<difference_type>(a.m_nIndex) - static_cast<difference_type>(b.m_nIndex);
        }
        friend bool operator==(const const_iterator& a, const const_iterator& b)
        {
            return a.m_nIndex == b.m_nIndex;
        }
        friend auto operator<=>(const const_iterator& a, const const_iterator& b)
        {
            return a.m_nIndex <=> b.m_nIndex;
        }

    private:
        const DataGrid* m_pGrid = nullptr;
        std::size_t m_nIndex = 0;
    };

    const_iterator begin() const { return {this, 0}; }
    const_iterator end() const { return {this, m_nColumns}; }

    std::size_t size() const { return m_nColumns; }
    bool empty() const { return m_nColumns == 0; }
    void clear();
    // `columns` columns of which the first `filled` read as `fill` and the others as zeros;
    // nothing is stored yet.
    void assign(std::size_t columns, std::size_t filled, const GridColumn& fill);

    // Column i for writing; the columns before it are stored too. An index past the end gives
    // a scratch column whose writes are dropped. Throws std::bad_alloc when memory runs out.
    GridColumn& operator[](std::size_t i);
    // Column i as stored or as made; an index past the end reads as zeros.
    const GridColumn& operator[](std::size_t i) const;

    // Stores the first `count` columns (no more than the grid has) in one step, for a writer
    // that fills them in order. Throws std::bad_alloc.
    void store(std::size_t count);
    // Columns held in memory (for tests and memory accounting).
    std::size_t storedColumns() const { return m_stored.size(); }

private:
    const GridColumn& made(std::size_t i) const { return i < m_nFilled ? m_fill : m_zero; }

    std::vector<GridColumn, bulk::Allocator<GridColumn>> m_stored; // a long grid is paged in few faults
    std::size_t m_nColumns = 0;
    std::size_t m_nFilled = 0;
    GridColumn m_fill{};
    GridColumn m_zero{};
    GridColumn m_scratch{};
};
