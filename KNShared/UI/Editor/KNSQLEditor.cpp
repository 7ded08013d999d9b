#include "UI/Editor/KNSQLEditor.h"

#include "UI/Editor/KNEditorText.h"
#include "UI/Editor/KNPairTyping.h"
#include "UI/Editor/KNSQLLexer.h"
#include "UI/KNPreferences.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QShortcut>

#include <algorithm>

namespace {

constexpr int LineNumbers = 0; // margin numbers
constexpr int Marks = 1;
constexpr int Folds = 2;
constexpr int ErrorMarker = 1;
constexpr int ErrorIndicator = 8;

/// Scintilla's colour format is 0x00BBGGRR.
long scintillaColour(const QColor &colour)
{
    return colour.red() | colour.green() << 8 | colour.blue() << 16;
}

QsciScintilla::EolMode lineEndsOf(const QString &text)
{
    const qsizetype lineFeed = text.indexOf(u'\n');
    if (lineFeed < 0)
        return text.contains(u'\r') ? QsciScintilla::EolMac : QsciScintilla::EolUnix;
    return lineFeed > 0 && text[lineFeed - 1] == u'\r' ? QsciScintilla::EolWindows : QsciScintilla::EolUnix;
}

} // namespace

KNSQLEditor::KNSQLEditor(QWidget *parent)
    : QsciScintilla(parent)
    , m_lexer(new KNSQLLexer(this))
{
    setAccessibleName(tr("SQL editor"));
    configure();
    releaseKeys();
    addKeys();
    setLexer(m_lexer);
    applyPreferences();
    connect(this, &QsciScintilla::linesChanged, this, &KNSQLEditor::fitMargins);
    connect(this, &QsciScintillaBase::SCN_ZOOM, this, &KNSQLEditor::fitMargins);
    connect(this, &QsciScintilla::textChanged, this, &KNSQLEditor::clearErrorMarks);
    m_preferencesObserver = KNNotificationCenter::defaultCenter()->addObserver(
        KNPreferences::ChangedNotificationName,
        [this](const QString &, const QVariantMap &) { applyPreferences(); });
}

void KNSQLEditor::configure()
{
    setUtf8(true);
    setEolMode(EolUnix);
    setAutoIndent(true);
    setIndentationsUseTabs(true);
    setBackspaceUnindents(true);
    setBraceMatching(SloppyBraceMatch);
    setCaretLineVisible(true);
    setFolding(BoxedTreeFoldStyle, Folds);
    setMarginLineNumbers(LineNumbers, true);
    setMarginType(Marks, SymbolMargin);
    setMarginMarkerMask(Marks, 1 << ErrorMarker);
    markerDefine(RightTriangle, ErrorMarker);
    SendScintilla(SCI_INDICSETSTYLE, ErrorIndicator, static_cast<long>(INDIC_SQUIGGLE));
    SendScintilla(SCI_SETMULTIPLESELECTION, 1UL);
    SendScintilla(SCI_SETADDITIONALSELECTIONTYPING, 1UL);
    SendScintilla(SCI_SETMULTIPASTE, static_cast<unsigned long>(SC_MULTIPASTE_EACH));
    SendScintilla(SCI_SETRECTANGULARSELECTIONMODIFIER, static_cast<unsigned long>(SCMOD_ALT));
    SendScintilla(SCI_SETVIRTUALSPACEOPTIONS, static_cast<unsigned long>(SCVS_RECTANGULARSELECTION));
    SendScintilla(SCI_ALLOCATELINECHARACTERINDEX, static_cast<unsigned long>(SC_LINECHARACTERINDEX_UTF16));
    // As wide as the visible lines, so that a short text needs no scroll bar.
    SendScintilla(SCI_SETSCROLLWIDTHTRACKING, 1UL);
    SendScintilla(SCI_SETSCROLLWIDTH, 1UL);
}

/// Removes the component's bindings of keys that the program or this class uses.
void KNSQLEditor::releaseKeys()
{
    static const QKeySequence keys[] = {
        QKeySequence(Qt::Key_Escape),           QKeySequence(Qt::CTRL | Qt::Key_U),
        QKeySequence(Qt::CTRL | Qt::Key_Slash), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_U),
        QKeySequence(Qt::CTRL | Qt::Key_L),     QKeySequence(Qt::CTRL | Qt::Key_T),
        QKeySequence(Qt::CTRL | Qt::Key_D),     QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_L),
    };
    const auto commands = standardCommands()->commands();
    for (QsciCommand *const command : commands) {
        for (const QKeySequence &key : keys) {
            if (command->key() == key[0].toCombined())
                command->setKey(0);
            if (command->alternateKey() == key[0].toCombined())
                command->setAlternateKey(0);
        }
    }
}

void KNSQLEditor::addKeys()
{
    const auto add = [this](const QKeySequence &key, void (KNSQLEditor::*slot)()) {
        auto *const shortcut = new QShortcut(key, this);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, slot);
    };
    for (const int modifier : {int(Qt::CTRL), 0}) {
        add(QKeySequence(int(Qt::CTRL) | Qt::Key_K, modifier | Qt::Key_C), &KNSQLEditor::commentLines);
        add(QKeySequence(int(Qt::CTRL) | Qt::Key_K, modifier | Qt::Key_U), &KNSQLEditor::uncommentLines);
    }
}

void KNSQLEditor::setDialect(const SQLTokenizerOptions &options, const QStringList &keywords,
                             const QStringList &functions, const QStringList &dataTypes)
{
    m_tokenizerOptions = options;
    m_lexer->setDialect(options, keywords, functions, dataTypes);
    recolor();
}

QString KNSQLEditor::wholeText() const
{
    return KNEditorText::text(*this, 0, length());
}

void KNSQLEditor::setWholeText(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    setEolMode(lineEndsOf(text));
    SendScintilla(SCI_SETUNDOCOLLECTION, 0UL);
    SendScintilla(SCI_CLEARALL);
    SendScintilla(SCI_ADDTEXT, static_cast<unsigned long>(bytes.size()), bytes.constData());
    SendScintilla(SCI_SETUNDOCOLLECTION, 1UL);
    SendScintilla(SCI_EMPTYUNDOBUFFER);
    SendScintilla(SCI_GOTOPOS, 0UL);
    setModified(false);
}

KNRange KNSQLEditor::selectedRange() const
{
    const qsizetype start = locationOf(static_cast<int>(SendScintilla(SCI_GETSELECTIONSTART)));
    const qsizetype end = locationOf(static_cast<int>(SendScintilla(SCI_GETSELECTIONEND)));
    return {start, end - start};
}

void KNSQLEditor::selectRange(const KNRange &range)
{
    const int start = positionOf(range.location);
    const int end = positionOf(range.location + range.length);
    SendScintilla(SCI_ENSUREVISIBLEENFORCEPOLICY, SendScintilla(SCI_LINEFROMPOSITION, start));
    SendScintilla(SCI_SETSEL, start, end);
}

QString KNSQLEditor::textOfRange(const KNRange &range) const
{
    return KNEditorText::text(*this, positionOf(range.location), positionOf(range.location + range.length));
}

int KNSQLEditor::cursorLine() const
{
    return static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, SendScintilla(SCI_GETCURRENTPOS))) + 1;
}

int KNSQLEditor::cursorColumn() const
{
    const auto position = SendScintilla(SCI_GETCURRENTPOS);
    const auto begin = SendScintilla(SCI_POSITIONFROMLINE, SendScintilla(SCI_LINEFROMPOSITION, position));
    return static_cast<int>(SendScintilla(SCI_COUNTCODEUNITS, begin, position)) + 1;
}

QString KNSQLEditor::lineEndName() const
{
    switch (eolMode()) {
    case EolWindows:
        return QStringLiteral("CRLF");
    case EolMac:
        return QStringLiteral("CR");
    case EolUnix:
        break;
    }
    return QStringLiteral("LF");
}

QString KNSQLEditor::lineEnd() const
{
    switch (eolMode()) {
    case EolWindows:
        return QStringLiteral("\r\n");
    case EolMac:
        return QStringLiteral("\r");
    case EolUnix:
        break;
    }
    return QStringLiteral("\n");
}

void KNSQLEditor::replaceRanges(const QList<Replacement> &replacements)
{
    beginUndoAction();
    // Replace from the end, so that earlier positions stay valid.
    for (auto it = replacements.crbegin(); it != replacements.crend(); ++it) {
        const QByteArray bytes = it->text.toUtf8();
        SendScintilla(SCI_SETTARGETRANGE, positionOf(it->range.location),
                      positionOf(it->range.location + it->range.length));
        SendScintilla(SCI_REPLACETARGET, static_cast<unsigned long>(bytes.size()), bytes.constData());
    }
    endUndoAction();
}

void KNSQLEditor::insertText(const QString &text)
{
    const KNRange selection = selectedRange();
    replaceRanges({{selection, text}});
    selectRange({selection.location + text.size(), 0});
}

void KNSQLEditor::markError(const KNRange &range)
{
    const int start = positionOf(range.location);
    markErrorLine(static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, start)) + 1);
    SendScintilla(SCI_SETINDICATORCURRENT, static_cast<unsigned long>(ErrorIndicator));
    SendScintilla(SCI_INDICATORFILLRANGE, start, positionOf(range.location + range.length) - start);
    m_errorMarks.append(range);
}

void KNSQLEditor::markErrorLine(int line)
{
    constexpr long Marked = 1L << ErrorMarker;
    if ((SendScintilla(SCI_MARKERGET, line - 1) & Marked) == 0)
        markerAdd(line - 1, ErrorMarker);
    m_hasErrorMarks = true;
}

void KNSQLEditor::clearErrorMarks()
{
    if (!m_hasErrorMarks)
        return;
    m_hasErrorMarks = false;
    m_errorMarks.clear();
    markerDeleteAll(ErrorMarker);
    SendScintilla(SCI_SETINDICATORCURRENT, static_cast<unsigned long>(ErrorIndicator));
    SendScintilla(SCI_INDICATORCLEARRANGE, 0UL, static_cast<long>(length()));
}

QList<int> KNSQLEditor::errorLines() const
{
    const auto next = [this](long from) {
        return static_cast<int>(
            SendScintilla(SCI_MARKERNEXT, static_cast<unsigned long>(from), 1L << ErrorMarker));
    };
    QList<int> marked;
    for (int line = next(0); line >= 0; line = next(line + 1))
        marked.append(line + 1);
    return marked;
}

void KNSQLEditor::toggleComment()
{
    const auto [firstLine, lastLine] = selectedLines();
    bool allCommented = true;
    for (int line = firstLine; line <= lastLine; ++line) {
        const QString content = text(line).trimmed();
        allCommented = allCommented && (content.isEmpty() || content.startsWith(u"--"));
    }
    editLines(!allCommented);
}

void KNSQLEditor::commentLines()
{
    editLines(true);
}

void KNSQLEditor::uncommentLines()
{
    editLines(false);
}

KNSQLEditor::Lines KNSQLEditor::selectedLines() const
{
    const auto end = SendScintilla(SCI_GETSELECTIONEND);
    const int first =
        static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, SendScintilla(SCI_GETSELECTIONSTART)));
    const int last = static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, end));
    const bool isOnlyReached = last > first && SendScintilla(SCI_POSITIONFROMLINE, last) == end;
    return {first, isOnlyReached ? last - 1 : last};
}

KNSQLLineState KNSQLEditor::stateBefore(int line) const
{
    if (line == 0)
        return {};
    const auto begin = SendScintilla(SCI_POSITIONFROMLINE, line);
    const auto styled = SendScintilla(SCI_GETENDSTYLED);
    if (styled < begin)
        SendScintilla(SCI_COLOURISE, static_cast<unsigned long>(styled), begin);
    return KNSQLLineState::unpacked(static_cast<int>(SendScintilla(SCI_GETLINESTATE, line - 1)));
}

KNRange KNSQLEditor::rangeOfLines(const Lines &lines) const
{
    const qsizetype begin = locationOf(static_cast<int>(SendScintilla(SCI_POSITIONFROMLINE, lines.first)));
    const qsizetype end = locationOf(static_cast<int>(SendScintilla(SCI_GETLINEENDPOSITION, lines.last)));
    return {begin, end - begin};
}

void KNSQLEditor::editLines(bool comments)
{
    const auto [firstLine, lastLine] = selectedLines();
    QList<Replacement> replacements;
    for (int line = firstLine; line <= lastLine; ++line) {
        const qsizetype begin = locationOf(static_cast<int>(SendScintilla(SCI_GETLINEINDENTPOSITION, line)));
        const QString content = text(line).trimmed();
        if (comments && !content.isEmpty())
            replacements.append({{begin, 0}, QStringLiteral("-- ")});
        else if (!comments && content.startsWith(u"--"))
            replacements.append({{begin, content.startsWith(u"-- ") ? 3 : 2}, QString()});
    }
    replaceRanges(replacements);
}

void KNSQLEditor::goToLine(int line)
{
    const int index = std::clamp(line, 1, lines()) - 1;
    SendScintilla(SCI_ENSUREVISIBLEENFORCEPOLICY, static_cast<unsigned long>(index));
    SendScintilla(SCI_GOTOLINE, static_cast<unsigned long>(index));
    setFocus();
}

void KNSQLEditor::askForLine()
{
    auto *const dialog = new QInputDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Go to Line"));
    dialog->setLabelText(tr("Line (1 to %1):").arg(lines()));
    dialog->setInputMode(QInputDialog::IntInput);
    dialog->setIntRange(1, lines());
    dialog->setIntValue(cursorLine());
    connect(dialog, &QInputDialog::intValueSelected, this, &KNSQLEditor::goToLine);
    dialog->open();
}

void KNSQLEditor::resetZoom()
{
    zoomTo(0);
}

void KNSQLEditor::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *const menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const long position = isByKey ? SendScintilla(SCI_GETCURRENTPOS)
                                  : SendScintilla(SCI_POSITIONFROMPOINT, event->pos().x(), event->pos().y());
    Q_EMIT contextMenuAboutToShow(menu, locationOf(static_cast<int>(position)));
    menu->popup(event->globalPos());
}

bool KNSQLEditor::event(QEvent *event)
{
    if (event->type() != QEvent::ShortcutOverride || !isShortcutOfWindow(*static_cast<QKeyEvent *>(event)))
        return QsciScintilla::event(event);
    event->ignore();
    return true;
}

/// Shortcuts of the window, which the user can change, precede the component's own bindings.
bool KNSQLEditor::isShortcutOfWindow(const QKeyEvent &key) const
{
    if (!(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) && key.key() < Qt::Key_F1)
        return false;
    const QKeySequence pressed(key.keyCombination());
    const auto actions = window()->findChildren<QAction *>();
    return std::any_of(actions.begin(), actions.end(), [&](const QAction *action) {
        return action->isEnabled() && action->shortcuts().contains(pressed);
    });
}

void KNSQLEditor::changeEvent(QEvent *event)
{
    QsciScintilla::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyColours();
}

void KNSQLEditor::keyPressEvent(QKeyEvent *event)
{
    // Escape removes additional cursors; with one cursor the event is passed on.
    if (event->key() == Qt::Key_Escape && SendScintilla(SCI_GETSELECTIONS) > 1)
        SendScintilla(SCI_CANCEL);
    else if (event->key() == Qt::Key_Escape)
        event->ignore();
    else if (const auto type = [&] { QsciScintilla::keyPressEvent(event); };
             !KNPairTyping(*this, *event, type).perform())
        type();
}

void KNSQLEditor::applyPreferences()
{
    setTabWidth(KNPreferences::current().tabWidth);
    applyColours();
}

void KNSQLEditor::applyColours()
{
    const KNSQLColours colours = KNSQLColours::forPalette(palette());
    const QFont font = KNPreferences::current().editorFont;
    m_lexer->setColours(colours, font);
    setPaper(colours.background);
    setColor(colours.text);
    setCaretForegroundColor(colours.text);
    setCaretLineBackgroundColor(colours.currentLine);
    setSelectionBackgroundColor(colours.selection);
    resetSelectionForegroundColor();
    SendScintilla(SCI_SETSELFORE, 0UL, 0L);
    setMarginsFont(font);
    setMarginsForegroundColor(colours.lineNumber);
    setMarginsBackgroundColor(colours.margin);
    setFoldMarginColors(colours.margin, colours.margin);
    for (int marker = SC_MARKNUM_FOLDEREND; marker <= int(SC_MARKNUM_FOLDEROPEN); ++marker) {
        SendScintilla(SCI_MARKERSETFORE, static_cast<unsigned long>(marker), scintillaColour(colours.margin));
        SendScintilla(SCI_MARKERSETBACK, static_cast<unsigned long>(marker),
                      scintillaColour(colours.lineNumber));
    }
    setMatchedBraceBackgroundColor(colours.matchedBrace);
    setMatchedBraceForegroundColor(colours.text);
    setUnmatchedBraceBackgroundColor(colours.background);
    setUnmatchedBraceForegroundColor(colours.error);
    setMarkerBackgroundColor(colours.error, ErrorMarker);
    setMarkerForegroundColor(colours.error, ErrorMarker);
    SendScintilla(SCI_INDICSETFORE, ErrorIndicator, scintillaColour(colours.error));
    fitMargins();
}

void KNSQLEditor::fitMargins()
{
    const QString digits(std::max<qsizetype>(3, QString::number(lines()).size()), u'9');
    setMarginWidth(LineNumbers, u' ' + digits + u' ');
    const int lineHeight = static_cast<int>(SendScintilla(SCI_TEXTHEIGHT, 0UL));
    setMarginWidth(Marks, lineHeight * 3 / 4);
    setMarginWidth(Folds, lineHeight * 3 / 4);
    SendScintilla(SCI_SETMARGINLEFT, 0UL, static_cast<long>(lineHeight / 4)); // left of the text
}

int KNSQLEditor::positionOf(qsizetype location) const
{
    const auto line = SendScintilla(SCI_LINEFROMINDEXPOSITION, static_cast<unsigned long>(location),
                                    static_cast<long>(SC_LINECHARACTERINDEX_UTF16));
    const auto lineLocation = SendScintilla(SCI_INDEXPOSITIONFROMLINE, static_cast<unsigned long>(line),
                                            static_cast<long>(SC_LINECHARACTERINDEX_UTF16));
    const auto linePosition = SendScintilla(SCI_POSITIONFROMLINE, line);
    if (location <= lineLocation)
        return static_cast<int>(linePosition);
    // 0 if the text ends before.
    const auto position =
        SendScintilla(SCI_POSITIONRELATIVECODEUNITS, static_cast<unsigned long>(linePosition),
                      static_cast<long>(location - lineLocation));
    return position > 0 ? static_cast<int>(position) : length();
}

qsizetype KNSQLEditor::locationOf(int position) const
{
    const auto line = SendScintilla(SCI_LINEFROMPOSITION, position);
    const auto lineLocation = SendScintilla(SCI_INDEXPOSITIONFROMLINE, static_cast<unsigned long>(line),
                                            static_cast<long>(SC_LINECHARACTERINDEX_UTF16));
    return lineLocation + SendScintilla(SCI_COUNTCODEUNITS, SendScintilla(SCI_POSITIONFROMLINE, line),
                                        static_cast<long>(position));
}
