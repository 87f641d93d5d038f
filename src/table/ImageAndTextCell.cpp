#include "table/ImageAndTextCell.h"

#include <cctype>
#include <charconv>
#include <climits>

void ImageAndTextCell::copy(const ImageAndTextCell& o)
{
    m_strName = o.m_strName;
    m_strDefinition = o.m_strDefinition;
    m_nDefaultValue = o.m_nDefaultValue;
    m_nValue = o.m_nValue;
    m_nMinValue = o.m_nMinValue;
    m_nMaxValue = o.m_nMaxValue;
    m_bSelected = o.m_bSelected;
    m_mColor = o.m_mColor;
    m_nsbgColor = o.m_nsbgColor;
    m_bAnchor = o.m_bAnchor;
}

void ImageAndTextCell::setInttoStringValue(int value)
{
    char buffer[16];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    m_strText.assign(buffer, result.ptr);
}

int ImageAndTextCell::intValue() const
{
    const char* p = m_strText.c_str();
    while (*p && std::isspace(static_cast<unsigned char>(*p)))
        ++p;
    bool negative = false;
    if (*p == '+' || *p == '-')
        negative = *p++ == '-';
    long long value = 0;
    while (std::isdigit(static_cast<unsigned char>(*p))) {
        value = value * 10 + (*p++ - '0');
        if (value > INT_MAX)
            return negative ? INT_MIN : INT_MAX; // saturate like a text-to-integer conversion
    }
    return static_cast<int>(negative ? -value : value);
}
