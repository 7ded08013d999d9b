#include "Import/MSSQLImportColumnType.h"

#include "Foundation/KNFormat.h"
#include "Import/MSSQLDatabaseImportHelper.h"

#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

using ImportKind = KNImportColumnType::Kind;

namespace {

constexpr qint64 LongestSizedText = 4000;  // characters of nvarchar(n)
constexpr qint64 LongestSizedBytes = 8000; // of varchar(n) and varbinary(n)
constexpr int MostDigits = 38;

struct KnownType
{
    const char *name;
    ImportKind kind;
    qint64 minimum = 0;
    qint64 maximum = 0;
};

constexpr KnownType KnownTypes[] = {
    {"bigint", ImportKind::Integer, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()},
    {"binary", ImportKind::Binary},
    {"bit", ImportKind::Boolean},
    {"char", ImportKind::Text},
    {"date", ImportKind::Date},
    {"datetime", ImportKind::DateAndTime},
    {"datetime2", ImportKind::DateAndTime},
    {"datetimeoffset", ImportKind::DateTimeOffset},
    {"dec", ImportKind::Decimal},
    {"decimal", ImportKind::Decimal},
    {"float", ImportKind::Real},
    {"image", ImportKind::Binary},
    {"int", ImportKind::Integer, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()},
    {"integer", ImportKind::Integer, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()},
    {"money", ImportKind::Decimal},
    {"nchar", ImportKind::Text},
    {"ntext", ImportKind::Text},
    {"numeric", ImportKind::Decimal},
    {"nvarchar", ImportKind::Text},
    {"real", ImportKind::Real},
    {"smalldatetime", ImportKind::DateAndTime},
    {"smallint", ImportKind::Integer, std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max()},
    {"smallmoney", ImportKind::Decimal},
    {"sysname", ImportKind::Text},
    {"text", ImportKind::Text},
    {"time", ImportKind::Time},
    {"tinyint", ImportKind::Integer, 0, 255},
    {"uniqueidentifier", ImportKind::Guid},
    {"varbinary", ImportKind::Binary},
    {"varchar", ImportKind::Text},
};

/// A type's name and the numbers behind it; -1 for one that is not given, and for max.
struct TypeText
{
    QString name;
    qint64 first = -1;
    qint64 second = -1;
    bool isMax = false;
};

std::optional<TypeText> partsOf(const QString &type)
{
    static const QRegularExpression pattern(
        QStringLiteral("^\\s*([a-z0-9]+)\\s*(?:\\(\\s*(max|\\d{1,5})\\s*(?:,\\s*(\\d{1,5})\\s*)?\\))?\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    const auto match = pattern.match(type);
    if (!match.hasMatch())
        return std::nullopt;
    TypeText parts{match.captured(1).toLower()};
    parts.isMax = match.captured(2).compare(QLatin1String("max"), Qt::CaseInsensitive) == 0;
    if (!match.captured(2).isEmpty() && !parts.isMax)
        parts.first = match.captured(2).toLongLong();
    if (!match.captured(3).isEmpty())
        parts.second = match.captured(3).toLongLong();
    return parts;
}

bool isNamed(const QString &name, std::initializer_list<const char *> names)
{
    return std::any_of(names.begin(), names.end(),
                       [&](const char *candidate) { return name == QLatin1String(candidate); });
}

void readLength(const TypeText &parts, KNImportColumnType *type)
{
    type->isUnicode =
        type->kind != ImportKind::Text || isNamed(parts.name, {"nchar", "ntext", "nvarchar", "sysname"});
    if (parts.name == QLatin1String("sysname"))
        type->maximumLength = 128;
    else if (isNamed(parts.name, {"text", "ntext", "image"}) || parts.isMax)
        type->maximumLength = KNImportColumnType::Unlimited;
    else
        type->maximumLength = parts.first < 0 ? 1 : parts.first;
}

void readDigits(const TypeText &parts, KNImportColumnType *type)
{
    if (parts.name == QLatin1String("money")) {
        type->precision = 19;
        type->scale = 4;
    } else if (parts.name == QLatin1String("smallmoney")) {
        type->precision = 10;
        type->scale = 4;
    } else {
        type->precision = parts.first < 0 ? 18 : static_cast<int>(parts.first);
        type->scale = static_cast<int>(std::max<qint64>(parts.second, 0));
    }
}

void readTime(const TypeText &parts, KNImportColumnType *type)
{
    if (parts.name == QLatin1String("datetime")) {
        type->fractionDigits = 3;
        type->keepsThirdsOfCentiseconds = true;
        type->firstYear = 1753;
    } else if (parts.name == QLatin1String("smalldatetime")) {
        type->fractionDigits = -1;
        type->firstYear = 1900;
        type->lastYear = 2079;
    } else if (parts.first >= 0) {
        type->fractionDigits = static_cast<int>(parts.first);
    }
}

QString say(const char *text)
{
    return MSSQLDatabaseImportHelper::tr(text);
}

QString grouped(qint64 number)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(number);
}

KNImportTypeHint textHint(const KNImportColumnType &type, const KNImportColumnAnalysis &analysis)
{
    const qint64 limit = type.isUnicode ? LongestSizedText : LongestSizedBytes;
    const QString longest = type.isUnicode ? QStringLiteral("nvarchar(max)") : QStringLiteral("varchar(max)");
    if (type.maximumLength != KNImportColumnType::Unlimited && type.maximumLength > limit)
        return {say(QT_TRANSLATE_NOOP("MSSQLDatabaseImportHelper", "More than %1: %2?"))
                    .arg(grouped(limit), longest),
                longest};
    const auto needed = static_cast<qint64>(analysis.maxLength());
    if (needed > type.maximumLength) {
        const QString larger =
            needed > limit ? longest : KNFormat(type.isUnicode ? "nvarchar(%ld)" : "varchar(%ld)", needed);
        return {
            say(QT_TRANSLATE_NOOP("MSSQLDatabaseImportHelper", "The longest value has %1 characters: %2?"))
                .arg(grouped(needed), larger),
            larger};
    }
    if (analysis.dataType() == KNImportColumnAnalysis::Date)
        return {say(QT_TRANSLATE_NOOP("MSSQLDatabaseImportHelper", "All values are dates: %1?"))
                    .arg(QStringLiteral("datetime2")),
                QStringLiteral("datetime2")};
    return {};
}

/// A type that holds all numbers of the column.
QString fittingNumber(const KNImportColumnAnalysis &analysis)
{
    const int digits = analysis.integerDigits() + analysis.fractionDigits();
    if (analysis.hasExponent() || digits > MostDigits)
        return QStringLiteral("float");
    if (analysis.fractionDigits() == 0 && analysis.integerDigits() < 19)
        return QStringLiteral("bigint");
    return KNFormat("decimal(%ld,%ld)", std::max(digits, 1), analysis.fractionDigits());
}

KNImportTypeHint numberHint(const KNImportColumnType &type, const KNImportColumnAnalysis &analysis)
{
    const QString fitting = fittingNumber(analysis);
    if (type.kind == ImportKind::Integer) {
        const bool fits = analysis.fractionDigits() == 0 && !analysis.hasExponent() &&
                          analysis.integerDigits() <= 19 && analysis.minNumericValue() >= type.minimum &&
                          analysis.maxNumericValue() <= type.maximum &&
                          !(analysis.integerDigits() == 19 &&
                            (analysis.maxNumericValue() == std::numeric_limits<qint64>::max() ||
                             analysis.minNumericValue() == std::numeric_limits<qint64>::min()));
        return fits ? KNImportTypeHint()
                    : KNImportTypeHint{say(QT_TRANSLATE_NOOP("MSSQLDatabaseImportHelper",
                                                             "Some numbers are out of range: %1?"))
                                           .arg(fitting),
                                       fitting};
    }
    if (type.kind != ImportKind::Decimal)
        return {};
    if (analysis.hasExponent())
        return {say(QT_TRANSLATE_NOOP("MSSQLDatabaseImportHelper", "Some numbers have an exponent: %1?"))
                    .arg(fitting),
                fitting};
    if (analysis.fractionDigits() > type.scale)
        return {say(QT_TRANSLATE_NOOP("MSSQLDatabaseImportHelper",
                                      "Keeps %1 decimals, some numbers have %2: %3?"))
                    .arg(QString::number(type.scale), QString::number(analysis.fractionDigits()), fitting),
                fitting};
    if (analysis.integerDigits() > type.precision - type.scale)
        return {say(QT_TRANSLATE_NOOP("MSSQLDatabaseImportHelper", "Some numbers are out of range: %1?"))
                    .arg(fitting),
                fitting};
    return {};
}

} // namespace

KNImportColumnType MSSQLImportColumnType::read(const QString &type)
{
    KNImportColumnType result;
    const auto parts = partsOf(type);
    const auto *const known =
        !parts ? std::end(KnownTypes)
               : std::find_if(std::begin(KnownTypes), std::end(KnownTypes), [&](const KnownType &candidate) {
                     return parts->name == QLatin1String(candidate.name);
                 });
    if (known == std::end(KnownTypes))
        return result;
    result.kind = known->kind;
    result.literalType = parts->name == QLatin1String("dec") ? QStringLiteral("decimal") : parts->name;
    switch (known->kind) {
    case ImportKind::Text:
    case ImportKind::Binary:
        readLength(*parts, &result);
        break;
    case ImportKind::Integer:
        result.minimum = known->minimum;
        result.maximum = known->maximum;
        break;
    case ImportKind::Decimal:
        readDigits(*parts, &result);
        break;
    default:
        readTime(*parts, &result);
    }
    return result;
}

KNImportTypeHint MSSQLImportColumnType::hint(const QString &type, const KNImportColumnAnalysis &analysis)
{
    const KNImportColumnType known = read(type);
    if (known.kind == ImportKind::Text)
        return textHint(known, analysis);
    return analysis.dataType() == KNImportColumnAnalysis::Numeric ? numberHint(known, analysis)
                                                                  : KNImportTypeHint();
}
