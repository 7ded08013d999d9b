#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuoting.h"
#include "SQL/KNSQLComment.h"
#include "Scripts/MSSQLMySQLColumn.h"
#include "Scripts/MSSQLMySQLValue.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryFile>

namespace {

constexpr auto ErrorDomain = "mssql.queryLoader.tableAsMySQL";
constexpr qint64 RowInterval = 500; ///< rows between two reports of progress

QString failureComment(const QString &table, const KNError &error)
{
    return KNFormat("/* Failed to load table %@. Error was:\r\n%@\r\n*/\r\n", KNSQLComment::inBlock(table),
                    KNSQLComment::inBlock(error.localizedDescription()));
}

using MSSQLObjectPath::bracketed;

/// Quotes a name with backticks.
QString backticked(QString name)
{
    return KNFormat("`%@`", name.replace(QLatin1Char('`'), QLatin1String("``")));
}

bool writeText(QIODevice &device, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    return device.write(utf8) == utf8.size();
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

    /// False, with an error, if the columns could not be read. Only the CREATE statement needs the width of
    /// the values, which may require a scan of all of them.
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

    /// Writes the rows as they arrive. They wait in a temporary file, because a comment before them counts
    /// them. An error when the script does not hold all of them.
    KNError writeInserts(QIODevice &device, const KNScriptControl &control) const
    {
        QStringList expressions;
        for (const MSSQLMySQLTranslation &column : m_translations)
            expressions.append(column.selectExpression);
        const QString query = KNFormat("SELECT %@ FROM %@.%@", expressions.join(QLatin1Char(',')),
                                       bracketed(m_schema), bracketed(m_table));
        QTemporaryFile rows;
        bool isStored = rows.open();
        qint64 count = 0;
        const auto store = [&](const KNRow &row) {
            const QString separator = count++ == 0 ? QString() : QStringLiteral(";\r\n");
            isStored = isStored && writeText(rows, separator + insertStatement(row));
            if (count % RowInterval == 0)
                control.reportRows(RowInterval);
        };
        KNError error = KNRowStream::eachRow(m_details, query, store, control.isCancelled);
        control.reportRows(count % RowInterval);
        isStored = isStored && (count == 0 || writeText(rows, QStringLiteral(";"))) && rows.flush();
        if (!error && !isStored)
            error = KNError(QString::fromLatin1(ErrorDomain), 0,
                            KNFormat("The rows could not be written to a temporary file in %@. %@",
                                     QDir::tempPath(), rows.errorString()));
        writeText(device,
                  KNFormat("\r\n-- Insert %ld entries into %@\r\n", count, KNSQLComment::inOneLine(m_table)));
        if (isStored && !copy(rows, device) && !error)
            error = KNError(QString::fromLatin1(ErrorDomain), 0,
                            QStringLiteral("The rows could not be copied from their temporary file."));
        if (!error)
            return error;
        writeText(device, QLatin1String("\r\n") + failureComment(m_table, error));
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

    QString insertStatement(const KNRow &row) const
    {
        QString statement = KNFormat("INSERT INTO %@ VALUES (", m_name);
        for (qsizetype i = 0; i < row.size(); ++i) {
            statement += i == 0 ? QLatin1String("") : QLatin1String(",");
            statement += i < m_columns.size() && m_columns[i].isVariant
                             ? MSSQLMySQLValue::variantLiteral(row[i])
                             : MSSQLMySQLValue::literal(row[i]);
        }
        return statement + QLatin1Char(')');
    }

    static bool copy(QFile &from, QIODevice &to)
    {
        constexpr qint64 PieceSize = 1024 * 1024;
        if (!from.seek(0))
            return false;
        for (QByteArray piece = from.read(PieceSize); !piece.isEmpty(); piece = from.read(PieceSize)) {
            if (to.write(piece) != piece.size())
                return false;
        }
        return from.atEnd() && from.error() == QFileDevice::NoError;
    }

    const QString m_table;
    const QString m_schema;
    const QString m_name; ///< in the script's spelling
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
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    writeCreationQueryForTable(table, inSchema, includeDrop, includeCreate, includeInserts,
                               withConnectionDetails, buffer, report);
    const QString script = QString::fromUtf8(buffer.data());
    return script.isNull() ? QStringLiteral("") : script;
}

void MSSQLScriptTableAsMySQLQueryLoader::writeCreationQueryForTable(const QString &table,
                                                                    const QString &inSchema, bool includeDrop,
                                                                    bool includeCreate, bool includeInserts,
                                                                    const VantorDBC &withConnectionDetails,
                                                                    QIODevice &device, KNQueryReport *report,
                                                                    const KNScriptControl &control)
{
    TableScript tableScript(table, inSchema, withConnectionDetails);
    KNError error;
    if (!tableScript.loadColumns(includeCreate, &error)) {
        writeText(device, failureComment(table, error));
    } else {
        if (includeDrop)
            writeText(device, tableScript.drop());
        if (includeCreate)
            writeText(device, tableScript.create());
        if (includeInserts)
            error = tableScript.writeInserts(device, control);
    }
    if (report)
        report->failure = error;
}

bool MSSQLScriptTableAsMySQLQueryLoader::writeQuery(const VantorDBC &details, QIODevice &device,
                                                    KNQueryReport *report) const
{
    writeCreationQueryForTable(m_targetTableName, m_targetSchema, m_shouldIncldueDrop, m_shouldIncludeCreate,
                               m_shouldIncludeInserts, details, device, report);
    return true;
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
