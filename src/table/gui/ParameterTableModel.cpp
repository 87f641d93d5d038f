#include "table/gui/ParameterTableModel.h"

#include "document/DocumentException.h"
#include "document/MyDocument.h"

#include <QApplication>
#include <QColor>

#include <new>

namespace
{
QColor toQColor(const Color& c)
{
    if (!c.isSet)
        return QColor(Qt::white); // a cell without a background colour draws on white
    return QColor::fromRgbF(static_cast<float>(c.red), static_cast<float>(c.green),
                            static_cast<float>(c.blue), static_cast<float>(c.alpha));
}
} // namespace

ParameterTableModel::ParameterTableModel(MyDocument* doc, QObject* parent)
    : QAbstractTableModel(parent), m_pDoc(doc)
{
    m_cellFont = QApplication::font();
    // The table uses the small system font size, as the parameter grid is dense.
    m_cellFont.setPointSizeF(std::max(7.0, m_cellFont.pointSizeF() - 1.0));
}

void ParameterTableModel::lookUpColumns()
{
    m_nInterval = m_pDoc->updateInterval();
    const std::size_t count = m_pDoc->_dataTableDictionary.count();
    m_columns.assign(count, nullptr);
    m_lookedUp.assign(count, false);
    const CellArray* names = column(0);
    m_nRows = names ? static_cast<int>(names->size()) : 0;
}

const CellArray* ParameterTableModel::column(int tableColumn) const
{
    if (tableColumn < 0 || static_cast<std::size_t>(tableColumn) >= m_columns.size())
        return nullptr;
    if (!m_lookedUp[tableColumn]) {
        try {
            m_columns[tableColumn] =
                m_pDoc->_dataTableDictionary.objectForKey(static_cast<long long>(tableColumn) * m_nInterval);
        } catch (const std::bad_alloc&) {
            // The column could not be made (out of memory): it shows empty now and is asked
            // for again at the next paint. Painting must not throw.
            return nullptr;
        }
        m_lookedUp[tableColumn] = true;
    }
    return m_columns[tableColumn];
}

void ParameterTableModel::reload()
{
    const int oldColumns = static_cast<int>(m_columns.size());
    const int oldRows = m_nRows;
    const int oldInterval = m_nInterval;
    const std::size_t newColumns = m_pDoc->_dataTableDictionary.count();
    const CellArray* names = m_pDoc->_dataTableDictionary.objectForKey("0");
    const int newRows = names ? static_cast<int>(names->size()) : 0;
    if (newColumns > static_cast<std::size_t>(MyDocument::kMaxFrames) + 1) {
        // More frames than a document may hold: nothing is shown rather than a runaway table.
        beginResetModel();
        m_columns.clear();
        m_lookedUp.clear();
        m_nRows = 0;
        endResetModel();
        throw DocumentException::tooManyFrames(static_cast<long long>(newColumns) - 1,
                                               MyDocument::kMaxFrames);
    }
    if (static_cast<int>(newColumns) != oldColumns || newRows != oldRows ||
        m_pDoc->updateInterval() != oldInterval) {
        beginResetModel();
        try {
            lookUpColumns();
        } catch (...) {
            // Out of memory half-way: an empty table is consistent, stale column pointers not.
            m_columns.clear();
            m_lookedUp.clear();
            m_nRows = 0;
            endResetModel();
            throw;
        }
        endResetModel();
        return;
    }
    lookUpColumns();
    if (m_nRows > 0 && !m_columns.empty())
        emit dataChanged(index(0, 0), index(m_nRows - 1, static_cast<int>(m_columns.size()) - 1));
}

void ParameterTableModel::cellChanged(int row, int column)
{
    const QModelIndex changed = index(row, column);
    emit dataChanged(changed, changed);
}

CellRef ParameterTableModel::cellAt(int row, int tableColumn) const
{
    const CellArray* cells = row < 0 ? nullptr : column(tableColumn);
    if (!cells || row >= static_cast<int>(cells->size()))
        return nullptr;
    return (*cells)[row];
}

bool ParameterTableModel::rowShown(int row) const
{
    const CellRef name = cellAt(row, 0);
    return name && name->_bSelected();
}

int ParameterTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_nRows;
}

int ParameterTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant ParameterTableModel::data(const QModelIndex& index, int role) const
{
    const CellRef cell = cellAt(index.row(), index.column());
    if (!cell)
        return {};
    const bool nameColumn = index.column() == 0;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return nameColumn ? QString::fromUtf8(cell->_strName()) : QString::fromStdString(cell->stringValue());
    case Qt::BackgroundRole:
        return cell->_bAnchor() && !nameColumn ? QColor(Qt::red) : toQColor(cell->_nsbgColor());
    case Qt::ForegroundRole:
        return QColor(Qt::black);
    case Qt::ToolTipRole:
        return QString::fromUtf8(cell->_strDefinition());
    case Qt::TextAlignmentRole:
        return nameColumn ? QVariant(Qt::AlignLeft | Qt::AlignVCenter) : QVariant(Qt::AlignCenter);
    case Qt::FontRole:
        return m_cellFont;
    default:
        return {};
    }
}

bool ParameterTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    // A collapsed row is a hairline nobody can read: it takes no typed value.
    if (role != Qt::EditRole || index.column() < 1 || !cellAt(index.row(), index.column()) ||
        !rowShown(index.row()))
        return false;
    emit valueTyped(index.row(), index.column(), value.toString());
    return true;
}

QVariant ParameterTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return QAbstractTableModel::headerData(section, orientation, role);
    if (role == Qt::DisplayRole)
        return section == 0 ? QStringLiteral("param")
                            : QString::number(static_cast<long long>(section) * m_nInterval);
    if (role == Qt::ToolTipRole && section > 0) {
        const QString frame =
            tr("Frame %1: %2 ms").arg(section).arg(static_cast<long long>(section) * m_nInterval);
        const QString note = m_frameNote ? m_frameNote(section) : QString();
        return note.isEmpty() ? frame : frame + QLatin1Char('\n') + note;
    }
    if (role == Qt::FontRole)
        return m_cellFont;
    return {};
}

Qt::ItemFlags ParameterTableModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    if (index.column() == 0)
        return Qt::ItemIsEnabled; // the names are neither editable nor selectable
    // The cells of a collapsed row are disabled, so that the keys step over them (the view
    // moves the current cell past disabled cells) and nothing can be typed into them.
    if (!rowShown(index.row()))
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}
