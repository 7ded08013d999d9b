#include "RowEditing/MSSQLSourceTable.h"

#include "Implementations/MSSQLTokenizer.h"
#include "Implementations/MSSQLWordLists.h"

#include <QSet>

#include <algorithm>

namespace {

/// Words that may follow the table and its alias: conditions and orders do not change which rows are which.
const QSet<QString> &tailWords()
{
    static const QSet<QString> words = {QStringLiteral("WHERE"), QStringLiteral("ORDER"),
                                        QStringLiteral("OPTION")};
    return words;
}

/// Words that, outside of parentheses, begin another statement or make other rows of those of the table.
const QSet<QString> &otherWords()
{
    static const QSet<QString> words = {
        QStringLiteral("SELECT"),    QStringLiteral("INSERT"),  QStringLiteral("UPDATE"),
        QStringLiteral("DELETE"),    QStringLiteral("MERGE"),   QStringLiteral("TRUNCATE"),
        QStringLiteral("DROP"),      QStringLiteral("CREATE"),  QStringLiteral("ALTER"),
        QStringLiteral("EXEC"),      QStringLiteral("EXECUTE"), QStringLiteral("DECLARE"),
        QStringLiteral("SET"),       QStringLiteral("IF"),      QStringLiteral("WHILE"),
        QStringLiteral("BEGIN"),     QStringLiteral("RETURN"),  QStringLiteral("PRINT"),
        QStringLiteral("USE"),       QStringLiteral("COMMIT"),  QStringLiteral("ROLLBACK"),
        QStringLiteral("SAVE"),      QStringLiteral("GOTO"),    QStringLiteral("WAITFOR"),
        QStringLiteral("WITH"),      QStringLiteral("UNION"),   QStringLiteral("EXCEPT"),
        QStringLiteral("INTERSECT"), QStringLiteral("GROUP"),   QStringLiteral("HAVING"),
        QStringLiteral("FOR"),       QStringLiteral("INTO"),    QStringLiteral("COMPUTE"),
        QStringLiteral("FROM"),      QStringLiteral("DBCC"),    QStringLiteral("KILL"),
        QStringLiteral("GRANT"),     QStringLiteral("DENY"),    QStringLiteral("REVOKE"),
        QStringLiteral("BACKUP"),    QStringLiteral("RESTORE"), QStringLiteral("RAISERROR"),
        QStringLiteral("OPEN"),      QStringLiteral("CLOSE"),   QStringLiteral("SETUSER"),
        QStringLiteral("REVERT"),    QStringLiteral("THROW"),   QStringLiteral("WINDOW"),
        QStringLiteral("BULK")};
    return words;
}

struct Piece
{
    SQLTokenKind kind;
    QString word; ///< of words and operators, in upper case
    QString name; ///< of identifiers, without quotes; null for anything else
};

Piece pieceOf(const SQLToken &token)
{
    const QString text = token.text.toString();
    switch (token.kind) {
    case SQLTokenKind::Word:
        return {token.kind, text.toUpper(), text};
    case SQLTokenKind::BracketedIdentifier:
        return {
            token.kind, {}, text.mid(1, text.size() - 2).replace(QLatin1String("]]"), QLatin1String("]"))};
    case SQLTokenKind::QuotedIdentifier:
        return {
            token.kind, {}, text.mid(1, text.size() - 2).replace(QLatin1String("\"\""), QLatin1String("\""))};
    default:
        return {token.kind, text, {}};
    }
}

QList<Piece> piecesOf(const QString &batch)
{
    QList<Piece> pieces;
    SQLMetadataTokenizer tokenizer(batch, MSSQLTokenizer::options());
    SQLToken token;
    while (tokenizer.next(&token)) {
        if (token.kind > SQLTokenKind::BlockComment)
            pieces.append(pieceOf(token));
    }
    return pieces;
}

/// Reads one batch. Each function returns a problem or null and ends behind what it has read.
class Reader
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLSourceTable)

public:
    explicit Reader(const QString &batch)
        : m_pieces(piecesOf(batch))
    {
    }

    QString read(QStringList *path)
    {
        skipUse();
        if (!take("SELECT"))
            return tr("the batch is not a single SELECT");
        QString problem = readTop();
        if (problem.isNull())
            problem = readColumns();
        if (problem.isNull())
            problem = readTable(path);
        return problem.isNull() ? readTail() : problem;
    }

private:
    const Piece &piece() const
    {
        static const Piece end{SQLTokenKind::Whitespace, {}, {}};
        return m_at < m_pieces.size() ? m_pieces[m_at] : end;
    }
    bool is(const char *word) const { return piece().word == QLatin1String(word); }
    bool take(const char *word)
    {
        const bool isThis = is(word);
        m_at += isThis;
        return isThis;
    }
    bool isName() const
    {
        return !piece().name.isNull() &&
               (piece().kind != SQLTokenKind::Word || !MSSQLWordLists::isKeyword(piece().name));
    }

    /// USE database before the statement.
    void skipUse()
    {
        while (is(";"))
            ++m_at;
        if (!take("USE"))
            return;
        ++m_at;
        while (is(";"))
            ++m_at;
    }

    /// Behind the closing parenthesis of the one at the current position.
    void skipParentheses()
    {
        int depth = 0;
        do {
            depth += is("(") - is(")");
            ++m_at;
        } while (depth > 0 && m_at < m_pieces.size());
    }

    QString readTop()
    {
        take("ALL");
        if (is("DISTINCT"))
            return tr("DISTINCT makes one row of several");
        if (!take("TOP"))
            return {};
        if (is("("))
            skipParentheses();
        else
            ++m_at;
        take("PERCENT");
        if (take("WITH"))
            take("TIES");
        return {};
    }

    QString readColumns()
    {
        do {
            while (!piece().name.isNull() && !is("FROM")) {
                ++m_at;
                if (!take("."))
                    break;
            }
            take("*");
        } while (take(","));
        return take("FROM") ? QString() : tr("its columns have aliases or expressions");
    }

    QString readTable(QStringList *path)
    {
        do {
            if (is("(") || piece().name.isNull())
                return tr("it reads no table");
            path->append(piece().name);
            ++m_at;
        } while (take("."));
        if (path->last().startsWith(QLatin1Char('#')))
            return tr("temporary tables cannot be edited");
        if (path->size() > 2)
            return tr("its table may be in another database");
        if (is("("))
            return tr("it reads no table");
        readAlias();
        return {};
    }

    void readAlias()
    {
        take("AS");
        if (isName())
            ++m_at;
        if (take("WITH") && is("("))
            skipParentheses();
    }

    QString readTail()
    {
        if (is(",") || is("JOIN") || is("INNER") || is("LEFT") || is("RIGHT") || is("FULL") || is("CROSS") ||
            is("OUTER"))
            return tr("joins several tables");
        for (bool isFirst = true; m_at < m_pieces.size() && !is(";"); isFirst = false) {
            if (is("UNION") || is("EXCEPT") || is("INTERSECT"))
                return tr("combines several results");
            if (is("GROUP") || is("HAVING"))
                return tr("its rows are grouped");
            if (isFirst && !tailWords().contains(piece().word))
                return tr("it does not plainly read one table");
            if (otherWords().contains(piece().word))
                return tr("the batch is not a single SELECT");
            if (is("("))
                skipParentheses();
            else
                ++m_at;
        }
        while (take(";")) {
        }
        return m_at < m_pieces.size() ? tr("the batch is not a single SELECT") : QString();
    }

    const QList<Piece> m_pieces;
    qsizetype m_at = 0;
};

} // namespace

MSSQLSourceTable MSSQLSourceTable::of(const QString &batch)
{
    MSSQLSourceTable table;
    table.m_problem = Reader(batch).read(&table.m_path);
    if (!table.m_problem.isNull())
        table.m_path.clear();
    return table;
}
