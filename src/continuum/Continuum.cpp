#include "continuum/Continuum.h"

#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "document/ParameterDocumentText.h"

#include <algorithm>
#include <cmath>

namespace
{

DocumentException continuumError(const std::string& reason)
{
    return DocumentException("Continuum", reason);
}

// The values of every parameter row of a document's table data, [row][frame].
std::vector<std::vector<int>> tableValues(const MyDocument& document, int frames, int interval)
{
    std::vector<std::vector<int>> values(kParameterCount, std::vector<int>(frames, 0));
    const Channels& c = *document.getChannel(0);
    for (int frame = 0; frame < frames; ++frame)
        for (int row = 0; row < kParameterCount; ++row) {
            const CellRef cell =
                document._dataTableDictionary.cellAt(static_cast<long long>(frame + 1) * interval, row);
            values[row][frame] = cell ? cell->_nValue() : c.m_Parameters[row].nValue;
        }
    return values;
}

// A document's table data, built from its grid when nobody has built it yet.
void ensureTable(MyDocument& document)
{
    if (document._dataTableDictionary.empty()) {
        document.m_bReadFile = document.getChannel(0)->m_snppDataImage_Col_Row.empty() ? 0 : 1;
        document.buildDataTableDictionary();
    }
}

} // namespace

bool Continuum::isFrequencyRow(int row)
{
    return row == Row::f0 || (row >= Row::f8 && row <= Row::f1) || row == Row::fnz || row == Row::fnp;
}

bool Continuum::compatible(const MyDocument& a, const MyDocument& b)
{
    const Channels& ca = *a.getChannel(0);
    const Channels& cb = *b.getChannel(0);
    return ca.m_nColumnNum == cb.m_nColumnNum && ca.m_nUpdateIntervalMS == cb.m_nUpdateIntervalMS;
}

Continuum::Continuum(MyDocument& a, MyDocument& b, const ContinuumSettings& settings)
    : m_nSteps(settings.steps), m_scale(settings.scale)
{
    if (m_nSteps < 2 || m_nSteps > kMaxSteps)
        throw continuumError("the number of steps must be 2 to " + std::to_string(kMaxSteps));
    const Channels& ca = *a.getChannel(0);
    const Channels& cb = *b.getChannel(0);
    if (!compatible(a, b))
        throw continuumError("the documents differ: " + std::to_string(ca.m_nColumnNum) + " frames of " +
                             std::to_string(ca.m_nUpdateIntervalMS) + " ms against " +
                             std::to_string(cb.m_nColumnNum) + " frames of " +
                             std::to_string(cb.m_nUpdateIntervalMS) + " ms");
    m_nFrames = std::max(ca.m_nColumnNum, 0);
    m_nInterval = a.updateInterval();
    ensureTable(a);
    ensureTable(b);
    m_a = tableValues(a, m_nFrames, m_nInterval);
    m_b = tableValues(b, m_nFrames, m_nInterval);
    for (int row = 0; row < kParameterCount; ++row) {
        m_min.push_back(ca.m_Parameters[row].nMinValue);
        m_max.push_back(ca.m_Parameters[row].nMaxValue);
        m_names.push_back(ca.m_Parameters[row].strName);
    }
    if (settings.rows.empty()) {
        for (int row = 0; row < kParameterCount; ++row)
            if (m_a[row] != m_b[row])
                m_rows.push_back(row);
    } else {
        for (int row : settings.rows) {
            if (row < 0 || row >= kParameterCount)
                throw continuumError("no parameter row " + std::to_string(row));
            if (std::find(m_rows.begin(), m_rows.end(), row) == m_rows.end())
                m_rows.push_back(row);
        }
    }
    writeParameterText(a, true, ParameterTextUse::File, m_aText);
}

const char* Continuum::rowName(int row) const
{
    return m_names.at(row) ? m_names.at(row) : "";
}

double Continuum::weight(int step) const
{
    return static_cast<double>(step - 1) / (m_nSteps - 1);
}

double Continuum::interpolate(int row, double a, double b, double w) const
{
    if (!isFrequencyRow(row) || m_scale.kind() == FrequencyScale::Hz)
        return (1.0 - w) * a + w * b;
    // f0 is kept in tenths of hertz.
    const double unit = row == Row::f0 ? 0.1 : 1.0;
    const double za = m_scale.fromHz(a * unit);
    const double zb = m_scale.fromHz(b * unit);
    return m_scale.toHz((1.0 - w) * za + w * zb) / unit;
}

int Continuum::value(int row, int frame, int step) const
{
    const double v = interpolate(row, m_a[row][frame], m_b[row][frame], weight(step));
    const double rounded = std::isfinite(v) ? std::round(v) : m_a[row][frame];
    return static_cast<int>(std::clamp(rounded, double(m_min[row]), double(m_max[row])));
}

double Continuum::rowMean(int row, int step) const
{
    if (m_nFrames == 0)
        return 0.0;
    double sum = 0.0;
    for (int frame = 0; frame < m_nFrames; ++frame)
        sum += value(row, frame, step);
    return sum / m_nFrames;
}

std::unique_ptr<MyDocument> Continuum::makeStep(int step) const
{
    auto document = std::make_unique<MyDocument>();
    int errorCode = 0;
    if (!document->readFromData(m_aText, "stk", &errorCode))
        throw continuumError("the first document cannot be read back: " + document->lastReadError());
    document->buildDataTableDictionary();
    Channels& c = *document->getChannel(0);
    for (int row : m_rows)
        for (int frame = 0; frame < m_nFrames; ++frame) {
            const int v = value(row, frame, step);
            if (const CellRef cell = document->_dataTableDictionary.cellAt(
                    static_cast<long long>(frame + 1) * m_nInterval, row)) {
                cell->set_nValue(v);
                cell->setInttoStringValue(v);
            }
            if (static_cast<std::size_t>(frame) < c.m_snppDataImage_Col_Row.size())
                c.m_snppDataImage_Col_Row[frame][row] = static_cast<std::int16_t>(v);
        }
    return document;
}
