#include "Desktop/Main/MainWindowActions.h"

#include "Desktop/Main/MainWindow.h"
#include "Desktop/Query/DatabaseBox.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/Editor/KNFindBar.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Icons/KNIcon.h"

#include <QApplication>
#include <QMenuBar>
#include <QToolBar>

namespace {

QKeySequence keys(const char *text)
{
    return QKeySequence(QString::fromLatin1(text));
}

/// Each by itself: a window that has something to ask keeps no other from closing.
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
    makeHelpMenu();
    makeToolBar();
}

QAction *MainWindowActions::action(const QString &name) const
{
    return m_actions.value(name);
}

QAction *MainWindowActions::add(QMenu *menu, const Description &description, std::function<void()> perform)
{
    QAction *const action = menu->addAction(tr(description.text), this, std::move(perform));
    action->setObjectName(QString::fromLatin1(description.name));
    action->setShortcuts(description.shortcuts);
    if (description.icon)
        action->setIcon(KNIcon::named(QString::fromLatin1(description.icon)));
    m_actions.insert(action->objectName(), action);
    return action;
}

QAction *MainWindowActions::addForTab(QMenu *menu, const Description &description,
                                      std::function<void(QueryTab &)> perform)
{
    QAction *const action = add(menu, description, [this, perform = std::move(perform)] {
        if (QueryTab *const tab = m_window.currentTab())
            perform(*tab);
    });
    m_forTab.append(action);
    return action;
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
    add(menu, {"newQuery", "&New Query", "query-new", {keys("Ctrl+N"), keys("Ctrl+T")}},
        [this] { m_window.newTab(); });
    add(menu, {"open", "&Open…", "document-open", {keys("Ctrl+O")}}, [this] { m_window.chooseFiles(); });
    addForTab(menu, {"save", "&Save", "document-save", {keys("Ctrl+S")}}, [](QueryTab &tab) { tab.save(); });
    addForTab(menu, {"saveAs", "Save &As…", nullptr, {keys("Ctrl+Shift+S")}},
              [](QueryTab &tab) { tab.saveAs(); });
    addForTab(menu, {"closeTab", "&Close Tab", nullptr, {keys("Ctrl+W")}},
              [this](QueryTab &tab) { m_window.closeTab(&tab); });
    menu->addSeparator();
    add(menu, {"connections", "Co&nnections…", "connection-new", {keys("Ctrl+Shift+N")}},
        [this] { Q_EMIT m_window.connectionsRequested(); });
    add(menu, {"disconnect", "&Disconnect", nullptr, {}}, [this] { m_window.close(); });
    menu->addSeparator();
    add(menu, {"preferences", "&Preferences…", "preferences", {keys("Ctrl+,")}},
        [this] { m_window.showPreferences(); });
    add(menu, {"quit", "&Quit", nullptr, {keys("Ctrl+Q")}}, [] { closeEveryWindow(); });
}

void MainWindowActions::makeEditMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&Edit"));
    const auto forEditor = [&](const Description &description, void (KNSQLEditor::*slot)()) {
        addForTab(menu, description, [slot](QueryTab &tab) { (tab.editor()->*slot)(); });
    };
    const auto forFindBar = [&](const Description &description, void (KNFindBar::*slot)()) {
        addForTab(menu, description, [slot](QueryTab &tab) { (tab.findBar()->*slot)(); });
    };
    addForFocus(menu, "undo", "&Undo\tCtrl+Z");
    addForFocus(menu, "redo", "&Redo\tCtrl+Y");
    menu->addSeparator();
    addForFocus(menu, "cut", "Cu&t\tCtrl+X");
    addForFocus(menu, "copy", "&Copy\tCtrl+C");
    addForFocus(menu, "paste", "&Paste\tCtrl+V");
    addForFocus(menu, "selectAll", "Select &All\tCtrl+A");
    menu->addSeparator();
    forFindBar({"find", "&Find…", "edit-find", {keys("Ctrl+F")}}, &KNFindBar::showFind);
    forFindBar({"replace", "R&eplace…", nullptr, {keys("Ctrl+H")}}, &KNFindBar::showReplace);
    forFindBar({"findNext", "Find &Next", nullptr, {keys("F3")}}, &KNFindBar::findNext);
    forFindBar({"findPrevious", "Find Pre&vious", nullptr, {keys("Shift+F3")}}, &KNFindBar::findPrevious);
    menu->addSeparator();
    forEditor({"toggleComment", "Toggle &Comment", "code-comment", {keys("Ctrl+/")}},
              &KNSQLEditor::toggleComment);
    forEditor({"comment", "C&omment Lines\tCtrl+K, C"}, &KNSQLEditor::commentLines);
    forEditor({"uncomment", "Uncomment &Lines\tCtrl+K, U"}, &KNSQLEditor::uncommentLines);
    forEditor({"goToLine", "&Go to Line…", nullptr, {keys("Ctrl+G")}}, &KNSQLEditor::askForLine);
}

void MainWindowActions::makeQueryMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&Query"));
    addForTab(
        menu,
        {"run", "&Run", "query-run", {keys("F5"), keys("Ctrl+Return"), keys("Ctrl+Enter"), keys("Ctrl+E")}},
        [](QueryTab &tab) { tab.run(); });
    addForTab(menu,
              {"runBatch",
               "Run &Batch at Cursor",
               "query-run-batch",
               {keys("Ctrl+Shift+Return"), keys("Ctrl+Shift+Enter")}},
              [](QueryTab &tab) { tab.runBatchAtCursor(); });
    addForTab(menu, {"cancel", "&Cancel", "query-cancel", {keys("Esc"), keys("Ctrl+."), keys("Alt+Pause")}},
              [](QueryTab &tab) { tab.cancel(); });
    menu->addSeparator();
    addForTab(menu, {"database", "Change &Database", nullptr, {keys("Ctrl+U")}}, [](QueryTab &tab) {
        tab.databaseBox()->setFocus(Qt::ShortcutFocusReason);
        tab.databaseBox()->showPopup();
    });
    add(menu, {"history", "&History…", "history", {keys("Ctrl+Shift+H")}},
        [this] { m_window.showHistory(); });
}

void MainWindowActions::makeViewMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&View"));
    add(menu, {"explorer", "&Object Explorer", "sidebar", {keys("F8")}},
        [this] { m_window.toggleExplorer(); });
    add(menu, {"searchObjects", "&Search Objects", "edit-find", {keys("Ctrl+Shift+O")}},
        [this] { m_window.searchObjects(); });
    add(menu, {"refresh", "&Refresh", "view-refresh", {keys("Ctrl+Shift+R")}},
        [this] { m_window.explorer()->refreshSelected(); });
    menu->addSeparator();
    addForTab(menu, {"results", "R&esults", nullptr, {keys("Ctrl+R")}},
              [](QueryTab &tab) { tab.toggleResults(); });
    addForTab(menu, {"nextPane", "Editor or &Results", nullptr, {keys("F6")}},
              [](QueryTab &tab) { tab.showNextPane(); });
    addForTab(menu, {"zoomIn", "Zoom &In", nullptr, {keys("Ctrl++"), keys("Ctrl+=")}},
              [](QueryTab &tab) { tab.editor()->zoomIn(); });
    addForTab(menu, {"zoomOut", "Zoom &Out", nullptr, {keys("Ctrl+-")}},
              [](QueryTab &tab) { tab.editor()->zoomOut(); });
    addForTab(menu, {"resetZoom", "&Actual Size", nullptr, {keys("Ctrl+0")}},
              [](QueryTab &tab) { tab.editor()->resetZoom(); });
    menu->addSeparator();
    add(menu, {"nextTab", "&Next Tab", nullptr, {keys("Ctrl+PgDown"), keys("Ctrl+Tab")}},
        [this] { m_window.showNeighbouringTab(1); });
    add(menu, {"previousTab", "&Previous Tab", nullptr, {keys("Ctrl+PgUp"), keys("Ctrl+Shift+Tab")}},
        [this] { m_window.showNeighbouringTab(-1); });
}

void MainWindowActions::makeHelpMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&Help"));
    add(menu, {"about", "&About Vantor", nullptr, {}}, [this] { m_window.showAbout(); });
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
    const QueryTab *const tab = m_window.currentTab();
    for (QAction *const action : std::as_const(m_forTab))
        action->setEnabled(tab != nullptr);
    const bool isRunning = tab && tab->isRunning();
    action(QStringLiteral("run"))->setEnabled(tab && !isRunning);
    action(QStringLiteral("runBatch"))->setEnabled(tab && !isRunning);
    action(QStringLiteral("cancel"))->setEnabled(isRunning);
}
