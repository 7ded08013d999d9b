#include "UI/ResultEditing/KNResultEditing.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "RowEditing/KNEditRowHelper.h"
#include "RowEditing/ResultSetViewControllerHelper.h"
#include "UI/ResultEditing/KNPastedCells.h"
#include "UI/Results/KNResultTableModel.h"

#include <QPointer>

#include <algorithm>

class KNResultEditing::KeysDelegate : public ResultSetViewControllerHelperDelegate
{
public:
    explicit KeysDelegate(KNResultEditing &editing)
        : m_editing(editing)
    {
    }
    void loadedPrimaryKeysForTable(const QString &table, const QString &inSchema) override
    {
        m_editing.loadColumns(table, inSchema);
    }

private:
    KNResultEditing &m_editing;
};

KNResultEditing::KNResultEditing(KNResultTableModel &model, const KNResultEditSession &session,
                                 QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_session(session)
    , m_helper(session.details->createResultSetViewControllerHelper())
    , m_keys(std::make_shared<KeysDelegate>(*this))
{
    m_helper->setColumnTypes(model.result()->columnTypes());
    m_helper->setExecutedQuery(model.result()->executedQuery());
    m_reason = m_helper->readOnlyReason();
    if (!m_reason.isNull())
        return;
    m_reason = tr("the key of its table is not known");
    m_helper->setDelegate(m_keys);
    m_helper->beginLoadingPrimaryKeys();
}

KNResultEditing::~KNResultEditing() = default;

void KNResultEditing::loadColumns(const QString &table, const QString &schema)
{
    KNDispatch::globalQueue([self = QPointer(this), helper = m_helper, table, schema] {
        const auto row = helper->createEditRowHelper(table, schema, std::nullopt);
        if (row)
            row->loadTableColumns();
        const QList<KNEditRowColumn> columns = row ? row->tableColumns() : QList<KNEditRowColumn>();
        KNDispatch::mainQueue([self, table, schema, columns] {
            if (self)
                self->showTable(table, schema, columns);
        });
    });
}

void KNResultEditing::showTable(const QString &table, const QString &schema,
                                const QList<KNEditRowColumn> &columns)
{
    m_table =
        KNEditableTable::of(m_model.result()->columnNames(), *m_helper, table, schema, columns, &m_reason);
    if (m_table)
        m_statements = m_helper->createTableStatements(table, schema);
    if (!m_statements)
        m_table.reset();
    Q_EMIT changed();
}

bool KNResultEditing::canEdit(const QModelIndex &cell) const
{
    if (!isEditable() || !cell.isValid() || !m_table->writableColumn(cell.column()))
        return false;
    const KNRowEdits::Row *const row = m_edits.row(m_model.rowId(cell.row()));
    return !row || !row->isDeleted;
}

KNTypedValue::Input KNResultEditing::inputOf(int column) const
{
    const KNEditRowColumn *const edited = m_table ? m_table->writableColumn(column) : nullptr;
    return edited ? edited->input : KNTypedValue::Input::Text;
}

KNValue KNResultEditing::value(const QModelIndex &cell) const
{
    const RowId id = m_model.rowId(cell.row());
    const KNRowEdits::Row *const row = m_edits.row(id);
    if (row && row->values.contains(cell.column()))
        return row->values.value(cell.column());
    return KNRowEdits::isNew(id) ? KNValue() : m_model.storedValue(cell.row(), cell.column());
}

/// Reads a text; empty after rejected().
std::optional<KNValue> KNResultEditing::read(int column, const QString &text)
{
    QString problem;
    std::optional<KNValue> value = KNTypedValue::read(text, inputOf(column), &problem);
    if (!value)
        Q_EMIT rejected(KNFormat(tr("%@: %@"), m_table->writableColumn(column)->columnName, problem));
    return value;
}

/// An empty cell of a spreadsheet is NULL, except in a column of texts.
std::optional<KNValue> KNResultEditing::readPasted(int column, const QString &text)
{
    if (!text.isEmpty() || inputOf(column) == KNTypedValue::Input::Text)
        return read(column, text);
    return rejectNull(column) ? std::nullopt : std::optional(KNValue());
}

bool KNResultEditing::setText(const QModelIndex &cell, const QString &text)
{
    if (!canEdit(cell))
        return false;
    const KNValue current = value(cell);
    if (!current.isNull() && text == current.displayText())
        return true;
    if (current.isNull() && text.isEmpty() && inputOf(cell.column()) != KNTypedValue::Input::Text)
        return true;
    const std::optional<KNValue> entered = read(cell.column(), text);
    return entered && setValue(cell, *entered);
}

bool KNResultEditing::setValue(const QModelIndex &cell, const KNValue &value)
{
    if (!canEdit(cell))
        return false;
    m_edits.beginStep();
    const RowId row = m_model.rowId(cell.row());
    const KNValue stored =
        KNRowEdits::isNew(row) ? KNValue() : m_model.storedValue(cell.row(), cell.column());
    m_edits.setValue(row, cell.column(), value, stored);
    showEdits();
    return true;
}

bool KNResultEditing::rejectNull(int column)
{
    const KNEditRowColumn &edited = *m_table->writableColumn(column);
    if (!edited.isNullable)
        Q_EMIT rejected(KNFormat(tr("%@ does not take NULL."), edited.columnName));
    return !edited.isNullable;
}

void KNResultEditing::setNull(const QModelIndexList &cells)
{
    QModelIndexList writable;
    std::copy_if(cells.begin(), cells.end(), std::back_inserter(writable),
                 [this](const QModelIndex &cell) { return canEdit(cell); });
    if (writable.isEmpty() || std::any_of(writable.begin(), writable.end(), [this](const QModelIndex &cell) {
            return rejectNull(cell.column());
        }))
        return;
    m_edits.beginStep();
    for (const QModelIndex &cell : writable) {
        const RowId row = m_model.rowId(cell.row());
        const KNValue stored =
            KNRowEdits::isNew(row) ? KNValue() : m_model.storedValue(cell.row(), cell.column());
        m_edits.setValue(row, cell.column(), KNValue(), stored);
    }
    showEdits();
}

void KNResultEditing::paste(const QModelIndex &first, const QString &text)
{
    if (!isEditable())
        return;
    QString problem;
    const auto cells = KNPastedCells::read(text, MostPastedCells, &problem);
    if (!cells)
        return Q_EMIT rejected(problem);
    KNRowEdits edits = m_edits;
    edits.beginStep();
    const int firstRow = first.isValid() ? first.row() : m_model.rowCount();
    const int firstColumn = first.isValid() ? first.column() : 0;
    for (qsizetype line = 0; line < cells->size(); ++line) {
        const int shown = firstRow + static_cast<int>(line);
        const RowId row = shown < m_model.rowCount() ? m_model.rowId(shown) : edits.addRow();
        for (qsizetype i = 0; i < cells->at(line).size(); ++i) {
            const int column = firstColumn + static_cast<int>(i);
            const KNRowEdits::Row *const edited = edits.row(row);
            if (!m_table->writableColumn(column) || (edited && edited->isDeleted))
                return Q_EMIT rejected(
                    column < m_model.columnCount()
                        ? KNFormat(tr("%@ cannot be written, so nothing was pasted."),
                                   m_model.shownName(column))
                        : tr("The text has more columns than there are, so nothing was pasted."));
            const std::optional<KNValue> value = readPasted(column, cells->at(line).at(i));
            if (!value)
                return;
            edits.setValue(row, column, *value,
                           KNRowEdits::isNew(row) ? KNValue() : m_model.storedValue(shown, column));
        }
    }
    m_edits = edits;
    showEdits();
}

void KNResultEditing::addRow()
{
    if (!isEditable())
        return;
    m_edits.beginStep();
    m_edits.addRow();
    showEdits();
}

void KNResultEditing::removeRows(const QList<int> &rows)
{
    if (!isEditable() || rows.isEmpty())
        return;
    QList<RowId> ids;
    for (const int row : rows)
        ids.append(m_model.rowId(row));
    m_edits.beginStep();
    for (const RowId id : ids)
        m_edits.remove(id);
    showEdits();
}

void KNResultEditing::undo()
{
    if (!m_isApplying && m_edits.undo())
        showEdits();
}

void KNResultEditing::discard()
{
    if (m_isApplying)
        return;
    m_edits.clear();
    showEdits();
}

void KNResultEditing::showEdits()
{
    m_model.showEdits();
    Q_EMIT changed();
}

void KNResultEditing::setApplying(bool isApplying)
{
    m_isApplying = isApplying;
    Q_EMIT changed();
}

void KNResultEditing::finishApplying(const KNDatabaseResultSetPtr &revised)
{
    m_isApplying = false;
    m_edits.clear();
    Q_EMIT replacingResult();
    m_model.replaceResult(revised);
    Q_EMIT resultReplaced();
    Q_EMIT changed();
}
