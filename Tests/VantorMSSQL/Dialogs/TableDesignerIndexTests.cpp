#include "UI/TableDesigner/MSSQLEditIndexWindowController.h"
#include "UI/TableDesigner/MSSQLTableIndexDesignerViewController.h"
#include "VantorMSSQL/Dialogs/DesignerTest.h"

#include <QLineEdit>
#include <QListWidget>

namespace {

class DesignedIndexes : public DesignerTest
{
protected:
    DesignedIndexes()
    {
        run("CREATE TABLE dbo.T (a int NOT NULL, b int NULL, c int NULL, d int NULL, CONSTRAINT PK_T PRIMARY "
            "KEY "
            "(a), CONSTRAINT UQ_T UNIQUE (d))");
        run("CREATE INDEX IX ON dbo.T (a, b DESC, c) INCLUDE (d) WITH (FILLFACTOR = 70)");
        open(QStringLiteral("dbo"), QStringLiteral("T"));
        m_indexes = page<MSSQLTableIndexDesignerViewController>();
    }

    /// Opens the editor of the index, whose columns are then complete.
    void openEditor()
    {
        ASSERT_TRUE(select(m_indexes->list(), QStringLiteral("IX"))) << notice(m_indexes).toStdString();
        m_indexes->indexTableViewDoubleClicked();
        m_editor = m_designer->findChild<MSSQLEditIndexWindowController *>();
        ASSERT_TRUE(m_editor);
        for (QListWidget *list : m_editor->findChildren<QListWidget *>()) {
            if (list->accessibleName() == QStringLiteral("Columns of the index"))
                m_keys = list;
        }
        ASSERT_TRUE(m_keys);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_editor));
        QApplication::setActiveWindow(m_editor);
    }
    QString keys() const
    {
        QStringList names;
        for (const MSSQLIndexColumnEntry &column : m_editor->editedIndex().columns)
            names.append(column.name);
        return names.join(QLatin1Char(' '));
    }
    MSSQLTableIndexDesignerViewController *m_indexes = nullptr;
    QPointer<MSSQLEditIndexWindowController> m_editor;
    QListWidget *m_keys = nullptr;
};

} // namespace

TEST_F(DesignedIndexes, AreListedWithoutUniqueConstraints)
{
    EXPECT_EQ(rows(m_indexes->list()), (QStringList{QStringLiteral("PRIMARY | a | Clustered | yes"),
                                                    QStringLiteral("IX | a, b, c | Non-Clustered | no")}));
}

TEST_F(DesignedIndexes, RefuseToEditOrDropThePrimaryKey)
{
    ASSERT_TRUE(select(m_indexes->list(), QStringLiteral("PRIMARY")));
    m_indexes->indexTableViewDoubleClicked();
    m_indexes->handleDeleteIndex();
    ASSERT_EQ(m_alerts.messages.size(), 2u);
    EXPECT_EQ(m_alerts.messages[0], (QStringList{QStringLiteral("Unable to modify PRIMARY index"),
                                                 QStringLiteral("The PRIMARY index cannot be modified.")}));
    EXPECT_EQ(m_alerts.messages[1],
              (QStringList{QStringLiteral("Unable to remove PRIMARY index"),
                           QStringLiteral("To remove the PRIMARY index, instead you must disable the primary "
                                          "key column.")}));
    EXPECT_FALSE(m_previews.last);
}

TEST_F(DesignedIndexes, MoveKeyColumnsByKeyboard)
{
    ASSERT_NO_FATAL_FAILURE(openEditor());
    m_keys->setFocus();
    m_keys->setCurrentRow(0);
    QTest::keyClick(m_keys, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(keys().toStdString(), "b a c");
    QTest::keyClick(m_keys, Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(m_keys, Qt::Key_Down, Qt::AltModifier); // is the last one by now
    EXPECT_EQ(keys().toStdString(), "b c a");
    QTest::keyClick(m_keys, Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(keys().toStdString(), "b a c");
    EXPECT_EQ(m_keys->currentRow(), 1);

    clickDefault(m_editor);
    EXPECT_EQ(acceptPreview().toStdString(),
              "DROP INDEX IX ON dbo.T;\r\nCREATE NONCLUSTERED INDEX IX ON dbo.T (b DESC, a, c) INCLUDE (d) "
              "WITH (FILLFACTOR = 70);");
    EXPECT_EQ(rows(m_indexes->list()).value(1), QStringLiteral("IX | b, a, c | Non-Clustered | no"));
    EXPECT_EQ(column(QStringLiteral("SELECT fill_factor FROM sys.indexes WHERE name = 'IX'")),
              QStringList{QStringLiteral("70")});
}

TEST_F(DesignedIndexes, MoveColumnsBetweenTheListsByReturnAndDoubleClickWithoutApplying)
{
    ASSERT_NO_FATAL_FAILURE(openEditor());
    const auto lists = m_editor->findChildren<QListWidget *>();
    QListWidget *const available = lists[0] == m_keys ? lists[1] : lists[0];
    ASSERT_TRUE(WindowTesting::waitFor([&] { return available->count() > 0; }));
    available->setFocus();
    available->setCurrentRow(0);
    const QString added = available->currentItem()->text();
    QTest::keyClick(available, Qt::Key_Return);
    EXPECT_EQ(keys(), QStringLiteral("a b c ") + added);
    m_keys->setFocus();
    m_keys->setCurrentRow(1);
    QTest::keyClick(m_keys, Qt::Key_Return);
    EXPECT_EQ(keys(), QStringLiteral("a c ") + added);
    const QPoint last = m_keys->visualItemRect(m_keys->item(2)).center();
    QTest::mouseClick(m_keys->viewport(), Qt::LeftButton, {}, last);
    QTest::mouseDClick(m_keys->viewport(), Qt::LeftButton, {}, last);
    EXPECT_EQ(keys().toStdString(), "a c");
    EXPECT_FALSE(m_previews.last);
    EXPECT_TRUE(m_editor);
}

// The offscreen platform has no loop for drags: this is what one does to the list.
TEST_F(DesignedIndexes, TakeADroppedColumnBetweenOthersAndNotOnThem)
{
    ASSERT_NO_FATAL_FAILURE(openEditor());
    EXPECT_EQ(m_keys->dragDropMode(), QAbstractItemView::InternalMove);
    for (int row = 0; row < m_keys->count(); ++row)
        EXPECT_EQ(m_keys->item(row)->flags() & (Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled),
                  Qt::ItemIsDragEnabled);
    m_keys->setCurrentRow(0);
    EXPECT_TRUE(m_keys->model()->moveRow({}, 0, {}, 3));
    EXPECT_EQ(keys().toStdString(), "b c a");
    EXPECT_EQ(m_keys->currentRow(), 2);
    QStringList enabled;
    for (const QPushButton *button : m_editor->findChildren<QPushButton *>()) {
        if (button->isEnabled())
            enabled.append(button->text().remove(QLatin1Char('&')));
    }
    EXPECT_TRUE(enabled.contains(QStringLiteral("Move Up")));
    EXPECT_FALSE(enabled.contains(QStringLiteral("Move Down")));
}
