#pragma once

#include "SQL/Scope/KNSQLRename.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>
#include <QRect>

#include <memory>

class KNEditorLanguage;
class KNRenameField;
class KNSQLEditor;

/// Renames the alias or variable at the cursor in its scope, as one undo step. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorRename : public QObject
{
    Q_OBJECT

public:
    /// The editor owns the object.
    explicit KNEditorRename(std::shared_ptr<KNEditorLanguage> language);

    /// Asks for the new name in a field at the cursor.
    void begin();

Q_SIGNALS:
    /// Nothing was done, for this reason.
    void refused(const QString &reason);

private:
    void close();
    void rename(const QString &typed);
    /// The new name as it is written; null with a reason if it cannot be used.
    QString written(const QString &typed, QString *problem) const;
    QRect lineOfCursor() const;

    const std::shared_ptr<KNEditorLanguage> m_language;
    KNSQLEditor *const m_editor;
    KNRenameField *m_field = nullptr;
    KNSQLRename m_rename;
};
