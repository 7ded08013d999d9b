#include "UI/Scripts/KNScriptObjectModel.h"

#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/Scripts/KNScriptRun.h"

#include <QElapsedTimer>
#include <QTreeView>

namespace ScriptObjectModelTests {

namespace {

KNScriptObject object(const char *group, const QString &name)
{
    return {QString::fromLatin1(group), QStringLiteral("dbo"), name, false, QString::fromLatin1(group)};
}

bool always(const KNScriptObject &)
{
    return true;
}

bool never(const KNScriptObject &)
{
    return false;
}

class ScriptObjectModel : public testing::Test
{
protected:
    ScriptObjectModel()
    {
        m_model.setObjects(
            {object("Tables", QStringLiteral("Orders")), object("Tables", QStringLiteral("OrderLines")),
             object("Tables", QStringLiteral("Books")), object("Views", QStringLiteral("OpenOrders"))},
            never);
    }
    bool check(const QModelIndex &index, Qt::CheckState state)
    {
        return m_model.setData(index, state, Qt::CheckStateRole);
    }
    static int stateOf(const QModelIndex &index) { return index.data(Qt::CheckStateRole).toInt(); }
    QModelIndex tables() const { return m_model.index(0, 0); }

    KNScriptObjectModel m_model;
};

} // namespace

TEST_F(ScriptObjectModel, ShowsTheStateOfAGroup)
{
    EXPECT_EQ(stateOf(tables()), Qt::Unchecked);
    EXPECT_TRUE(check(m_model.index(1, 0, tables()), Qt::Checked));
    EXPECT_EQ(stateOf(tables()), Qt::PartiallyChecked);
    EXPECT_EQ(tables().data().toString(), QStringLiteral("Tables (1 of 3)"));
    EXPECT_TRUE(check(tables(), Qt::Checked));
    EXPECT_EQ(stateOf(tables()), Qt::Checked);
    EXPECT_EQ(stateOf(m_model.index(0, 0, tables())), Qt::Checked);
    EXPECT_EQ(stateOf(m_model.index(1, 0)), Qt::Unchecked);
    EXPECT_EQ(m_model.checkedCount(), 3);
    EXPECT_TRUE(check(tables(), Qt::Unchecked));
    EXPECT_TRUE(m_model.checkedObjects().isEmpty());
}

TEST_F(ScriptObjectModel, ChecksOnlyTheObjectsThatTheFilterShows)
{
    m_model.setFilter(QStringLiteral("ORDER"));
    ASSERT_EQ(m_model.rowCount(), 2);
    EXPECT_EQ(m_model.rowCount(tables()), 2);
    check(tables(), Qt::Checked);
    m_model.setFilter(QStringLiteral("open"));
    ASSERT_EQ(m_model.rowCount(), 1);
    EXPECT_EQ(tables().data().toString(), QStringLiteral("Views (0 of 1)"));
    m_model.setFilter({});
    EXPECT_EQ(stateOf(tables()), Qt::PartiallyChecked);
    QStringList names;
    for (const KNScriptObject &each : m_model.checkedObjects())
        names.append(each.name);
    EXPECT_EQ(names, (QStringList{QStringLiteral("Orders"), QStringLiteral("OrderLines")}));
}

TEST_F(ScriptObjectModel, IsUsableAtOnceWithFiftyThousandTables)
{
    QList<KNScriptObject> objects;
    constexpr int Many = 50'000;
    for (int i = 0; i < Many; ++i)
        objects.append(object("Tables", QStringLiteral("Table%1").arg(i)));
    QTreeView tree;
    tree.setUniformRowHeights(true);
    tree.setModel(&m_model);
    tree.resize(400, 400);
    tree.show();
    QElapsedTimer timer;
    timer.start();
    m_model.setObjects(objects, always);
    tree.expandAll();
    m_model.setFilter(QStringLiteral("9999"));
    tree.expandAll();
    EXPECT_EQ(m_model.rowCount(tables()), 5);
    m_model.setFilter({});
    tree.expandAll();
    check(tables(), Qt::Unchecked);
    tree.grab();
    EXPECT_EQ(m_model.checkedCount(), 0);
    constexpr qint64 Most = 2000; // ms; about 100 on an idle machine
    EXPECT_LT(timer.elapsed(), Most);
}

TEST(ScriptRunLabel, NamesObjectPartsAndRows)
{
    EXPECT_EQ(KNScriptRun::labelFor({QStringLiteral("dbo.T"), false, 11, 340, 0}),
              QStringLiteral("Reading dbo.T (12 of 340 objects)"));
    EXPECT_EQ(KNScriptRun::labelFor({QStringLiteral("dbo.T"), true, 0, 1200, 12'500}),
              QStringLiteral("Writing dbo.T (1 of 1,200 parts, 12,500 rows)"));
}

} // namespace ScriptObjectModelTests
