#include "RowEditing/MSSQLEditRowHelper.h"

#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNAssert.h"
#include "RowEditing/MSSQLRowStatement.h"
#include "TableDesign/MSSQLStatementCaution.h"

namespace {

constexpr auto LoadDomain = "mssql.editRow.loadTableColumns";

MSSQLRowStatement statementOf(const KNEditRowHelper &row)
{
    return {row.tableSchema(), row.tableName(), row.tableColumns(), row.initialColumnValues()};
}

} // namespace

void MSSQLEditRowHelper::loadTableColumns()
{
    QString schema = tableSchema();
    const auto *details = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(&databaseConnectionDetails());
    if (schema.isEmpty() && details)
        schema = MSSQLDefaultSchemaHelper::sharedInstance()->schemaForDBC(*details);
    KNError error;
    const auto records = MSSQLCatalogReader::records<MSSQLColumnRecord>(databaseConnectionDetails(), schema,
                                                                        tableName(), LoadDomain, &error);
    setTableColumns(MSSQLRowStatement::columnsFrom(records, initialColumnValues()));
}

KNStatementPair MSSQLEditRowHelper::generateQuery() const
{
    const MSSQLRowStatement statement = statementOf(*this);
    KNStatementPair pair = statement.generateQuery();
    if (statement.generateReadBack().differs()) {
        MSSQLStatementCaution caution;
        caution.add(pair.difference);
        caution.add(
            MSSQLStatementCaution::tr("Reading the row again afterwards would fail, or read another row."));
        pair.difference = caution.text();
    }
    return pair;
}

KNStatementPair MSSQLEditRowHelper::generateInsert() const
{
    return statementOf(*this).generateInsert();
}

KNStatementPair MSSQLEditRowHelper::generateUpdate() const
{
    return statementOf(*this).generateUpdate();
}

bool MSSQLEditRowHelper::applyChanges(bool corrected, KNError *error)
{
    KNAssert(error, "Error must be specified.", "Implementations/MSSQLEditRowHelper");
    error->clear();
    setReadBack(ReadBack::NotMade);
    const QString sql = generateQuery().preferred(corrected);
    if (sql.isEmpty()) {
        *error = KNError(QStringLiteral("SQLClient"), 0, QStringLiteral("Nothing was changed."));
        return false;
    }
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&sql](VantorDatabaseClient &client, KNError *failure) { client.executeNonQuery(sql, failure); },
        databaseConnectionDetails(), error);
    if (!*error)
        readRow(statementOf(*this).generateReadBack().preferred(corrected), error);
    return !*error;
}

/// Reads the values of the row that the statement finds; without a statement they stay.
void MSSQLEditRowHelper::readRow(const QString &sql, KNError *error)
{
    if (sql.isEmpty())
        return;
    setReadBack(ReadBack::Failed);
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            const auto rows = client.executeQuery(sql, failure);
            if (*failure || !rows)
                return;
            setReadBack(ReadBack::NotFound);
            if (!rows->next())
                return;
            for (qsizetype column = 0; column < tableColumns().size(); ++column)
                setStoredValue(column, rows->objectForColumnIndex(static_cast<int>(column)));
            setReadBack(ReadBack::Made);
        },
        databaseConnectionDetails(), error);
}
