#include "RowEditing/KNEditableTable.h"

#include "Foundation/KNFormat.h"
#include "RowEditing/ResultSetViewControllerHelper.h"

#include <algorithm>

namespace {

/// The table column of this name. A name in other letters counts if no other column is meant by it.
const KNEditRowColumn *columnNamed(const QString &name, const QList<KNEditRowColumn> &columns)
{
    const KNEditRowColumn *alike = nullptr;
    int count = 0;
    for (const KNEditRowColumn &column : columns) {
        if (column.columnName == name)
            return &column;
        if (column.columnName.compare(name, Qt::CaseInsensitive) != 0)
            continue;
        alike = &column;
        ++count;
    }
    return count == 1 ? alike : nullptr;
}

} // namespace

const KNEditRowColumn *KNEditableTable::writableColumn(int column) const
{
    if (column < 0 || column >= columns.size() || !columns[column] || columns[column]->isReadOnly ||
        columns[column]->isIdentity)
        return nullptr;
    return &*columns[column];
}

std::optional<KNEditableTable> KNEditableTable::of(const QStringList &resultColumns,
                                                   const ResultSetViewControllerHelper &helper,
                                                   const QString &table, const QString &schema,
                                                   const QList<KNEditRowColumn> &tableColumns,
                                                   QString *reason)
{
    *reason = helper.readOnlyReasonForTable(table, schema);
    if (!reason->isNull())
        return std::nullopt;
    const QStringList keyNames = helper.primaryKeyColumnNames();
    if (keyNames.isEmpty() || tableColumns.isEmpty()) {
        *reason = KNFormat(tr("%@ is no table with a primary key"), table);
        return std::nullopt;
    }
    KNEditableTable editable{.name = table, .schema = schema, .columns = {}, .key = {}};
    QStringList found;
    for (qsizetype i = 0; i < resultColumns.size(); ++i) {
        const KNEditRowColumn *const column = columnNamed(resultColumns[i], tableColumns);
        editable.columns.append(column ? std::optional(*column) : std::nullopt);
        if (!column)
            continue;
        if (found.contains(column->columnName)) {
            *reason = KNFormat(tr("%@ is in the result twice"), column->columnName);
            return std::nullopt;
        }
        found.append(column->columnName);
        if (!helper.isWritableColumn(i))
            editable.columns.last()->isReadOnly = true;
    }
    for (const QString &name : keyNames) {
        const auto at =
            std::find_if(editable.columns.begin(), editable.columns.end(),
                         [&](const auto &column) { return column && column->columnName == name; });
        if (at == editable.columns.end()) {
            *reason = KNFormat(tr("%@ is not in the result"), name);
            return std::nullopt;
        }
        editable.key.append(static_cast<int>(at - editable.columns.begin()));
    }
    return editable;
}
