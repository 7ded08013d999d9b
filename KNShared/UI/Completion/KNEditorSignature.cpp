#include "UI/Completion/KNEditorSignature.h"

#include "UI/Completion/KNSignaturePopup.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"

#include <QKeyEvent>

KNEditorSignature::KNEditorSignature(KNSQLEditor *editor, std::shared_ptr<KNEditorLanguage> language)
    : QObject(editor)
    , m_editor(editor)
    , m_language(std::move(language))
{
    if (!m_language)
        return;
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
    const auto catalog = m_language->catalog();
    const auto help = KNSignatureAt(m_language->tokens(), m_editor->selectedRange().location, catalog.get());
    if (!help)
        return close();
    if (!m_popup)
        m_popup = new KNSignaturePopup(m_editor);
    m_popup->showSignature(help->signature, help->parameter, m_language->lineOf(help->begin));
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
