#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Database/KNRowStream.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuoting.h"
#include "SQL/KNSQLComment.h"
#include "Scripts/MSSQLMySQLColumn.h"
#include "Scripts/MSSQLMySQLValue.h"

namespace {

constexpr auto ErrorDomain = "mssql.queryLoader.tableAsMySQL";

QString failureComment(const QString &table, const KNError &error)
{
    return KNFormat("/* Failed to load table %@. Error was:\r\n%@\r\n*/\r\n", KNSQLComment::inBlock(table),
                    KNSQLComment::inBlock(error.localizedDescription()));
}

using MSSQLObjectPath::bracketed;

/// A name between backticks.
QString backticked(QString name)
{
    return KNFormat("`%@`", name.replace(QLatin1Char('`'), QLatin1String("``")));
}

class TableScript
{
public:
    TableScript(const QString &table, const QString &schema, const VantorDBC &details)
        : m_table(table)
        , m_schema(schema)
        , m_name(backticked(MSSQLQuoting::escapeTableNameIfRequired(table)))
        , m_details(details)
    {
    }

    /// False, with an error, when the columns could not be read. Only what creates the table needs to know
    /// how wide the values are, which may take a look at all of them.
    bool loadColumns(bool isForCreation, KNError *error)
    {
        m_columns = MSSQLMySQLColumn::columnsOf(m_details, m_table, m_schema, error);
        if (*error)
            return false;
        for (const MSSQLMySQLColumn &column : std::as_const(m_columns)) {
            m_translations.append(MSSQLMySQLTranslation::of(column, [&] {
                return isForCreation && !*error
                           ? MSSQLScriptTableAsMySQLQueryLoader::largestSizeOfDatabaseColumn(
                                 column.columnName, m_table, m_schema, m_details, error)
                           : 0;
            }));
        }
        return !*error;
    }

    QString drop() const { return KNFormat("DROP TABLE IF EXISTS %@;\r\n\r\n", m_name); }

    QString create() const
    {
        QStringList lines;
        QStringList keys;
        for (qsizetype i = 0; i < m_columns.size(); ++i) {
            lines.append(columnLine(m_columns[i], m_translations[i]));
            if (m_columns[i].isPrimaryKey)
                keys.append(backticked(m_columns[i].columnName));
        }
        QString script = KNFormat("CREATE TABLE %@ (\r\n", m_name) + lines.join(QStringLiteral(",\r\n"));
        if (!keys.isEmpty())
            script += KNFormat(",\r\n\tPRIMARY KEY (%@)\r\n", keys.join(QStringLiteral(", ")));
        return script + QLatin1String(");\r\n");
    }

    /// Appends the rows to the script as they arrive. An error when the script does not hold all of them.
    KNError appendInserts(QString &script) const
    {
        QStringList expressions;
        for (const MSSQLMySQLTranslation &column : m_translations)
            expressions.append(column.selectExpression);
        const QString query = KNFormat("SELECT %@ FROM %@.%@", expressions.join(QLatin1Char(',')),
                                       bracketed(m_schema), bracketed(m_table));
        const qsizetype start = script.size();
        qint64 count = 0;
        const KNError error = KNRowStream::eachRow(m_details, query, [&](const KNRow &row) {
            script += count++ == 0 ? QLatin1String("") : QLatin1String(";\r\n");
            appendInsert(script, row);
        });
        script += count == 0 ? QLatin1String("") : QLatin1String(";");
        script.insert(start, KNFormat("\r\n-- Insert %ld entries into %@\r\n", count,
                                      KNSQLComment::inOneLine(m_table)));
        if (!error)
            return error;
        script += QLatin1String("\r\n") + failureComment(m_table, error);
        return MSSQLCatalogReader::reported(error, ErrorDomain, query);
    }

private:
    static QString columnLine(const MSSQLMySQLColumn &column, const MSSQLMySQLTranslation &translation)
    {
        QString line = KNFormat("\t%@ %@", backticked(column.columnName), translation.type);
        line += column.isNullable ? QLatin1String(" NULL") : QLatin1String(" NOT NULL");
        if (!translation.notes.isEmpty())
            line += KNFormat(" /* %@ */", translation.notes.join(QStringLiteral("\r\n\t\t\t")));
        return line;
    }

    void appendInsert(QString &script, const KNRow &row) const
    {
        script += KNFormat("INSERT INTO %@ VALUES (", m_name);
        for (qsizetype i = 0; i < row.size(); ++i) {
            script += i == 0 ? QLatin1String("") : QLatin1String(",");
            script += i < m_columns.size() && m_columns[i].isVariant ? MSSQLMySQLValue::variantLiteral(row[i])
                                                                     : MSSQLMySQLValue::literal(row[i]);
        }
        script += QLatin1Char(')');
    }

    const QString m_table;
    const QString m_schema;
    const QString m_name; ///< as the script writes it everywhere
    const VantorDBC &m_details;
    QList<MSSQLMySQLColumn> m_columns;
    QList<MSSQLMySQLTranslation> m_translations; ///< one for each of m_columns
};

} // namespace

QString MSSQLScriptTableAsMySQLQueryLoader::creationQueryForTable(const QString &table,
                                                                  const QString &inSchema, bool includeDrop,
                                                                  bool includeCreate, bool includeInserts,
                                                                  const VantorDBC &withConnectionDetails,
                                                                  KNQueryReport *report)
{
    TableScript tableScript(table, inSchema, withConnectionDetails);
    KNError error;
    if (!tableScript.loadColumns(includeCreate, &error)) {
        if (report)
            report->failure = error;
        return failureComment(table, error);
    }
    QString script = QStringLiteral("");
    if (includeDrop)
        script += tableScript.drop();
    if (includeCreate)
        script += tableScript.create();
    if (includeInserts)
        error = tableScript.appendInserts(script);
    if (report)
        report->failure = error;
    return script;
}

qint64 MSSQLScriptTableAsMySQLQueryLoader::largestSizeOfDatabaseColumn(const QString &column,
                                                                       const QString &inTable,
                                                                       const QString &inSchema,
                                                                       const VantorDBC &connectionDetails,
                                                                       KNError *error)
{
    const QString query = KNFormat("SELECT ISNULL(MAX(DATALENGTH(%@)),0) FROM %@.%@", bracketed(column),
                                   bracketed(inSchema), bracketed(inTable));
    qint64 size = 0;
    const KNError failure = KNRowStream::eachRow(connectionDetails, query,
                                                 [&](const KNRow &row) { size = row.value(0).toInt64(); });
    if (!failure)
        return size;
    const KNError reported = MSSQLCatalogReader::reported(failure, ErrorDomain, query);
    if (error)
        *error = reported;
    return 0;
}

QString MSSQLScriptTableAsMySQLQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    return creationQueryForTable(m_targetTableName, m_targetSchema, m_shouldIncldueDrop,
                                 m_shouldIncludeCreate, m_shouldIncludeInserts, details, report);
}
