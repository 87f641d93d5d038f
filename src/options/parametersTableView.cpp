#include "options/parametersTableView.h"

#include "document/MyDocument.h"

#include <QAbstractTableModel>
#include <QHeaderView>

// The item model over the view's table data.
class LimitsModel : public QAbstractTableModel
{
public:
    explicit LimitsModel(parametersTableView* view) : QAbstractTableModel(view), m_pView(view) {}

    void reset()
    {
        beginResetModel();
        endResetModel();
    }
    CellRef cell(int column, int row) const { return m_pView->_dataTableDictionary.cellAt(column, row); }
    int rowCount(const QModelIndex& parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : m_pView->rowCountOfNames();
    }
    int columnCount(const QModelIndex& parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : 5;
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        const CellRef c = cell(index.column(), index.row());
        if (!c)
            return {};
        if (role == Qt::DisplayRole || role == Qt::EditRole) {
            if (index.column() == 0)
                return QString::fromUtf8(c->_strName());
            if (index.column() == 4)
                return QString::fromUtf8(c->_strDefinition());
            return c->_nValue();
        }
        if (role == Qt::TextAlignmentRole)
            return index.column() == 1 || index.column() == 2 || index.column() == 3
                       ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                       : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
        return {};
    }
    bool setData(const QModelIndex& index, const QVariant& value, int role) override
    {
        if (role != Qt::EditRole || index.column() < 1 || index.column() > 3)
            return false;
        bool ok = false;
        const int number = value.toInt(&ok);
        if (!ok)
            return false;
        m_pView->setValue(index.column(), index.row(), number);
        emit dataChanged(index, index);
        return true;
    }
    Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        if (index.column() >= 1 && index.column() <= 3)
            f |= Qt::ItemIsEditable;
        return f;
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        static const char* titles[5] = {"param", "Min", "Max", "Default", "Description"};
        if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 && section < 5)
            return QString::fromLatin1(titles[section]);
        return QAbstractTableModel::headerData(section, orientation, role);
    }

private:
    parametersTableView* m_pView;
};

parametersTableView::parametersTableView(QWidget* parent)
    : QTableView(parent), m_pModel(new LimitsModel(this))
{
    setModel(m_pModel);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(20);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                    QAbstractItemView::AnyKeyPressed);
    const int widths[5] = {50, 60, 60, 60, 400};
    for (int i = 0; i < 5; ++i)
        horizontalHeader()->resizeSection(i, widths[i]);
    horizontalHeader()->setStretchLastSection(true);
}

void parametersTableView::setup(MyDocument* doc)
{
    _dataTableDictionary.removeAllObjects();
    CellArray columns[5];
    const Channels& c = *doc->getChannel(0);
    for (int row = 0; row < kParameterCount; ++row) {
        const ParameterDefinition& p = c.m_Parameters[row];
        const int numbers[3] = {p.nMinValue, p.nMaxValue, p.nDefaultValue};
        for (int col = 0; col < 5; ++col) {
            auto cell = std::make_shared<ImageAndTextCell>();
            cell->set_strName(p.strName);
            cell->set_strDefinition(p.strDefinition);
            if (col >= 1 && col <= 3) {
                cell->set_nValue(numbers[col - 1]);
                cell->setInttoStringValue(numbers[col - 1]);
            }
            columns[col].push_back(std::move(cell));
        }
    }
    for (int col = 0; col < 5; ++col)
        _dataTableDictionary.setObject(col, std::move(columns[col]));
    m_pModel->reset();
}

void parametersTableView::resettoDefault(MyDocument*)
{
    for (int row = 0; row < rowCountOfNames() && row < kParameterCount; ++row) {
        const ParameterFactoryRow& f = kFactoryParameters[row];
        setValue(1, row, f.minValue);
        setValue(2, row, f.maxValue);
        setValue(3, row, f.defaultValue);
    }
    m_pModel->reset();
}

int parametersTableView::valueAt(int column, int row) const
{
    const CellRef cell = _dataTableDictionary.cellAt(column, row);
    return cell ? cell->_nValue() : 0;
}

int parametersTableView::rowCountOfNames() const
{
    const CellArray* names = _dataTableDictionary.objectForKey("0");
    return names ? static_cast<int>(names->size()) : 0;
}

void parametersTableView::setValue(int column, int row, int value)
{
    CellArray* cells = _dataTableDictionary.objectForKey(column);
    if (!cells || row < 0 || row >= static_cast<int>(cells->size()) || (*cells)[row]->_nValue() == value)
        return;
    auto cell = std::make_shared<ImageAndTextCell>();
    cell->copy(*(*cells)[row]);
    cell->set_nValue(value);
    cell->setInttoStringValue(value);
    (*cells)[row] = std::move(cell);
}
