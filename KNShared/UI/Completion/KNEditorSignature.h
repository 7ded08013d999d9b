#pragma once

#include "Autocomplete/KNSignatureHelp.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

#include <functional>
#include <memory>

class KNSignaturePopup;
class KNSQLEditor;
class VantorDBC;

/// Shows how the function or procedure is called whose arguments are typed in an editor: behind "(" and ","
/// and behind the name of a procedure. Escape closes. Works on cached names only: a key press never waits
/// for the server. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorSignature : public QObject
{
    Q_OBJECT

public:
    /// Returns the settings of the tab's connection with its current database.
    using Settings = std::function<std::shared_ptr<const VantorDBC>()>;

    /// The editor owns the object. Made before KNEditorCompletion, so that Escape closes the list first.
    KNEditorSignature(KNSQLEditor *editor, Settings settings);

    /// Visible or not; null before it was first shown.
    const KNSignaturePopup *popup() const { return m_popup; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isOpen() const;
    void characterAdded(int character);
    void update();
    void close();
    QRect lineAt(qsizetype location) const;

    KNSQLEditor *const m_editor;
    const Settings m_settings;
    std::optional<KNSQLTokens> m_tokens; ///< empty if the server kind has no dialect
    KNSignaturePopup *m_popup = nullptr;
};
