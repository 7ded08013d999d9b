#include "SQL/KNSQLSecrets.h"

#include "SQL/SQLMetadataTokenizer.h"

#include <QRegularExpression>
#include <QSet>

namespace {

const QString Stars = QStringLiteral("********");
constexpr int DeepestText = 4; ///< nesting levels of SQL texts

/// The name of a token without brackets or quotes, in lower case; empty for other tokens.
QString lowerName(const SQLToken &token)
{
    switch (token.kind) {
    case SQLTokenKind::Word:
        return token.text.toString().toLower();
    case SQLTokenKind::QuotedIdentifier:
    case SQLTokenKind::BracketedIdentifier:
        return token.text.size() > 2 ? token.text.mid(1, token.text.size() - 2).toString().toLower()
                                     : QString();
    default:
        return {};
    }
}

bool isSecretVariable(const SQLToken &token)
{
    return token.kind == SQLTokenKind::Variable && KNSQLIsSecretVariable(token.text);
}

bool isSecretName(const QString &name)
{
    return name.endsWith(QLatin1String("password")) || name == QLatin1String("secret");
}

bool isProcedureWithSecrets(const QString &name)
{
    static const QSet<QString> names = {
        QStringLiteral("sp_addlogin"),          QStringLiteral("sp_password"),
        QStringLiteral("sp_addlinkedsrvlogin"), QStringLiteral("sp_addapprole"),
        QStringLiteral("sp_approlepassword"),   QStringLiteral("sp_setapprole"),
    };
    return names.contains(name);
}

bool isFunctionWithSecrets(const QString &name)
{
    static const QSet<QString> names = {
        QStringLiteral("openrowset"),
        QStringLiteral("opendatasource"),
        QStringLiteral("encryptbypassphrase"),
        QStringLiteral("decryptbypassphrase"),
    };
    return names.contains(name);
}

bool beginsStatement(const SQLToken &token)
{
    static const QSet<QString> words = {QStringLiteral("GO"), QStringLiteral("EXEC"),
                                        QStringLiteral("EXECUTE"), QStringLiteral("SELECT"),
                                        QStringLiteral("CREATE")};
    return (token.kind == SQLTokenKind::Operator && token.text == u";") ||
           (token.kind == SQLTokenKind::Word && words.contains(token.text.toString().toUpper()));
}

bool isBlankToken(const SQLToken &token)
{
    return token.kind == SQLTokenKind::Whitespace || token.kind == SQLTokenKind::LineComment ||
           token.kind == SQLTokenKind::BlockComment;
}

/// Masks the values of PASSWORD=...; and PWD=...; in a connection string.
QString withoutConnectionPasswords(const QString &text, QStringList *secrets)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\b(password|pwd)\\s*=\\s*([^;'\"@?\\s][^;'\"]*)"),
        QRegularExpression::CaseInsensitiveOption);
    QString masked;
    qsizetype end = 0;
    for (auto matches = pattern.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        masked += text.mid(end, match.capturedStart(2) - end) + Stars;
        end = match.capturedEnd(2);
        secrets->append(match.captured(2));
    }
    return end == 0 ? text : masked + text.mid(end);
}

class Masker
{
public:
    Masker(QStringList *secrets, int depth)
        : m_secrets(secrets)
        , m_depth(depth)
    {
    }

    QString masked(const QString &sql)
    {
        QString result;
        SQLMetadataTokenizer tokenizer(sql, {.nestedComments = true, .recognizesMSSQLVariables = true});
        for (SQLToken token{}; tokenizer.next(&token);) {
            const bool isText = token.kind == SQLTokenKind::String;
            const bool isHexadecimal = token.kind == SQLTokenKind::Number && token.text.startsWith(u"0x");
            const bool isSecret = m_awaited != Awaited::Nothing || m_isArgument || m_parentheses > 0;
            if ((isText || isHexadecimal) && isSecret) {
                m_secrets->append(isText ? contentOf(token.text) : token.text.toString());
                result += u'\'' + Stars + u'\'';
                m_awaited = m_awaited == Awaited::Nothing ? Awaited::Nothing : Awaited::Value;
                continue;
            }
            result += isText ? maskedText(token.text) : token.text.toString();
            if (!isBlankToken(token))
                advance(token);
        }
        return result;
    }

private:
    /// The preceding token that makes a literal a secret: the secret's name or its equals sign.
    enum class Awaited { Nothing, AfterName, AfterVariable, Value };

    static QString contentOf(QStringView literal)
    {
        const qsizetype quote = literal.indexOf(u'\'');
        const bool isClosed = literal.size() > quote + 1 && literal.endsWith(u'\'');
        return literal.mid(quote + 1, literal.size() - quote - (isClosed ? 2 : 1))
            .toString()
            .replace(QLatin1String("''"), QLatin1String("'"));
    }

    /// Masks a literal that is not a secret itself but may be SQL or a connection string.
    QString maskedText(QStringView literal)
    {
        const auto mentions = [&](const char *word) {
            return literal.contains(QLatin1String(word), Qt::CaseInsensitive);
        };
        const bool mayHoldOne = mentions("pass") || mentions("pwd") || mentions("secret") ||
                                mentions("open") || mentions("sp_") || mentions("pw");
        if (!mayHoldOne || m_depth >= DeepestText)
            return literal.toString();
        const QString content = contentOf(literal);
        const QString inner =
            withoutConnectionPasswords(Masker(m_secrets, m_depth + 1).masked(content), m_secrets);
        if (inner == content)
            return literal.toString();
        return literal.first(literal.indexOf(u'\'') + 1).toString() +
               QString(inner).replace(u'\'', QLatin1String("''")) + u'\'';
    }

    void advance(const SQLToken &token)
    {
        const QString name = lowerName(token);
        if (m_parentheses > 0 || (m_isCall && token.text == u"("))
            m_parentheses += token.text == u"(" ? 1 : token.text == u")" ? -1 : 0;
        m_isCall = isFunctionWithSecrets(name);
        if (isProcedureWithSecrets(name))
            m_isArgument = true;
        else if (beginsStatement(token))
            m_isArgument = false;
        m_awaited = nextAwaited(token, name);
    }

    Awaited nextAwaited(const SQLToken &token, const QString &name) const
    {
        if (isSecretName(name))
            return Awaited::AfterName;
        if (isSecretVariable(token))
            return Awaited::AfterVariable;
        if (m_awaited != Awaited::Nothing && token.text == u"=")
            return Awaited::Value;
        if (m_awaited == Awaited::Value && (token.text == u"+" || token.text == u"("))
            return Awaited::Value;
        // The type in DECLARE @password nvarchar(20) = N'...'
        const bool endsVariable = token.text == u"," || beginsStatement(token) ||
                                  token.kind == SQLTokenKind::Variable || token.kind == SQLTokenKind::String;
        return m_awaited == Awaited::AfterVariable && !endsVariable ? Awaited::AfterVariable
                                                                    : Awaited::Nothing;
    }

    QStringList *const m_secrets;
    const int m_depth;
    Awaited m_awaited = Awaited::Nothing;
    bool m_isArgument = false; ///< after the name of a procedure with secrets
    bool m_isCall = false;     ///< directly after the name of a function with secrets
    int m_parentheses = 0;     ///< parentheses opened since that call
};

} // namespace

QString KNSQLWithoutSecrets(const QString &sql, QStringList *secrets)
{
    QStringList ignored;
    return Masker(secrets ? secrets : &ignored, 0).masked(sql);
}

QString KNTextWithoutSecrets(const QString &text, const QStringList &secrets)
{
    QString masked = text;
    for (const QString &secret : secrets) {
        if (!secret.isEmpty())
            masked.replace(secret, Stars);
    }
    return masked;
}

bool KNSQLIsSecretVariable(QStringView name)
{
    const auto contains = [&](const char *part) {
        return name.contains(QLatin1String(part), Qt::CaseInsensitive);
    };
    return contains("pass") || contains("pwd") || contains("secret") ||
           name.endsWith(QLatin1String("pw"), Qt::CaseInsensitive);
}
