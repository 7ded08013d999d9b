#include "QueryLoader/KNQueryTemplate.h"

#include <QRegularExpression>

namespace {

const QRegularExpression &placeholderPattern()
{
    static const QRegularExpression pattern(QStringLiteral("\\{([A-Z_]+|[0-9]+)\\}"));
    return pattern;
}

bool isLiteralOfItsOwn(const QString &text, const QRegularExpressionMatch &placeholder)
{
    const qsizetype start = placeholder.capturedStart();
    const qsizetype end = placeholder.capturedEnd();
    return start > 0 && end < text.size() && text.at(start - 1) == QLatin1Char('\'') &&
           text.at(end) == QLatin1Char('\'');
}

} // namespace

QStringList KNQueryTemplate::placeholders(const QString &text)
{
    QStringList names;
    for (auto match = placeholderPattern().globalMatch(text); match.hasNext();)
        names.append(match.next().captured(1));
    names.removeDuplicates();
    return names;
}

QString KNQueryTemplate::filled(const QString &text, const QMap<QString, QString> &values)
{
    QString result;
    qsizetype copied = 0;
    for (auto matches = placeholderPattern().globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const auto value = values.constFind(match.captured(1));
        if (value == values.constEnd())
            continue;
        result += QStringView(text).sliced(copied, match.capturedStart() - copied);
        result += isLiteralOfItsOwn(text, match)
                      ? QString(*value).replace(QLatin1Char('\''), QLatin1String("''"))
                      : *value;
        copied = match.capturedEnd();
    }
    return result += QStringView(text).sliced(copied);
}
