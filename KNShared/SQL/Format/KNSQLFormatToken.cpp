#include "SQL/Format/KNSQLFormatToken.h"

#include "SQL/Scope/KNSQLStatements.h"

#include <algorithm>

namespace {

using FormatToken = KNSQLFormatToken;

qsizetype lineEndsIn(QStringView text)
{
    return text.count(u'\n') + text.count(u'\r') - text.count(QStringLiteral("\r\n"));
}

/// Words that can begin a line: the space before them does not depend on the source.
bool canBreakBefore(const FormatToken &token)
{
    return token.role != KNSQLRole::None && token.role != KNSQLRole::Batch;
}

bool isComparison(const FormatToken &token)
{
    static constexpr QStringView Comparisons[] = {u"=",  u"<>", u"<",  u">",  u"<=", u">=", u"!=",
                                                  u"+=", u"-=", u"*=", u"/=", u"%=", u"!<", u"!>"};
    return token.kind == SQLTokenKind::Operator &&
           std::find(std::begin(Comparisons), std::end(Comparisons), token.text) != std::end(Comparisons);
}

bool hasSpaceBetween(const FormatToken &previous, const FormatToken &token, bool isTyped)
{
    if (previous.isComment() || token.isComment())
        return true;
    if (token.is(u',') || token.is(u';') || token.is(u')') || previous.is(u'('))
        return false;
    if (previous.is(u',') || previous.is(u';') || canBreakBefore(token))
        return true;
    if (previous.is(u')') && token.kind == SQLTokenKind::Word)
        return true;
    const bool areOperators =
        previous.kind == SQLTokenKind::Operator && token.kind == SQLTokenKind::Operator && !previous.is(u')');
    if (!areOperators && (isComparison(token) || isComparison(previous)))
        return true;
    return isTyped;
}

/// Merges the tokens, which know roles, with the comments and blanks between them.
class FormatReader
{
public:
    FormatReader(const QString &batch, const KNSQLDialect &dialect)
        : m_batch(batch)
        , m_dialect(dialect)
        , m_pieces(dialect)
    {
        m_pieces.setText(batch);
    }

    QList<FormatToken> read()
    {
        SQLMetadataTokenizer tokenizer(m_batch, m_dialect.tokenizer);
        SQLToken token{};
        qsizetype lineEnds = 1;
        bool isTyped = false;
        while (tokenizer.next(&token)) {
            if (token.kind == SQLTokenKind::Whitespace) {
                lineEnds = lineEndsIn(token.text) + (m_tokens.isEmpty() ? 1 : 0);
                isTyped = true;
                continue;
            }
            append(token, lineEnds, isTyped);
            lineEnds = 0;
            isTyped = false;
        }
        markStatements();
        matchPairs();
        measure();
        return m_tokens;
    }

private:
    void append(const SQLToken &source, qsizetype lineEnds, bool isTyped)
    {
        FormatToken token;
        token.kind = source.kind;
        token.text = source.text.toString();
        if (!token.isComment())
            token.role = m_pieces.at(m_indices.size()).role;
        if (source.kind == SQLTokenKind::Word)
            token.word = token.text.toUpper();
        const bool isFirst = m_tokens.isEmpty();
        if (!isFirst)
            token.hasSpace = hasSpaceBetween(m_tokens.constLast(), token, isTyped);
        token.hasBlankLine = !isFirst && lineEnds > 1;
        token.needsBreak = !isFirst && (isBreakForced(lineEnds) || (token.isComment() && lineEnds > 0));
        if (!token.isComment())
            m_indices.append(m_tokens.size());
        m_isOwnLine = token.isComment() && (isFirst || token.needsBreak);
        m_tokens.append(token);
    }

    /// Behind a line comment, and behind a block comment that stood alone.
    bool isBreakForced(qsizetype lineEnds) const
    {
        return m_tokens.constLast().kind == SQLTokenKind::LineComment || (m_isOwnLine && lineEnds > 0);
    }

    void markStatements()
    {
        const auto statements = KNSQLStatements::upTo(m_pieces, m_pieces.size()).statements;
        for (const KNSQLStatement &statement : statements) {
            if (statement.begin < m_indices.size())
                m_tokens[m_indices[statement.begin]].startsStatement = true;
        }
    }

    /// Parentheses, and CASE with its END, match within one statement only.
    void matchPairs()
    {
        QList<qsizetype> open;
        for (qsizetype index = 0; index < m_tokens.size(); ++index) {
            const FormatToken &token = m_tokens[index];
            if (token.startsStatement)
                open.clear();
            if (token.is(u'(') || token.role == KNSQLRole::Case)
                open.append(index);
            else if (token.is(u')') || token.role == KNSQLRole::End)
                close(index, &open);
        }
    }

    /// Openings without an end inside of a pair stay without one.
    void close(qsizetype index, QList<qsizetype> *open)
    {
        const bool isCase = m_tokens[index].role == KNSQLRole::End;
        qsizetype found = open->size() - 1;
        if (isCase && found >= 0 && m_tokens[open->at(found)].role != KNSQLRole::Case)
            return;
        while (found >= 0 && !isCase && m_tokens[open->at(found)].role == KNSQLRole::Case)
            --found;
        if (found < 0)
            return;
        m_tokens[open->at(found)].match = index;
        open->resize(found);
    }

    void measure()
    {
        qsizetype length = 0;
        qsizetype breaks = 0;
        for (FormatToken &token : m_tokens) {
            length += token.text.size() + (token.hasSpace ? 1 : 0);
            const bool isLong = lineEndsIn(token.text) > 0;
            breaks += (token.needsBreak ? 1 : 0) + (isLong ? 1 : 0);
            token.inlineEnd = length;
            token.hardBreaks = breaks;
        }
    }

    const QString &m_batch;
    const KNSQLDialect &m_dialect;
    KNSQLTokens m_pieces;
    QList<qsizetype> m_indices; ///< of the tokens that are no comments
    QList<FormatToken> m_tokens;
    bool m_isOwnLine = false; ///< the last token is a comment that began a line
};

} // namespace

QList<KNSQLFormatToken> KNReadFormatTokens(const QString &batch, const KNSQLDialect &dialect)
{
    return FormatReader(batch, dialect).read();
}
