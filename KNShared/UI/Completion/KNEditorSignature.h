#pragma once

#include "Autocomplete/KNSignatureHelp.h"
#include "UI/Completion/KNEditorLanguage.h"

#include <QObject>

class KNSignaturePopup;

/// Shows how the function or procedure is called whose arguments are typed in an editor: behind "(" and ","
/// and behind the name of a procedure. Escape closes. Works on cached names only: a key press never waits
/// for the server. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorSignature : public QObject
{
    Q_OBJECT

public:
    /// The editor owns the object. Nothing is shown if the language is null. Made before KNEditorCompletion,
    /// so that Escape closes the list first.
    KNEditorSignature(KNSQLEditor *editor, std::shared_ptr<KNEditorLanguage> language);

    /// Visible or not; null before it was first shown.
    const KNSignaturePopup *popup() const { return m_popup; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isOpen() const;
    void characterAdded(int character);
    void update();
    void close();

    KNSQLEditor *const m_editor;
    const std::shared_ptr<KNEditorLanguage> m_language;
    KNSignaturePopup *m_popup = nullptr;
};
