#pragma once

#include "SQL/Format/KNSQLBlockIndent.h"
#include "SQL/Format/KNSQLClauseBreaks.h"
#include "SQL/Format/KNSQLFormatStyle.h"

#include <optional>

/// Prints the tokens of one batch with new line breaks and blanks. Used once.
class KNSQLFormatPrinter
{
public:
    /// `baseIndent` begins every line but the first.
    KNSQLFormatPrinter(const QList<KNSQLFormatToken> &tokens, const KNSQLFormatRules &rules,
                       const KNSQLFormatStyle &style, QString lineEnd, QString baseIndent);

    QString print();

private:
    /// A statement, or a part of one from a parenthesis or CASE to its end.
    struct Frame
    {
        enum class Kind { Statement, Query, List, Case, Inline };

        Kind kind = Kind::Statement;
        qsizetype end = 0; ///< index of its last token; that of the batch for a statement
        int level = 0;     ///< of clauses
        int itemLevel = 1; ///< of the items of a broken clause
        int endLevel = 0;  ///< of its last token
        KNSQLRole lead = KNSQLRole::None;
        bool isBroken = false;  ///< the present clause takes several lines
        bool isHead = false;    ///< between SELECT and the first item
        bool isInRange = false; ///< behind BETWEEN, before its AND
    };
    using Level = std::optional<int>;

    /// The level of the line that the token begins; empty if it continues the line.
    Level lineBefore(qsizetype index);
    Level lineInFrame(qsizetype index);
    Level lineInClause(qsizetype index);
    Level lineBeforeStatement(qsizetype index);
    int lineBeforeComment(qsizetype index) const;
    bool breaksBehindHead(qsizetype index);
    bool isConnective(const KNSQLFormatToken &token);

    void beginClause(qsizetype index);
    void open(qsizetype index);
    void noteComma();

    bool fits(qsizetype from, qsizetype end, qsizetype column) const;
    bool isTooLong(qsizetype index) const;
    qsizetype behindComments(qsizetype index) const;
    int continuedLevel() const { return m_lineLevel + (m_isContinued ? 0 : 1); }
    void breakLine(int level, bool withBlankLine);
    void append(const KNSQLFormatToken &token);

    const QList<KNSQLFormatToken> &m_tokens;
    const KNSQLFormatRules &m_rules;
    const KNSQLFormatStyle &m_style;
    const QString m_lineEnd;
    const QString m_baseIndent;
    const KNSQLClauseBreaks m_clauses;
    KNSQLBlockIndent m_blocks;
    QList<Frame> m_frames;
    QList<qsizetype> m_solid; ///< for each token the next one that is no comment
    QString m_output;
    qsizetype m_column = 0;
    int m_lineLevel = 0;        ///< of the present line
    bool m_isContinued = false; ///< the present line continues a statement that was too long
    bool m_opensLine = true;    ///< nothing is printed in the present line
    Level m_due; ///< the line that the next token begins unless it is a comment behind this one
};
