#include "document/ImageAndTextCell.h"

#include <cctype>
#include <charconv>
#include <climits>
#include <mutex>
#include <unordered_map>

namespace
{

// Texts that are not the decimal of a number, by cell. Only cells that read typed text have
// one, so a plain map under a lock serves.
struct CustomTexts {
    std::mutex mutex;
    std::unordered_map<const ImageAndTextCell*, std::string> texts;
};

CustomTexts& customTexts()
{
    static CustomTexts* instance = new CustomTexts(); // cells may outlive static destruction
    return *instance;
}

// True when the text is exactly what setInttoStringValue writes for `value`.
bool isDecimalOf(const std::string& text, int& value)
{
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end)
        return false;
    char buffer[16];
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string_view(buffer, static_cast<std::size_t>(written.ptr - buffer)) == text;
}

int parseLeadingInteger(const char* p)
{
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

} // namespace

ImageAndTextCell::ImageAndTextCell(const ImageAndTextCell& o)
    : m_nDefinition(o.m_nDefinition), m_nValue(o.m_nValue), m_nText(o.m_nText), m_nTextKind(o.m_nTextKind),
      m_bSelected(o.m_bSelected), m_bAnchor(o.m_bAnchor)
{
    CellDefinitions::retain(m_nDefinition);
    if (m_nTextKind == TextCustom) {
        m_nTextKind = TextEmpty;
        setStringValue(o.stringValue());
    }
}

ImageAndTextCell& ImageAndTextCell::operator=(const ImageAndTextCell& o)
{
    if (this == &o)
        return *this;
    copy(o);
    if (o.m_nTextKind == TextCustom)
        setStringValue(o.stringValue());
    else {
        dropCustomText();
        m_nText = o.m_nText;
        m_nTextKind = o.m_nTextKind;
    }
    return *this;
}

ImageAndTextCell::~ImageAndTextCell()
{
    dropCustomText();
    CellDefinitions::release(m_nDefinition);
}

std::vector<CellRef> ImageAndTextCell::newColumn(std::size_t rows)
{
    if (rows == 0)
        return {};
    return columnOf(newCells(rows), 0, rows);
}

std::shared_ptr<ImageAndTextCell[]> ImageAndTextCell::newCells(std::size_t count)
{
    return std::make_shared<ImageAndTextCell[]>(count);
}

std::vector<CellRef> ImageAndTextCell::columnOf(const std::shared_ptr<ImageAndTextCell[]>& block,
                                                std::size_t first, std::size_t rows)
{
    std::vector<CellRef> cells;
    cells.reserve(rows);
    for (std::size_t row = 0; row < rows; ++row)
        cells.emplace_back(block, &block[first + row]);
    return cells;
}

void ImageAndTextCell::copy(const ImageAndTextCell& o)
{
    adoptDefinition(o);
    m_nValue = o.m_nValue;
    m_bSelected = o.m_bSelected;
    m_bAnchor = o.m_bAnchor;
}

void ImageAndTextCell::adoptDefinition(const ImageAndTextCell& o)
{
    if (m_nDefinition == o.m_nDefinition)
        return;
    CellDefinitions::retain(o.m_nDefinition);
    CellDefinitions::release(m_nDefinition);
    m_nDefinition = o.m_nDefinition;
}

void ImageAndTextCell::setDefinition(const CellDefinition& definition)
{
    const std::uint32_t id = CellDefinitions::intern(definition);
    CellDefinitions::release(m_nDefinition);
    m_nDefinition = id;
}

template <typename Change> void ImageAndTextCell::changeDefinition(Change change)
{
    CellDefinition changed = definition();
    change(changed);
    setDefinition(changed);
}

void ImageAndTextCell::set_strName(const char* name)
{
    changeDefinition([name](CellDefinition& d) { d.name = name; });
}

void ImageAndTextCell::set_strDefinition(const char* text)
{
    changeDefinition([text](CellDefinition& d) { d.definition = text; });
}

void ImageAndTextCell::set_nDefaultValue(std::int32_t v)
{
    changeDefinition([v](CellDefinition& d) { d.defaultValue = v; });
}

void ImageAndTextCell::set_nMinValue(std::int32_t v)
{
    changeDefinition([v](CellDefinition& d) { d.minValue = v; });
}

void ImageAndTextCell::set_nMaxValue(std::int32_t v)
{
    changeDefinition([v](CellDefinition& d) { d.maxValue = v; });
}

void ImageAndTextCell::set_mColor(const RGBColor16& c)
{
    changeDefinition([&c](CellDefinition& d) { d.colour = c; });
}

void ImageAndTextCell::set_nsbgColor(const Color& c)
{
    changeDefinition([&c](CellDefinition& d) { d.background = c; });
}

void ImageAndTextCell::setStringValue(std::string text)
{
    dropCustomText();
    int value = 0;
    if (text.empty()) {
        m_nTextKind = TextEmpty;
    } else if (isDecimalOf(text, value)) {
        m_nText = value;
        m_nTextKind = TextNumber;
    } else {
        CustomTexts& custom = customTexts();
        std::lock_guard lock(custom.mutex);
        custom.texts[this] = std::move(text);
        m_nTextKind = TextCustom;
    }
}

std::string ImageAndTextCell::stringValue() const
{
    switch (m_nTextKind) {
    case TextEmpty:
        return {};
    case TextNumber: {
        char buffer[16];
        const auto written = std::to_chars(buffer, buffer + sizeof buffer, m_nText);
        return std::string(buffer, written.ptr);
    }
    case TextCustom:
        break;
    }
    CustomTexts& custom = customTexts();
    std::lock_guard lock(custom.mutex);
    const auto found = custom.texts.find(this);
    return found == custom.texts.end() ? std::string() : found->second;
}

int ImageAndTextCell::intValue() const
{
    if (m_nTextKind == TextNumber)
        return m_nText;
    if (m_nTextKind == TextEmpty)
        return 0;
    return parseLeadingInteger(stringValue().c_str());
}

void ImageAndTextCell::dropCustomText()
{
    if (m_nTextKind != TextCustom)
        return;
    CustomTexts& custom = customTexts();
    std::lock_guard lock(custom.mutex);
    custom.texts.erase(this);
    m_nTextKind = TextEmpty;
}
