#include "Desktop/Main/MainWindowActions.h"

#include "Desktop/Import/ImportActions.h"
#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Main/RecentFiles.h"
#include "Desktop/Scripts/ScriptActions.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/Icons/KNIcon.h"

#include <QApplication>
#include <QMenuBar>
#include <QToolBar>

namespace {

QKeySequence keys(const char *text)
{
    return QKeySequence(QString::fromLatin1(text));
}

/// Closes each window separately: one that asks a question does not keep others from closing.
void closeEveryWindow()
{
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && !window->parentWidget())
            window->close();
    }
}

} // namespace

MainWindowActions::MainWindowActions(MainWindow &window)
    : QObject(&window)
    , m_window(window)
{
    makeFileMenu();
    makeEditMenu();
    makeQueryMenu();
    makeViewMenu();
    makeToolsMenu();
    makeHelpMenu();
    makeToolBar();
    applyShortcuts();
    m_shortcutsChanged = KNNotificationCenter::defaultCenter()->addObserver(
        ShortcutList::ChangedNotificationName,
        [this](const QString &, const QVariantMap &) { applyShortcuts(); });
}

void MainWindowActions::applyShortcuts()
{
    for (ShortcutEntry &entry : m_shortcuts) {
        if (entry.isFixed)
            continue;
        entry.shortcuts = ShortcutList::stored(entry.name, entry.defaults);
        m_actions.value(entry.name)->setShortcuts(entry.shortcuts);
    }
}

QAction *MainWindowActions::action(const QString &name) const
{
    return m_actions.value(name);
}

QAction *MainWindowActions::add(QMenu *menu, const Description &description, std::function<void()> perform)
{
    QAction *const action = menu->addAction(tr(description.text), this, std::move(perform));
    action->setObjectName(QString::fromLatin1(description.name));
    const QString title = action->text().remove(QLatin1Char('&'));
    const QKeySequence fixed(title.section(QLatin1Char('\t'), 1), QKeySequence::NativeText);
    const QList<QKeySequence> defaults = fixed.isEmpty() ? description.shortcuts : QList<QKeySequence>{fixed};
    m_shortcuts.append({action->objectName(), menu->title().remove(QLatin1Char('&')),
                        title.section(QLatin1Char('\t'), 0, 0).remove(QStringLiteral("…")), defaults,
                        defaults, !fixed.isEmpty()});
    if (description.icon)
        action->setIcon(KNIcon::named(QString::fromLatin1(description.icon)));
    m_actions.insert(action->objectName(), action);
    return action;
}

void MainWindowActions::addForDocument(QMenu *menu, const Description &description, KNDocumentAction action)
{
    m_forDocument.append({add(menu, description,
                              [this, action] {
                                  KNDocumentTab *const document = m_window.currentDocument();
                                  if (document && document->canPerform(action))
                                      document->perform(action);
                              }),
                          action});
}

void MainWindowActions::addForText(QMenu *menu, const Description &description, KNDocumentAction action)
{
    addForDocument(menu, description, action);
    m_textActions.append(m_forDocument.last().first);
    m_textActions.last()->setShortcutContext(Qt::WidgetShortcut);
}

void MainWindowActions::bindTextActions(QWidget *text)
{
    if (text == m_text)
        return;
    for (QAction *const action : std::as_const(m_textActions)) {
        if (m_text)
            m_text->removeAction(action);
        if (text)
            text->addAction(action);
    }
    m_text = text;
}

void MainWindowActions::addForFocus(QMenu *menu, const char *slot, const char *text)
{
    add(menu, {slot, text}, [slot] {
        QWidget *const focus = QApplication::focusWidget();
        const QByteArray signature = QByteArray(slot) + "()";
        if (focus && focus->metaObject()->indexOfMethod(signature) >= 0)
            QMetaObject::invokeMethod(focus, slot);
    });
}

void MainWindowActions::makeFileMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&File"));
    add(menu, {"newQuery", QT_TR_NOOP("&New Query"), "query-new", {keys("Ctrl+N"), keys("Ctrl+T")}},
        [this] { m_window.newQuery(); });
    add(menu, {"open", QT_TR_NOOP("&Open…"), "document-open", {keys("Ctrl+O")}},
        [this] { m_window.chooseFiles(); });
    auto *const recent = new RecentFiles(this);
    recent->show(menu->addMenu(tr("Open &Recent")));
    connect(recent, &RecentFiles::openRequested, &m_window,
            [this](const QString &path) { m_window.openFiles({path}); });
    addForDocument(menu, {"save", QT_TR_NOOP("&Save"), "document-save", {keys("Ctrl+S")}},
                   KNDocumentAction::Save);
    addForDocument(menu, {"saveAs", QT_TR_NOOP("Save &As…"), nullptr, {keys("Ctrl+Shift+S")}},
                   KNDocumentAction::SaveAs);
    m_closeTab = add(menu, {"closeTab", QT_TR_NOOP("&Close Tab"), nullptr, {keys("Ctrl+W")}}, [this] {
        if (KNDocumentTab *const document = m_window.currentDocument())
            m_window.tabs()->closeDocument(document);
    });
    m_moveTab = add(menu, {"moveTab", QT_TR_NOOP("&Move Tab to New Window")},
                    [this] { Q_EMIT m_window.newWindowRequested(m_window.currentDocument()); });
    m_reopenClosed =
        add(menu, {"reopenClosed", QT_TR_NOOP("Reopen C&losed Tab"), nullptr, {keys("Ctrl+Shift+T")}},
            [this] { m_window.reopenClosedDocument(); });
    menu->addSeparator();
    add(menu, {"import", QT_TR_NOOP("&Import…"), nullptr, {}}, [this] { m_window.imports()->import(); });
    menu->addSeparator();
    add(menu, {"connections", QT_TR_NOOP("Co&nnections…"), "connection-new", {keys("Ctrl+Shift+N")}},
        [this] { Q_EMIT m_window.connectionsRequested(); });
    add(menu, {"disconnect", QT_TR_NOOP("&Disconnect"), nullptr, {}},
        [this] { m_window.disconnectFromServer(); });
    menu->addSeparator();
    add(menu, {"preferences", QT_TR_NOOP("&Preferences…"), "preferences", {keys("Ctrl+,")}},
        [this] { m_window.showPreferences(); });
    add(menu, {"quit", QT_TR_NOOP("&Quit"), nullptr, {keys("Ctrl+Q")}}, [] { closeEveryWindow(); });
}

void MainWindowActions::makeEditMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&Edit"));
    addForFocus(menu, "undo", QT_TR_NOOP("&Undo\tCtrl+Z"));
    addForFocus(menu, "redo", QT_TR_NOOP("&Redo\tCtrl+Y"));
    menu->addSeparator();
    addForFocus(menu, "cut", QT_TR_NOOP("Cu&t\tCtrl+X"));
    addForFocus(menu, "copy", QT_TR_NOOP("&Copy\tCtrl+C"));
    addForFocus(menu, "paste", QT_TR_NOOP("&Paste\tCtrl+V"));
    addForFocus(menu, "selectAll", QT_TR_NOOP("Select &All\tCtrl+A"));
    menu->addSeparator();
    using Action = KNDocumentAction;
    addForDocument(menu, {"find", QT_TR_NOOP("&Find…"), "edit-find", {keys("Ctrl+F")}}, Action::Find);
    addForDocument(menu, {"replace", QT_TR_NOOP("R&eplace…"), nullptr, {keys("Ctrl+H")}}, Action::Replace);
    addForDocument(menu, {"findNext", QT_TR_NOOP("Find &Next"), nullptr, {keys("F3")}}, Action::FindNext);
    addForDocument(menu, {"findPrevious", QT_TR_NOOP("Find Pre&vious"), nullptr, {keys("Shift+F3")}},
                   Action::FindPrevious);
    menu->addSeparator();
    addForDocument(menu, {"toggleComment", QT_TR_NOOP("Toggle &Comment"), "code-comment", {keys("Ctrl+/")}},
                   Action::ToggleComment);
    addForDocument(menu, {"comment", QT_TR_NOOP("C&omment Lines\tCtrl+K, C")}, Action::CommentLines);
    addForDocument(menu, {"uncomment", QT_TR_NOOP("Uncomment &Lines\tCtrl+K, U")}, Action::UncommentLines);
    addForDocument(menu, {"format", QT_TR_NOOP("For&mat"), nullptr, {keys("Ctrl+K, Ctrl+D")}},
                   Action::Format);
    makeTextMenu(menu->addMenu(tr("Te&xt")));
    addForDocument(menu, {"goToLine", QT_TR_NOOP("&Go to Line…"), nullptr, {keys("Ctrl+G")}},
                   Action::GoToLine);
    addForDocument(menu, {"definition", QT_TR_NOOP("Go to &Definition"), nullptr, {keys("F12")}},
                   Action::GoToDefinition);
    addForDocument(menu, {"columns", QT_TR_NOOP("Sho&w Columns and Keys"), nullptr, {keys("Alt+F1")}},
                   Action::ShowColumns);
}

void MainWindowActions::makeTextMenu(QMenu *menu)
{
    using Action = KNDocumentAction;
    addForText(menu, {"upperCase", QT_TR_NOOP("&UPPER CASE"), nullptr, {keys("Ctrl+Shift+U")}},
               Action::UpperCase);
    addForText(menu, {"lowerCase", QT_TR_NOOP("&lower case"), nullptr, {keys("Ctrl+Shift+L")}},
               Action::LowerCase);
    menu->addSeparator();
    addForText(menu, {"moveLinesUp", QT_TR_NOOP("&Move Lines Up"), nullptr, {keys("Alt+Up")}},
               Action::MoveLinesUp);
    addForText(menu, {"moveLinesDown", QT_TR_NOOP("Move Lines Do&wn"), nullptr, {keys("Alt+Down")}},
               Action::MoveLinesDown);
    addForText(menu, {"duplicate", QT_TR_NOOP("&Duplicate"), nullptr, {keys("Ctrl+D")}}, Action::Duplicate);
    menu->addSeparator();
    addForText(menu, {"surround", QT_TR_NOOP("&Surround With…"), nullptr, {keys("Ctrl+K, Ctrl+S")}},
               Action::Surround);
    addForText(menu, {"rename", QT_TR_NOOP("&Rename…"), nullptr, {keys("F2")}}, Action::Rename);
}

void MainWindowActions::makeQueryMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&Query"));
    addForDocument(menu,
                   {"run",
                    QT_TR_NOOP("&Run"),
                    "query-run",
                    {keys("F5"), keys("Ctrl+Return"), keys("Ctrl+Enter"), keys("Ctrl+E")}},
                   KNDocumentAction::Execute);
    addForDocument(menu,
                   {"runBatch",
                    QT_TR_NOOP("Run &Batch at Cursor"),
                    "query-run-batch",
                    {keys("Ctrl+Shift+Return"), keys("Ctrl+Shift+Enter")}},
                   KNDocumentAction::ExecuteBatch);
    addForDocument(menu, {"parse", QT_TR_NOOP("&Parse"), nullptr, {keys("Ctrl+F5")}},
                   KNDocumentAction::Parse);
    addForDocument(
        menu,
        {"cancel", QT_TR_NOOP("&Cancel"), "query-cancel", {keys("Esc"), keys("Ctrl+."), keys("Alt+Pause")}},
        KNDocumentAction::Cancel);
    menu->addSeparator();
    addForDocument(menu, {"commit", QT_TR_NOOP("C&ommit Transaction")}, KNDocumentAction::Commit);
    addForDocument(menu, {"rollback", QT_TR_NOOP("Ro&ll Back Transaction")}, KNDocumentAction::Rollback);
    addForDocument(menu, {"reconnect", QT_TR_NOOP("R&econnect")}, KNDocumentAction::Reconnect);
    menu->addSeparator();
    addForDocument(menu, {"database", QT_TR_NOOP("Change &Database"), nullptr, {keys("Ctrl+U")}},
                   KNDocumentAction::ChangeDatabase);
    addForDocument(menu, {"reloadNames", QT_TR_NOOP("Reload &Names"), nullptr, {keys("Ctrl+K, Ctrl+R")}},
                   KNDocumentAction::ReloadNames);
    add(menu, {"history", QT_TR_NOOP("&History…"), "history", {keys("Ctrl+Shift+H")}},
        [this] { m_window.showHistory(); });
}

void MainWindowActions::makeViewMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&View"));
    add(menu, {"explorer", QT_TR_NOOP("&Object Explorer"), "sidebar", {keys("F8")}},
        [this] { m_window.toggleExplorer(); });
    add(menu, {"searchObjects", QT_TR_NOOP("&Search Objects"), "edit-find", {keys("Ctrl+Shift+O")}},
        [this] { m_window.searchObjects(); });
    add(menu, {"refresh", QT_TR_NOOP("&Refresh"), "view-refresh", {keys("Ctrl+Shift+R")}},
        [this] { m_window.explorer()->refreshSelected(); });
    menu->addSeparator();
    using Action = KNDocumentAction;
    addForDocument(menu, {"results", QT_TR_NOOP("R&esults"), nullptr, {keys("Ctrl+R")}},
                   Action::ToggleResults);
    addForDocument(menu, {"nextPane", QT_TR_NOOP("Editor or &Results"), nullptr, {keys("F6")}},
                   Action::ShowNextPane);
    addForDocument(menu, {"zoomIn", QT_TR_NOOP("Zoom &In"), nullptr, {keys("Ctrl++"), keys("Ctrl+=")}},
                   Action::ZoomIn);
    addForDocument(menu, {"zoomOut", QT_TR_NOOP("Zoom &Out"), nullptr, {keys("Ctrl+-")}}, Action::ZoomOut);
    addForDocument(menu, {"resetZoom", QT_TR_NOOP("&Actual Size"), nullptr, {keys("Ctrl+0")}},
                   Action::ResetZoom);
    menu->addSeparator();
    add(menu, {"nextTab", QT_TR_NOOP("&Next Tab"), nullptr, {keys("Ctrl+PgDown")}},
        [this] { m_window.tabs()->showAdjacent(1); });
    add(menu, {"previousTab", QT_TR_NOOP("&Previous Tab"), nullptr, {keys("Ctrl+PgUp")}},
        [this] { m_window.tabs()->showAdjacent(-1); });
    add(menu, {"lastUsedTab", QT_TR_NOOP("&Last Used Tab"), nullptr, {keys("Ctrl+Tab")}},
        [this] { m_window.tabs()->showRecent(1); });
    add(menu, {"firstUsedTab", QT_TR_NOOP("Least Recently &Used Tab"), nullptr, {keys("Ctrl+Shift+Tab")}},
        [this] { m_window.tabs()->showRecent(-1); });
}

void MainWindowActions::makeToolsMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&Tools"));
    add(menu, {"generateScripts", QT_TR_NOOP("&Generate Scripts…"), nullptr, {}},
        [this] { ScriptActions::generate(m_window, m_window.currentDocument()); });
}

void MainWindowActions::makeHelpMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&Help"));
    add(menu, {"shortcuts", QT_TR_NOOP("&Keyboard Shortcuts…"), nullptr, {keys("Ctrl+F1")}},
        [this] { m_window.showShortcuts(); });
    add(menu, {"about", QT_TR_NOOP("&About Vantor"), nullptr, {}}, [this] { m_window.showAbout(); });
}

void MainWindowActions::makeToolBar()
{
    QToolBar *const bar = m_window.addToolBar(tr("Tools"));
    bar->setObjectName(QStringLiteral("tools"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    for (const char *const name :
         {"newQuery", "open", "save", "", "run", "runBatch", "cancel", "", "history", "refresh"}) {
        if (QAction *const known = action(QString::fromLatin1(name)))
            bar->addAction(known);
        else
            bar->addSeparator();
    }
}

void MainWindowActions::update()
{
    const KNDocumentTab *const document = m_window.currentDocument();
    m_closeTab->setEnabled(document != nullptr);
    m_moveTab->setEnabled(document && m_window.tabs()->canMove(*document));
    m_reopenClosed->setEnabled(m_window.tabs()->hasClosedDocuments());
    bindTextActions(document ? document->focusProxy() : nullptr);
    for (const auto &[item, action] : m_forDocument)
        item->setEnabled(document && document->canPerform(action));
}
