#pragma once

#include "Autocomplete/KNNameReference.h"
#include "Database/VantorDBC.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "UI/KNSharedUIExport.h"

#include <QRect>

#include <functional>

class KNSQLEditor;

/// An editor's text in the language of its server, and the names of its database. Shared by all that helps
/// with names in the editor, so that the text is read once. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorLanguage
{
public:
    /// Returns the settings of the tab's connection with its current database.
    using Settings = std::function<std::shared_ptr<const VantorDBC>()>;

    /// Null if the server kind has no completion. The editor must outlive the object.
    static std::shared_ptr<KNEditorLanguage> create(KNSQLEditor *editor, Settings settings);

    KNSQLEditor *editor() const { return m_editor; }
    /// Of the current text.
    const KNSQLTokens &tokens();
    const KNSQLDialect &dialect() const { return m_tokens.dialect(); }
    std::shared_ptr<const VantorDBC> settings() const { return m_settings(); }
    /// The names that are known by now; null if none are. Asks for those that are missing.
    KNNameReference::Catalog catalog() const;
    /// The meaning of the name at a position (UTF-16 units).
    std::optional<KNNameReference> referenceAt(qsizetype location);

    /// The place on the screen of a position in the line of the caret, and of that line.
    QRect lineOf(qsizetype location) const;
    /// The position (UTF-16 units) at a point of the viewport; -1 if no character is there.
    qsizetype locationAt(const QPoint &point) const;

private:
    KNEditorLanguage(KNSQLEditor *editor, Settings settings, const KNSQLDialect &dialect);

    KNSQLEditor *const m_editor;
    const Settings m_settings;
    KNSQLTokens m_tokens;
};
