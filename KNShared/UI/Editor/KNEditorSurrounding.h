#pragma once

#include "SQL/Scope/KNSQLDialect.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

#include <functional>
#include <memory>

class KNSQLEditor;
class VantorDBC;

/// Indents the selected lines, or that of the cursor, and puts lines of the connector's choice around them,
/// as one undo step. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorSurrounding : public QObject
{
    Q_OBJECT

public:
    /// Returns the settings whose language the text has.
    using Settings = std::function<std::shared_ptr<const VantorDBC>()>;

    /// The editor owns the object.
    KNEditorSurrounding(KNSQLEditor *editor, Settings settings);

    /// Shows a menu of the surroundings at the cursor; nothing if the language has none.
    void choose();

Q_SIGNALS:
    /// Nothing was done, for this reason.
    void refused(const QString &reason);

private:
    const KNSQLDialect *dialect() const;
    void surround(const KNSQLSurrounding &surrounding);
    QString indented(int line, const QString &text) const;

    KNSQLEditor *const m_editor;
    const Settings m_settings;
};
