#pragma once

#include "UI/Workspace/KNDocumentAction.h"

#include <QObject>

#include <memory>

class KNEditorFormatting;
class KNEditorLanguage;
class KNEditorNames;
class KNEditorRename;
class KNEditorSurrounding;

/// The commands of a query's editor that know the language of its text. The window shows why one did nothing.
/// On the UI thread.
class EditorCommands : public QObject
{
    Q_OBJECT

public:
    /// The editor owns the object.
    explicit EditorCommands(const std::shared_ptr<KNEditorLanguage> &language);

    /// False if the action is none of these commands.
    bool perform(KNDocumentAction action);

private:
    KNEditorFormatting *const m_formatting;
    KNEditorSurrounding *const m_surrounding;
    KNEditorRename *const m_rename;
    KNEditorNames *const m_names;
};
