#include "TableDesign/MSSQLTypeChange.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"

#include <QRegularExpression>

#include <limits>

namespace {

constexpr int Unlimited = std::numeric_limits<int>::max();

enum class Family { Integer, Decimal, Text, UnicodeText, Binary, Other };

/// A type taken apart.
struct Type
{
    QString name;
    Family family = Family::Other;
    int first = -1;       ///< length or precision; Unlimited for max; -1 if not given
    int second = -1;      ///< scale; -1 if not given
    bool isKnown = false; ///< whether the text is one word with a size; alias types are not
};

/// The number of the integer type among tinyint, smallint, int and bigint; -1 for others.
int integerRank(const QString &name)
{
    static const QStringList names = {QStringLiteral("tinyint"), QStringLiteral("smallint"),
                                      QStringLiteral("int"), QStringLiteral("bigint")};
    return static_cast<int>(names.indexOf(name));
}

Family familyOf(const QString &name)
{
    if (integerRank(name) >= 0)
        return Family::Integer;
    if (name == QLatin1String("decimal") || name == QLatin1String("numeric"))
        return Family::Decimal;
    if (name == QLatin1String("char") || name == QLatin1String("varchar"))
        return Family::Text;
    if (name == QLatin1String("nchar") || name == QLatin1String("nvarchar"))
        return Family::UnicodeText;
    if (name == QLatin1String("binary") || name == QLatin1String("varbinary"))
        return Family::Binary;
    return Family::Other;
}

/// The default length or precision of a column type without one.
int defaultSize(Family family)
{
    constexpr int DecimalPrecision = 18;
    return family == Family::Decimal ? DecimalPrecision : 1;
}

Type typeOf(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^\\s*(\\w+)\\s*(?:\\(\\s*(max|\\d+)\\s*(?:,\\s*(\\d+)\\s*)?\\))?\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return {text.trimmed().toLower()};
    Type type{match.captured(1).toLower(), familyOf(match.captured(1).toLower())};
    const QString size = match.captured(2);
    if (size.isEmpty())
        type.first = defaultSize(type.family);
    else
        type.first = size.compare(QLatin1String("max"), Qt::CaseInsensitive) == 0 ? Unlimited : size.toInt();
    type.second = match.captured(3).isEmpty() ? 0 : match.captured(3).toInt();
    type.isKnown = true;
    return type;
}

bool isText(const Type &type)
{
    return type.family == Family::Text || type.family == Family::UnicodeText;
}

/// "col < low OR col > high" for an integer type.
QString outsideOf(const QString &column, const Type &type)
{
    static const QStringList lows = {QStringLiteral("0"), QStringLiteral("-32768"),
                                     QStringLiteral("-2147483648"), QStringLiteral("-9223372036854775808")};
    static const QStringList highs = {QStringLiteral("255"), QStringLiteral("32767"),
                                      QStringLiteral("2147483647"), QStringLiteral("9223372036854775807")};
    const int rank = integerRank(type.name);
    return KNFormat("%@ < %@ OR %@ > %@", column, lows[rank], column, highs[rank]);
}

/// Length in bytes. The blanks that pad a char are cut without an error.
QString bytesOf(const QString &column, const Type &type)
{
    const bool isPadded = type.name == QLatin1String("char") || type.name == QLatin1String("nchar");
    return KNFormat(isPadded ? "DATALENGTH(RTRIM(%@))" : "DATALENGTH(%@)", column);
}

/// The condition of rows whose values do not fit, within a family of types; null for other changes.
QString condition(const QString &column, const Type &before, const Type &after)
{
    if (before.family == Family::Integer && after.family == Family::Integer)
        return outsideOf(column, after);
    if (isText(before) && isText(after)) {
        QStringList conditions;
        if (after.first != Unlimited)
            conditions.append(KNFormat("%@ > %d", bytesOf(column, before),
                                       before.family == Family::UnicodeText ? after.first * 2 : after.first));
        // Compared as bytes: collations without regard to accents or width call a replaced letter equal.
        if (before.family == Family::UnicodeText && after.family == Family::Text)
            conditions.append(KNFormat("CONVERT(varbinary(max), CONVERT(nvarchar(max), CONVERT(varchar(max), "
                                       "%@))) <> CONVERT(varbinary(max), CONVERT(nvarchar(max), %@))",
                                       column, column));
        return conditions.join(QStringLiteral(" OR "));
    }
    if (before.family == Family::Binary && after.family == Family::Binary)
        return KNFormat("DATALENGTH(%@) > %d", column, after.first);
    return {};
}

/// Whether values that were converted to another such type and back can be compared with the old ones.
bool isNumberOrTime(const Type &type)
{
    static const QStringList others = {
        QStringLiteral("bit"),           QStringLiteral("money"),         QStringLiteral("smallmoney"),
        QStringLiteral("float"),         QStringLiteral("real"),          QStringLiteral("date"),
        QStringLiteral("time"),          QStringLiteral("datetime"),      QStringLiteral("datetime2"),
        QStringLiteral("smalldatetime"), QStringLiteral("datetimeoffset")};
    return type.isKnown &&
           (type.family == Family::Integer || type.family == Family::Decimal || others.contains(type.name));
}

/// The condition of rows whose values another family of types does not hold unchanged; null where no query
/// tells. TRY_CONVERT alone does not: it rounds numbers and times, and cuts texts, without an error.
QString roundTrip(const QString &column, const QString &before, const QString &after)
{
    const Type from = typeOf(before);
    const Type to = typeOf(after);
    QString back;
    if (isNumberOrTime(from) && isNumberOrTime(to))
        back = KNFormat("TRY_CONVERT(%@, TRY_CONVERT(%@, %@))", before, after, column);
    else if (isText(from) && to.family == Family::Integer)
        back = KNFormat("CONVERT(nvarchar(max), TRY_CONVERT(%@, %@))", after, column);
    return back.isNull()
               ? QString()
               : KNFormat("%@ IS NOT NULL AND CASE WHEN %@ = %@ THEN 0 ELSE 1 END = 1", column, back, column);
}

} // namespace

bool MSSQLTypeChange::mayLoseValues(const QString &before, const QString &after)
{
    const Type from = typeOf(before);
    const Type to = typeOf(after);
    if (from.name == to.name && from.first == to.first && from.second == to.second)
        return false;
    if (from.family == Family::Integer && to.family == Family::Integer)
        return integerRank(to.name) < integerRank(from.name);
    if (from.family == Family::Decimal && to.family == Family::Decimal)
        return to.second < from.second || to.first - to.second < from.first - from.second;
    if (isText(from) && isText(to))
        return to.first < from.first || (from.family == Family::UnicodeText && to.family == Family::Text);
    if (from.family == Family::Binary && to.family == Family::Binary)
        return to.first < from.first;
    return true;
}

QString MSSQLTypeChange::countQuery(const MSSQLDesignedTable &table, const QString &column,
                                    const QString &before, const QString &after)
{
    const QString name = MSSQLQuoting::quotedName(column);
    QString where = condition(name, typeOf(before), typeOf(after));
    if (where.isEmpty())
        where = roundTrip(name, before, after);
    return where.isEmpty() ? QString()
                           : KNFormat("SELECT COUNT_BIG(*) FROM %@ WHERE %@", table.quoted(), where);
}
