#include "UI/Editor/KNSQLLexer.h"

#include "UI/Editor/KNEditorText.h"
#include "UI/Editor/KNSQLLineState.h"

#include <vector>

namespace {

bool isWord(QStringView text, const char *word)
{
    return text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

bool isAnyOf(QStringView text, std::initializer_list<const char *> words)
{
    return std::any_of(words.begin(), words.end(), [&](const char *word) { return isWord(text, word); });
}

KNSQLLineState::Piece pieceOf(SQLTokenKind kind)
{
    switch (kind) {
    case SQLTokenKind::String:
        return KNSQLLineState::String;
    case SQLTokenKind::QuotedIdentifier:
        return KNSQLLineState::QuotedName;
    case SQLTokenKind::BracketedIdentifier:
        return KNSQLLineState::BracketedName;
    case SQLTokenKind::BlockComment:
        return KNSQLLineState::Comment;
    default:
        return KNSQLLineState::Nothing;
    }
}

} // namespace

/// Processes the tokens of some lines and sets each line's state and fold level.
class KNSQLLexer::Lines
{
public:
    Lines(QsciScintilla &editor, int firstLine, const KNSQLLineState &before)
        : m_editor(editor)
        , m_line(firstLine)
        , m_state(before)
        , m_foldAtStart(before.foldDepth())
        , m_lowestFold(m_foldAtStart)
        , m_position(editor.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, firstLine))
    {
        findNextLine();
    }

    /// Adds a token; its first `skipped` units are not in the editor.
    void add(const SQLToken &token, qsizetype skipped, qsizetype bytes)
    {
        count(token);
        const KNSQLLineState::Piece piece = pieceOf(token.kind);
        if (m_position + bytes < m_nextLine && piece != KNSQLLineState::Comment) {
            m_position += bytes;
            return;
        }
        // An unterminated token continues in the next lines.
        const bool isOpen =
            piece != KNSQLLineState::Nothing && (token.text.endsWith(u'\n') || token.text.endsWith(u'\r'));
        int depth = 0;
        for (qsizetype i = 0; i < token.length; ++i) {
            if (piece == KNSQLLineState::Comment && i + 1 < token.length) {
                const char16_t first = token.text[i].unicode();
                const char16_t second = token.text[i + 1].unicode();
                const int change = first == u'/' && second == u'*'   ? 1
                                   : first == u'*' && second == u'/' ? -1
                                                                     : 0;
                if (change != 0) {
                    depth += change;
                    m_position += (i >= skipped) + (i + 1 >= skipped);
                    ++i;
                    m_lowestFold = std::min(m_lowestFold, m_state.blockDepth + (depth > 0));
                    continue;
                }
            }
            if (i < skipped)
                continue;
            m_position += KNEditorText::utf8Length(token.text[i]);
            if (m_position == m_nextLine && m_nextLine > 0)
                close(isOpen || i + 1 < token.length ? piece : KNSQLLineState::Nothing, depth);
        }
    }

    /// Ends the last line, which may have no line end.
    void finish(qsizetype end)
    {
        if (m_position == end && m_nextLine == NoLine)
            close(KNSQLLineState::Nothing, 0);
    }

private:
    static constexpr qsizetype NoLine = std::numeric_limits<int>::max();
    enum class Bracket { None, Begin, End, Case };

    void findNextLine()
    {
        const auto next = m_line + 1 < m_editor.lines()
                              ? m_editor.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, m_line + 1)
                              : NoLine;
        m_nextLine = next;
    }

    void count(const SQLToken &token)
    {
        if (token.kind == SQLTokenKind::Whitespace || token.kind == SQLTokenKind::LineComment ||
            token.kind == SQLTokenKind::BlockComment)
            return;
        const bool word = token.kind == SQLTokenKind::Word;
        resolve(word ? token.text : QStringView());
        if (!word || token.length < 3 || token.length > 5)
            return;
        m_bracket = isWord(token.text, "BEGIN")  ? Bracket::Begin
                    : isWord(token.text, "END")  ? Bracket::End
                    : isWord(token.text, "CASE") ? Bracket::Case
                                                 : Bracket::None;
    }

    /// Classifies a BEGIN or END by the next token on its line: BEGIN TRAN opens no block.
    void resolve(QStringView next)
    {
        const Bracket bracket = std::exchange(m_bracket, Bracket::None);
        if (bracket == Bracket::None ||
            (bracket == Bracket::Begin &&
             isAnyOf(next, {"TRAN", "TRANSACTION", "DISTRIBUTED", "DIALOG", "CONVERSATION"})) ||
            (bracket == Bracket::End && isWord(next, "CONVERSATION")))
            return;
        m_state.blockDepth = std::max(0, m_state.blockDepth + (bracket == Bracket::End ? -1 : 1));
        m_lowestFold = std::min(m_lowestFold, m_state.blockDepth);
    }

    void close(KNSQLLineState::Piece piece, int commentDepth)
    {
        resolve({});
        m_state.piece = piece;
        m_state.commentDepth = piece == KNSQLLineState::Comment ? commentDepth : 0;
        m_editor.SendScintilla(QsciScintillaBase::SCI_SETLINESTATE, m_line, m_state.packed());
        const int fold = m_state.foldDepth();
        int level =
            QsciScintillaBase::SC_FOLDLEVELBASE + (fold > m_lowestFold ? m_lowestFold : m_foldAtStart);
        if (fold > m_lowestFold)
            level |= QsciScintillaBase::SC_FOLDLEVELHEADERFLAG;
        if (m_editor.SendScintilla(QsciScintillaBase::SCI_GETFOLDLEVEL, m_line) != level)
            m_editor.SendScintilla(QsciScintillaBase::SCI_SETFOLDLEVEL, m_line, level);
        m_foldAtStart = m_lowestFold = fold;
        ++m_line;
        findNextLine();
    }

    QsciScintilla &m_editor;
    int m_line;
    KNSQLLineState m_state;
    int m_foldAtStart;
    int m_lowestFold; ///< of the line so far
    qsizetype m_position;
    qsizetype m_nextLine = 0;
    Bracket m_bracket = Bracket::None;
};

KNSQLLexer::KNSQLLexer(QObject *parent)
    : QsciLexerCustom(parent)
{
}

void KNSQLLexer::setDialect(const SQLTokenizerOptions &options, const QStringList &keywords,
                            const QStringList &functions, const QStringList &dataTypes)
{
    m_options = options;
    const auto upper = [](const QStringList &words) {
        QSet<QString> set;
        for (const QString &word : words)
            set.insert(word.toUpper());
        return set;
    };
    m_keywords = upper(keywords);
    m_functions = upper(functions);
    m_dataTypes = upper(dataTypes);
}

void KNSQLLexer::setColours(const KNSQLColours &colours, const QFont &font)
{
    const QColor byStyle[StyleCount] = {
        colours.text,   colours.keyword, colours.function, colours.type,       colours.string,
        colours.number, colours.comment, colours.variable, colours.quotedName, colours.text};
    setDefaultColor(colours.text);
    setDefaultPaper(colours.background);
    setDefaultFont(font);
    for (int style = 0; style < StyleCount; ++style) {
        QFont styleFont = font;
        styleFont.setBold(style == Keyword);
        styleFont.setItalic(style == Comment);
        setColor(byStyle[style], style);
        setPaper(colours.background, style);
        setFont(styleFont, style);
    }
}

QString KNSQLLexer::description(int style) const
{
    static const char *const names[StyleCount] = {"Text",   "Keyword", "Function", "Data type",   "String",
                                                  "Number", "Comment", "Variable", "Quoted name", "Operator"};
    return style >= 0 && style < StyleCount ? QString::fromLatin1(names[style]) : QString();
}

const char *KNSQLLexer::wordCharacters() const
{
    return "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_@#$";
}

void KNSQLLexer::styleText(int start, int end)
{
    QsciScintilla &scintilla = *editor();
    const auto ask = [&](unsigned message, long argument) {
        return static_cast<int>(scintilla.SendScintilla(message, argument));
    };
    const int firstLine = ask(QsciScintillaBase::SCI_LINEFROMPOSITION, start);
    const int lastLine = ask(QsciScintillaBase::SCI_LINEFROMPOSITION, std::max(start, end - 1));
    if (lastLine + 1 < scintilla.lines())
        end = ask(QsciScintillaBase::SCI_POSITIONFROMLINE, lastLine + 1);
    else
        end = scintilla.length();

    const auto before =
        firstLine > 0 ? KNSQLLineState::unpacked(ask(QsciScintillaBase::SCI_GETLINESTATE, firstLine - 1))
                      : KNSQLLineState();
    const QString opening = before.opening();
    const QString text = opening + KNEditorText::text(scintilla, start, end);
    Lines lines(scintilla, firstLine, before);
    std::vector<char> styles;
    styles.reserve(static_cast<std::size_t>(end - start));
    SQLMetadataTokenizer tokenizer(text, m_options);
    for (SQLToken token{}; tokenizer.next(&token);) {
        const qsizetype skipped = std::clamp(opening.size() - token.location, qsizetype(0), token.length);
        const qsizetype bytes = KNEditorText::utf8Length(token.text.mid(skipped));
        styles.insert(styles.end(), static_cast<std::size_t>(bytes), static_cast<char>(styleOf(token, text)));
        lines.add(token, skipped, bytes);
    }
    lines.finish(end);
    startStyling(start);
    scintilla.SendScintilla(QsciScintillaBase::SCI_SETSTYLINGEX, static_cast<unsigned long>(styles.size()),
                            styles.data());
}

KNSQLLexer::Style KNSQLLexer::styleOf(const SQLToken &token, QStringView text) const
{
    switch (token.kind) {
    case SQLTokenKind::LineComment:
    case SQLTokenKind::BlockComment:
        return Comment;
    case SQLTokenKind::String:
        return String;
    case SQLTokenKind::QuotedIdentifier:
    case SQLTokenKind::BracketedIdentifier:
        return QuotedName;
    case SQLTokenKind::Number:
        return Number;
    case SQLTokenKind::Operator:
        return Operator;
    case SQLTokenKind::Variable:
        return token.text.startsWith(u"@@") && m_functions.contains(token.text.toString().toUpper())
                   ? Function
                   : Variable;
    case SQLTokenKind::Word:
        return styleOfWord(token, text);
    case SQLTokenKind::Whitespace:
        break;
    }
    return Text;
}

KNSQLLexer::Style KNSQLLexer::styleOfWord(const SQLToken &token, QStringView text) const
{
    const QString word = token.text.toString().toUpper();
    if (m_functions.contains(word)) {
        qsizetype behind = token.location + token.length;
        while (behind < text.size() && (text[behind] == u' ' || text[behind] == u'\t'))
            ++behind;
        if (behind < text.size() && text[behind] == u'(')
            return Function;
    }
    if (m_dataTypes.contains(word))
        return DataType;
    return m_keywords.contains(word) ? Keyword : Text;
}
