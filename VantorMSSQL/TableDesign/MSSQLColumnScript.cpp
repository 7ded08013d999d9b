#include "TableDesign/MSSQLColumnScript.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"
#include "TableDesign/MSSQLRenameScript.h"
#include "TableDesign/MSSQLStatementCaution.h"

#include <algorithm>

namespace {

bool isRenamed(const MSSQLColumnRecord &before, const MSSQLColumnRecord &after)
{
    return before.columnName.compare(after.columnName, Qt::CaseInsensitive) != 0;
}

/// The name alone of a type that one of these names and "(" begin.
QString withoutSize(const QString &type, std::initializer_list<const char *> names,
                    Qt::CaseSensitivity sensitivity)
{
    for (const char *name : names) {
        const QString bare = QString::fromLatin1(name);
        if (type.startsWith(bare + QLatin1Char('('), sensitivity))
            return type.left(bare.size());
    }
    return type;
}

/// The type without what is in parentheses where a server takes nothing there, in any case of letters.
QString acceptedType(const QString &type)
{
    return withoutSize(type, {"datetime", "date", "smalldatetime", "ntext", "text"}, Qt::CaseInsensitive);
}

/// Whether a collation belongs behind the type: an alias type takes none.
bool takesCollation(const QString &type)
{
    static const QStringList types{QStringLiteral("char"),  QStringLiteral("varchar"),
                                   QStringLiteral("nchar"), QStringLiteral("nvarchar"),
                                   QStringLiteral("text"),  QStringLiteral("ntext")};
    return types.contains(type.section(QLatin1Char('('), 0, 0).trimmed(), Qt::CaseInsensitive);
}

bool keepsCollation(const MSSQLColumnRecord &column)
{
    return !column.collation.isEmpty() && takesCollation(column.displayType());
}

bool keepsSparse(const MSSQLColumnRecord &column)
{
    return column.isSparse && column.isNullable;
}

QString withNullability(const QString &type, const MSSQLColumnRecord &column)
{
    return column.isNullable ? type : type + QLatin1String(" NOT NULL");
}

/// What stands behind the name of a column that keeps its collation and stays sparse.
QString correctedDefinition(const MSSQLColumnRecord &column)
{
    QString definition = acceptedType(column.displayType());
    if (keepsCollation(column))
        definition += QLatin1String(" COLLATE ") + column.collation;
    definition = withNullability(definition, column);
    return keepsSparse(column) ? definition + QLatin1String(" SPARSE") : definition;
}

} // namespace

MSSQLColumnScript::MSSQLColumnScript(MSSQLDesignedTable table)
    : m_table(std::move(table))
{
}

KNStatementPair MSSQLColumnScript::rename(const QString &columnName, const QString &newName) const
{
    const QString schema = m_table.schema.isNull() ? QStringLiteral("") : m_table.schema;
    MSSQLStatementCaution caution;
    caution.addUnlessReadInRename({schema, m_table.name, columnName});
    for (const QString &name : {m_table.schema, m_table.name, columnName, newName})
        caution.addUnlessReadInLiteral(name, false);
    return {KNFormat("EXEC sp_rename '%@.%@.%@', '%@', 'COLUMN'", schema, m_table.name, columnName, newName),
            correctedRename(columnName, newName), caution.text()};
}

QString MSSQLColumnScript::correctedRename(const QString &columnName, const QString &newName) const
{
    return MSSQLRenameScript::column(m_table, columnName, newName);
}

KNStatementPair MSSQLColumnScript::changeType(const MSSQLColumnRecord &before,
                                              const MSSQLColumnRecord &after) const
{
    if (before.columnName == after.columnName && before.displayType() == after.displayType() &&
        before.isNullable == after.isNullable && before.isIdentity == after.isIdentity)
        return {};
    const QString target = MSSQLQuoting::escapeSchemaAndTable(m_table.schema, m_table.name);
    const QString old = MSSQLQuoting::escapeTableNameIfRequired(before.columnName);
    QString exact = isRenamed(before, after)
                        ? KNFormat("ALTER TABLE %@ CHANGE %@ %@ ", target, old,
                                   MSSQLQuoting::escapeTableNameIfRequired(after.columnName))
                        : KNFormat("ALTER TABLE %@ ALTER COLUMN %@ ", target, old);
    exact += withNullability(dispayForColumnDataType(after.displayType()), after);
    if (after.isIdentity)
        exact += QLatin1String(" IDENTITY (1,1)");
    return {exact, correctedChange(before, after), differenceOfChange(before, after)};
}

QString MSSQLColumnScript::correctedChange(const MSSQLColumnRecord &before,
                                           const MSSQLColumnRecord &after) const
{
    if (before.isIdentity != after.isIdentity)
        return {};
    const QString change = KNFormat("ALTER TABLE %@ ALTER COLUMN %@ %@", m_table.quoted(),
                                    MSSQLQuoting::quotedName(before.columnName), correctedDefinition(after));
    if (!isRenamed(before, after))
        return change;
    return change + QLatin1String(";\r\n") + correctedRename(before.columnName, after.columnName);
}

QString MSSQLColumnScript::differenceOfChange(const MSSQLColumnRecord &before,
                                              const MSSQLColumnRecord &after) const
{
    MSSQLStatementCaution caution;
    QStringList path{m_table.name};
    if (!m_table.schema.isEmpty())
        path.prepend(m_table.schema);
    caution.addUnlessRead(MSSQLQuoting::escapeSchemaAndTable(m_table.schema, m_table.name), path);
    caution.addUnlessRead(MSSQLQuoting::escapeTableNameIfRequired(before.columnName), {before.columnName});
    if (isRenamed(before, after))
        caution.add(MSSQLStatementCaution::tr("SQL Server does not accept CHANGE in ALTER TABLE."));
    if (after.isIdentity)
        caution.add(MSSQLStatementCaution::tr("SQL Server does not accept IDENTITY in ALTER COLUMN."));
    if (before.isIdentity != after.isIdentity)
        caution.add(MSSQLStatementCaution::tr(
            "Whether a column is an identity column can only be chosen when it is created."));
    if (keepsCollation(after))
        caution.add(KNFormat(MSSQLStatementCaution::tr("This would replace the column's collation %@ by the "
                                                       "database's."),
                             after.collation));
    if (keepsSparse(after))
        caution.add(MSSQLStatementCaution::tr("This would make the column no longer sparse."));
    const QString type = after.displayType();
    const QString sent = dispayForColumnDataType(type);
    const QString accepted = acceptedType(type);
    if (sent.size() > accepted.size())
        caution.add(KNFormat(MSSQLStatementCaution::tr("SQL Server does not accept the type %@."), sent));
    else if (sent != accepted && accepted != QLatin1String("datetimeoffset(7)"))
        caution.add(KNFormat(
            MSSQLStatementCaution::tr("This leaves out the precision of %@ and would store 7 digits."),
            type));
    return caution.text();
}

KNStatementPair MSSQLColumnScript::addColumn(const QString &columnName) const
{
    MSSQLStatementCaution caution;
    caution.addToExactName(m_table);
    caution.addUnlessRead(columnName, {columnName});
    return {
        KNFormat("ALTER TABLE %@ ADD %@ INT", m_table.exactName(), columnName),
        KNFormat("ALTER TABLE %@ ADD %@ INT", m_table.quoted(), MSSQLQuoting::quotedName(columnName)),
        caution.text(),
    };
}

KNStatementPair MSSQLColumnScript::dropColumn(const QString &columnName,
                                              const QList<MSSQLColumnRecord> &columns) const
{
    if (columns.size() <= 1)
        return {};
    MSSQLStatementCaution caution;
    caution.addToExactName(m_table);
    caution.addUnlessRead(columnName, {columnName});
    return {
        KNFormat("ALTER TABLE %@ DROP COLUMN %@", m_table.exactName(), columnName),
        KNFormat("ALTER TABLE %@ DROP COLUMN %@", m_table.quoted(), MSSQLQuoting::quotedName(columnName)),
        caution.text(),
    };
}

QString MSSQLColumnScript::nameForNewColumn(const QList<MSSQLColumnRecord> &columns)
{
    for (qint64 number = 1;; ++number) {
        const QString name = KNFormat("NewColumn%ld", number);
        const bool isTaken =
            std::any_of(columns.begin(), columns.end(), [&](const MSSQLColumnRecord &column) {
                return column.columnName.compare(name, Qt::CaseInsensitive) == 0;
            });
        if (!isTaken)
            return name;
    }
}

QString MSSQLColumnScript::dispayForColumnDataType(const QString &type)
{
    return withoutSize(type, {"datetime", "date", "datetimeoffset", "smalldatetime", "ntext", "text"},
                       Qt::CaseSensitive);
}

QString MSSQLColumnScript::wrapped(const QString &script)
{
    if (script.isNull())
        return {};
    return KNFormat("BEGIN TRY\r\n"
                    "BEGIN TRANSACTION\r\n"
                    "\r\n"
                    "%@\r\n"
                    "\r\n"
                    "COMMIT TRAN\r\n"
                    "\r\n\r\n\r\n"
                    "END TRY\r\n"
                    "\r\n"
                    "BEGIN CATCH\r\n"
                    "\r\n"
                    "IF @@TRANCOUNT > 0\r\n"
                    "\r\n"
                    "ROLLBACK TRAN\r\n"
                    "\r\n"
                    "        DECLARE @ErrorMessage NVARCHAR(4000);\r\n"
                    "DECLARE @ErrorSeverity INT;\r\n"
                    "DECLARE @ErrorState INT;\r\n"
                    "SELECT\r\n"
                    "@ErrorMessage = ERROR_MESSAGE(),\r\n"
                    "@ErrorSeverity = ERROR_SEVERITY(),\r\n"
                    "@ErrorState = ERROR_STATE();\r\n"
                    "\r\n"
                    "RAISERROR (@ErrorMessage, -- Message text.\r\n"
                    "@ErrorSeverity, -- Severity.\r\n"
                    "@ErrorState -- State.\r\n"
                    ");\r\n"
                    "\r\n"
                    "END CATCH",
                    script);
}

KNStatementPair MSSQLColumnScript::wrapped(const KNStatementPair &pair)
{
    return {wrapped(pair.exact), wrapped(pair.corrected), pair.difference};
}

KNStatementPair MSSQLColumnScript::wrappedFor2000(const KNStatementPair &pair)
{
    if (pair.exact.isNull())
        return {};
    MSSQLStatementCaution caution;
    caution.add(MSSQLStatementCaution::tr("SQL Server 2000 does not know BEGIN TRY."));
    if (!pair.difference.isEmpty())
        caution.add(pair.difference);
    return {wrapped(pair.exact),
            pair.corrected.isNull() ? QString()
                                    : KNFormat("SET XACT_ABORT ON\r\n"
                                               "BEGIN TRANSACTION\r\n"
                                               "\r\n"
                                               "%@\r\n"
                                               "\r\n"
                                               "COMMIT TRAN\r\n"
                                               "SET XACT_ABORT OFF",
                                               pair.corrected),
            caution.text()};
}
