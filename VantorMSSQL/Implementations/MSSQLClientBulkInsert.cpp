#include "Foundation/KNLogHelper.h"
#include "Foundation/MachTimer.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLObjectPath.h"

#include <QRegularExpression>

#include <sybdb.h>

#include <algorithm>

namespace {

constexpr qsizetype RowsPerStatement = 500; // a VALUES list allows 1000

/// Does not include plain int and tinyint: they are quoted.
bool isNumericType(const QString &type)
{
    constexpr const char *NumericTypes[] = {"bigint",  "smallint", "money", "smallmoney",
                                            "numeric", "decimal",  "float", "real"};
    return std::any_of(std::begin(NumericTypes), std::end(NumericTypes),
                       [&](const char *name) { return type.contains(QLatin1String(name)); });
}

/// Whether a text may be written into a statement without quotes. Anything else would be read as SQL.
bool isNumberOrNull(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^\\s*(?:[-+]?(?:\\d+\\.?\\d*|\\.\\d+)(?:e[-+]?\\d+)?|NULL)\\s*$"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DontCaptureOption);
    return pattern.match(text).hasMatch();
}

using Literal = QString (*)(const KNValue &);

QString literal(const KNValue &value, bool isNumericColumn, Literal ofOtherColumns)
{
    if (isNumericColumn && value.kind() == KNValue::Kind::Text && !value.text().isEmpty()) {
        QString number = value.text();
        number.remove(QLatin1Char(',')).remove(QLatin1Char('$'));
        if (isNumberOrNull(number))
            return number;
    }
    return ofOtherColumns(value);
}

QString rowText(const QList<KNValue> &row, const std::vector<bool> &isNumeric, Literal ofOtherColumns)
{
    QString text = QStringLiteral("(");
    for (qsizetype column = 0; column < row.size(); ++column) {
        if (column > 0)
            text += QLatin1Char(',');
        const auto index = static_cast<std::size_t>(column);
        text += literal(row[column], index < isNumeric.size() && isNumeric[index], ofOtherColumns);
    }
    return text + QLatin1Char(')');
}

QString statementHead(const QStringList &table, const QStringList &columnNames)
{
    QStringList names;
    for (const QString &name : columnNames)
        names.append(MSSQLObjectPath::quoted({name}));
    return KNFormat("INSERT INTO %@ (%@)", MSSQLObjectPath::ofTable(table), names.join(QLatin1Char(',')));
}

} // namespace

/// How rows are written as INSERT statements.
struct MSSQLClient::InsertStatement
{
    QString header; ///< the beginning, up to the columns
    QStringList columnTypes;
    Literal literal;        ///< for all columns except numeric ones
    bool hasOneRow = false; ///< for servers that know no list of rows
};

bool MSSQLClient::bulkInsert(const QList<QList<KNValue>> &rows, const QStringList &intoTable,
                             const QStringList &columnNames, const QStringList &columnTypes,
                             const Progress &progressBlock, KNError *error)
{
    KNLogHelper *log = KNLogHelper::sharedInstance();
    const QVariantMap details = {{QStringLiteral("ColumnCount"), columnNames.size()}};
    log->logMessage("bulkInsert started with %ld rows. Column types: %@.", rows.size(),
                    columnTypes.join(QStringLiteral(", ")));
    KNError failure;
    executeNonQuery(QStringLiteral("BEGIN TRANSACTION"), &failure);
    if (failure) {
        *error =
            KNError(QStringLiteral(""), 0,
                    KNFormat("Failed to create import transaction. %@.", failure.localizedDescription()));
        log->logError(*error, details);
        return false;
    }
    const InsertStatement statement{statementHead(intoTable, columnNames), columnTypes, escapeColumnValue};
    if (insertRows(rows, statement, progressBlock, &failure)) {
        executeNonQuery(QStringLiteral("COMMIT"), &failure);
    } else {
        KNError rollbackFailure;
        executeNonQuery(QStringLiteral("ROLLBACK"), &rollbackFailure);
        if (rollbackFailure)
            log->logMessage("Rollback error: %@", rollbackFailure.localizedDescription());
    }
    *error = failure;
    if (failure)
        log->logError(failure, details);
    return !failure;
}

bool MSSQLClient::insertRows(const QList<QList<KNValue>> &rows, const QStringList &intoTable,
                             const QStringList &columnNames, const QStringList &columnTypes, KNError *error)
{
    error->clear();
    const bool isOld = m_dbProc && dbtds(m_dbProc) < DBTDS_7_3;
    const InsertStatement statement{statementHead(intoTable, columnNames), columnTypes, MSSQLQuoting::literal,
                                    isOld};
    return insertRows(rows, statement, {}, error);
}

/// Inserts the rows within the transaction. A single run, so that a cancel between two statements takes
/// effect.
bool MSSQLClient::insertRows(const QList<QList<KNValue>> &rows, const InsertStatement &statement,
                             const Progress &progressBlock, KNError *error)
{
    const MSSQLRunScope run(m_cancellation);
    std::vector<bool> isNumeric;
    for (const QString &type : statement.columnTypes)
        isNumeric.push_back(isNumericType(type));
    QStringList pending;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (progressBlock)
            progressBlock(double(i) / double(rows.size()) * 100.0, nullptr);
        pending.append(rowText(rows[i], isNumeric, statement.literal));
        if (pending.size() < RowsPerStatement)
            continue;
        if (!sendRows(pending, statement, error))
            return false;
        pending.clear();
    }
    return pending.isEmpty() || sendRows(pending, statement, error);
}

bool MSSQLClient::sendRows(const QStringList &rows, const InsertStatement &statement, KNError *error)
{
    if (!statement.hasOneRow)
        return performBulkInsert(rows, statement.header, statement.columnTypes, error);
    const QString separate = rows.join(KNFormat(";\r\n%@ VALUES ", statement.header));
    return performBulkInsert({separate}, statement.header, statement.columnTypes, error);
}

bool MSSQLClient::performBulkInsert(const QStringList &rows, const QString &header,
                                    const QStringList &dataTypes, KNError *error)
{
    const MachTimer timer;
    KNLogHelper *log = KNLogHelper::sharedInstance();
    log->logMessage("Started importing %ld rows.", rows.size());
    const QString insert = KNFormat("%@ VALUES %@;", header, rows.join(QStringLiteral(",\r\n")));
    executeNonQuery(insert, error);
    if (error->isSet()) {
        // The rows are the user's data: the log contains only their number.
        const QString statement = KNFormat("%@ VALUES (%ld rows);", header, rows.size());
        log->logMessage("Bulk insert failed. Insert string was:\r\n%@", statement);
        log->logMessage("Failed to perform insert with error: %@", error->localizedDescription());
        log->logError(
            KNError(QStringLiteral("com.quorvex.vantor.import"), error->code(), error->localizedDescription(),
                    error->userInfo()),
            {{QStringLiteral("dataTypes"), dataTypes}, {QStringLiteral("insertString"), statement}});
        return false;
    }
    log->logMessage("Finised importing %ld rows in %0.2f seconds.", rows.size(), timer.seconds());
    return true;
}
