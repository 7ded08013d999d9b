#include "Scripts/MSSQLModuleHeader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLTokenizer.h"
#include "SQL/SQLMetadataTokenizer.h"

namespace {

constexpr SQLTokenizerOptions TransactSQL = MSSQLTokenizer::options();

bool isBlank(const SQLToken &token)
{
    return token.kind == SQLTokenKind::Whitespace || token.kind == SQLTokenKind::LineComment ||
           token.kind == SQLTokenKind::BlockComment;
}

bool isName(const SQLToken &token)
{
    return token.kind == SQLTokenKind::Word || token.kind == SQLTokenKind::QuotedIdentifier ||
           token.kind == SQLTokenKind::BracketedIdentifier;
}

bool isWord(const SQLToken &token, const char *word)
{
    return token.kind == SQLTokenKind::Word &&
           token.text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

/// The name in a token, without quotes.
QString plainName(const SQLToken &token)
{
    if (token.kind == SQLTokenKind::Word)
        return token.text.toString();
    const QChar quote = token.kind == SQLTokenKind::BracketedIdentifier ? QLatin1Char(']') : QLatin1Char('"');
    QString name = token.text.mid(1).toString();
    if (name.endsWith(quote))
        name.chop(1);
    return name.replace(QString(2, quote), QString(quote));
}

/// "PROCEDURE" for PROC, other kinds in upper case; null for unknown kinds of objects.
QString kindOf(const SQLToken &token)
{
    if (isWord(token, "PROC"))
        return QStringLiteral("PROCEDURE");
    for (const char *kind : {"PROCEDURE", "FUNCTION", "VIEW", "TRIGGER", "TABLE", "TYPE"}) {
        if (isWord(token, kind))
            return QString::fromLatin1(kind);
    }
    return {};
}

/// Reads the tokens of a header, without blanks.
class HeaderReader
{
public:
    /// Starts at `from`, a position between two tokens. Keeps a reference to the text.
    explicit HeaderReader(const QString &text, qsizetype from = 0)
        : m_tokenizer(text, TransactSQL)
    {
        m_tokenizer.seek(from);
        advance();
    }

    bool atEnd() const { return !m_hasToken; }
    const SQLToken &token() const { return m_token; }

    void advance()
    {
        while ((m_hasToken = m_tokenizer.next(&m_token)) && isBlank(m_token))
            ;
    }

    /// The header whose verb is the current token; nullopt if no header begins there.
    std::optional<MSSQLModuleHeader> header()
    {
        MSSQLModuleHeader header;
        for (const char *verb : {"CREATE", "ALTER", "DROP"}) {
            if (!atEnd() && isWord(m_token, verb))
                header.verb = QString::fromLatin1(verb);
        }
        if (header.verb.isEmpty())
            return std::nullopt;
        header.verbStart = m_token.location;
        advance();
        if (!atEnd() && isWord(m_token, "OR")) {
            advance();
            if (atEnd() || !isWord(m_token, "ALTER"))
                return std::nullopt;
            advance();
        }
        header.kind = atEnd() ? QString() : kindOf(m_token);
        if (header.kind.isEmpty())
            return std::nullopt;
        header.kindEnd = end();
        advance();
        return readName(header) ? std::optional(header) : std::nullopt;
    }

private:
    qsizetype end() const { return m_token.location + m_token.length; }

    bool readName(MSSQLModuleHeader &header)
    {
        if (atEnd() || !isName(m_token))
            return false;
        header.nameStart = m_token.location;
        bool wantsName = true;
        while (!atEnd()) {
            const bool isDot = m_token.kind == SQLTokenKind::Operator && m_token.text == QLatin1String(".");
            if (wantsName && isDot) {
                header.name.append(QString());
            } else if (wantsName && isName(m_token)) {
                header.name.append(plainName(m_token));
                header.nameEnd = end();
                wantsName = false;
            } else if (!wantsName && isDot) {
                wantsName = true;
            } else {
                break;
            }
            advance();
        }
        return !wantsName;
    }

    SQLMetadataTokenizer m_tokenizer;
    SQLToken m_token{};
    bool m_hasToken = false;
};

} // namespace

std::optional<MSSQLModuleHeader> MSSQLModuleHeader::ofDefinition(const QString &definition)
{
    return HeaderReader(definition).header();
}

std::optional<MSSQLModuleHeader> MSSQLModuleHeader::firstIn(const QString &script, qsizetype from)
{
    HeaderReader reader(script, from);
    while (!reader.atEnd()) {
        const qsizetype start = reader.token().location;
        if (auto header = reader.header())
            return header;
        // A text that began like a header has already advanced the reader.
        if (!reader.atEnd() && reader.token().location == start)
            reader.advance();
    }
    return std::nullopt;
}

QString MSSQLModuleHeader::withPlainHeader(const QString &definition)
{
    const auto header = ofDefinition(definition);
    if (!header)
        return definition;
    const QString plain = KNFormat("%@ %@", header->verb, header->kind);
    const qsizetype length = header->kindEnd - header->verbStart;
    if (QStringView(definition).sliced(header->verbStart, length).compare(plain, Qt::CaseInsensitive) == 0)
        return definition;
    QString text = definition;
    return text.replace(header->verbStart, length, plain);
}

QString MSSQLModuleHeader::altering(const QString &definition)
{
    QString text = withPlainHeader(definition);
    const auto header = ofDefinition(text);
    return header ? text.replace(header->verbStart, header->verb.size(), QStringLiteral("ALTER")) : text;
}
