#include "SQL/Format/KNSQLFormatPrinter.h"

#include <algorithm>

namespace {

using FormatToken = KNSQLFormatToken;
using Role = KNSQLRole;

constexpr int MostFrames = 60; ///< deeper parentheses stay on their line

} // namespace

KNSQLFormatPrinter::KNSQLFormatPrinter(const QList<KNSQLFormatToken> &tokens, const KNSQLFormatRules &rules,
                                       const KNSQLFormatStyle &style, QString lineEnd, QString baseIndent)
    : m_tokens(tokens)
    , m_rules(rules)
    , m_style(style)
    , m_lineEnd(std::move(lineEnd))
    , m_baseIndent(std::move(baseIndent))
    , m_clauses(tokens)
    , m_blocks(rules)
    , m_frames{Frame{.end = tokens.size()}}
    , m_solid(tokens.size() + 1, tokens.size())
{
    for (qsizetype index = tokens.size() - 1; index >= 0; --index)
        m_solid[index] = tokens[index].isComment() ? m_solid[index + 1] : index;
}

QString KNSQLFormatPrinter::print()
{
    for (qsizetype index = 0; index < m_tokens.size(); ++index) {
        const FormatToken &token = m_tokens[index];
        if (token.isComment()) {
            if (token.needsBreak)
                breakLine(lineBeforeComment(index), token.hasBlankLine);
        } else if (const Level level = lineBefore(index); level && index > 0) {
            breakLine(*level, token.startsStatement && token.hasBlankLine);
        }
        append(token);
        if (token.is(u','))
            noteComma();
        else if (token.match >= 0)
            open(index);
    }
    return m_output;
}

KNSQLFormatPrinter::Level KNSQLFormatPrinter::lineBefore(qsizetype index)
{
    const FormatToken &token = m_tokens[index];
    const Level due = std::exchange(m_due, std::nullopt);
    if (token.startsStatement)
        return lineBeforeStatement(index);
    const Level inFrame = lineInFrame(index);
    if (m_rules.separators.contains(token.word) && !token.needsBreak)
        return std::nullopt;
    if (inFrame || due) {
        m_isContinued = false;
        return inFrame ? inFrame : due;
    }
    if (token.needsBreak || isTooLong(index)) {
        const int level = continuedLevel();
        m_isContinued = true;
        return level;
    }
    return std::nullopt;
}

KNSQLFormatPrinter::Level KNSQLFormatPrinter::lineBeforeStatement(qsizetype index)
{
    const FormatToken &token = m_tokens[index];
    const qsizetype next = behindComments(index + 1);
    const auto place = m_blocks.place(token, next < m_tokens.size() ? &m_tokens[next] : nullptr);
    m_frames = {Frame{
        .end = m_tokens.size(), .level = place.level, .itemLevel = place.level + 1, .lead = token.role}};
    beginClause(index);
    m_isContinued = false;
    return place.continuesLine && !token.needsBreak ? Level() : Level(place.level);
}

KNSQLFormatPrinter::Level KNSQLFormatPrinter::lineInFrame(qsizetype index)
{
    if (m_frames.size() == 1 || index != m_frames.constLast().end)
        return lineInClause(index);
    const Frame frame = m_frames.takeLast();
    return frame.kind == Frame::Kind::Inline ? Level() : Level(frame.endLevel);
}

KNSQLFormatPrinter::Level KNSQLFormatPrinter::lineInClause(qsizetype index)
{
    const FormatToken &token = m_tokens[index];
    Frame &frame = m_frames.last();
    const bool hasClauses = frame.kind == Frame::Kind::Statement || frame.kind == Frame::Kind::Query;
    if (hasClauses && m_clauses.begins(index, frame.lead)) {
        beginClause(index);
        return frame.level;
    }
    const qsizetype next = behindComments(index + 1);
    if (token.role == Role::As && next < m_tokens.size() && m_tokens[next].startsStatement)
        return frame.level; // the body of a procedure or view follows
    const bool isBranch = token.role == Role::When || token.role == Role::Else;
    const bool isItem = isConnective(token) || (m_style.hasLeadingCommas && token.is(u','));
    if (frame.isBroken && (frame.kind == Frame::Kind::Case ? isBranch : isItem))
        return frame.itemLevel;
    return breaksBehindHead(index) ? Level(frame.itemLevel) : Level();
}

/// The first item of a broken SELECT begins a line: behind DISTINCT, TOP (n) PERCENT WITH TIES.
bool KNSQLFormatPrinter::breaksBehindHead(qsizetype index)
{
    Frame &frame = m_frames.last();
    if (!frame.isHead)
        return false;
    const FormatToken &token = m_tokens[index];
    const Role before = index > 0 ? m_tokens[index - 1].role : Role::None;
    if (token.role == Role::Quantifier || token.role == Role::Top || token.role == Role::Operator ||
        token.role == Role::With || before == Role::Top || before == Role::With)
        return false;
    frame.isHead = false;
    return true;
}

bool KNSQLFormatPrinter::isConnective(const FormatToken &token)
{
    Frame &frame = m_frames.last();
    if (m_rules.rangeOperators.contains(token.word))
        frame.isInRange = true;
    if (!m_rules.connectives.contains(token.word))
        return false;
    return !std::exchange(frame.isInRange, false);
}

int KNSQLFormatPrinter::lineBeforeComment(qsizetype index) const
{
    const qsizetype next = behindComments(index);
    if (next < m_tokens.size() && m_tokens[next].startsStatement) {
        const qsizetype behind = behindComments(next + 1);
        KNSQLBlockIndent blocks = m_blocks;
        const int level =
            blocks.place(m_tokens[next], behind < m_tokens.size() ? &m_tokens[behind] : nullptr).level;
        return m_tokens[next].role == Role::End ? level + 1 : level;
    }
    const Frame &frame = m_frames.constLast();
    const bool hasClauses = frame.kind == Frame::Kind::Statement || frame.kind == Frame::Kind::Query;
    if (next >= m_tokens.size() || (hasClauses && m_clauses.begins(next, frame.lead)))
        return frame.level;
    return m_due ? *m_due : continuedLevel();
}

void KNSQLFormatPrinter::beginClause(qsizetype index)
{
    Frame &frame = m_frames.last();
    const Role role = m_tokens[index].role;
    const qsizetype end = m_clauses.endOf(index, frame.end, frame.lead);
    frame.isBroken = !fits(index, end, frame.level * m_style.indent);
    frame.itemLevel = role == Role::With ? frame.level : frame.level + 1;
    frame.isHead = frame.isBroken && role == Role::Select;
    frame.isInRange = false;
}

/// Enters parentheses or a CASE.
void KNSQLFormatPrinter::open(qsizetype index)
{
    const FormatToken &token = m_tokens[index];
    const qsizetype first = behindComments(index + 1);
    const Frame &outer = m_frames.constLast();
    Frame frame{.end = token.match,
                .level = m_lineLevel + 1,
                .itemLevel = m_lineLevel + 1,
                .endLevel = m_lineLevel,
                .lead = m_tokens[first].role};
    const bool isInline = outer.kind == Frame::Kind::Inline || m_frames.size() >= MostFrames ||
                          first == token.match || fits(index + 1, token.match + 1, m_column);
    frame.isBroken = !isInline;
    if (isInline)
        frame.kind = Frame::Kind::Inline;
    else if (token.role == Role::Case)
        frame.kind = Frame::Kind::Case;
    else
        frame.kind =
            frame.lead == Role::Select || frame.lead == Role::With ? Frame::Kind::Query : Frame::Kind::List;
    m_frames.append(frame);
    if (!isInline && token.role != Role::Case)
        m_due = frame.level;
}

void KNSQLFormatPrinter::noteComma()
{
    const Frame &frame = m_frames.constLast();
    const bool isItem = frame.isBroken && frame.kind != Frame::Kind::Case;
    if (isItem && !m_style.hasLeadingCommas && m_column > m_lineLevel * m_style.indent + 1)
        m_due = frame.itemLevel;
}

/// Whether the tokens from one up to the one before `end` can follow each other from a column on.
bool KNSQLFormatPrinter::fits(qsizetype from, qsizetype end, qsizetype column) const
{
    if (from >= end)
        return true;
    const FormatToken &first = m_tokens[from];
    const FormatToken &last = m_tokens[end - 1];
    const qsizetype length = last.inlineEnd - first.inlineEnd + first.text.size();
    const qsizetype breaks = last.hardBreaks - first.hardBreaks;
    return breaks == 0 && column + length <= m_style.width;
}

/// Whether the token and those that follow without a blank do not fit into the line, but into one of their
/// own.
bool KNSQLFormatPrinter::isTooLong(qsizetype index) const
{
    const FormatToken &token = m_tokens[index];
    if (!token.hasSpace || m_opensLine || m_column + 1 + token.text.size() <= m_style.width / 2)
        return false;
    qsizetype last = token.role != Role::Case && token.match >= 0 ? token.match : index;
    const qsizetype from = token.inlineEnd - token.text.size();
    while (last + 1 < m_tokens.size() && !m_tokens[last + 1].hasSpace &&
           m_tokens[last].inlineEnd - from <= m_style.width)
        last = m_tokens[last + 1].match >= 0 ? m_tokens[last + 1].match : last + 1;
    const qsizetype length = m_tokens[last].inlineEnd - from;
    if (m_column + 1 + length <= m_style.width)
        return false;
    const bool fitsAlone = continuedLevel() * m_style.indent + length <= m_style.width;
    return fitsAlone || m_column + 1 + token.text.size() > m_style.width;
}

/// The first token from this one on that is no comment, or the number of tokens.
qsizetype KNSQLFormatPrinter::behindComments(qsizetype index) const
{
    return m_solid[std::min(index, m_tokens.size())];
}

void KNSQLFormatPrinter::breakLine(int level, bool withBlankLine)
{
    m_output += m_lineEnd;
    if (withBlankLine)
        m_output += m_lineEnd;
    m_column = qsizetype(level) * m_style.indent;
    m_output += m_baseIndent + QString(m_column, u' ');
    m_lineLevel = level;
    m_opensLine = true;
}

void KNSQLFormatPrinter::append(const FormatToken &token)
{
    if (token.hasSpace && !m_opensLine) {
        m_output += u' ';
        ++m_column;
    }
    m_output += token.text;
    const qsizetype lineEnd = std::max(token.text.lastIndexOf(u'\n'), token.text.lastIndexOf(u'\r'));
    m_column = lineEnd < 0 ? m_column + token.text.size() : token.text.size() - lineEnd - 1;
    m_opensLine = false;
}
