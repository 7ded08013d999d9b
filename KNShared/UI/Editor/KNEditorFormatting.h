#pragma once

#include "Database/KNQueryDetails.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

#include <functional>
#include <memory>

class KNSQLEditor;
class VantorDBC;

/// Formats the text of an editor in the background, as one undo step. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorFormatting : public QObject
{
    Q_OBJECT

public:
    /// Returns the settings whose language the text has.
    using Settings = std::function<std::shared_ptr<const VantorDBC>()>;

    /// The editor owns the object.
    KNEditorFormatting(KNSQLEditor *editor, Settings settings);

    /// Formats the selection, or everything if nothing is selected, unless the text is edited meanwhile. The
    /// cursor stays at its token.
    void format();

private:
    void apply(const KNRange &part, const QString &formatted, bool isSelection);

    KNSQLEditor *const m_editor;
    const Settings m_settings;
    int m_generation = 0; ///< of the text
};
