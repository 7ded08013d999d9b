#include "UI/Completion/KNEditorCompletion.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "UI/Completion/KNCompletionPopup.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"
#include "UI/Snippets/KNEditorSnippet.h"
#include "UI/Snippets/KNSnippetStore.h"

#include <QKeyEvent>
#include <QShortcut>

namespace {

constexpr qsizetype TypedBeforeOpening = 2; ///< characters of a name

} // namespace

KNEditorCompletion::KNEditorCompletion(KNSQLEditor *editor, std::shared_ptr<KNEditorLanguage> language)
    : QObject(editor)
    , m_editor(editor)
    , m_snippet(new KNEditorSnippet(editor))
    , m_language(std::move(language))
{
    if (!m_language)
        return;
    KNSnippetStore::forDialect(m_language->dialect()); // begins to read them
    editor->installEventFilter(this);
    connect(editor, &QsciScintillaBase::SCN_CHARADDED, this, &KNEditorCompletion::characterAdded);
    connect(editor, &KNSQLEditor::cursorPositionChanged, this, &KNEditorCompletion::cursorMoved);
    auto *const shortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Space), editor);
    shortcut->setContext(Qt::WidgetShortcut);
    connect(shortcut, &QShortcut::activated, this, &KNEditorCompletion::open);
    m_observer = KNNotificationCenter::defaultCenter()->addObserver(
        KNAutocompleteHelper::AutoCompleteUpdatedNotificationName,
        [this](const QString &, const QVariantMap &info) {
            namesChanged(info.value(KNAutocompleteHelper::ObjectKey).toString());
        });
}

KNEditorCompletion::~KNEditorCompletion() = default;

QList<KNCompletionItem> KNEditorCompletion::completions()
{
    if (!m_language)
        return {};
    const KNSQLTokens &tokens = m_language->tokens();
    m_scope = KNAnalyseSQLScope(tokens, m_editor->selectedRange().location);
    const auto catalog = m_language->catalog();
    const auto details = m_language->settings();
    const auto quotedName = [&](const QString &name) { return details->quotedName(name); };
    return KNCompletions({.tokens = tokens,
                          .scope = m_scope,
                          .catalog = catalog.get(),
                          .quotedName = quotedName,
                          .snippets = KNSnippetStore::forDialect(m_language->dialect()).snippets()});
}

void KNEditorCompletion::noteRun(const QString &text)
{
    if (!m_language)
        return;
    KNSQLTokens tokens(m_language->dialect());
    tokens.setText(text);
    for (qsizetype index = 0; index < tokens.size(); ++index) {
        const KNSQLRole role = tokens.at(index).role;
        const bool isRename = tokens.textAt(index).compare(u"sp_rename", Qt::CaseInsensitive) == 0;
        if (role != KNSQLRole::Create && role != KNSQLRole::Alter && role != KNSQLRole::Drop && !isRename)
            continue;
        const auto details = m_language->settings();
        details->sharedAutocompleteHelper()->requestEntriesForDatabaseConnectionDetails(*details, true);
        return;
    }
}

bool KNEditorCompletion::isOpen() const
{
    return m_popup && m_popup->isVisible();
}

void KNEditorCompletion::open()
{
    update(true);
}

void KNEditorCompletion::close()
{
    if (m_popup)
        m_popup->hide();
}

void KNEditorCompletion::characterAdded(int character)
{
    if (m_isAccepting || m_editor->isReadOnly())
        return;
    const bool opensAtOnce = character == '.' || character == '@';
    const QChar typed(character < 0x10000 ? static_cast<char16_t>(character) : u'a');
    const bool isName = typed.isLetterOrNumber() || typed == u'_' || typed == u'#' || typed == u'$';
    if (opensAtOnce || isName)
        update(false);
    else
        close();
}

/// Moving the cursor without typing closes the list when it leaves the name.
void KNEditorCompletion::cursorMoved()
{
    if (!isOpen() || m_isAccepting)
        return;
    const qsizetype caret = m_editor->selectedRange().location;
    if (caret < m_scope.replaceFrom || caret > m_scope.replaceTo + 1)
        close();
}

void KNEditorCompletion::update(bool isRequested)
{
    const bool hasSeveralCursors = m_editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS) > 1;
    if (!m_language || hasSeveralCursors || (!isRequested && !KNPreferences::current().completesWhileTyping))
        return close();
    m_isRequested = isRequested;
    QList<KNCompletionItem> items = completions();
    // The names behind a dot may be loaded only now.
    const bool awaitsNames = items.isEmpty() && !m_scope.qualifier.isEmpty();
    m_awaitingCaret = awaitsNames ? m_editor->selectedRange().location : -1;
    const bool isTyped = m_scope.prefix.size() >= TypedBeforeOpening || !m_scope.qualifier.isEmpty() ||
                         m_scope.prefix.startsWith(u'@');
    const bool isComplete = items.size() == 1 && items.first().text == m_scope.prefix;
    if (items.isEmpty() || (!isRequested && !isOpen() && !isTyped) || (!isRequested && isComplete))
        return close();
    if (!m_popup)
        m_popup = new KNCompletionPopup(m_editor);
    // Where a new name can stand, such as an alias, Return keeps what was typed.
    const bool choosesFirst = !m_scope.prefix.isEmpty() && m_scope.prefix != items.first().text &&
                              m_scope.expected != KNSQLExpected::Nothing;
    m_popup->showItems(std::move(items), m_language->lineOf(m_scope.replaceFrom), choosesFirst);
}

bool KNEditorCompletion::eventFilter(QObject *watched, QEvent *event)
{
    if (!isOpen())
        return QObject::eventFilter(watched, event);
    const auto modifiersOf = [&] { return static_cast<QKeyEvent *>(event)->modifiers(); };
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
            event->accept(); // before shortcuts of the window
            return true;
        }
        break;
    case QEvent::KeyPress:
        if ((modifiersOf() & ~Qt::KeypadModifier) == Qt::NoModifier &&
            handleKey(static_cast<QKeyEvent *>(event)->key()))
            return true;
        break;
    case QEvent::FocusOut:
    case QEvent::Hide:
    case QEvent::Wheel:
        close();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

bool KNEditorCompletion::handleKey(int key)
{
    constexpr int Page = 10;
    using Keys = KNPreferences::CompletionKeys;
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        m_popup->moveChoice(key == Qt::Key_Up ? -1 : 1);
        return true;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        m_popup->moveChoice(key == Qt::Key_PageUp ? -Page : Page);
        return true;
    case Qt::Key_Escape:
        close();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_popup->chosenRow() < 0 || KNPreferences::current().completionKeys == Keys::Tab) {
            close();
            return false;
        }
        accept(m_popup->items().at(m_popup->chosenRow()));
        return true;
    case Qt::Key_Tab:
        if (KNPreferences::current().completionKeys == Keys::Return) {
            close();
            return false;
        }
        accept(m_popup->items().at(std::max(0, m_popup->chosenRow())));
        return true;
    case Qt::Key_Backspace: {
        // The key reaches the editor first.
        const bool isNameLeft = !m_scope.prefix.isEmpty();
        QMetaObject::invokeMethod(
            this, [this, isNameLeft] { isNameLeft ? update(m_isRequested) : close(); }, Qt::QueuedConnection);
        return false;
    }
    default:
        return false;
    }
}

void KNEditorCompletion::accept(const KNCompletionItem &item)
{
    m_isAccepting = true;
    close();
    const bool isStar = item.kind == KNCompletionItem::Kind::Columns && m_scope.isBehindStar;
    qsizetype from = m_scope.replaceFrom;
    if (isStar) // the list replaces the star
        from = m_editor->wholeText().lastIndexOf(u'*', from - 1);
    const KNRange range{from, m_scope.replaceTo - from};
    const QString text = item.text;
    if (item.kind == KNCompletionItem::Kind::Snippet) {
        m_snippet->insert(range, text);
        m_isAccepting = false;
        return;
    }
    m_editor->replaceRanges({{range, text}});
    m_editor->selectRange({from + text.size(), 0});
    m_isAccepting = false;
}

void KNEditorCompletion::namesChanged(const QString &description)
{
    const bool isAwaited = m_editor->hasFocus() && m_awaitingCaret == m_editor->selectedRange().location;
    if (isAwaited || (isOpen() && m_language->settings()->description() == description))
        update(m_isRequested);
}
