#include "SQL/SQLMetadataTokenizer.h"

namespace {

constexpr char16_t End = 0; ///< read beyond the text; a NUL inside it differs by its position

bool isLineEnd(char16_t unit)
{
    return unit == u'\n' || unit == u'\r';
}

bool isBlank(char16_t unit)
{
    if (unit < 0x80)
        return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
    return QChar(unit).isSpace() || unit == QChar::ByteOrderMark;
}

bool isASCIIDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

bool isHexDigit(char16_t unit)
{
    return isASCIIDigit(unit) || (unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F');
}

/// Letters and other characters that may start a name. Halves of surrogate pairs count as letters, so that no
/// pair is split.
bool startsWord(char16_t unit)
{
    if (unit < 0x80)
        return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || unit == u'_';
    return QChar(unit).isLetter() || QChar::isSurrogate(unit);
}

bool continuesWord(char16_t unit)
{
    if (unit < 0x80)
        return startsWord(unit) || isASCIIDigit(unit) || unit == u'@' || unit == u'$' || unit == u'#';
    const QChar character(unit);
    return startsWord(unit) || character.isDigit() || character.isMark();
}

/// A view of the text around one position.
class Scanner
{
public:
    Scanner(QStringView text, qsizetype position)
        : m_text(text)
        , m_position(position)
    {
    }

    qsizetype position() const { return m_position; }
    char16_t peek(qsizetype ahead = 0) const
    {
        return m_position + ahead < m_text.size() ? m_text[m_position + ahead].unicode() : End;
    }
    bool atEnd() const { return m_position >= m_text.size(); }
    void skip(qsizetype units) { m_position = qMin(m_position + units, m_text.size()); }

    template <typename Predicate>
    void skipWhile(Predicate predicate)
    {
        while (!atEnd() && predicate(m_text[m_position].unicode()))
            ++m_position;
    }

    /// Skips from after an opening quote to after the closing one; a doubled quote is part of the text.
    void skipQuoted(QChar closing)
    {
        for (;;) {
            const qsizetype found = m_text.indexOf(closing, m_position);
            if (found < 0) {
                m_position = m_text.size();
                return;
            }
            m_position = found + 1;
            if (peek() != closing)
                return;
            ++m_position;
        }
    }

    /// Skips from after the opening of a block comment to after its end.
    void skipBlockComment(bool nested)
    {
        for (int depth = 1; depth > 0 && !atEnd();) {
            if (peek() == u'*' && peek(1) == u'/') {
                --depth;
                skip(2);
            } else if (nested && peek() == u'/' && peek(1) == u'*') {
                ++depth;
                skip(2);
            } else {
                skip(1);
            }
        }
    }

    /// Skips digits, a decimal point with digits, and an exponent.
    void skipNumber()
    {
        skipWhile(isASCIIDigit);
        if (peek() == u'.') {
            skip(1);
            skipWhile(isASCIIDigit);
        }
        if (peek() == u'e' || peek() == u'E') {
            const qsizetype sign = peek(1) == u'+' || peek(1) == u'-' ? 1 : 0;
            if (isASCIIDigit(peek(1 + sign))) {
                skip(1 + sign);
                skipWhile(isASCIIDigit);
            }
        }
    }

private:
    QStringView m_text;
    qsizetype m_position;
};

bool isCurrencySign(char16_t unit)
{
    return unit == u'$' || (unit >= 0x80 && QChar(unit).category() == QChar::Symbol_Currency);
}

bool startsNumber(const Scanner &scanner)
{
    const qsizetype currency = isCurrencySign(scanner.peek()) ? 1 : 0;
    return isASCIIDigit(scanner.peek(currency)) ||
           (scanner.peek(currency) == u'.' && isASCIIDigit(scanner.peek(currency + 1)));
}

void skipNumberOrHexadecimal(Scanner *scanner)
{
    if (scanner->peek() == u'0' && (scanner->peek(1) == u'x' || scanner->peek(1) == u'X')) {
        scanner->skip(2);
        scanner->skipWhile(isHexDigit);
        return;
    }
    if (!isASCIIDigit(scanner->peek()) && scanner->peek() != u'.')
        scanner->skip(1); // the currency sign
    scanner->skipNumber();
}

/// Skips a quoted token if there is one; otherwise returns false and changes nothing.
bool skipQuotedPiece(Scanner *scanner, SQLTokenKind *kind)
{
    switch (scanner->peek()) {
    case u'N':
    case u'n':
        if (scanner->peek(1) != u'\'')
            return false;
        scanner->skip(1);
        [[fallthrough]];
    case u'\'':
        *kind = SQLTokenKind::String;
        scanner->skip(1);
        scanner->skipQuoted(u'\'');
        return true;
    case u'"':
        *kind = SQLTokenKind::QuotedIdentifier;
        scanner->skip(1);
        scanner->skipQuoted(u'"');
        return true;
    case u'[':
        *kind = SQLTokenKind::BracketedIdentifier;
        scanner->skip(1);
        scanner->skipQuoted(u']');
        return true;
    default:
        return false;
    }
}

/// The same for comments.
bool skipComment(Scanner *scanner, const SQLTokenizerOptions &options, SQLTokenKind *kind)
{
    const bool dashes = scanner->peek() == u'-' && scanner->peek(1) == u'-';
    if (dashes || (options.hashStartsComment && scanner->peek() == u'#')) {
        *kind = SQLTokenKind::LineComment;
        scanner->skipWhile([](char16_t unit) { return !isLineEnd(unit); });
        return true;
    }
    if (scanner->peek() == u'/' && scanner->peek(1) == u'*') {
        *kind = SQLTokenKind::BlockComment;
        scanner->skip(2);
        scanner->skipBlockComment(options.nestedComments);
        return true;
    }
    return false;
}

/// The same for names: identifiers, #temp and ##temp, $action, @variables.
bool skipName(Scanner *scanner, const SQLTokenizerOptions &options, SQLTokenKind *kind)
{
    const char16_t first = scanner->peek();
    const char16_t second = scanner->peek(1);
    const bool variable = first == u'@' && options.recognizesMSSQLVariables;
    const bool word = startsWord(first) || (first == u'#' && continuesWord(second)) ||
                      (first == u'$' && startsWord(second));
    if (!variable && !word)
        return false;
    *kind = variable ? SQLTokenKind::Variable : SQLTokenKind::Word;
    scanner->skip(1);
    scanner->skipWhile(continuesWord);
    return true;
}

/// The length of the operator at this position: the longest one of T-SQL and related dialects.
qsizetype operatorLength(const Scanner &scanner)
{
    static constexpr char16_t Pairs[][3] = {u"<>", u"<=", u">=", u"!=", u"!<", u"!>", u"+=", u"-=",
                                            u"*=", u"/=", u"%=", u"&=", u"|=", u"^=", u"::", u"||"};
    constexpr QStringView SecondHalves(u"=><|:");
    if (!SecondHalves.contains(QChar(scanner.peek(1))))
        return 1;
    for (const auto &pair : Pairs) {
        if (scanner.peek() == pair[0] && scanner.peek(1) == pair[1])
            return 2;
    }
    return 1;
}

} // namespace

SQLMetadataTokenizer::SQLMetadataTokenizer(QStringView text, const SQLTokenizerOptions &options)
    : m_text(text)
    , m_options(options)
{
}

bool SQLMetadataTokenizer::next(SQLToken *token)
{
    if (m_position >= m_text.size())
        return false;
    token->location = m_position;
    m_position = endOfToken(&token->kind);
    token->length = m_position - token->location;
    token->text = m_text.mid(token->location, token->length);
    return true;
}

QList<SQLToken> SQLMetadataTokenizer::tokenize(QStringView text, const SQLTokenizerOptions &options)
{
    QList<SQLToken> tokens;
    SQLMetadataTokenizer tokenizer(text, options);
    SQLToken token{};
    while (tokenizer.next(&token))
        tokens.append(token);
    return tokens;
}

qsizetype SQLMetadataTokenizer::endOfToken(SQLTokenKind *kind) const
{
    Scanner scanner(m_text, m_position);
    if (isBlank(scanner.peek())) {
        *kind = SQLTokenKind::Whitespace;
        scanner.skipWhile(isBlank);
    } else if (startsWord(scanner.peek()) && scanner.peek(1) != u'\'') {
        *kind = SQLTokenKind::Word; // the most frequent kind
        scanner.skip(1);
        scanner.skipWhile(continuesWord);
    } else if (skipComment(&scanner, m_options, kind) || skipQuotedPiece(&scanner, kind)) {
        // Both set the kind.
    } else if (startsNumber(scanner)) {
        *kind = SQLTokenKind::Number;
        skipNumberOrHexadecimal(&scanner);
    } else if (!skipName(&scanner, m_options, kind)) {
        *kind = SQLTokenKind::Operator;
        scanner.skip(operatorLength(scanner));
    }
    return scanner.position();
}
