#include "UI/Results/KNResultTableModel.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNNotificationCenter.h"
#include "UI/Icons/KNIcon.h"
#include "UI/KNPlainToolTip.h"
#include "UI/ResultEditing/KNResultEditing.h"
#include "UI/RowEditing/KNEditRowDelegate.h"

#include <QPointer>

#include <limits>
#include <utility>

namespace {

// Limits the bytes read of long text: a UTF-8 character has at most four bytes.
constexpr std::size_t BytesForDisplay = 4 * (ResultSetViewControllerHelper::TruncatedLength + 1);

/// Shows a text in one line: line ends, tabs and other control characters become symbols.
QString inOneLine(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (QChar &c : text) {
        if (c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            c = QChar(0x21B5);
        else if (c == QLatin1Char('\t'))
            c = QChar(0x21E5);
        else if (c.unicode() < 0x20)
            c = QChar(0x2400 + c.unicode());
    }
    return text;
}

bool isDate(KNRowCell::Tag tag)
{
    return tag == KNRowCell::Date || tag == KNRowCell::OffsetDate;
}

} // namespace

KNResultTableModel::KNResultTableModel(KNDatabaseResultSetPtr result, Helper helper, QObject *parent)
    : QAbstractTableModel(parent)
    , m_result(std::move(result))
    , m_helper(std::move(helper))
    , m_columnNames(m_result->columnNames())
    , m_dateFormat(KNPreferences::current().dateFormat)
    , m_reader(std::in_place, m_result->rows())
{
    m_preferencesObserver = KNNotificationCenter::defaultCenter()->addObserver(
        KNPreferences::ChangedNotificationName,
        [this](const QString &, const QVariantMap &) { m_dateFormat = KNPreferences::current().dateFormat; });
}

KNResultTableModel::~KNResultTableModel()
{
    if (m_cancelled)
        *m_cancelled = true;
}

bool KNResultTableModel::showPublishedRows(bool isLast)
{
    if (m_isFinished)
        return false;
    const bool isFinished = isLast || m_result->isFinished(); // read first: no row arrives after it is true
    const auto arrived =
        static_cast<int>(std::min<qsizetype>(m_result->rows().rowCount(), std::numeric_limits<int>::max()));
    if (arrived == m_arrivedRows && !isFinished)
        return false;
    if (arrived > m_arrivedRows) {
        beginInsertRows({}, m_arrivedRows, arrived - 1);
        m_arrivedRows = arrived;
        endInsertRows();
    }
    m_isFinished = isFinished;
    return true;
}

int KNResultTableModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return storedRowCount() + m_newRows;
}

int KNResultTableModel::storedRowCount() const
{
    return m_order ? static_cast<int>(m_order->size()) : m_arrivedRows;
}

int KNResultTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columnNames.size());
}

QVariant KNResultTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole: {
        const Cell shownCell = cell(index.row(), index.column());
        return shownCell.isNull ? KNPreferences::current().nullText : shownCell.text;
    }
    case Qt::AccessibleTextRole: {
        // Read out even if the preferred text for NULL is empty.
        const Cell shownCell = cell(index.row(), index.column());
        const QString text = shownCell.isNull ? QStringLiteral("NULL") : shownCell.text;
        switch (shownCell.change) {
        case Change::None:
            break;
        case Change::Changed:
            return KNFormat(tr("%@, changed"), text);
        case Change::New:
            return KNFormat(tr("%@, in a new row"), text);
        case Change::Deleted:
            return KNFormat(tr("%@, in a deleted row"), text);
        }
        return text;
    }
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(
            Qt::Alignment(cell(index.row(), index.column()).isNumber ? Qt::AlignRight : Qt::AlignLeft) |
            Qt::AlignVCenter);
    case Qt::ToolTipRole:
        return cell(index.row(), index.column()).isMarked ? m_helper->remarkForColumn(index.column())
                                                          : QVariant();
    case Qt::EditRole:
        return m_editing ? m_editing->value(index).displayText() : QVariant();
    case KNEditRowDelegate::InputRole:
        return m_editing ? static_cast<int>(m_editing->inputOf(index.column())) : QVariant();
    case KNEditRowDelegate::NameRole:
        return shownName(index.column());
    default:
        return {};
    }
}

bool KNResultTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    return role == Qt::EditRole && m_editing && m_editing->setText(index, value.toString());
}

Qt::ItemFlags KNResultTableModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return m_editing && m_editing->canEdit(index) ? flags | Qt::ItemIsEditable : flags;
}

/// Returns a remark on a column's values on a separate line.
QString KNResultTableModel::remarkOn(int column) const
{
    const QString remark = m_helper->remarkForColumn(column);
    return remark.isNull() ? QString() : QLatin1Char('\n') + remark;
}

QString KNResultTableModel::shownName(int column) const
{
    const QString name = m_columnNames.value(column);
    return name.isEmpty() ? tr("(no name)") : inOneLine(name);
}

QVariant KNResultTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
    const bool isSorted = m_arrangement.sortColumn == section;
    const bool isAscending = m_arrangement.sortOrder == Qt::AscendingOrder;
    const bool isFiltered = m_arrangement.filterOf(section) != nullptr;
    switch (role) {
    case Qt::DisplayRole:
        return shownName(section) + (!isSorted ? QString() : QString::fromUtf16(isAscending ? u" ▲" : u" ▼"));
    case Qt::DecorationRole:
        return isFiltered ? KNIcon::named(QStringLiteral("edit-find")) : QVariant();
    case Qt::AccessibleTextRole: {
        QStringList parts = {shownName(section)};
        if (isSorted)
            parts.append(isAscending ? tr("sorted ascending") : tr("sorted descending"));
        if (isFiltered)
            parts.append(tr("filtered"));
        return parts.join(QStringLiteral(", "));
    }
    case Qt::ToolTipRole: {
        const QString type = m_helper->typeNameForColumn(section);
        const QString name = m_columnNames.value(section);
        return KNPlainToolTip((type.isNull() ? name : name + QLatin1Char('\n') + type) + remarkOn(section) +
                              u'\n' + tr("Click to select, double-click to sort, right-click for more"));
    }
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter));
    default:
        return {};
    }
}

KNResultTableModel::Cell KNResultTableModel::cell(int row, int column) const
{
    const KNRowEdits::Row *const edits = editedRow(row);
    const bool isNew = row >= storedRowCount();
    const Cell stored = isNew ? Cell() : shown(m_reader->cell(storedRow(row), column), column);
    return edits ? edited(*edits, column, stored, isNew) : stored;
}

void KNResultTableModel::visitCells(int row, int first, int last,
                                    const std::function<void(int, const Cell &)> &visit) const
{
    const KNRowEdits::Row *const edits = editedRow(row);
    const bool isNew = row >= storedRowCount();
    if (!isNew && !m_reader->seek(storedRow(row)))
        return;
    for (int column = 0; column <= last; ++column) {
        const KNRowCell stored = isNew ? KNRowCell() : m_reader->next();
        if (column < first)
            continue;
        const Cell cell = shown(stored, column);
        visit(column, edits ? edited(*edits, column, cell, isNew) : cell);
    }
}

const KNRowEdits::Row *KNResultTableModel::editedRow(int row) const
{
    return m_editing && !m_editing->edits().isEmpty() ? m_editing->edits().row(rowId(row)) : nullptr;
}

/// Returns a cell of an edited row. A column of a new row without a value is shown empty, not as NULL: the
/// server sets it.
KNResultTableModel::Cell KNResultTableModel::edited(const KNRowEdits::Row &row, int column, Cell stored,
                                                    bool isNew) const
{
    Cell cell = std::move(stored);
    cell.change = row.isDeleted ? Change::Deleted : isNew ? Change::New : Change::None;
    const auto value = row.values.constFind(column);
    if (value == row.values.constEnd()) {
        cell.isNull = cell.isNull && !isNew;
        return cell;
    }
    cell.change = isNew ? Change::New : Change::Changed;
    cell.text = inOneLine(m_helper->stringForValue(*value, column, true));
    cell.isNull = value->isNull();
    cell.isNumber = value->isNumber();
    cell.isMarked = false;
    return cell;
}

void KNResultTableModel::setEditing(KNResultEditing *editing)
{
    m_editing = editing;
}

void KNResultTableModel::showEdits()
{
    const int newRows = m_editing ? static_cast<int>(m_editing->edits().newRows().size()) : 0;
    const int stored = storedRowCount();
    if (newRows > m_newRows) {
        beginInsertRows({}, stored + m_newRows, stored + newRows - 1);
        m_newRows = newRows;
        endInsertRows();
    } else if (newRows < m_newRows) {
        beginRemoveRows({}, stored + newRows, stored + m_newRows - 1);
        m_newRows = newRows;
        endRemoveRows();
    }
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

void KNResultTableModel::replaceResult(const KNDatabaseResultSetPtr &result)
{
    cancelArranging();
    const KNRowArrangement arrangement = m_arrangement;
    beginResetModel();
    m_result = result;
    m_reader.emplace(m_result->rows());
    m_arrivedRows = static_cast<int>(m_result->rows().rowCount());
    m_newRows = 0;
    m_order = nullptr;
    m_arrangement = {};
    endResetModel();
    arrange(arrangement);
}

KNRowEdits::RowId KNResultTableModel::rowId(int row) const
{
    const int stored = storedRowCount();
    return row < stored || !m_editing ? storedRow(row) : m_editing->edits().newRows().value(row - stored);
}

KNValue KNResultTableModel::storedValue(int row, int column) const
{
    return row < storedRowCount() ? m_reader->cell(storedRow(row), column).storedValue() : KNValue();
}

KNResultTableModel::Change KNResultTableModel::changeOf(int row) const
{
    const KNRowEdits::Row *const edits = editedRow(row);
    if (row >= storedRowCount())
        return Change::New;
    return !edits ? Change::None : edits->isDeleted ? Change::Deleted : Change::Changed;
}

qsizetype KNResultTableModel::storedRow(int row) const
{
    return m_order ? qsizetype{m_order->at(static_cast<std::size_t>(row))} : row;
}

ResultRows KNResultTableModel::shownRows() const
{
    ResultRows rows{m_result, m_order, {{0, storedRowCount()}}, {}};
    for (int column = 0; column < columnCount(); ++column)
        rows.columns.append(column);
    return rows;
}

bool KNResultTableModel::arrange(const KNRowArrangement &arrangement)
{
    if (!m_isFinished)
        return false;
    cancelArranging();
    if (arrangement.isPlain()) {
        showOrder(arrangement, nullptr);
        return true;
    }
    m_cancelled = std::make_shared<std::atomic<bool>>(false);
    const QPointer<KNResultTableModel> self(this);
    KNDispatch::globalQueue(
        [self, arrangement, result = m_result, display = display(), cancelled = m_cancelled] {
            const KNRowOrderPtr order = arrangement.order(*result, display, *cancelled);
            KNDispatch::mainQueue([self, arrangement, order, cancelled] {
                if (self && self->m_cancelled == cancelled && order)
                    self->showOrder(arrangement, order);
            });
        });
    Q_EMIT arrangingChanged();
    return true;
}

void KNResultTableModel::cancelArranging()
{
    if (!m_cancelled)
        return;
    *m_cancelled = true;
    m_cancelled = nullptr;
    Q_EMIT arrangingChanged();
}

void KNResultTableModel::showOrder(const KNRowArrangement &arrangement, KNRowOrderPtr order)
{
    m_cancelled = nullptr;
    beginResetModel();
    m_order = std::move(order);
    m_arrangement = arrangement;
    endResetModel();
    Q_EMIT arrangingChanged();
}

KNCellMatcher::Display KNResultTableModel::display() const
{
    return [helper = m_helper, format = m_dateFormat](const KNRowCell &cell, qsizetype column) {
        return textOf(*helper, format, cell, cell.length, column, false);
    };
}

/// Returns the text of a cell, of which at most `limit` bytes are read; a null QString for null.
QString KNResultTableModel::textOf(const ResultSetViewControllerHelper &helper,
                                   KNPreferences::DateFormat format, const KNRowCell &cell, std::size_t limit,
                                   qsizetype column, bool allowTruncate)
{
    if (!isDate(cell.tag))
        return helper.stringForValue(cell.storedValue(limit), column, allowTruncate);
    if (format == KNPreferences::DateFormat::AsStored)
        return cell.dateTime().toString();
    return helper.stringForValue(cell.value(), column, allowTruncate);
}

KNResultTableModel::Cell KNResultTableModel::shown(const KNRowCell &stored, int column) const
{
    Cell cell;
    cell.text = textOf(*m_helper, m_dateFormat, stored, BytesForDisplay, column, true);
    if (cell.text.isNull())
        return cell;
    cell.isNull = false;
    cell.isNumber = stored.isNumber();
    cell.isMarked = stored.tag == KNRowCell::FlagBytes;
    if (stored.tag == KNRowCell::Text)
        cell.text = inOneLine(cell.text);
    return cell;
}
