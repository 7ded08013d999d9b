#pragma once

#include "SQL/Scope/KNSQLRename.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

#include <functional>
#include <memory>

class KNRenameField;
class KNSQLEditor;
class VantorDBC;
struct KNSQLDialect;

/// Renames the alias or variable at the cursor in its scope, as one undo step. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorRename : public QObject
{
    Q_OBJECT

public:
    /// Returns the settings whose language the text has.
    using Settings = std::function<std::shared_ptr<const VantorDBC>()>;

    /// The editor owns the object.
    KNEditorRename(KNSQLEditor *editor, Settings settings);

    /// Asks for the new name in a field at the cursor.
    void begin();

Q_SIGNALS:
    /// Nothing was done, for this reason.
    void refused(const QString &reason);

private:
    const KNSQLDialect *dialect() const;
    void close();
    void rename(const QString &typed);
    /// The new name as it is written; null with a reason if it cannot be used.
    QString written(const QString &typed, QString *problem) const;
    QRect lineOfCursor() const;

    KNSQLEditor *const m_editor;
    const Settings m_settings;
    KNRenameField *m_field = nullptr;
    KNSQLRename m_rename;
};
