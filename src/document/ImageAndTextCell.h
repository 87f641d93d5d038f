#pragma once
// One value of the parameter table: the value of one parameter in one frame, with the
// parameter's limits, default, shown flag, colours and the frame's anchor flag, plus the text
// the table displays. Cells are shared objects: the table, the data-entry views and the
// document's table data all hold the same cell, so a change through one is seen by all.
//
// A cell is 16 bytes: its own value, displayed number, shown and anchor flags, and the number
// of its row's shared definition (name, definition text, default, limits, colour, background;
// see CellDefinitions). Setting a shared field moves this cell alone to the definition with
// that field changed; the other cells of the row keep theirs. The name and definition point at
// the parameter table's constant texts. Columns of cells are made in one allocation
// (newColumn). Main thread only, except that cells may be read where the main thread waits.
#include "document/CellDefinitions.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class ImageAndTextCell;
using CellRef = std::shared_ptr<ImageAndTextCell>;

class ImageAndTextCell
{
public:
    ImageAndTextCell() = default;
    ImageAndTextCell(const ImageAndTextCell& other);
    ImageAndTextCell& operator=(const ImageAndTextCell& other);
    ~ImageAndTextCell();

    // `rows` new cells in one allocation: each reference shares the block, which lives as long
    // as any of them.
    static std::vector<CellRef> newColumn(std::size_t rows);
    // New cells for several columns in one allocation (a few dozen columns at a time keep a
    // table's allocations few without one old cell holding a whole document's block), handed
    // out with columnOf.
    static std::shared_ptr<ImageAndTextCell[]> newCells(std::size_t count);
    // References to cells first .. first + rows - 1 of a block, each sharing it.
    static std::vector<CellRef> columnOf(const std::shared_ptr<ImageAndTextCell[]>& block, std::size_t first,
                                         std::size_t rows);

    // Copies every field from another cell (name, definition, default, value, limits, shown
    // flag, colour, background, anchor) but not the displayed text: callers set the text
    // afterwards with setInttoStringValue().
    void copy(const ImageAndTextCell& other);
    // Takes the other cell's shared definition (name, definition text, default, limits, colour,
    // background) in one step; value, text and flags stay.
    void adoptDefinition(const ImageAndTextCell& other);
    // Sets every shared field at once.
    void setDefinition(const CellDefinition& definition);
    const CellDefinition& definition() const { return CellDefinitions::at(m_nDefinition); }
    bool sharesDefinitionWith(const ImageAndTextCell& other) const
    {
        return m_nDefinition == other.m_nDefinition;
    }

    // Displayed text = the integer in decimal ("%d").
    void setInttoStringValue(int value)
    {
        dropCustomText();
        m_nText = value;
        m_nTextKind = TextNumber;
    }
    void setIntValue(int value) { setInttoStringValue(value); }
    void setStringValue(std::string text);
    std::string stringValue() const;
    // The displayed text read as an integer the way the table reads typed text: leading
    // blanks, an optional sign, then digits; 0 when there are none.
    int intValue() const;

    const char* _strName() const { return definition().name; }
    void set_strName(const char* name);
    const char* _strDefinition() const { return definition().definition; }
    void set_strDefinition(const char* text);
    std::int32_t _nDefaultValue() const { return definition().defaultValue; }
    void set_nDefaultValue(std::int32_t v);
    std::int32_t _nValue() const { return m_nValue; }
    void set_nValue(std::int32_t v) { m_nValue = v; }
    std::int32_t _nMinValue() const { return definition().minValue; }
    void set_nMinValue(std::int32_t v);
    std::int32_t _nMaxValue() const { return definition().maxValue; }
    void set_nMaxValue(std::int32_t v);
    bool _bSelected() const { return m_bSelected; }
    void set_bSelected(bool b) { m_bSelected = b; }
    const RGBColor16& _mColor() const { return definition().colour; }
    void set_mColor(const RGBColor16& c);
    const Color& _nsbgColor() const { return definition().background; }
    void set_nsbgColor(const Color& c);
    bool _bAnchor() const { return m_bAnchor; }
    void set_bAnchor(bool b) { m_bAnchor = b; }

private:
    // What the displayed text is: empty (a new cell), the decimal of m_nText, or a text set
    // with setStringValue that is not such a decimal (kept aside: typed text being read).
    enum TextKind : std::uint8_t { TextEmpty, TextNumber, TextCustom };

    template <typename Change> void changeDefinition(Change change);
    void dropCustomText();

    std::uint32_t m_nDefinition = 0;
    std::int32_t m_nValue = 0;
    std::int32_t m_nText = 0;
    TextKind m_nTextKind = TextEmpty;
    bool m_bSelected = false;
    bool m_bAnchor = false;
};
