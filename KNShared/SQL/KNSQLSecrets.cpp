#include "SQL/KNSQLSecrets.h"

#include "SQL/SQLMetadataTokenizer.h"

#include <QSet>

namespace {

const QString Mask = QStringLiteral("'********'");

/// Words and variables whose value is one.
bool namesSecret(const SQLToken &token)
{
    if (token.kind == SQLTokenKind::Variable) {
        const auto contains = [&](const char *part) {
            return token.text.contains(QLatin1String(part), Qt::CaseInsensitive);
        };
        return contains("pass") || contains("pwd") || contains("secret");
    }
    return token.kind == SQLTokenKind::Word &&
           (token.text.endsWith(QLatin1String("PASSWORD"), Qt::CaseInsensitive) ||
            token.text.compare(QLatin1String("SECRET"), Qt::CaseInsensitive) == 0);
}

bool isProcedureWithSecrets(const SQLToken &token)
{
    static const QSet<QString> names = {
        QStringLiteral("sp_addlogin"),          QStringLiteral("sp_password"),
        QStringLiteral("sp_addlinkedsrvlogin"), QStringLiteral("sp_addapprole"),
        QStringLiteral("sp_approlepassword"),   QStringLiteral("sp_setapprole"),
    };
    return token.kind == SQLTokenKind::Word && names.contains(token.text.toString().toLower());
}

bool beginsStatement(const SQLToken &token)
{
    static const QSet<QString> words = {QStringLiteral("GO"), QStringLiteral("EXEC"),
                                        QStringLiteral("EXECUTE"), QStringLiteral("SELECT"),
                                        QStringLiteral("CREATE")};
    return (token.kind == SQLTokenKind::Operator && token.text == u";") ||
           (token.kind == SQLTokenKind::Word && words.contains(token.text.toString().toUpper()));
}

} // namespace

QString KNSQLWithoutSecrets(const QString &sql)
{
    QString masked;
    bool isAwaited = false;  // behind the name of a secret
    bool isArgument = false; // behind the name of a procedure that takes some
    SQLMetadataTokenizer tokenizer(sql, {.nestedComments = true, .recognizesMSSQLVariables = true});
    for (SQLToken token{}; tokenizer.next(&token);) {
        const bool isText = token.kind == SQLTokenKind::String;
        const bool isHexadecimal = token.kind == SQLTokenKind::Number && token.text.startsWith(u"0x");
        if ((isText || isHexadecimal) && (isAwaited || isArgument)) {
            masked += Mask;
            isAwaited = false;
            continue;
        }
        masked += token.text;
        if (token.kind == SQLTokenKind::Whitespace || token.kind == SQLTokenKind::LineComment ||
            token.kind == SQLTokenKind::BlockComment)
            continue;
        if (namesSecret(token))
            isAwaited = true;
        else if (token.text != u"=")
            isAwaited = false;
        if (isProcedureWithSecrets(token))
            isArgument = true;
        else if (beginsStatement(token))
            isArgument = false;
    }
    return masked;
}
