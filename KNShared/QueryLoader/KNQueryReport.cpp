#include "QueryLoader/KNQueryReport.h"

namespace {

/// Every line of the text behind "-- ".
QString commented(const QString &text)
{
    QString lines = text;
    lines.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    if (lines.endsWith(QLatin1Char('\n')))
        lines.chop(1);
    QString result;
    for (const QString &line : lines.split(QLatin1Char('\n')))
        result += QLatin1String("-- ") + line + QLatin1String("\r\n");
    return result;
}

} // namespace

QString KNQueryReport::guardedText(const QString &text) const
{
    if (text.isNull())
        return text;
    QString head;
    for (const QString &notice : notices)
        head += commented(notice);
    if (!failure)
        return head + text;
    head += commented(QLatin1String("This script is incomplete: ") + failure.localizedDescription());
    if (unsafeLength <= 0)
        return head + text;
    head += commented(QStringLiteral("What must not run without the missing part is commented out."));
    return head + commented(text.left(unsafeLength)) + text.mid(unsafeLength);
}
