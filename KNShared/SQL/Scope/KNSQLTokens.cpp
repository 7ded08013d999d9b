#include "SQL/Scope/KNSQLTokens.h"

#include <algorithm>

namespace {

constexpr qsizetype LongestWord = 40; ///< longer ones are names

/// Tokens before a change that are read again: a change can join a token with the one before it.
constexpr qsizetype ReadAgain = 3;

qsizetype commonPrefix(QStringView a, QStringView b)
{
    return std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
}

qsizetype commonSuffix(QStringView a, QStringView b, qsizetype limit)
{
    qsizetype length = 0;
    while (length < limit && a[a.size() - 1 - length] == b[b.size() - 1 - length])
        ++length;
    return length;
}

bool isSkipped(SQLTokenKind kind)
{
    return kind == SQLTokenKind::Whitespace || kind == SQLTokenKind::LineComment ||
           kind == SQLTokenKind::BlockComment;
}

bool isLineEnd(QChar character)
{
    return character == u'\n' || character == u'\r';
}

} // namespace

void KNSQLTokens::setText(const QString &text)
{
    const qsizetype prefix = commonPrefix(m_text, text);
    if (prefix == text.size() && prefix == m_text.size())
        return;
    const qsizetype suffix = commonSuffix(m_text, text, std::min(m_text.size(), text.size()) - prefix);
    const qsizetype kept = std::max<qsizetype>(0, countBefore(prefix) - ReadAgain);
    const qsizetype from = kept > 0 ? m_pieces[kept].location : 0;
    const qsizetype shift = text.size() - m_text.size();
    const qsizetype unchangedFrom = text.size() - suffix;
    m_text = text;
    QList<KNSQLPiece> changed;
    const qsizetype reused = tokenize(from, unchangedFrom, shift, &changed, kept);
    for (qsizetype index = reused; shift != 0 && index < m_pieces.size(); ++index)
        m_pieces[index].location += static_cast<qint32>(shift);
    const qsizetype replaced = reused - kept;
    const qsizetype common = std::min(replaced, changed.size());
    std::copy(changed.begin(), changed.begin() + common, m_pieces.begin() + kept);
    if (replaced > common)
        m_pieces.remove(kept + common, replaced - common);
    else if (changed.size() > common) {
        m_pieces.insert(kept + common, changed.size() - common, KNSQLPiece{});
        std::copy(changed.begin() + common, changed.end(), m_pieces.begin() + kept + common);
    }
    renewRole(kept + changed.size());
}

/// Reads tokens up to one that the old list has, too. Returns its index there.
qsizetype KNSQLTokens::tokenize(qsizetype from, qsizetype unchangedFrom, qsizetype shift,
                                QList<KNSQLPiece> *pieces, qsizetype firstOld) const
{
    SQLMetadataTokenizer tokenizer(m_text, m_dialect.tokenizer);
    tokenizer.seek(from);
    qsizetype old = firstOld;
    qsizetype dotEnd = firstOld > 0 && textAt(firstOld - 1) == u"." ? m_pieces[firstOld - 1].end() : -1;
    SQLToken token{};
    while (tokenizer.next(&token)) {
        if (isSkipped(token.kind))
            continue;
        if (token.location >= unchangedFrom) {
            while (old < m_pieces.size() && m_pieces[old].location + shift < token.location)
                ++old;
            if (old < m_pieces.size() && m_pieces[old].location + shift == token.location)
                return old;
        }
        const KNSQLRole role = roleOf(token, dotEnd == token.location);
        pieces->append({token.kind, role, static_cast<qint32>(token.location),
                        static_cast<qint32>(token.length), mayBeName(token, role)});
        dotEnd = token.text == u"." ? token.location + token.length : -1;
    }
    return m_pieces.size();
}

KNSQLRole KNSQLTokens::roleOf(const SQLToken &token, bool isBehindDot) const
{
    if (token.kind != SQLTokenKind::Word || isBehindDot || token.length > LongestWord)
        return KNSQLRole::None;
    return m_dialect.roles.value(token.text.toString().toUpper(), KNSQLRole::None);
}

/// The role of a token depends on the one before it.
void KNSQLTokens::renewRole(qsizetype index)
{
    if (index >= m_pieces.size())
        return;
    const KNSQLPiece &piece = m_pieces[index];
    const bool isBehindDot =
        index > 0 && textAt(index - 1) == u"." && m_pieces[index - 1].end() == piece.location;
    const SQLToken token{piece.kind, piece.location, piece.length, textAt(index)};
    m_pieces[index].role = roleOf(token, isBehindDot);
    m_pieces[index].mayBeName = mayBeName(token, m_pieces[index].role);
}

bool KNSQLTokens::mayBeName(const SQLToken &token, KNSQLRole role) const
{
    return role != KNSQLRole::None && m_dialect.nonReserved.contains(token.text.toString().toUpper());
}

/// Whether a word that is not reserved stands where it cannot have its role.
bool KNSQLTokens::isUsedAsName(qsizetype index) const
{
    const auto role = [this](qsizetype at) {
        return at >= 0 && at < m_pieces.size() ? m_pieces[at].role : KNSQLRole::None;
    };
    const auto isDefinition = [&](qsizetype at) {
        return role(at) == KNSQLRole::Create || role(at) == KNSQLRole::Alter || role(at) == KNSQLRole::Drop;
    };
    const KNSQLRole previous = role(index - 1);
    const bool isInParenthesis = index > 0 && textAt(index - 1) == u"(";
    switch (role(index)) {
    case KNSQLRole::ObjectKind: // CREATE TYPE, CREATE SERVER ROLE, GRANT ALTER ANY LOGIN, EXECUTE AS LOGIN
        return !isDefinition(index - 1) &&
               !(isDefinition(index - 2) &&
                 (previous == KNSQLRole::None || previous == KNSQLRole::Operator)) &&
               !(previous == KNSQLRole::As && role(index - 2) == KNSQLRole::Execute);
    case KNSQLRole::Cast:
        return index + 1 >= m_pieces.size() || textAt(index + 1) != u"(";
    case KNSQLRole::Partition:
        return role(index + 1) != KNSQLRole::By && !(isInParenthesis && role(index - 2) == KNSQLRole::Over) &&
               hasOperandBehind(index - 1);
    default:
        return hasOperandBehind(index - 1);
    }
}

/// Whether only an operand or the name of a source can follow a token.
bool KNSQLTokens::hasOperandBehind(qsizetype index) const
{
    if (index < 0)
        return false;
    if (m_pieces[index].kind == SQLTokenKind::Operator)
        return !QStringView(u")*;").contains(textAt(index));
    switch (m_pieces[index].role) {
    case KNSQLRole::Select:
    case KNSQLRole::Quantifier:
    case KNSQLRole::With:
    case KNSQLRole::From:
    case KNSQLRole::Join:
    case KNSQLRole::Apply:
    case KNSQLRole::Using:
    case KNSQLRole::Into:
    case KNSQLRole::Update:
    case KNSQLRole::Table:
    case KNSQLRole::Column:
    case KNSQLRole::References:
    case KNSQLRole::Set:
    case KNSQLRole::On:
    case KNSQLRole::Where:
    case KNSQLRole::Having:
    case KNSQLRole::By:
    case KNSQLRole::Case:
    case KNSQLRole::When:
    case KNSQLRole::As:
    case KNSQLRole::Operator:
        return true;
    default:
        return false;
    }
}

qsizetype KNSQLTokens::countBefore(qsizetype location) const
{
    const auto found =
        std::lower_bound(m_pieces.begin(), m_pieces.end(), location,
                         [](const KNSQLPiece &piece, qsizetype wanted) { return piece.location < wanted; });
    return found - m_pieces.begin();
}

bool KNSQLTokens::isInComment(qsizetype location) const
{
    const qsizetype count = countBefore(location);
    const qsizetype from = count > 0 ? m_pieces[count - 1].end() : 0;
    SQLMetadataTokenizer tokenizer(m_text, m_dialect.tokenizer);
    tokenizer.seek(from);
    SQLToken token{};
    while (tokenizer.next(&token) && token.location < location) {
        const qsizetype end = token.location + token.length;
        if (token.kind == SQLTokenKind::LineComment && location <= end)
            return true;
        // An open comment extends to the end of the text.
        const bool isClosed = token.length >= 4 && token.text.endsWith(u"*/");
        if (token.kind == SQLTokenKind::BlockComment && (location < end || !isClosed))
            return true;
        if (!isSkipped(token.kind))
            return false;
    }
    return false;
}

bool KNSQLTokens::isBatchSeparator(qsizetype index) const
{
    const KNSQLPiece &piece = m_pieces[index];
    if (piece.role != KNSQLRole::Batch)
        return false;
    const auto hasLineEnd = [this](qsizetype from, qsizetype to) {
        return std::any_of(m_text.begin() + from, m_text.begin() + to, isLineEnd);
    };
    if (index > 0 && !hasLineEnd(m_pieces[index - 1].end(), piece.location))
        return false;
    qsizetype next = index + 1;
    if (next < size() && m_pieces[next].kind == SQLTokenKind::Number) // how often the batch runs
        ++next;
    return next >= size() || hasLineEnd(m_pieces[next - 1].end(), m_pieces[next].location);
}
