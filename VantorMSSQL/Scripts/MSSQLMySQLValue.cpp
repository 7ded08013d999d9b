#include "Scripts/MSSQLMySQLValue.h"

#include "Foundation/KNFormat.h"

namespace {

QString quoted(QStringView text)
{
    QString literal;
    literal.reserve(text.size() + 2);
    literal += QLatin1Char('\'');
    for (const QChar c : text) {
        if (c == QLatin1Char('\''))
            literal += QLatin1String("''");
        else if (c == QLatin1Char('\\'))
            literal += QLatin1String("\\\\");
        else if (c.isNull())
            literal += QLatin1String("\\0");
        else
            literal += c;
    }
    return literal += QLatin1Char('\'');
}

} // namespace

QString MSSQLMySQLValue::literal(const KNValue &value)
{
    switch (value.kind()) {
    case KNValue::Kind::Null:
        return QStringLiteral("NULL");
    case KNValue::Kind::Text:
        return quoted(value.text());
    case KNValue::Kind::Date:
        return quoted(value.displayText());
    case KNValue::Kind::Bytes:
        return QLatin1String("x'") + QString::fromLatin1(value.bytes().toHex()) + QLatin1Char('\'');
    default:
        return value.displayText();
    }
}

QString MSSQLMySQLValue::variantLiteral(const KNValue &value)
{
    if (value.isNull())
        return literal(value);
    const QString marked = value.text();
    const QString rest = marked.mid(1);
    return marked.startsWith(QLatin1Char('x')) ? QLatin1String("x'") + rest.toLower() + QLatin1Char('\'')
                                               : quoted(rest);
}
