#pragma once

#include "Desktop/Preferences/ShortcutList.h"
#include "Foundation/KNNotificationCenter.h"
#include "UI/Workspace/KNDocumentAction.h"

#include <QAction>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

class MainWindow;
class QMenu;

/// The menus and the tool bar of a window. Document actions apply to the current document.
class MainWindowActions : public QObject
{
    Q_OBJECT

public:
    explicit MainWindowActions(MainWindow &window);

    /// Enables the actions that are available now.
    void update();
    /// The action with this object name, such as "run"; null if there is none.
    QAction *action(const QString &name) const;
    /// The shortcuts of all actions in the order of the menus.
    ShortcutList shortcuts() const { return ShortcutList(m_shortcuts); }

private:
    struct Description
    {
        const char *name;
        const char *text;
        const char *icon = nullptr;
        QList<QKeySequence> shortcuts = {};
    };

    QAction *add(QMenu *menu, const Description &description, std::function<void()> perform);
    /// Adds an action of the current document, disabled while that cannot perform it.
    void addForDocument(QMenu *menu, const Description &description, KNDocumentAction action);
    /// The same for a command of the text: its shortcuts work in the text only, because other widgets use
    /// the same keys.
    void addForText(QMenu *menu, const Description &description, KNDocumentAction action);
    void bindTextActions(QWidget *text);
    /// Adds an action on the focused widget, if that has this slot. Its shortcuts are those that the widget
    /// handles itself.
    void addForFocus(QMenu *menu, const char *slot, const char *text);
    void applyShortcuts();
    void makeFileMenu();
    void makeEditMenu();
    void makeTextMenu(QMenu *menu);
    void makeQueryMenu();
    void makeViewMenu();
    void makeToolsMenu();
    void makeHelpMenu();
    void makeToolBar();

    MainWindow &m_window;
    QHash<QString, QAction *> m_actions;
    QList<ShortcutEntry> m_shortcuts;
    KNNotificationCenter::Token m_shortcutsChanged;
    QList<std::pair<QAction *, KNDocumentAction>> m_forDocument;
    QList<QAction *> m_textActions;
    QPointer<QWidget> m_text; ///< the widget that has the text actions
    QAction *m_closeTab = nullptr;
    QAction *m_reopenClosed = nullptr;
    QAction *m_moveTab = nullptr;
};
