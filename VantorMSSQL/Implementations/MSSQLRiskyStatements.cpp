#include "Implementations/MSSQLRiskyStatements.h"

#include "Implementations/MSSQLTokenizer.h"

#include <QSet>

namespace {

using Words = QSet<QString>;

/// Reserved words that begin a statement, wherever they stand outside of parentheses, except in the contexts
/// that Finder knows.
const Words &statementWords()
{
    static const Words words = {
        QStringLiteral("SELECT"),     QStringLiteral("INSERT"),    QStringLiteral("UPDATE"),
        QStringLiteral("DELETE"),     QStringLiteral("MERGE"),     QStringLiteral("TRUNCATE"),
        QStringLiteral("DROP"),       QStringLiteral("CREATE"),    QStringLiteral("ALTER"),
        QStringLiteral("EXEC"),       QStringLiteral("EXECUTE"),   QStringLiteral("DECLARE"),
        QStringLiteral("SET"),        QStringLiteral("IF"),        QStringLiteral("ELSE"),
        QStringLiteral("WHILE"),      QStringLiteral("BEGIN"),     QStringLiteral("END"),
        QStringLiteral("RETURN"),     QStringLiteral("PRINT"),     QStringLiteral("RAISERROR"),
        QStringLiteral("GRANT"),      QStringLiteral("DENY"),      QStringLiteral("REVOKE"),
        QStringLiteral("USE"),        QStringLiteral("COMMIT"),    QStringLiteral("ROLLBACK"),
        QStringLiteral("SAVE"),       QStringLiteral("GOTO"),      QStringLiteral("BREAK"),
        QStringLiteral("CONTINUE"),   QStringLiteral("WAITFOR"),   QStringLiteral("DBCC"),
        QStringLiteral("BACKUP"),     QStringLiteral("RESTORE"),   QStringLiteral("KILL"),
        QStringLiteral("OPEN"),       QStringLiteral("CLOSE"),     QStringLiteral("FETCH"),
        QStringLiteral("DEALLOCATE"), QStringLiteral("BULK"),      QStringLiteral("RECONFIGURE"),
        QStringLiteral("CHECKPOINT"), QStringLiteral("SHUTDOWN"),  QStringLiteral("SETUSER"),
        QStringLiteral("READTEXT"),   QStringLiteral("WRITETEXT"), QStringLiteral("UPDATETEXT"),
        QStringLiteral("WITH")};
    return words;
}

/// Words after a DROP that is not part of the ALTER TABLE before it.
const Words &droppedKinds()
{
    static const Words words = {
        QStringLiteral("TABLE"),    QStringLiteral("VIEW"),     QStringLiteral("PROCEDURE"),
        QStringLiteral("PROC"),     QStringLiteral("FUNCTION"), QStringLiteral("TRIGGER"),
        QStringLiteral("DATABASE"), QStringLiteral("SCHEMA"),   QStringLiteral("USER"),
        QStringLiteral("LOGIN"),    QStringLiteral("ROLE"),     QStringLiteral("TYPE"),
        QStringLiteral("SEQUENCE"), QStringLiteral("SYNONYM"),  QStringLiteral("INDEX")};
    return words;
}

/// Objects whose text follows CREATE or ALTER up to the end of the batch.
const Words &modules()
{
    static const Words words = {QStringLiteral("PROCEDURE"), QStringLiteral("PROC"),
                                QStringLiteral("FUNCTION"), QStringLiteral("TRIGGER"),
                                QStringLiteral("VIEW")};
    return words;
}

/// A token that is neither a space nor a comment.
struct ScriptPiece
{
    SQLTokenKind kind;
    QString word; ///< of a Word and an Operator, in upper case
    QStringView text;
    qsizetype location;
    bool isNested; ///< inside of parentheses or of CASE ... END
};

QList<ScriptPiece> scriptPiecesOf(const QString &batch)
{
    QList<ScriptPiece> pieces;
    SQLMetadataTokenizer tokenizer(batch, MSSQLTokenizer::options());
    SQLToken token;
    QList<bool> open; // of each open parenthesis and CASE, whether it is a CASE
    qsizetype parentheses = 0;
    while (tokenizer.next(&token)) {
        if (token.kind == SQLTokenKind::Whitespace || token.kind == SQLTokenKind::LineComment ||
            token.kind == SQLTokenKind::BlockComment)
            continue;
        const bool hasWord = token.kind == SQLTokenKind::Word || token.kind == SQLTokenKind::Operator;
        const QString word = hasWord ? token.text.toString().toUpper() : QString();
        pieces.append({token.kind, word, token.text, token.location, !open.isEmpty()});
        if (word == QLatin1String("(")) {
            open.append(false);
            ++parentheses;
        } else if (word == QLatin1String(")") && parentheses > 0) {
            while (open.takeLast()) { // a CASE without its END
            }
            --parentheses;
        } else if (word == QLatin1String("CASE")) {
            open.append(true);
        } else if (word == QLatin1String("END") && !open.isEmpty() && open.last()) {
            open.removeLast();
        }
    }
    return pieces;
}

class Finder
{
public:
    explicit Finder(const QString &batch)
        : m_pieces(scriptPiecesOf(batch))
    {
    }

    QStringList find()
    {
        for (m_at = 0; m_at < m_pieces.size() && !isModule(); ++m_at) {
            if (is(m_at, ";") && !m_pieces[m_at].isNested)
                m_alter = -1;
            if (!beginsStatement(m_at))
                continue;
            const QString &word = m_pieces[m_at].word;
            if (word == QLatin1String("MERGE"))
                skipTo({QStringLiteral(";")});
            else if (word == QLatin1String("GRANT") || word == QLatin1String("DENY") ||
                     word == QLatin1String("REVOKE"))
                skipTo({QStringLiteral(";"), QStringLiteral("TO"), QStringLiteral("FROM")});
            else if (isRisky(word))
                m_found.append(textOf(m_alter < 0 ? m_at : m_alter, endOf(m_at)));
        }
        return m_found;
    }

private:
    QString wordAt(qsizetype at) const { return m_pieces.value(at, {}).word; }
    bool is(qsizetype at, const char *word) const { return wordAt(at) == QLatin1String(word); }

    /// At CREATE, CREATE OR ALTER or ALTER of an object whose text is not run.
    bool isModule() const
    {
        if (m_pieces[m_at].isNested)
            return false;
        if (is(m_at, "CREATE") && is(m_at + 1, "OR"))
            return modules().contains(wordAt(m_at + 3));
        return (is(m_at, "CREATE") || is(m_at, "ALTER")) && modules().contains(wordAt(m_at + 1));
    }

    bool beginsStatement(qsizetype at) const
    {
        const ScriptPiece &piece = m_pieces[at];
        if (piece.isNested || piece.kind != SQLTokenKind::Word || !statementWords().contains(piece.word))
            return false;
        // ON DELETE CASCADE, but not SET NOCOUNT ON DELETE
        if (is(at - 1, "ON") && (is(at + 1, "CASCADE") || is(at + 1, "NO") || is(at + 1, "SET")))
            return false;
        // FOR UPDATE OF, AFTER UPDATE (of a security policy), a name's part
        for (const char *const context : {"FOR", "AFTER", "BEFORE", "."}) {
            if (is(at - 1, context))
                return false;
        }
        if (piece.word == QLatin1String("IF"))
            return !is(at - 2, "DROP"); // DROP TABLE IF EXISTS
        if (piece.word == QLatin1String("MERGE"))
            return !is(at + 1, "JOIN"); // a hint
        if (piece.word == QLatin1String("WITH"))
            return !is(at + 1, "("); // hints
        return true;
    }

    void skipTo(const Words &words)
    {
        while (m_at + 1 < m_pieces.size() &&
               (m_pieces[m_at].isNested || !words.contains(m_pieces[m_at].word)))
            ++m_at;
    }

    bool isRisky(const QString &word)
    {
        if (word == QLatin1String("ALTER"))
            m_alter = m_at;
        else if (word != QLatin1String("DROP") || droppedKinds().contains(wordAt(m_at + 1)))
            m_alter = -1;
        if (word == QLatin1String("DROP"))
            return isRiskyDrop();
        if (word == QLatin1String("TRUNCATE"))
            return is(m_at + 1, "TABLE") && !isTemporary(m_at + 2);
        if (word == QLatin1String("UPDATE"))
            return !is(m_at + 1, "STATISTICS") && !is(m_at + 1, "(") && isUnlimited();
        return word == QLatin1String("DELETE") && isUnlimited();
    }

    bool isRiskyDrop() const
    {
        if (m_alter >= 0)
            return is(m_at + 1, "COLUMN");
        return !is(m_at + 1, "TABLE") || !dropsTemporaryOnly(m_at + 2);
    }

    bool dropsTemporaryOnly(qsizetype at) const
    {
        if (is(at, "IF") && is(at + 1, "EXISTS"))
            at += 2;
        const qsizetype end = endOf(m_at);
        while (isTemporary(at)) {
            if (!is(at + 1, ",") || at + 1 >= end)
                return true;
            at += 2;
        }
        return false;
    }

    /// Whether an UPDATE or DELETE of a permanent table has no WHERE.
    bool isUnlimited() const
    {
        qsizetype target = m_at + 1;
        if (is(target, "TOP"))
            target = afterTop(target);
        if (is(target, "FROM"))
            ++target;
        if (isTemporary(target))
            return false;
        const qsizetype end = endOf(m_at);
        for (qsizetype at = m_at + 1; at < end; ++at) {
            if (!m_pieces[at].isNested && is(at, "WHERE"))
                return false;
        }
        return true;
    }

    /// The position after TOP (...) PERCENT.
    qsizetype afterTop(qsizetype at) const
    {
        ++at;
        if (is(at, "(")) {
            ++at;
            while (at < m_pieces.size() && m_pieces[at].isNested)
                ++at;
        } else {
            ++at;
        }
        return is(at, "PERCENT") ? at + 1 : at;
    }

    bool isTemporary(qsizetype at) const
    {
        return at < m_pieces.size() &&
               (m_pieces[at].kind == SQLTokenKind::Variable || m_pieces[at].text.startsWith(u'#') ||
                m_pieces[at].text.startsWith(QLatin1String("[#")));
    }

    /// The position after the statement that begins at `begin`.
    qsizetype endOf(qsizetype begin) const
    {
        bool mayHaveSet = is(begin, "UPDATE");
        for (qsizetype at = begin + 1; at < m_pieces.size(); ++at) {
            if (!m_pieces[at].isNested && is(at, ";"))
                return at;
            if (!beginsStatement(at))
                continue;
            if (!(is(at, "SET") && mayHaveSet))
                return at;
            mayHaveSet = false;
        }
        return m_pieces.size();
    }

    /// A statement in one line, cut where it is long.
    QString textOf(qsizetype begin, qsizetype end) const
    {
        constexpr qsizetype Longest = 100;
        QString text;
        for (qsizetype at = begin; at < end && text.size() <= Longest; ++at) {
            const ScriptPiece &piece = m_pieces[at];
            const qsizetype before =
                at > begin ? m_pieces[at - 1].location + m_pieces[at - 1].text.size() : 0;
            if (at > begin && piece.location > before)
                text += QLatin1Char(' ');
            text += piece.text.left(Longest + 1);
        }
        text = text.simplified();
        return text.size() > Longest ? text.left(Longest) + QChar(0x2026) : text;
    }

    const QList<ScriptPiece> m_pieces;
    qsizetype m_at = 0;
    qsizetype m_alter = -1; ///< where the current ALTER statement begins; -1 outside of one
    QStringList m_found;
};

} // namespace

QStringList MSSQLRiskyStatements(const QString &batch)
{
    return Finder(batch).find();
}
