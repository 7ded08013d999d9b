#include "SQL/KNQuerySplitter.h"

#include <algorithm>
#include <optional>

namespace {

bool isLineBreak(QChar character)
{
    return character == QLatin1Char('\n') || character == QLatin1Char('\r');
}

/// The end of the text's first line break (CR LF counts as one); -1 if there is none.
qsizetype endOfLineBreak(QStringView text)
{
    const auto *found = std::find_if(text.begin(), text.end(), isLineBreak);
    if (found == text.end())
        return -1;
    const qsizetype index = found - text.begin();
    return text.mid(index).startsWith(QLatin1String("\r\n")) ? index + 2 : index + 1;
}

bool holdsLineBreak(QStringView text)
{
    return endOfLineBreak(text) >= 0;
}

/// Removes white space from the last line and the line break before it.
QStringView withoutLastLineBreak(QStringView text)
{
    while (!text.isEmpty() && text.back().isSpace() && !isLineBreak(text.back()))
        text.chop(1);
    if (text.endsWith(QLatin1String("\r\n")))
        text.chop(2);
    else if (!text.isEmpty() && isLineBreak(text.back()))
        text.chop(1);
    return text;
}

/// Parses the count after GO; empty if it is not a count.
std::optional<quint32> repeatCount(QStringView digits)
{
    const auto isDigit = [](QChar character) {
        return character >= QLatin1Char('0') && character <= QLatin1Char('9');
    };
    if (!std::all_of(digits.begin(), digits.end(), isDigit))
        return std::nullopt;
    bool ok = false;
    const int count = digits.toInt(&ok); // the same limit as in the server's own tools
    return ok ? std::optional<quint32>(count) : std::nullopt;
}

struct Separator
{
    qsizetype end; ///< after the line break of its line
    quint32 repeatCount;
};

/// Reads the rest of a separator after a GO that starts its line; empty if other text follows.
std::optional<Separator> restOfSeparator(SQLMetadataTokenizer tokenizer, qsizetype textLength)
{
    std::optional<quint32> count;
    SQLToken token{};
    while (tokenizer.next(&token)) {
        switch (token.kind) {
        case SQLTokenKind::Whitespace:
            if (const qsizetype end = endOfLineBreak(token.text); end >= 0)
                return Separator{token.location + end, count.value_or(1)};
            break;
        case SQLTokenKind::LineComment:
            break;
        case SQLTokenKind::BlockComment:
            if (holdsLineBreak(token.text))
                return std::nullopt;
            break;
        case SQLTokenKind::Number:
            if (count)
                return std::nullopt;
            count = repeatCount(token.text);
            if (!count)
                return std::nullopt;
            break;
        default:
            return std::nullopt;
        }
    }
    return Separator{textLength, count.value_or(1)};
}

bool isGo(const SQLToken &token)
{
    return token.kind == SQLTokenKind::Word && token.length == 2 &&
           token.text.compare(QLatin1String("GO"), Qt::CaseInsensitive) == 0;
}

} // namespace

KNQuerySplitter::KNQuerySplitter(const SQLTokenizerOptions &sqlPreParseOptions)
    : m_sqlPreParseOptions(sqlPreParseOptions)
{
}

KNQuerySplitter::~KNQuerySplitter() = default;

QList<KNQuerySplitter::Batch> KNQuerySplitter::splitMSSQLQueries2(QStringView text,
                                                                  const SQLTokenizerOptions &sqlPreParser)
{
    SQLTokenizerOptions options = sqlPreParser;
    options.nestedComments = true;

    QList<Batch> batches;
    qsizetype begin = 0;
    bool opensLine = true; // only white space and comments so far on this line
    SQLMetadataTokenizer tokenizer(text, options);
    SQLToken token{};
    while (tokenizer.next(&token)) {
        if (token.kind == SQLTokenKind::Whitespace) {
            opensLine = opensLine || holdsLineBreak(token.text);
            continue;
        }
        if (opensLine && isGo(token)) {
            if (const auto separator = restOfSeparator(tokenizer, text.size())) {
                const QStringView batch = text.mid(begin, token.location - begin);
                batches.append({withoutLastLineBreak(batch), begin, separator->repeatCount});
                begin = separator->end;
                tokenizer.seek(begin);
                continue;
            }
        }
        opensLine = opensLine && token.kind == SQLTokenKind::BlockComment;
    }
    batches.append({text.mid(begin), begin, 1});
    return batches;
}
