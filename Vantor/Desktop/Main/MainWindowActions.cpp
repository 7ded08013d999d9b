#include "Desktop/Main/MainWindowActions.h"

#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Main/MainWindow.h"
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
        [this] { m_window.newQuery(); });
    add(menu, {"open", "&Open…", "document-open", {keys("Ctrl+O")}}, [this] { m_window.chooseFiles(); });
    addForDocument(menu, {"save", "&Save", "document-save", {keys("Ctrl+S")}}, KNDocumentAction::Save);
    addForDocument(menu, {"saveAs", "Save &As…", nullptr, {keys("Ctrl+Shift+S")}}, KNDocumentAction::SaveAs);
    m_closeTab = add(menu, {"closeTab", "&Close Tab", nullptr, {keys("Ctrl+W")}}, [this] {
        if (KNDocumentTab *const document = m_window.currentDocument())
            m_window.tabs()->closeDocument(document);
    });
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
    addForFocus(menu, "undo", "&Undo\tCtrl+Z");
    addForFocus(menu, "redo", "&Redo\tCtrl+Y");
    menu->addSeparator();
    addForFocus(menu, "cut", "Cu&t\tCtrl+X");
    addForFocus(menu, "copy", "&Copy\tCtrl+C");
    addForFocus(menu, "paste", "&Paste\tCtrl+V");
    addForFocus(menu, "selectAll", "Select &All\tCtrl+A");
    menu->addSeparator();
    using Action = KNDocumentAction;
    addForDocument(menu, {"find", "&Find…", "edit-find", {keys("Ctrl+F")}}, Action::Find);
    addForDocument(menu, {"replace", "R&eplace…", nullptr, {keys("Ctrl+H")}}, Action::Replace);
    addForDocument(menu, {"findNext", "Find &Next", nullptr, {keys("F3")}}, Action::FindNext);
    addForDocument(menu, {"findPrevious", "Find Pre&vious", nullptr, {keys("Shift+F3")}},
                   Action::FindPrevious);
    menu->addSeparator();
    addForDocument(menu, {"toggleComment", "Toggle &Comment", "code-comment", {keys("Ctrl+/")}},
                   Action::ToggleComment);
    addForDocument(menu, {"comment", "C&omment Lines\tCtrl+K, C"}, Action::CommentLines);
    addForDocument(menu, {"uncomment", "Uncomment &Lines\tCtrl+K, U"}, Action::UncommentLines);
    addForDocument(menu, {"goToLine", "&Go to Line…", nullptr, {keys("Ctrl+G")}}, Action::GoToLine);
}

void MainWindowActions::makeQueryMenu()
{
    QMenu *const menu = m_window.menuBar()->addMenu(tr("&Query"));
    addForDocument(
        menu,
        {"run", "&Run", "query-run", {keys("F5"), keys("Ctrl+Return"), keys("Ctrl+Enter"), keys("Ctrl+E")}},
        KNDocumentAction::Execute);
    addForDocument(menu,
                   {"runBatch",
                    "Run &Batch at Cursor",
                    "query-run-batch",
                    {keys("Ctrl+Shift+Return"), keys("Ctrl+Shift+Enter")}},
                   KNDocumentAction::ExecuteBatch);
    addForDocument(menu,
                   {"cancel", "&Cancel", "query-cancel", {keys("Esc"), keys("Ctrl+."), keys("Alt+Pause")}},
                   KNDocumentAction::Cancel);
    menu->addSeparator();
    addForDocument(menu, {"database", "Change &Database", nullptr, {keys("Ctrl+U")}},
                   KNDocumentAction::ChangeDatabase);
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
    using Action = KNDocumentAction;
    addForDocument(menu, {"results", "R&esults", nullptr, {keys("Ctrl+R")}}, Action::ToggleResults);
    addForDocument(menu, {"nextPane", "Editor or &Results", nullptr, {keys("F6")}}, Action::ShowNextPane);
    addForDocument(menu, {"zoomIn", "Zoom &In", nullptr, {keys("Ctrl++"), keys("Ctrl+=")}}, Action::ZoomIn);
    addForDocument(menu, {"zoomOut", "Zoom &Out", nullptr, {keys("Ctrl+-")}}, Action::ZoomOut);
    addForDocument(menu, {"resetZoom", "&Actual Size", nullptr, {keys("Ctrl+0")}}, Action::ResetZoom);
    menu->addSeparator();
    add(menu, {"nextTab", "&Next Tab", nullptr, {keys("Ctrl+PgDown"), keys("Ctrl+Tab")}},
        [this] { m_window.tabs()->showAdjacent(1); });
    add(menu, {"previousTab", "&Previous Tab", nullptr, {keys("Ctrl+PgUp"), keys("Ctrl+Shift+Tab")}},
        [this] { m_window.tabs()->showAdjacent(-1); });
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
    const KNDocumentTab *const document = m_window.currentDocument();
    m_closeTab->setEnabled(document != nullptr);
    for (const auto &[item, action] : m_forDocument)
        item->setEnabled(document && document->canPerform(action));
}
