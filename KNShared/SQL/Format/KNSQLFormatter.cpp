#include "SQL/Format/KNSQLFormatter.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Database/VantorDBC.h"
#include "SQL/Format/KNSQLFormatPrinter.h"
#include "SQL/KNQuerySplitter.h"

#include <algorithm>

namespace {

const KNSQLDialect *dialectOf(const VantorDBC &details)
{
    const KNAutocompleteHelper *const helper = details.sharedAutocompleteHelper();
    return helper ? helper->dialect() : nullptr;
}

/// Formats the batches of a text; all else is the separators between them.
class ScriptFormatter
{
public:
    ScriptFormatter(const VantorDBC &details, const KNSQLDialect &dialect, const KNSQLFormatStyle &style)
        : m_details(details)
        , m_dialect(dialect)
        , m_style(style)
    {
        for (const QString &word : dialect.format.separators) // a batch holds none
            m_dialect.roles.remove(word);
    }

    QString format(const QString &text, const QString &baseIndent) const
    {
        const QString lineEnd =
            text.contains(QStringLiteral("\r\n")) ? QStringLiteral("\r\n") : QStringLiteral("\n");
        QString result;
        qsizetype end = 0;
        const QList<KNQueryDetails> batches = batchesOf(text);
        for (const KNQueryDetails &batch : batches) {
            const KNRange range = batch.queryRange;
            result += QStringView(text).mid(end, range.location - end);
            end = range.location + range.length;
            const QString source = text.mid(range.location, range.length);
            result += formatBatch(source, lineEnd, baseIndent);
            if (end == text.size() && source.back() == u'\n')
                result += lineEnd;
        }
        return result + text.mid(end);
    }

    /// Whether two texts hold the same batches of the same tokens.
    bool areAlike(const QString &a, const QString &b) const
    {
        const QList<KNQueryDetails> batchesOfA = batchesOf(a);
        const QList<KNQueryDetails> batchesOfB = batchesOf(b);
        return std::equal(batchesOfA.begin(), batchesOfA.end(), batchesOfB.begin(), batchesOfB.end(),
                          [this](const KNQueryDetails &one, const KNQueryDetails &other) {
                              return one.repeatCount == other.repeatCount &&
                                     haveSameTokens(one.targetQuery, other.targetQuery);
                          }) &&
               haveSameTokens(a, b);
    }

private:
    QList<KNQueryDetails> batchesOf(const QString &text) const
    {
        const auto splitter = m_details.createQuerySplitter();
        splitter->setRequiresFullSplit(true);
        return splitter->doSplitQuery(text);
    }

    QString formatBatch(const QString &batch, const QString &lineEnd, const QString &baseIndent) const
    {
        QList<KNSQLFormatToken> tokens = KNReadFormatTokens(batch, m_dialect);
        for (qsizetype index = 0; index < tokens.size(); ++index) {
            if (isKeyword(tokens, index))
                tokens[index].text = cased(tokens[index].text);
        }
        return KNSQLFormatPrinter(tokens, m_dialect.format, m_style, lineEnd, baseIndent).print();
    }

    /// Whether the token is certainly no name.
    bool isKeyword(const QList<KNSQLFormatToken> &tokens, qsizetype index) const
    {
        const KNSQLFormatRules &rules = m_dialect.format;
        if (index == 0)
            return rules.reservedWords.contains(tokens[index].word);
        const KNSQLFormatToken &previous = tokens[index - 1];
        const bool isBehindKeyword = previous.startsStatement || previous.role == KNSQLRole::JoinKind;
        return (rules.reservedWords.contains(tokens[index].word) && !previous.is(u'.')) ||
               (isBehindKeyword && rules.wordsBehind.value(previous.word).contains(tokens[index].word));
    }

    QString cased(const QString &word) const
    {
        switch (m_style.keywordCase) {
        case KNSQLFormatStyle::KeywordCase::Upper:
            return word.toUpper();
        case KNSQLFormatStyle::KeywordCase::Lower:
            return word.toLower();
        case KNSQLFormatStyle::KeywordCase::AsTyped:
            break;
        }
        return word;
    }

    bool haveSameTokens(const QString &a, const QString &b) const
    {
        SQLMetadataTokenizer tokensOfA(a, m_dialect.tokenizer);
        SQLMetadataTokenizer tokensOfB(b, m_dialect.tokenizer);
        for (;;) {
            SQLToken one{};
            SQLToken other{};
            const bool hasOne = nextSolid(&tokensOfA, &one);
            if (hasOne != nextSolid(&tokensOfB, &other))
                return false;
            if (!hasOne)
                return true;
            if (one.kind != other.kind || !isSameText(one, other))
                return false;
        }
    }

    static bool nextSolid(SQLMetadataTokenizer *tokens, SQLToken *token)
    {
        while (tokens->next(token))
            if (token->kind != SQLTokenKind::Whitespace)
                return true;
        return false;
    }

    static bool isSameText(const SQLToken &one, const SQLToken &other)
    {
        return one.text == other.text ||
               (one.kind == SQLTokenKind::Word && one.text.compare(other.text, Qt::CaseInsensitive) == 0);
    }

    const VantorDBC &m_details;
    KNSQLDialect m_dialect;
    const KNSQLFormatStyle &m_style;
};

/// The blanks at the beginning of the line in which a position is.
QString indentAt(const QString &text, qsizetype position)
{
    const qsizetype begin = position == 0 ? 0 : text.lastIndexOf(u'\n', position - 1) + 1;
    qsizetype end = begin;
    while (end < position && (text[end] == u' ' || text[end] == u'\t'))
        ++end;
    return text.mid(begin, end - begin);
}

} // namespace

bool KNSQLFormatter::isSupported(const VantorDBC &details)
{
    return dialectOf(details) != nullptr;
}

QString KNSQLFormatter::formatted(const QString &text, const KNRange &part, const VantorDBC &details,
                                  const KNSQLFormatStyle &style)
{
    const QString source = text.mid(part.location, part.length);
    const KNSQLDialect *const dialect = dialectOf(details);
    if (!dialect)
        return source;
    const ScriptFormatter formatter(details, *dialect, style);
    QString result = formatter.format(source, indentAt(text, part.location));
    QString whole = text;
    whole.replace(part.location, part.length, result);
    return formatter.areAlike(text, whole) ? result : source;
}
