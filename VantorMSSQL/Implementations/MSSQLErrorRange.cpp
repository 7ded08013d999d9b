#include "Implementations/MSSQLErrorRange.h"

#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Implementations/MSSQLTokenizer.h"

namespace {

QString trimmedOfPunctuation(const QString &text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text.at(begin).isPunct())
        ++begin;
    while (end > begin && text.at(end - 1).isPunct())
        --end;
    return text.mid(begin, end - begin);
}

/// The word that a message complains about; empty if it names none.
QString offendingWord(const QString &message)
{
    for (const char *phrase : {"Invalid column name '", "Invalid object name '", "Incorrect syntax near '"}) {
        const QLatin1String text(phrase);
        if (const qsizetype found = message.indexOf(text); found >= 0)
            return trimmedOfPunctuation(message.mid(found + text.size()));
    }
    return QString();
}

bool holdsNoNames(SQLTokenKind kind)
{
    return static_cast<int>(kind) >= 1 && static_cast<int>(kind) <= 4;
}

/// The only occurrence of a word in the tokens that begin in a range of the batch; not found if there are
/// none or several.
KNRange onlyHit(const QString &word, const KNQueryDetails &details, qsizetype begin, qsizetype end,
                const SQLTokenizerOptions &options)
{
    KNRange hit;
    SQLMetadataTokenizer tokenizer(details.targetQuery, options);
    for (SQLToken token; tokenizer.next(&token) && token.location < end;) {
        if (holdsNoNames(token.kind) || token.location < begin)
            continue;
        for (qsizetype at = token.text.indexOf(word); at >= 0;
             at = token.text.indexOf(word, at + word.size())) {
            if (hit.isFound())
                return KNRange();
            hit = {details.queryRange.location + token.location + at, word.size()};
        }
    }
    return hit;
}

/// The range of a line (from 1) of a text; not found if there are fewer.
KNRange rangeOfLine(quint64 line, QStringView text)
{
    qsizetype begin = 0;
    for (quint64 number = 1; number < line; ++number) {
        const qsizetype lineFeed = text.indexOf(u'\n', begin);
        if (lineFeed < 0)
            return KNRange();
        begin = lineFeed + 1;
    }
    const qsizetype end = text.indexOf(u'\n', begin);
    return {begin, (end < 0 ? text.size() : end) - begin};
}

/// Whether a batch begins with CREATE or ALTER: lines of its messages are its own, also those that name the
/// procedure that it defines.
bool isDefinition(const QString &batch)
{
    SQLMetadataTokenizer tokenizer(batch, MSSQLTokenizer::options());
    for (SQLToken token; tokenizer.next(&token);) {
        if (holdsNoNames(token.kind))
            continue;
        return token.text.compare(u"CREATE", Qt::CaseInsensitive) == 0 ||
               token.text.compare(u"ALTER", Qt::CaseInsensitive) == 0;
    }
    return false;
}

QStringView withoutQuotes(const SQLToken &token)
{
    const bool isQuoted =
        token.kind == SQLTokenKind::BracketedIdentifier || token.kind == SQLTokenKind::QuotedIdentifier;
    return isQuoted && token.length >= 2 ? token.text.mid(1, token.length - 2) : token.text;
}

/// The only token that is this procedure's name, which a message may give with its schema.
KNRange callOf(const QString &procedure, const KNQueryDetails &details)
{
    const QString name = procedure.mid(procedure.lastIndexOf(u'.') + 1);
    KNRange hit;
    SQLMetadataTokenizer tokenizer(details.targetQuery, MSSQLTokenizer::options());
    for (SQLToken token; tokenizer.next(&token);) {
        if (holdsNoNames(token.kind) || withoutQuotes(token).compare(name, Qt::CaseInsensitive) != 0)
            continue;
        if (hit.isFound())
            return KNRange();
        hit = {details.queryRange.location + token.location, token.length};
    }
    return hit;
}

} // namespace

KNRange MSSQLErrorRange::inBatch(const DatabaseMessage &message, const KNQueryDetails &details)
{
    const QString word = offendingWord(message.msgtext);
    return word.isEmpty() ? KNRange()
                          : onlyHit(word, details, 0, details.targetQuery.size(),
                                    MSSQLDatabaseConnectionDetails::createPreParserOptions());
}

KNRange MSSQLErrorRange::atLine(const DatabaseMessage &message, const KNQueryDetails &details)
{
    const bool isOfProcedure = !message.procname.isEmpty();
    if (isOfProcedure && !isDefinition(details.targetQuery))
        return callOf(message.procname, details);
    const QString word = offendingWord(message.msgtext);
    const KNRange line = rangeOfLine(message.line, details.targetQuery);
    KNRange hit;
    if (!word.isEmpty() && line.isFound())
        hit = onlyHit(word, details, line.location, line.location + line.length, MSSQLTokenizer::options());
    if (!hit.isFound())
        hit = inBatch(message, details);
    if (!hit.isFound() && isOfProcedure && line.isFound())
        hit = {details.queryRange.location + line.location, line.length};
    return hit;
}
