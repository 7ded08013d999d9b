#pragma once

#include "SQL/Scope/KNSQLDialect.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

#include <memory>

class KNEditorLanguage;
class KNSQLEditor;

/// Indents the selected lines, or that of the cursor, and puts lines of the connector's choice around them,
/// as one undo step. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorSurrounding : public QObject
{
    Q_OBJECT

public:
    /// The editor owns the object.
    explicit KNEditorSurrounding(std::shared_ptr<KNEditorLanguage> language);

    /// Shows a menu of the surroundings at the cursor; nothing if the language has none.
    void choose();

Q_SIGNALS:
    /// Nothing was done, for this reason.
    void refused(const QString &reason);

private:
    void surround(const KNSQLSurrounding &surrounding);
    QString indented(int line, const QString &text) const;

    const std::shared_ptr<KNEditorLanguage> m_language;
    KNSQLEditor *const m_editor;
};
