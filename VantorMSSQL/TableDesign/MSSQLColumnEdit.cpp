#include "TableDesign/MSSQLColumnEdit.h"

#include "Catalog/MSSQLVersionHelper.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "TableDesign/MSSQLColumnDefaultScript.h"
#include "TableDesign/MSSQLColumnScript.h"
#include "TableDesign/MSSQLPrimaryKeyScript.h"
#include "TableDesign/MSSQLTypeChange.h"

#include <algorithm>

namespace {

/// Whether a column of this type can be an identity column.
bool takesIdentity(const MSSQLColumnRecord &column)
{
    const QString name = column.typeName.section(QLatin1Char('('), 0, 0).trimmed().toUpper();
    static const QStringList types = {QStringLiteral("SMALLINT"), QStringLiteral("TINYINT"),
                                      QStringLiteral("INT"),      QStringLiteral("BIGINT"),
                                      QStringLiteral("DECIMAL"),  QStringLiteral("NUMERIC")};
    return column.isIdentity || types.contains(name);
}

QString templateText(const VantorDBC &settings, const char *title)
{
    return MSSQLCatalogReader::text(settings, QString::fromLatin1(title));
}

} // namespace

MSSQLColumnEdit::MSSQLColumnEdit(MSSQLColumnRecord column, Cell cell, QVariant value)
    : m_before(std::move(column))
    , m_cell(cell)
    , m_value(std::move(value))
{
}

bool MSSQLColumnEdit::isCheck(Cell cell)
{
    return cell == Primary || cell == Nullable || cell == AutoIncrement;
}

QVariant MSSQLColumnEdit::valueOf(const MSSQLColumnRecord &column, Cell cell)
{
    switch (cell) {
    case Primary:
        return column.isPrimaryKey;
    case Field:
        return column.columnName;
    case Type:
        return column.displayType();
    case Default:
        return column.defaultValue;
    case Nullable:
        return column.isNullable;
    default:
        return column.isIdentity;
    }
}

QString MSSQLColumnEdit::refusal(const MSSQLColumnRecord &column, Cell cell)
{
    if (column.isComputed && cell != Field)
        return tr("A computed column. Only its name can be changed here.");
    if (cell == AutoIncrement && !takesIdentity(column))
        return KNFormat(tr("A column of type %@ cannot be an identity column."), column.displayType());
    return {};
}

MSSQLColumnRecord MSSQLColumnEdit::after() const
{
    MSSQLColumnRecord record = m_before;
    switch (m_cell) {
    case Primary:
        record.isPrimaryKey = m_value.toBool();
        break;
    case Field:
        record.columnName = m_value.toString();
        break;
    case Type:
        record.typeName = m_value.toString();
        record.maxLength = record.precision = record.scale = KNValue();
        break;
    case Default:
        record.defaultValue = m_value.toString().isEmpty() ? QString() : m_value.toString();
        break;
    case Nullable:
        record.isNullable = m_value.toBool();
        break;
    default:
        record.isIdentity = m_value.toBool();
        break;
    }
    return record;
}

QString MSSQLColumnEdit::refusal() const
{
    if (m_cell == Field && m_value.toString().isEmpty())
        return tr("A column needs a name.");
    if (m_cell == Type && m_value.toString().isEmpty())
        return tr("A column needs a type.");
    if (m_cell == Primary && MSSQLPrimaryKeyScript::needsNotNull(m_before, m_value.toBool()))
        return tr("You must disable 'nullable' before this column can become a primary key.");
    const QString reason = refusal(m_before, m_cell);
    if (m_cell == AutoIncrement && !reason.isNull())
        KNLogHelper::sharedInstance()->logMessage("Unable to set column %@ to value %@", m_before.columnName,
                                                  m_value.toString());
    return reason;
}

bool MSSQLColumnEdit::isTypeThatMayLoseValues() const
{
    return m_cell == Type && MSSQLTypeChange::mayLoseValues(m_before.displayType(), m_value.toString());
}

KNStatementPair MSSQLColumnEdit::script(const MSSQLDesignedTable &table,
                                        const QList<MSSQLColumnRecord> &columns, const VantorDBC &settings,
                                        KNError *error) const
{
    error->clear();
    if (m_value == valueOf(m_before, m_cell))
        return {};
    const KNStatementPair pair = statement(table, columns, settings, error);
    logScript(pair.preferred(MSSQLCorrectedStatements::areUsed()));
    return MSSQLVersionHelper::sharedInstance()->isSQL2000(settings) ? MSSQLColumnScript::wrappedFor2000(pair)
                                                                     : MSSQLColumnScript::wrapped(pair);
}

void MSSQLColumnEdit::logScript(const QString &script) const
{
    if (m_cell == Default && !script.isNull())
        KNLogHelper::sharedInstance()->logMessage("Alter table query is: %@", script);
    else if (m_cell == Primary && !script.isNull())
        KNLogHelper::sharedInstance()->logMessage("Resulting query is: %@", script);
}

KNStatementPair MSSQLColumnEdit::statement(const MSSQLDesignedTable &table,
                                           const QList<MSSQLColumnRecord> &columns, const VantorDBC &settings,
                                           KNError *error) const
{
    switch (m_cell) {
    case Field:
        return MSSQLColumnScript(table).rename(m_before.columnName, m_value.toString());
    case Default:
        return MSSQLColumnDefaultScript(table, {templateText(settings, "Table_RemoveDefaultForColumn"),
                                                templateText(settings, "Table_ReplaceDefaultForColumn")})
            .change(m_before.columnName, m_value.toString());
    case Primary:
        return keyChange(table, columns, settings, error);
    default:
        return MSSQLColumnScript(table).changeType(m_before, after());
    }
}

KNStatementPair MSSQLColumnEdit::keyChange(const MSSQLDesignedTable &table,
                                           const QList<MSSQLColumnRecord> &columns, const VantorDBC &settings,
                                           KNError *error) const
{
    const auto keys = MSSQLCatalogReader::records<MSSQLPrimaryKeyRecord>(
        settings, table.schema, table.name, "mssql.tabledesigner.loadTable", error);
    if (*error)
        return {};
    const auto indexes = MSSQLCatalogReader::records<MSSQLIndexDefinition>(
        settings, table.schema, table.name, "mssql.tabledesigner.loadTable", error);
    if (*error)
        return {};
    const auto index =
        std::find_if(indexes.begin(), indexes.end(), [](const auto &each) { return each.isPrimaryKey; });
    const auto syntax = MSSQLVersionHelper::sharedInstance()->isSQL2000(settings) ? MSSQLIndexSyntax::SQL2000
                                                                                  : MSSQLIndexSyntax::Current;
    return MSSQLPrimaryKeyScript(table, templateText(settings, "Table_DropPrimaryKey"), syntax)
        .change(columns, m_before.columnName, m_value.toBool(), keys.value(0),
                index == indexes.end() ? MSSQLIndexDefinition() : *index);
}
