#pragma once

#include "UI/Completion/KNEditorLanguage.h"
#include "UI/Workspace/KNDocumentAction.h"

#include <QObject>
#include <QPoint>

class KNQueryLoader;
class QMenu;

/// Commands for the name at an editor's cursor: its definition (also by Ctrl+click), and its columns and
/// keys. Both open in the window's workspace once they are loaded. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorNames : public QObject
{
    Q_OBJECT

public:
    /// The editor owns the object.
    explicit KNEditorNames(std::shared_ptr<KNEditorLanguage> language);

    /// False if the action is none about names.
    bool perform(KNDocumentAction action);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    using Loader = std::shared_ptr<KNQueryLoader>;
    using Create = Loader (VantorDBC::*)(const QStringList &) const;

    void addToMenu(QMenu *menu, qsizetype location);
    void goToDefinition(qsizetype location);
    void showColumns(qsizetype location);
    void open(const KNNameReference &reference, Create create, bool executes);
    void reload();
    void showNotice(const QString &text) const;

    const std::shared_ptr<KNEditorLanguage> m_language;
    KNSQLEditor *const m_editor;
    qsizetype m_pressed = -1; ///< the position that Ctrl+click goes to when the button is released
};
