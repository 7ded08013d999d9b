#include "Scripts/MSSQLMySQLColumn.h"

#include "Catalog/MSSQLColumnRecord.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "Scripts/MSSQLVariantText.h"

#include <QHash>

namespace {

constexpr auto ErrorDomain = "mssql.queryLoader.tableAsMySQL";
constexpr qint64 Unlimited = -1;
constexpr qint64 LongestFixed = 255; ///< characters or bytes of a MySQL column of fixed length

struct Declaration
{
    QString type; ///< with precision and scale if the type has them
    std::optional<qint64> size;
    QString conversion = {}; ///< as in MSSQLMySQLColumn
};

/// The values of a variant as text after a t, or as hexadecimal digits after an x. Style 2 of CONVERT returns
/// hexadecimal digits from SQL Server 2008 on.
const QString &variantConversion()
{
    static const QString conversion = KNFormat(
        "CASE WHEN CONVERT(sysname, SQL_VARIANT_PROPERTY({0}, 'BaseType')) IN ('binary', 'varbinary') "
        "THEN N'x' + CONVERT(nvarchar(max), CONVERT(varbinary(8000), {0}), 2) ELSE N't' + %@ END",
        MSSQLVariantText::expression(QStringLiteral("{0}")));
    return conversion;
}

/// The instant in UTC, with the digits of seconds that the type has.
QString offsetConversion(const QString &type)
{
    const QString digits =
        type.contains(QLatin1Char('(')) ? type.section(QLatin1Char('('), 1).chopped(1) : QStringLiteral("7");
    return KNFormat("CONVERT(varchar(34), CONVERT(datetime2(%@), SWITCHOFFSET({0}, '+00:00')), 121)", digits);
}

bool isNational(const QString &type)
{
    return type == QLatin1String("nchar") || type == QLatin1String("nvarchar");
}

/// The MySQL spelling of a type that MySQL does not have or that has another meaning there. Types with a
/// translation rule are unchanged.
Declaration spelledForMySQL(const Declaration &column)
{
    static const QHash<QString, Declaration> others{
        {QStringLiteral("bit"), {QStringLiteral("bit(1)"), {}}},
        {QStringLiteral("tinyint"), {QStringLiteral("tinyint unsigned"), {}}},
        {QStringLiteral("money"),
         {QStringLiteral("decimal(19,4)"), {}, QStringLiteral("CONVERT(decimal(19,4), {0})")}},
        {QStringLiteral("smallmoney"),
         {QStringLiteral("decimal(10,4)"), {}, QStringLiteral("CONVERT(decimal(10,4), {0})")}},
        {QStringLiteral("float"), {QStringLiteral("double"), {}}},
        {QStringLiteral("real"), {QStringLiteral("float"), {}}},
        {QStringLiteral("text"), {QStringLiteral("longtext"), {}}},
        {QStringLiteral("ntext"), {QStringLiteral("longtext"), {}}},
        {QStringLiteral("timestamp"), {QStringLiteral("binary"), 8}},
        {QStringLiteral("rowversion"), {QStringLiteral("binary"), 8}},
        {QStringLiteral("sysname"), {QStringLiteral("nvarchar"), 256}},
        {QStringLiteral("sql_variant"), {QStringLiteral("longblob"), {}, variantConversion()}},
        {QStringLiteral("geography"), {QStringLiteral("longblob"), {}}},
        {QStringLiteral("geometry"), {QStringLiteral("longblob"), {}}},
    };
    const QString type = column.type.toLower();
    if (const auto other = others.constFind(type); other != others.constEnd())
        return *other;
    // MySQL stores an instant without its offset, and six digits of a second.
    if (type.startsWith(QLatin1String("datetimeoffset")))
        return {QStringLiteral("varchar"), 34, offsetConversion(type)};
    if (type == QLatin1String("time(7)"))
        return {QStringLiteral("time(6)"), {}};
    const qint64 units = column.size.value_or(0) / (isNational(type) ? 2 : 1);
    if (units > LongestFixed && !type.contains(QLatin1String("var"))) {
        const QString varying = isNational(type)                  ? QStringLiteral("nvarchar")
                                : type == QLatin1String("char")   ? QStringLiteral("varchar")
                                : type == QLatin1String("binary") ? QStringLiteral("varbinary")
                                                                  : column.type;
        return {varying, column.size};
    }
    return column;
}

/// Columns of "UserDefinedDataType_CreationQuery".
enum AliasColumn { MaxLength = 4, Size = 5, BaseType = 17 };

/// The base types of one table's user-defined types.
class AliasTypes
{
public:
    explicit AliasTypes(const VantorDBC &details)
        : m_details(details)
    {
    }

    /// The declaration of the alias type "[schema].[name]"; other types are unchanged. Blocks on the server.
    Declaration resolved(const Declaration &column, KNError *error)
    {
        if (!column.type.startsWith(QLatin1Char('[')))
            return column;
        auto known = m_known.constFind(column.type);
        if (known == m_known.constEnd())
            known = m_known.insert(column.type, load(column.type, error));
        return *known;
    }

private:
    Declaration load(const QString &type, KNError *error) const
    {
        const auto name = [](QString part) { return part.replace(QLatin1String("]]"), QLatin1String("]")); };
        const qsizetype dot = type.indexOf(QLatin1String("].["));
        // A type of the CLR is not an alias: its values are bytes.
        Declaration declaration{QStringLiteral("longblob"), {}};
        const KNError failure = MSSQLCatalogReader::read(
            m_details, QStringLiteral("UserDefinedDataType_CreationQuery"),
            {{QStringLiteral("SCHEMA"), name(type.mid(1, dot - 1))},
             {QStringLiteral("TYPE"), name(type.mid(dot + 3).chopped(1))}},
            ErrorDomain, [&](const DatabaseResultSet &row) { declaration = declarationOf(row); });
        if (failure)
            *error = failure;
        return declaration;
    }

    static Declaration declarationOf(const DatabaseResultSet &row)
    {
        const QString base = row.stringForColumnIndex(BaseType).section(QLatin1Char(' '), 0, 0);
        const QString size = row.stringForColumnIndex(Size);
        if (base.contains(QLatin1String("char")) || base.contains(QLatin1String("binary")))
            return {base, row.objectForColumnIndex(MaxLength).toInt64()};
        const bool hasSize = base == QLatin1String("decimal") || base == QLatin1String("numeric") ||
                             base == QLatin1String("time") || base.startsWith(QLatin1String("datetime"));
        return {hasSize && size.at(0).isDigit() ? KNFormat("%@(%@)", base, size) : base, {}};
    }

    const VantorDBC &m_details;
    QHash<QString, Declaration> m_known;
};

} // namespace

QList<MSSQLMySQLColumn> MSSQLMySQLColumn::columnsOf(const VantorDBC &details, const QString &table,
                                                    const QString &inSchema, KNError *error)
{
    QList<MSSQLMySQLColumn> columns;
    const auto records =
        MSSQLCatalogReader::records<MSSQLColumnRecord>(details, inSchema, table, ErrorDomain, error);
    for (const MSSQLColumnRecord &record : records) {
        const KNValue &size = record.maxLength;
        columns.append({record.columnName, record.typeName,
                        size.isNull() ? std::nullopt : std::optional(size.toInt64()), record.isNullable,
                        record.isPrimaryKey});
    }
    AliasTypes aliases(details);
    for (MSSQLMySQLColumn &column : columns) {
        const Declaration spelled =
            spelledForMySQL(aliases.resolved({column.columnType, column.columnSize}, error));
        column.columnType = spelled.type;
        column.columnSize = spelled.size;
        column.conversion = spelled.conversion;
        column.isVariant = spelled.conversion == variantConversion();
    }
    return columns;
}

MSSQLMySQLTranslation MSSQLMySQLTranslation::of(const MSSQLMySQLColumn &column,
                                                const std::function<qint64()> &largestSize)
{
    const auto has = [](const QString &type, const char *word) {
        return type.contains(QLatin1String(word), Qt::CaseInsensitive);
    };
    static const QStringList sizeless{QStringLiteral("image"),
                                      QStringLiteral("int"),
                                      QStringLiteral("bigint"),
                                      QStringLiteral("smallint"),
                                      QStringLiteral("uniqueidentifier"),
                                      QStringLiteral("xml")};
    const QString &name = column.columnName;
    const QString bracketed = MSSQLObjectPath::bracketed(name);
    QString type = column.columnType;
    if (column.columnSize && !sizeless.contains(type, Qt::CaseInsensitive)) {
        static const QStringList national{QStringLiteral("nvarchar"), QStringLiteral("nchar"),
                                          QStringLiteral("ntext")};
        const bool isHalved = national.contains(type, Qt::CaseInsensitive);
        if (*column.columnSize == Unlimited)
            type = KNFormat("%@(%ld)", type, SubstituteWidth);
        else
            type = KNFormat("%@(%@)", type, QString::number(*column.columnSize / (isHalved ? 2 : 1)));
    }

    MSSQLMySQLTranslation result;
    result.selectExpression = MSSQLObjectPath::quoted({name});
    if (!column.conversion.isEmpty()) {
        result.selectExpression = KNFormat(
            "%@ AS %@", KNQueryTemplate::filled(column.conversion, {{QStringLiteral("0"), bracketed}}),
            bracketed);
    }
    if (has(type, "hierarchyid")) {
        type = QStringLiteral("blob(892)");
        result.selectExpression = KNFormat("CAST(%@ AS VARBINARY(892)) AS %@", bracketed, bracketed);
    }
    if (has(type, "uniqueidentifier")) {
        type = QStringLiteral("binary(16)");
        result.selectExpression = KNFormat("CAST(%@ AS BINARY(16)) AS %@", bracketed, bracketed);
    }
    if (has(type, "xml"))
        type = KNFormat("nvarchar(%ld)", SubstituteWidth);
    if (has(type, "datetime")) {
        type = QStringLiteral("datetime");
        result.selectExpression = KNFormat("convert(varchar(25), %@, 120) AS %@", bracketed, bracketed);
    }
    if (has(type, "image")) {
        type = KNFormat("blob(%ld)", largestSize());
        result.notes.append(QStringLiteral("Size has been calculated by determining the largest field."));
    }
    result.type = type.replace(QLatin1String("(max)"), KNFormat("(%ld)", SubstituteWidth));
    return result;
}
