#pragma once

#include "SQL/Format/KNSQLFormatRules.h"
#include "SQL/Format/KNSQLFormatToken.h"

/// The level of each statement in blocks and under conditions. Statements are reported in their order.
class KNSQLBlockIndent
{
public:
    explicit KNSQLBlockIndent(const KNSQLFormatRules &rules)
        : m_rules(rules)
    {
    }

    struct Place
    {
        int level = 0;
        bool continuesLine = false; ///< ELSE IF
    };
    /// The place of the statement that begins with this token. `next` is the one behind it, or null.
    Place place(const KNSQLFormatToken &token, const KNSQLFormatToken *next);

private:
    struct Block
    {
        int level = 0;
        QList<int> conditions = {}; ///< levels of those that can still have an alternative
    };

    Place alternative();
    void beginBlock(int level);

    const KNSQLFormatRules &m_rules;
    QList<Block> m_blocks = {Block{}};
    int m_governor = -1; ///< the level of the condition just before; -1 if there is none
    bool m_isBehindAlternative = false;
};
