#pragma once

#include "KNSharedExport.h"
#include "SQL/Scope/KNSQLDialect.h"

/// A token other than white space and comments.
struct KNSQLPiece
{
    SQLTokenKind kind;
    KNSQLRole role;
    qint32 location;
    qint32 length;
    bool mayBeName; ///< whether the word is not reserved: roleAt() decides

    qint32 end() const { return location + length; }
};

/// The tokens of a text that is edited: a new text reuses the tokens of its unchanged parts. Used by one
/// thread at a time.
class KNSHARED_EXPORT KNSQLTokens
{
public:
    /// The dialect must outlive the object.
    explicit KNSQLTokens(const KNSQLDialect &dialect)
        : m_dialect(dialect)
    {
    }

    void setText(const QString &text);
    const QString &text() const { return m_text; }
    const KNSQLDialect &dialect() const { return m_dialect; }

    qsizetype size() const { return m_pieces.size(); }
    const KNSQLPiece &at(qsizetype index) const { return m_pieces[index]; }
    QStringView textAt(qsizetype index) const
    {
        return QStringView(m_text).mid(m_pieces[index].location, m_pieces[index].length);
    }
    /// The role of a token; None for a word that is not reserved where it is used as a name.
    KNSQLRole roleAt(qsizetype index) const
    {
        return m_pieces[index].mayBeName && isUsedAsName(index) ? KNSQLRole::None : m_pieces[index].role;
    }
    /// The number of tokens that begin before a position of the text.
    qsizetype countBefore(qsizetype location) const;
    /// Whether a position is inside of a comment.
    bool isInComment(qsizetype location) const;
    /// Whether the token separates batches.
    bool isBatchSeparator(qsizetype index) const;

private:
    qsizetype tokenize(qsizetype from, qsizetype unchangedFrom, qsizetype shift, QList<KNSQLPiece> *pieces,
                       qsizetype firstOld) const;
    KNSQLRole roleOf(const SQLToken &token, bool isBehindDot) const;
    bool mayBeName(const SQLToken &token, KNSQLRole role) const;
    bool isUsedAsName(qsizetype index) const;
    bool hasOperandBehind(qsizetype index) const;
    void renewRole(qsizetype index);

    const KNSQLDialect &m_dialect;
    QString m_text;
    QList<KNSQLPiece> m_pieces;
};
