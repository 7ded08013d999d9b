#pragma once

#include "Database/KNQueryDetails.h"
#include "UI/KNSharedUIExport.h"
#include "UI/Snippets/KNSnippetStops.h"

#include <QObject>

#include <optional>

class KNSQLEditor;

/// Inserts snippets into an editor and leads through their tab stops: Tab goes to the next one, Shift+Tab
/// back, Escape ends. Equal stops are edited together, by several cursors. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorSnippet : public QObject
{
    Q_OBJECT

public:
    /// The editor owns the object. Made before KNEditorCompletion, so that its keys come first.
    explicit KNEditorSnippet(KNSQLEditor *editor);

    /// Replaces a range of the text with a snippet, as one undo step, and selects its first stop.
    void insert(const KNRange &range, const QString &snippet);
    /// Whether Tab leads to another stop.
    bool isActive() const { return m_stops.has_value(); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool performKey(int key, Qt::KeyboardModifiers modifiers);
    void show();
    void end();
    void noteChange(int position, int kind, int length);
    void cursorMoved();

    KNSQLEditor *const m_editor;
    std::optional<KNSnippetStops> m_stops; ///< empty if no snippet is being filled in
};
