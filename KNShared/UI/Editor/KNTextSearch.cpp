#include "UI/Editor/KNTextSearch.h"

namespace {

const QString AnyLineEnd = QStringLiteral("(*ANYCRLF)");
const QString WordBegin = QStringLiteral("(?<!\\w)(?:");
const QString WordEnd = QStringLiteral(")(?!\\w)");

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

} // namespace

QRegularExpression KNTextSearch::expression() const
{
    QString text = isRegularExpression ? pattern : QRegularExpression::escape(pattern);
    if (wholeWords)
        text = WordBegin + text + WordEnd;
    QRegularExpression::PatternOptions options =
        QRegularExpression::MultilineOption | QRegularExpression::UseUnicodePropertiesOption;
    options.setFlag(QRegularExpression::CaseInsensitiveOption, !matchesCase);
    return QRegularExpression(AnyLineEnd + text, options);
}

qsizetype KNTextSearch::errorOffset() const
{
    const QRegularExpression found = expression();
    if (found.isValid())
        return -1;
    const qsizetype lead = AnyLineEnd.size() + (wholeWords ? WordBegin.size() : 0);
    return std::clamp<qsizetype>(found.patternErrorOffset() - lead, 0, pattern.size());
}

QString KNTextSearch::replacement(const QRegularExpressionMatch &match, const QString &text) const
{
    if (!isRegularExpression)
        return text;
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar next = i + 1 < text.size() ? text[i + 1] : QChar();
        const bool escapes = text[i] == u'\\';
        if ((escapes || text[i] == u'$') && isDigit(next))
            result += match.captured(text[++i].digitValue());
        else if (escapes && (next == u'n' || next == u't' || next == u'\\' || next == u'$'))
            result += text[++i] == u'n' ? QChar(u'\n') : text[i] == u't' ? QChar(u'\t') : text[i];
        else
            result += text[i];
    }
    return result;
}
