#include "UI/Editor/KNPairTyping.h"

#include "UI/Editor/KNEditorText.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"

#include <QKeyEvent>

struct KNPairTyping::Pair
{
    char opening;
    char closing;
};

/// The token at a position, and its text before it.
struct KNPairTyping::Context
{
    SQLTokenKind kind;
    QString before;

    bool isCode() const
    {
        return kind != SQLTokenKind::LineComment && kind != SQLTokenKind::BlockComment &&
               kind != SQLTokenKind::String && kind != SQLTokenKind::QuotedIdentifier &&
               kind != SQLTokenKind::BracketedIdentifier;
    }
};

namespace {

bool isPartOfWord(char byte)
{
    const auto code = static_cast<unsigned char>(byte);
    return code >= 0x80 || (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
           (code >= 'a' && code <= 'z') || code == '_' || code == '@' || code == '#' || code == '$';
}

} // namespace

KNPairTyping::KNPairTyping(KNSQLEditor &editor, const QKeyEvent &key, std::function<void()> type)
    : m_editor(editor)
    , m_key(key)
    , m_type(std::move(type))
    , m_caret(editor.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS))
{
}

bool KNPairTyping::perform()
{
    const bool isBackspace = m_key.key() == Qt::Key_Backspace && m_key.modifiers() == Qt::NoModifier;
    const Pair *const pair = pairOf(m_key);
    if ((!isBackspace && !pair) || m_editor.isReadOnly() ||
        m_editor.SendScintilla(QsciScintillaBase::SCI_GETOVERTYPE) ||
        m_editor.SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS) > 1 ||
        m_editor.SendScintilla(QsciScintillaBase::SCI_SELECTIONISRECTANGLE) ||
        !KNPreferences::current().closesPairs)
        return false;
    if (m_editor.selectedRange().length > 0)
        return pair && m_key.text() == QChar::fromLatin1(pair->opening) && wrap(*pair);
    if (isBackspace)
        return removeEmptyPair();
    return (m_key.text() == QChar::fromLatin1(pair->closing) && typeClosing(pair->closing)) ||
           (m_key.text() == QChar::fromLatin1(pair->opening) && typeOpening(*pair));
}

/// The pair to which the typed character belongs; null if there is none.
const KNPairTyping::Pair *KNPairTyping::pairOf(const QKeyEvent &key)
{
    static constexpr Pair Pairs[] = {{'(', ')'}, {'[', ']'}, {'\'', '\''}};
    const bool isCommand = key.modifiers().testFlag(Qt::ControlModifier) !=
                           key.modifiers().testFlag(Qt::AltModifier); // both are AltGr
    for (const Pair &pair : Pairs) {
        if (!isCommand &&
            (key.text() == QChar::fromLatin1(pair.opening) || key.text() == QChar::fromLatin1(pair.closing)))
            return &pair;
    }
    return nullptr;
}

/// Reads the line up to the position. An element that is open there contains a blank put behind it.
KNPairTyping::Context KNPairTyping::contextAt(long position) const
{
    const auto line =
        static_cast<int>(m_editor.SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, position));
    const auto begin = m_editor.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, line);
    const QString text =
        m_editor.stateBefore(line).opening() + KNEditorText::text(m_editor, begin, position) + u' ';
    const QList<SQLToken> tokens = SQLMetadataTokenizer::tokenize(text, m_editor.tokenizerOptions());
    return {tokens.last().kind, tokens.last().text.chopped(1).toString()};
}

/// Types the character instead of the one behind the cursor.
bool KNPairTyping::typeClosing(char closing)
{
    if (byteAt(m_caret) != closing)
        return false;
    const Context context = contextAt(m_caret);
    const bool closes = closing == ')'   ? context.isCode()
                        : closing == ']' ? context.kind == SQLTokenKind::BracketedIdentifier
                                         : context.kind == SQLTokenKind::String;
    if (!closes)
        return false;
    m_editor.beginUndoAction();
    m_editor.SendScintilla(QsciScintillaBase::SCI_DELETERANGE, static_cast<unsigned long>(m_caret), 1L);
    m_type();
    m_editor.endUndoAction();
    return true;
}

bool KNPairTyping::typeOpening(const Pair &pair)
{
    if (isPartOfWord(byteAt(m_caret)) || !contextAt(m_caret).isCode())
        return false;
    m_editor.beginUndoAction();
    m_type();
    const auto caret = m_editor.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    if (caret == m_caret + 1 && byteAt(m_caret) == pair.opening)
        m_editor.SendScintilla(QsciScintillaBase::SCI_INSERTTEXT, static_cast<unsigned long>(caret),
                               QByteArray(1, pair.closing).constData());
    m_editor.endUndoAction();
    return true;
}

bool KNPairTyping::wrap(const Pair &pair)
{
    if (!contextAt(m_editor.SendScintilla(QsciScintillaBase::SCI_GETSELECTIONSTART)).isCode())
        return false;
    const KNRange selection = m_editor.selectedRange();
    m_editor.replaceRanges(
        {{{selection.location, 0}, QString(QChar::fromLatin1(pair.opening))},
         {{selection.location + selection.length, 0}, QString(QChar::fromLatin1(pair.closing))}});
    m_editor.selectRange({selection.location + 1, selection.length});
    return true;
}

bool KNPairTyping::removeEmptyPair()
{
    if (m_caret == 0)
        return false;
    const char before = byteAt(m_caret - 1);
    const char behind = byteAt(m_caret);
    const bool isRound = before == '(' && behind == ')';
    if (!isRound && !(before == '[' && behind == ']') && !(before == '\'' && behind == '\''))
        return false;
    const Context context = contextAt(m_caret);
    const bool isEmpty = isRound         ? context.isCode()
                         : before == '[' ? context.kind == SQLTokenKind::BracketedIdentifier &&
                                               context.before == QStringLiteral("[")
                                         : context.kind == SQLTokenKind::String &&
                                               context.before.indexOf(u'\'') == context.before.size() - 1;
    if (!isEmpty)
        return false;
    m_editor.SendScintilla(QsciScintillaBase::SCI_DELETERANGE, static_cast<unsigned long>(m_caret - 1), 2L);
    return true;
}

char KNPairTyping::byteAt(long position) const
{
    return static_cast<char>(m_editor.SendScintilla(QsciScintillaBase::SCI_GETCHARAT, position));
}
