#include "UI/Completion/KNEditorSignature.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Autocomplete/KNCompletionCatalog.h"
#include "Database/VantorDBC.h"
#include "UI/Completion/KNSignaturePopup.h"
#include "UI/Editor/KNEditorText.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"

#include <QKeyEvent>

KNEditorSignature::KNEditorSignature(KNSQLEditor *editor, Settings settings)
    : QObject(editor)
    , m_editor(editor)
    , m_settings(std::move(settings))
{
    const auto details = m_settings();
    KNAutocompleteHelper *const helper = details ? details->sharedAutocompleteHelper() : nullptr;
    if (!helper || !helper->dialect())
        return;
    m_tokens.emplace(*helper->dialect());
    editor->installEventFilter(this);
    connect(editor, &QsciScintillaBase::SCN_CHARADDED, this, &KNEditorSignature::characterAdded);
    connect(editor, &KNSQLEditor::cursorPositionChanged, this, [this] {
        if (isOpen())
            update();
    });
}

bool KNEditorSignature::isOpen() const
{
    return m_popup && m_popup->isVisible();
}

void KNEditorSignature::close()
{
    if (m_popup)
        m_popup->hide();
}

void KNEditorSignature::characterAdded(int character)
{
    const bool opens = character == '(' || character == ',' || character == ' ';
    const bool isOffered = !m_editor->isReadOnly() && KNPreferences::current().completesWhileTyping;
    if (isOpen() || (opens && isOffered))
        update();
}

void KNEditorSignature::update()
{
    m_tokens->setText(m_editor->wholeText());
    const auto details = m_settings();
    const auto catalog = details->sharedAutocompleteHelper()->catalogForConnection(*details);
    const auto help = KNSignatureAt(*m_tokens, m_editor->selectedRange().location, catalog.get());
    if (!help)
        return close();
    if (!m_popup)
        m_popup = new KNSignaturePopup(m_editor);
    m_popup->showSignature(help->signature, help->parameter, lineAt(help->begin));
}

/// The place of a position on the screen, in the line of the caret.
QRect KNEditorSignature::lineAt(qsizetype location) const
{
    const auto caret = m_editor->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const KNRange typed{location, m_editor->selectedRange().location - location};
    const auto begin = caret - static_cast<long>(KNEditorText::utf8Length(m_editor->textOfRange(typed)));
    const auto x = m_editor->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, begin);
    const auto y = m_editor->SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0UL, caret);
    const auto height = m_editor->SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL);
    const QPoint corner = m_editor->viewport()->mapToGlobal(QPoint(static_cast<int>(x), static_cast<int>(y)));
    return {corner, QSize(1, static_cast<int>(height))};
}

bool KNEditorSignature::eventFilter(QObject *watched, QEvent *event)
{
    if (!isOpen())
        return QObject::eventFilter(watched, event);
    const auto isEscape = [event] { return static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape; };
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (isEscape()) {
            event->accept(); // before shortcuts of the window
            return true;
        }
        break;
    case QEvent::KeyPress:
        if (isEscape()) {
            close();
            return true;
        }
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
