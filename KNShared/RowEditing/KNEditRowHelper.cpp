#include "RowEditing/KNEditRowHelper.h"

#include <algorithm>

KNEditRowHelper::KNEditRowHelper(Settings details, const QString &schema, const QString &table,
                                 std::optional<Values> initialColumnValues)
    : m_details(std::move(details))
    , m_tableSchema(schema)
    , m_tableName(table)
    , m_initialColumnValues(std::move(initialColumnValues))
{
}

KNEditRowHelper::~KNEditRowHelper() = default;

void KNEditRowHelper::setColumnValue(qsizetype column, const KNValue &value)
{
    KNEditRowColumn &edited = m_tableColumns[column];
    edited.columnCurrentValue = value;
    edited.hasBeenModified = true;
}

void KNEditRowHelper::setStoredValue(qsizetype column, const KNValue &value)
{
    m_tableColumns[column].columnCurrentValue = value;
}

bool KNEditRowHelper::hasModifications() const
{
    return std::any_of(m_tableColumns.begin(), m_tableColumns.end(),
                       [](const KNEditRowColumn &column) { return column.hasBeenModified; });
}

void KNEditRowHelper::editCurrentRow()
{
    Values values;
    for (KNEditRowColumn &column : m_tableColumns) {
        values.insert(column.columnName, column.columnCurrentValue);
        column.hasBeenModified = false;
    }
    m_initialColumnValues = values;
}

void KNEditRowHelper::beginNewRow()
{
    m_initialColumnValues.reset();
    for (KNEditRowColumn &column : m_tableColumns) {
        column.columnCurrentValue = KNValue();
        column.hasBeenModified = false;
    }
}
