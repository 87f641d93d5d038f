#include "table/TableEditing.h"

#include "document/DocumentException.h"
#include "document/TableColumnSource.h"
#include "document/TableValueWriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

std::vector<CellArray*> frameColumns(MyDocument& doc)
{
    const long long interval = doc.updateInterval();
    const std::size_t count = doc._dataTableDictionary.count();
    std::vector<CellArray*> columns;
    if (count < 2)
        return columns;
    columns.reserve(count - 1);
    for (std::size_t k = 1; k < count; ++k)
        columns.push_back(doc._dataTableDictionary.objectForKey(static_cast<long long>(k) * interval));
    return columns;
}

int frameCount(const MyDocument& doc)
{
    const std::size_t count = doc._dataTableDictionary.count();
    return count < 2 ? 0 : static_cast<int>(count - 1);
}

CellArray rowCellsArray(MyDocument& doc, int row)
{
    CellArray cells;
    if (row < 0 || row >= kParameterCount)
        return cells;
    const std::vector<CellArray*> columns = frameColumns(doc);
    cells.reserve(columns.size());
    for (CellArray* column : columns)
        cells.push_back(column && static_cast<std::size_t>(row) < column->size() ? (*column)[row] : nullptr);
    return cells;
}

void replaceCellAt(MyDocument& doc, CellRef cell, int row, int col)
{
    if (row < 0 || col < 0)
        return;
    CellArray* column =
        doc._dataTableDictionary.objectForKey(static_cast<long long>(col) * doc.updateInterval());
    if (column && static_cast<std::size_t>(row) < column->size())
        (*column)[row] = std::move(cell);
}

int clampToLimits(const ImageAndTextCell& cell, int value)
{
    if (value > cell._nMaxValue())
        value = cell._nMaxValue();
    if (value < cell._nMinValue())
        value = cell._nMinValue();
    return value;
}

CellRef enteredCell(const ImageAndTextCell& stored, int value)
{
    auto cell = std::make_shared<ImageAndTextCell>();
    cell->copy(stored);
    // Out-of-range input is corrected silently, never refused.
    const int clamped = clampToLimits(*cell, value);
    cell->set_nValue(clamped);
    cell->setInttoStringValue(clamped);
    return cell;
}

int typedInteger(const std::string& text)
{
    ImageAndTextCell reader;
    reader.setStringValue(text);
    return reader.intValue();
}

TypedEntryOutcome typeValue(MyDocument& doc, int row, int tableColumn, int newValue)
{
    if (tableColumn < 1 || row < 0 || row >= kParameterCount)
        return TypedEntryOutcome::Unchanged;
    const CellRef stored =
        doc._dataTableDictionary.cellAt(static_cast<long long>(tableColumn) * doc.updateInterval(), row);
    if (!stored || stored->intValue() == newValue)
        return TypedEntryOutcome::Unchanged;

    doc.saveUndo();
    CellRef cell = enteredCell(*stored, newValue);
    if (doc.getChannel(0)->m_bDoAnchor)
        cell->set_bAnchor(true);
    replaceCellAt(doc, cell, row, tableColumn);
    doc.updateChangeCount(MyDocument::ChangeDone);

    TypedEntryOutcome outcome = TypedEntryOutcome::Stored;
    if (doc.getChannel(0)->m_bDoInterpolate) {
        interpolateAll(doc);
        outcome = TypedEntryOutcome::StoredAndInterpolated;
    }
    doc.saveRedo();
    return outcome;
}

namespace
{
// Fills the frames between consecutive anchors of one row; `anchors` are its anchored table
// columns in order.
void interpolateRow(TableValueWriter& table, const std::vector<long long>& anchors, int row)
{
    for (std::size_t i = 1; i < anchors.size(); ++i) {
        const long long a = anchors[i - 1], b = anchors[i];
        int valueA = 0, valueB = 0;
        table.value(a, row, valueA);
        table.value(b, row, valueB);
        const double slope = (static_cast<double>(valueB) - valueA) / static_cast<double>(b - a);
        for (long long k = 1; k < b - a; ++k)
            table.setValue(a + k, row, static_cast<int>(std::trunc(valueA + static_cast<double>(k) * slope)));
    }
}
} // namespace

void interpolateRows(MyDocument& doc, int first, int last)
{
    first = std::max(first, 0);
    last = std::min(last, kParameterCount - 1);
    if (first > last)
        return;
    TableValueWriter table(doc);
    std::array<std::vector<long long>, kParameterCount> anchors;
    for (long long column = 1; column <= table.frames(); ++column) {
        const std::uint64_t bits = table.anchors(column);
        for (int row = first; bits != 0 && row <= last; ++row)
            if ((bits >> row) & 1u)
                anchors[static_cast<std::size_t>(row)].push_back(column);
    }
    for (int row = first; row <= last; ++row)
        interpolateRow(table, anchors[static_cast<std::size_t>(row)], row);
    table.finish();
}

void interpolateAll(MyDocument& doc)
{
    doc.saveUndo();
    interpolateRows(doc, 0, kParameterCount - 1);
    doc.updateChangeCount(MyDocument::ChangeDone);
    doc.saveRedo();
}

void checkDataRange(MyDocument& doc, int row)
{
    for (const CellRef& cell : rowCellsArray(doc, row)) {
        if (!cell)
            continue;
        const int value = clampToLimits(*cell, cell->_nValue());
        cell->set_nValue(value);
        cell->setInttoStringValue(value);
    }
}

namespace
{
// Gives cells their row's parameter settings: default, limits and set colour as background.
// The cells of a row share a few definitions (the name column's, the frames'): each is changed
// once, and the cells that had it take the changed one.
class ParameterSettings
{
public:
    explicit ParameterSettings(const Channels& c) : m_channel(c) {}

    void applyTo(ImageAndTextCell& cell, std::size_t row)
    {
        auto& known = m_changed[row];
        auto found = std::find_if(known.begin(), known.end(), [&cell](const auto& pair) {
            return cell.sharesDefinitionWith(pair.first);
        });
        if (found == known.end()) {
            const ParameterDefinition& p = m_channel.m_Parameters[row];
            ImageAndTextCell after;
            after.adoptDefinition(cell);
            CellDefinition d = after.definition();
            d.defaultValue = p.nDefaultValue;
            d.minValue = p.nMinValue;
            d.maxValue = p.nMaxValue;
            d.background = p.nsSetColor;
            after.setDefinition(d);
            known.emplace_back(cell, after);
            found = known.end() - 1;
        }
        cell.adoptDefinition(found->second);
    }
    bool shown(std::size_t row) const { return m_channel.m_Parameters[row].bSelected != 0; }

private:
    const Channels& m_channel;
    std::array<std::vector<std::pair<ImageAndTextCell, ImageAndTextCell>>, kParameterCount> m_changed;
};
} // namespace

void saveParameters(MyDocument& doc)
{
    ParameterSettings settings(*doc.getChannel(0));
    DataTableDictionary& data = doc._dataTableDictionary;
    for (const auto& [key, column] : data.madeColumns()) {
        (void)key;
        const std::size_t rows = std::min<std::size_t>(column.size(), kParameterCount);
        for (std::size_t row = 0; row < rows; ++row) {
            if (!column[row])
                continue;
            settings.applyTo(*column[row], row);
            column[row]->set_bSelected(settings.shown(row));
        }
    }
    // The columns not made yet stay so: their source's models and shown flags change as the made
    // cells did, so that a column made later is the one changed here.
    if (const TableColumnSource* pending = data.pendingSource()) {
        auto source = std::make_shared<TableColumnSource>(*pending);
        for (std::size_t row = 0; row < kParameterCount; ++row) {
            settings.applyTo(source->nameModel[row], row);
            settings.applyTo(source->frameModel[row], row);
            source->shown[row] = settings.shown(row);
        }
        data.replacePendingSource(std::move(source));
    }
    AdjustSampleRate(doc, true);
    doc.updateChangeCount(MyDocument::ChangeDone);
}

void AdjustSampleRate(MyDocument& doc, bool synthesize)
{
    Channels& c = *doc.getChannel(0);
    const int rate = doc.synthesisSampleRate();
    c.m_bIncraseSampleRate = rate == 22050 ? 1 : 0;
    c.m_dSampleRate = rate;

    const int range = static_cast<int>(rate * 0.5) / 1000 * 1000;
    int order = static_cast<int>(2.0 * (rate * 0.5 / 1000.0)) + 4;
    order -= order % 2;
    doc.m_nFFTfrequencyRange = range;
    doc.m_nSpecfrequencyRange = range;
    doc.m_nLPCNumberofCoefficients = order;
    doc.m_nSpecLPCNumberofCoefficients = order;

    c.m_bSynthesize = 1;
    if (synthesize)
        doc.Synthesize();
}

CellRef newFrameCell(const ParameterDefinition& p, const Color& background)
{
    auto cell = std::make_shared<ImageAndTextCell>();
    cell->setDefinition(MyDocument::frameCellDefinition(p, background));
    cell->set_nValue(p.nValue);
    cell->set_bSelected(p.bSelected != 0);
    cell->setInttoStringValue(p.nValue);
    return cell;
}

FrameCellMaker::FrameCellMaker(const MyDocument& doc) : m_channel(*doc.getChannel(0))
{
    for (int row = 0; row < kParameterCount; ++row)
        m_models[row].setDefinition(
            MyDocument::frameCellDefinition(m_channel.m_Parameters[row], doc.groupBackgroundColor(row)));
}

CellArray FrameCellMaker::column(bool allShown) const
{
    CellArray cells = ImageAndTextCell::newColumn(kParameterCount);
    for (int row = 0; row < kParameterCount; ++row) {
        const ParameterDefinition& p = m_channel.m_Parameters[row];
        ImageAndTextCell& cell = *cells[row];
        cell.adoptDefinition(m_models[row]);
        cell.set_nValue(p.nValue);
        cell.set_bSelected(allShown || p.bSelected != 0);
        cell.setInttoStringValue(p.nValue);
    }
    return cells;
}
