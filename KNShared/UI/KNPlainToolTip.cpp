#include "UI/KNPlainToolTip.h"

QString KNPlainToolTip(const QString &text)
{
    constexpr qsizetype MostCharacters = 4000;
    if (text.isEmpty())
        return text;
    const QString shown = text.size() > MostCharacters ? text.first(MostCharacters) + u'…' : text;
    return QStringLiteral("<div style=\"white-space:pre-wrap\">") + shown.toHtmlEscaped() +
           QStringLiteral("</div>");
}
