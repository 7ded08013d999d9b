#pragma once

#include "UI/Workspace/KNDocumentAction.h"

#include <QObject>

#include <functional>
#include <memory>

class KNEditorFormatting;
class KNEditorRename;
class KNEditorSurrounding;
class KNSQLEditor;
class VantorDBC;

/// The commands of a query's editor that know the language of its text. On the UI thread.
class EditorCommands : public QObject
{
    Q_OBJECT

public:
    using Settings = std::function<std::shared_ptr<const VantorDBC>()>;

    /// The editor owns the object.
    EditorCommands(KNSQLEditor *editor, const Settings &settings);

    /// False if the action is none of these commands.
    bool perform(KNDocumentAction action);
    /// Why the last command did nothing; null once the cursor has moved.
    const QString &note() const { return m_note; }

Q_SIGNALS:
    void noteChanged();

private:
    void setNote(const QString &note);

    KNEditorFormatting *const m_formatting;
    KNEditorSurrounding *const m_surrounding;
    KNEditorRename *const m_rename;
    QString m_note;
};
