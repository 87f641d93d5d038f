#pragma once
// One value of the parameter table: the value of one parameter in one frame, with the
// parameter's limits, default, shown flag, colours and the frame's anchor flag, plus the text
// the table displays. Cells are shared objects: the table, the data-entry views and the
// document's table data all hold the same cell, so a change through one is seen by all.
// The name and definition point at the parameter table's constant texts (a 60 s document has
// 288,000 cells; the texts are not copied). Main thread only.
#include "document/Color.h"

#include <cstdint>
#include <memory>
#include <string>

class ImageAndTextCell
{
public:
    ImageAndTextCell() = default;

    // Copies every field from another cell (name, definition, default, value, limits, shown
    // flag, colour, background, anchor) but not the displayed text: callers set the text
    // afterwards with setInttoStringValue().
    void copy(const ImageAndTextCell& other);

    // Displayed text = the integer in decimal ("%d").
    void setInttoStringValue(int value);
    void setIntValue(int value) { setInttoStringValue(value); }
    void setStringValue(std::string text) { m_strText = std::move(text); }
    const std::string& stringValue() const { return m_strText; }
    // The displayed text read as an integer the way the table reads typed text: leading
    // blanks, an optional sign, then digits; 0 when there are none.
    int intValue() const;

    const char* _strName() const { return m_strName; }
    void set_strName(const char* name) { m_strName = name; }
    const char* _strDefinition() const { return m_strDefinition; }
    void set_strDefinition(const char* text) { m_strDefinition = text; }
    std::int32_t _nDefaultValue() const { return m_nDefaultValue; }
    void set_nDefaultValue(std::int32_t v) { m_nDefaultValue = v; }
    std::int32_t _nValue() const { return m_nValue; }
    void set_nValue(std::int32_t v) { m_nValue = v; }
    std::int32_t _nMinValue() const { return m_nMinValue; }
    void set_nMinValue(std::int32_t v) { m_nMinValue = v; }
    std::int32_t _nMaxValue() const { return m_nMaxValue; }
    void set_nMaxValue(std::int32_t v) { m_nMaxValue = v; }
    bool _bSelected() const { return m_bSelected; }
    void set_bSelected(bool b) { m_bSelected = b; }
    const RGBColor16& _mColor() const { return m_mColor; }
    void set_mColor(const RGBColor16& c) { m_mColor = c; }
    const Color& _nsbgColor() const { return m_nsbgColor; }
    void set_nsbgColor(const Color& c) { m_nsbgColor = c; }
    bool _bAnchor() const { return m_bAnchor; }
    void set_bAnchor(bool b) { m_bAnchor = b; }

private:
    const char* m_strName = "";
    const char* m_strDefinition = "";
    std::int32_t m_nDefaultValue = 0;
    std::int32_t m_nValue = 0;
    std::int32_t m_nMinValue = 0;
    std::int32_t m_nMaxValue = 0;
    bool m_bSelected = false;
    bool m_bAnchor = false;
    RGBColor16 m_mColor;
    Color m_nsbgColor = Color::white(); // a new cell has a white background
    std::string m_strText;
};

using CellRef = std::shared_ptr<ImageAndTextCell>;
