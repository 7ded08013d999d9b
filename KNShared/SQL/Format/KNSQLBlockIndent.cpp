#include "SQL/Format/KNSQLBlockIndent.h"

#include <algorithm>

namespace {

constexpr int DeepestLevel = 40; ///< deeper blocks are not indented further

} // namespace

KNSQLBlockIndent::Place KNSQLBlockIndent::place(const KNSQLFormatToken &token, const KNSQLFormatToken *next)
{
    const int governor = std::exchange(m_governor, -1);
    const bool isBehindAlternative = std::exchange(m_isBehindAlternative, false);
    if (token.role == KNSQLRole::End && m_blocks.size() > 1) {
        const int level = m_blocks.takeLast().level - 1;
        return {level};
    }
    if (m_rules.alternatives.contains(token.word))
        return alternative();
    const bool isBlock =
        m_rules.blockBegins.contains(token.word) && !(next && m_rules.notBehindBlock.contains(next->word));
    const bool isCondition = m_rules.conditions.contains(token.word);
    Block &block = m_blocks.last();
    if (governor < 0)
        block.conditions.clear();
    const bool continuesLine = isBehindAlternative && isCondition;
    const int level = governor < 0 ? block.level : isBlock || continuesLine ? governor : governor + 1;
    if (isCondition) {
        block.conditions.append(level);
        m_governor = std::min(level, DeepestLevel);
    }
    if (isBlock)
        beginBlock(level);
    return {level, continuesLine};
}

KNSQLBlockIndent::Place KNSQLBlockIndent::alternative()
{
    Block &block = m_blocks.last();
    const int level = block.conditions.isEmpty() ? block.level : block.conditions.takeLast();
    m_governor = level;
    m_isBehindAlternative = true;
    return {level};
}

void KNSQLBlockIndent::beginBlock(int level)
{
    m_blocks.append(Block{std::min(level, DeepestLevel) + 1});
}
