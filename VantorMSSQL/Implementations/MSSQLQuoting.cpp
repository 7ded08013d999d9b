#include "Implementations/MSSQLQuoting.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLConstantText.h"
#include "Implementations/MSSQLWordLists.h"

#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

namespace {

bool needsBrackets(const QString &name)
{
    static const QRegularExpression mssqlRequireEscapeRegex(QStringLiteral("[^a-z_0-9]+"),
                                                            QRegularExpression::CaseInsensitiveOption);
    const bool startsWithDigit =
        !name.isEmpty() && name.front() >= QLatin1Char('0') && name.front() <= QLatin1Char('9');
    return mssqlRequireEscapeRegex.match(name).hasMatch() || startsWithDigit ||
           MSSQLWordLists::isKeyword(name);
}

/// The text in apostrophes, with those in it doubled. A server does not read a backslash before a line end.
QString inApostrophes(QString text)
{
    text.replace(QLatin1Char('\''), QLatin1String("''"));
    return KNFormat("'%@'", text);
}

/// A constant with this value.
QString textLiteral(const QString &text)
{
    QString literal(QLatin1Char('\''));
    MSSQLWriteConstantText(
        std::u16string_view(QStringView(text).utf16(), static_cast<std::size_t>(text.size())),
        [&](std::u16string_view piece) { literal += QStringView(piece); });
    return literal + QLatin1Char('\'');
}

/// A number's text as a constant of type float: without an exponent it would be a decimal, whose conversion
/// may round.
QString floatLiteral(const QString &text)
{
    return text.contains(QLatin1Char('e')) ? text : text + QLatin1String("e0");
}

bool isOneOf(const QString &typeName, std::initializer_list<const char *> names)
{
    return std::any_of(names.begin(), names.end(), [&](const char *name) {
        return typeName.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    });
}

} // namespace

QString MSSQLQuoting::escapeTableNameIfRequired(const QString &name)
{
    if (name.isNull())
        return QString();
    if (name.size() >= 3 && name.startsWith(QLatin1Char('[')) && name.endsWith(QLatin1Char(']')))
        return name;
    if (const QStringList parts = name.split(QLatin1Char('.')); parts.size() == 2)
        return KNFormat("%@.%@", escapeTableNameIfRequired(parts[0]), escapeTableNameIfRequired(parts[1]));
    return needsBrackets(name) ? KNFormat("[%@]", name) : name;
}

QString MSSQLQuoting::unescapeTableNameIfRequired(const QString &name)
{
    if (name.isNull())
        return QString();
    if (const qsizetype dot = name.indexOf(QLatin1Char('.')); dot >= 0)
        return KNFormat("%@.%@", unescapeTableNameIfRequired(name.left(dot)),
                        unescapeTableNameIfRequired(name.mid(dot + 1)));
    QString plain = name;
    if (plain.startsWith(QLatin1Char('[')))
        plain.remove(0, 1);
    if (plain.endsWith(QLatin1Char(']')))
        plain.chop(1);
    return plain;
}

QString MSSQLQuoting::escapeSchemaAndTable(const QString &schema, const QString &table)
{
    if (schema.isEmpty())
        return escapeTableNameIfRequired(table);
    return KNFormat("%@.%@", escapeTableNameIfRequired(schema), escapeTableNameIfRequired(table));
}

QString MSSQLQuoting::escapeTablePaths(const QStringList &path)
{
    return escapeSchemaAndTable(path.size() > 1 ? path.first() : QString(), path.value(path.size() - 1));
}

QString MSSQLQuoting::escapeColumnValue(const KNValue &value)
{
    switch (value.kind()) {
    case KNValue::Kind::Null:
        return QStringLiteral("NULL");
    case KNValue::Kind::Text:
        return inApostrophes(value.text());
    case KNValue::Kind::Bytes:
        return QLatin1String("0x") + QString::fromLatin1(value.bytes().toHex());
    default:
        return value.displayText();
    }
}

QString MSSQLQuoting::databaseProviderEscape(const KNValue &value)
{
    switch (value.kind()) {
    case KNValue::Kind::Text:
        if (value.text().compare(QLatin1String("null"), Qt::CaseInsensitive) == 0)
            return QStringLiteral("NULL");
        return inApostrophes(value.text());
    case KNValue::Kind::Bytes:
        return QLatin1String("0x") + QString::fromLatin1(value.bytes().toHex().toUpper());
    case KNValue::Kind::Date:
        return KNFormat("'%@'", value.date().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    default:
        return escapeColumnValue(value);
    }
}

QString MSSQLQuoting::quotedName(const QString &name)
{
    if (!name.isEmpty() && !needsBrackets(name))
        return name;
    QString inside = name;
    inside.replace(QLatin1Char(']'), QLatin1String("]]"));
    return QLatin1Char('[') + inside + QLatin1Char(']');
}

QString MSSQLQuoting::unicodeLiteral(const QString &text)
{
    return QLatin1Char('N') + textLiteral(text);
}

QString MSSQLQuoting::literal(const KNValue &value)
{
    switch (value.kind()) {
    case KNValue::Kind::Text: {
        const QString text = value.text();
        const bool isAscii =
            std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
        return isAscii ? textLiteral(text) : unicodeLiteral(text);
    }
    case KNValue::Kind::Double:
        return floatLiteral(value.displayText());
    case KNValue::Kind::Float: // compared with a float constant, a real would be converted to float
        return KNFormat("CAST(%@ AS real)", floatLiteral(value.displayText()));
    case KNValue::Kind::Date: {
        // The meaning of ISO 8601 dates does not depend on SET DATEFORMAT; there is no blank before an
        // offset.
        QString text = value.displayText();
        if (const qsizetype blank = text.indexOf(QLatin1Char(' ')); blank >= 0)
            text[blank] = QLatin1Char('T');
        return textLiteral(text.remove(QLatin1Char(' ')));
    }
    default:
        return escapeColumnValue(value);
    }
}

QString MSSQLQuoting::displayForColumnType(const QString &typeName, const KNValue &maxLength, const KNValue &,
                                           const KNValue &)
{
    if (maxLength.isNull())
        return typeName;
    const qint64 length = maxLength.toInt64();
    if (length == -1) {
        if (isOneOf(typeName, {"nvarchar", "varchar", "binary", "varbinary"}))
            return typeName + QStringLiteral("(max)");
        if (isOneOf(typeName, {"xml"}))
            return typeName;
    }
    if (isOneOf(typeName, {"nvarchar", "nchar", "ntext"}))
        return KNFormat(
            "%@(%@)", typeName,
            QString::number(static_cast<double>(length) / 2, 'g', QLocale::FloatingPointShortest));
    if (isOneOf(typeName, {"datetime", "date", "time", "bit", "int", "image", "tinyint", "smallint",
                           "uniqueidentifier", "hierarchyid"}))
        return typeName;
    return KNFormat("%@(%@)", typeName, maxLength.displayText());
}
