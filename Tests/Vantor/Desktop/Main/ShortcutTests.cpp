#include "Desktop/Main/MainWindow.h"
#include "Desktop/Main/MainWindowActions.h"
#include "Desktop/Preferences/ShortcutsDialog.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QDialogButtonBox>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QTreeWidget>

namespace {

using Keys = QList<QKeySequence>;

QKeySequence keys(const char *text)
{
    return QKeySequence(QString::fromLatin1(text), QKeySequence::PortableText);
}

ShortcutEntry entry(const char *name, const Keys &defaults, bool isFixed = false)
{
    return {QString::fromLatin1(name),
            QStringLiteral("File"),
            QString::fromLatin1(name),
            defaults,
            ShortcutList::stored(QString::fromLatin1(name), defaults),
            isFixed};
}

ShortcutList someList()
{
    return ShortcutList({entry("a", {keys("F5"), keys("Ctrl+E")}), entry("b", {keys("Ctrl+K, C")}),
                         entry("fixed", {keys("Ctrl+C")}, true)});
}

/// A window and the dialog of its shortcuts.
class Shortcuts : public testing::Test
{
protected:
    Shortcuts()
    {
        RecordingAlerts::install();
        window = new MainWindow(*DesktopTesting::settingsFor(SampleServerFixture::shared()));
        window->show();
        window->activateWindow();
    }
    ~Shortcuts() override
    {
        ShortcutList list = window->actions()->shortcuts();
        list.restoreDefaults();
        list.save();
        delete window;
        EXPECT_TRUE(WindowTesting::settle());
    }
    QAction *action(const char *name) const { return window->actions()->action(QString::fromLatin1(name)); }
    void open()
    {
        action("shortcuts")->trigger();
        dialog = window->findChild<ShortcutsDialog *>();
        ASSERT_NE(dialog, nullptr);
    }
    QTreeWidgetItem *item(const char *title) const
    {
        return dialog->findChild<QTreeWidget *>()
            ->findItems(QString::fromLatin1(title), Qt::MatchExactly | Qt::MatchRecursive)
            .value(0);
    }
    void choose(const char *title) { dialog->findChild<QTreeWidget *>()->setCurrentItem(item(title)); }
    QPushButton *button(const char *title) const
    {
        for (QPushButton *const found : dialog->findChildren<QPushButton *>()) {
            if (found->text().remove(QLatin1Char('&')) == QLatin1String(title))
                return found;
        }
        return nullptr;
    }
    void enter(const char *text) { dialog->findChild<QKeySequenceEdit *>()->setKeySequence(keys(text)); }
    QString note() const
    {
        for (const QLabel *const label : dialog->findChildren<QLabel *>()) {
            if (label->accessibleName() == QStringLiteral("Note"))
                return label->text();
        }
        return {};
    }

    MainWindow *window;
    QPointer<ShortcutsDialog> dialog;
};

} // namespace

TEST(ShortcutLists, FindConflictsAlsoOfKeysThatBeginOthers)
{
    const ShortcutList list = someList();
    EXPECT_EQ(list.conflict(keys("Ctrl+E"), 1), 0);
    EXPECT_EQ(list.conflict(keys("Ctrl+E"), 0), -1);
    EXPECT_EQ(list.conflict(keys("Ctrl+K"), 0), 1);
    EXPECT_EQ(list.conflict(keys("F9"), 0), -1);
    EXPECT_EQ(list.conflict(QKeySequence(), 0), -1);
}

TEST(ShortcutLists, TakeKeysFromOtherActionsUnlessThoseAreFixed)
{
    ShortcutList list = someList();
    EXPECT_TRUE(list.add(1, keys("F5")));
    EXPECT_EQ(list.entries()[0].shortcuts, Keys{keys("Ctrl+E")});
    EXPECT_EQ(list.entries()[1].shortcuts, (Keys{keys("Ctrl+K, C"), keys("F5")}));
    EXPECT_FALSE(list.add(1, keys("Ctrl+C")));
    EXPECT_FALSE(list.add(2, keys("F9")));
    list.clear(2);
    EXPECT_EQ(list.entries()[2].shortcuts, Keys{keys("Ctrl+C")});
}

TEST(ShortcutLists, AreStoredWhereTheyDifferFromTheDefaults)
{
    ShortcutList list = someList();
    list.add(0, keys("F9"));
    list.clear(1);
    list.save();
    EXPECT_EQ(someList().entries()[0].shortcuts, (Keys{keys("F5"), keys("Ctrl+E"), keys("F9")}));
    EXPECT_EQ(someList().entries()[1].shortcuts, Keys());
    list.restoreDefaults();
    list.save();
    EXPECT_EQ(someList().entries()[1].shortcuts, Keys{keys("Ctrl+K, C")});
}

TEST_F(Shortcuts, OfEveryActionAreListed)
{
    open();
    QStringList missing;
    for (const QAction *const menu : window->menuBar()->actions()) {
        for (const QAction *const listed : menu->menu()->actions()) {
            const QString title = listed->text().remove(QLatin1Char('&')).remove(QStringLiteral("…"));
            if (!listed->isSeparator() && !listed->menu() &&
                !item(qPrintable(title.section(QLatin1Char('\t'), 0, 0))))
                missing.append(title);
        }
    }
    EXPECT_EQ(missing, QStringList());
    EXPECT_EQ(item("Save")->text(1), QStringLiteral("Ctrl+S"));
    EXPECT_EQ(item("Comment Lines")->text(1), QStringLiteral("Ctrl+K, C"));
    EXPECT_EQ(WindowTesting::namelessWidgets(*dialog), QStringList());
}

TEST_F(Shortcuts, ThatTheUserChangesWorkAtOnceAndAreKept)
{
    open();
    choose("Save");
    enter("F9");
    EXPECT_EQ(note(), QString());
    button("Add")->click();
    EXPECT_EQ(item("Save")->text(1), QStringLiteral("Ctrl+S   F9"));
    EXPECT_EQ(action("save")->shortcuts(), Keys{keys("Ctrl+S")}) << "not before the dialog is accepted";
    dialog->accept();
    EXPECT_EQ(action("save")->shortcuts(), (Keys{keys("Ctrl+S"), keys("F9")}));
    MainWindow other(*window->databaseConnectionDetails());
    other.setAttribute(Qt::WA_DeleteOnClose, false);
    EXPECT_EQ(other.actions()->action(QStringLiteral("save"))->shortcuts(),
              (Keys{keys("Ctrl+S"), keys("F9")}));
}

TEST_F(Shortcuts, OfOtherActionsAreShownAsConflicts)
{
    open();
    choose("Save");
    enter("F5");
    EXPECT_EQ(note(), QStringLiteral("F5 is used by \"Run\". Adding it here removes it there."));
    button("Add")->click();
    EXPECT_FALSE(item("Run")->text(1).contains(QStringLiteral("F5")));
    enter("Ctrl+C");
    EXPECT_TRUE(note().contains(QStringLiteral("\"Copy\"")));
    EXPECT_FALSE(button("Add")->isEnabled());
    choose("Copy");
    EXPECT_FALSE(button("Remove")->isEnabled());
    dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::RestoreDefaults)->click();
    EXPECT_TRUE(item("Run")->text(1).startsWith(QStringLiteral("F5")));
    EXPECT_EQ(item("Save")->text(1), QStringLiteral("Ctrl+S"));
}
