#include "QueryLoader/KNQueryReport.h"

#include "SQL/KNSQLComment.h"

using KNSQLComment::commentedOut;

QString KNQueryReport::guardedText(const QString &text) const
{
    if (text.isNull())
        return text;
    QString head;
    for (const QString &notice : notices)
        head += commentedOut(notice);
    if (pair.differs())
        head += commentedOut(pair.difference);
    if (!failure)
        return head + text;
    head += commentedOut(QLatin1String("This script is incomplete: ") + failure.localizedDescription());
    if (unsafeLength <= 0)
        return head + text;
    head += commentedOut(QStringLiteral("What must not run without the missing part is commented out."));
    return head + commentedOut(text.left(unsafeLength)) + text.mid(unsafeLength);
}
