#pragma once

#include "Autocomplete/KNCompletionList.h"
#include "Foundation/KNNotificationCenter.h"
#include "UI/Completion/KNEditorLanguage.h"

#include <QObject>

class KNCompletionPopup;
class KNEditorSnippet;

/// Completes names in an editor: while typing, behind a dot and behind "@", and by Ctrl+Space. Return and Tab
/// accept, or one of them as the preferences say; Escape closes. Works on cached names only: a key press
/// never waits for the server. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorCompletion : public QObject
{
    Q_OBJECT

public:
    /// The editor owns the object. Nothing is completed if the language is null.
    KNEditorCompletion(KNSQLEditor *editor, std::shared_ptr<KNEditorLanguage> language);
    ~KNEditorCompletion() override;

    /// The list, visible or not; null before it was first opened.
    const KNCompletionPopup *popup() const { return m_popup; }
    /// The entries for the caret, best first.
    QList<KNCompletionItem> completions();
    /// Loads the names anew if the text that was run may have changed them.
    void noteRun(const QString &text);

public Q_SLOTS:
    /// Opens the list for the caret, or updates it.
    void open();
    void close();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void characterAdded(int character);
    void cursorMoved();
    void update(bool isRequested);
    bool handleKey(int key);
    void accept(const KNCompletionItem &item);
    bool isOpen() const;
    void namesChanged(const QString &description);

    KNSQLEditor *const m_editor;
    KNEditorSnippet *const m_snippet;
    const std::shared_ptr<KNEditorLanguage> m_language; ///< null if the server kind has no completion
    KNSQLScope m_scope;
    KNCompletionPopup *m_popup = nullptr;
    bool m_isAccepting = false;
    bool m_isRequested = false;     ///< by Ctrl+Space
    qsizetype m_awaitingCaret = -1; ///< where no name was known behind a dot; -1 elsewhere
    KNNotificationCenter::Token m_observer;
};
