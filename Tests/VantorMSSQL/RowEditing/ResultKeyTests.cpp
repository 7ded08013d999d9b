#include "Foundation/KNDispatch.h"
#include "Foundation/KNLogHelper.h"
#include "RowEditing/KNEditableTable.h"
#include "RowEditing/MSSQLEditRowHelper.h"
#include "RowEditing/MSSQLResultSetViewControllerHelper.h"
#include "Support/TestText.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <mutex>

namespace ResultKeyTests {

namespace {

class Delegate : public ResultSetViewControllerHelperDelegate
{
public:
    void loadedPrimaryKeysForTable(const QString &itsTable, const QString &inSchema) override
    {
        EXPECT_TRUE(KNDispatch::isMainThread());
        table = itsTable;
        schema = inSchema;
        ++calls;
    }
    QString table;
    QString schema;
    int calls = 0;
};

/// Keys of tables of a real server.
class ResultKeys : public testing::Test
{
protected:
    ResultKeys()
    {
        m_settings->setDatabase(q("shop"));
        KNLogHelper::sharedInstance()->setObserver([this](const QString &record) {
            const std::lock_guard lock(m_mutex);
            if (record.contains(q("Matched table is: ")))
                m_records.append(record);
        });
    }
    ~ResultKeys() override { KNLogHelper::sharedInstance()->setObserver({}); }

    /// Loads the keys of a query's table and waits until no work is left.
    void load(const QString &query)
    {
        m_helper = m_settings->createResultSetViewControllerHelper();
        m_delegate = std::make_shared<Delegate>();
        m_helper->setExecutedQuery(query);
        m_helper->setDelegate(m_delegate);
        m_helper->beginLoadingPrimaryKeys();
        ASSERT_TRUE(WireTest::waitFor([] {
            KNDispatch::pumpMainQueue(1);
            return KNDispatch::waitUntilIdle(1);
        }));
        while (KNDispatch::pumpMainQueue(1)) {
        }
    }
    QStringList keys() const { return m_helper->primaryKeyColumnNames(); }
    QStringList records()
    {
        const std::lock_guard lock(m_mutex);
        return m_records;
    }

    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_settings =
        WireTest::settings(SampleServerFixture::shared().port());
    std::shared_ptr<ResultSetViewControllerHelper> m_helper;
    std::shared_ptr<Delegate> m_delegate;
    std::mutex m_mutex;
    QStringList m_records; ///< guarded by m_mutex
};

} // namespace

TEST_F(ResultKeys, AreThoseOfTheTableThatTheQueryNames)
{
    load(q("SELECT * FROM dbo.OrderLines"));
    EXPECT_EQ(keys(), QStringList({q("OrderId"), q("LineNumber")}));
    EXPECT_EQ(m_delegate->table, q("OrderLines"));
    EXPECT_EQ(m_delegate->schema, q("dbo"));
    EXPECT_EQ(m_delegate->calls, 1);
    ASSERT_EQ(records().size(), 1);
    EXPECT_TRUE(records().first().endsWith(q("Matched table is: dbo.OrderLines")));
}

TEST_F(ResultKeys, AreFoundInTheDefaultSchema)
{
    load(q("SELECT * FROM [Orders]"));
    EXPECT_EQ(keys(), QStringList{q("OrderId")});
    EXPECT_EQ(m_delegate->table, q("Orders"));
    EXPECT_EQ(m_delegate->schema, q("dbo"));
}

TEST_F(ResultKeys, AreNotLoadedForJoins)
{
    load(q("SELECT * FROM dbo.Orders o\nJoin\tdbo.OrderLines l ON l.OrderId = o.OrderId"));
    EXPECT_EQ(m_delegate->calls, 0);
    EXPECT_TRUE(keys().isEmpty());
    EXPECT_TRUE(records().isEmpty());
}

TEST_F(ResultKeys, AreLoadedForUpTo10000Characters)
{
    const QString query = q("SELECT * FROM dbo.Orders ");
    load(query + QString(10000 - query.size(), u' '));
    EXPECT_EQ(m_delegate->calls, 1);
    load(query + QString(10001 - query.size(), u' '));
    EXPECT_EQ(m_delegate->calls, 0);
}

TEST_F(ResultKeys, AreNoneOfAView)
{
    load(q("SELECT * FROM sys.objects"));
    EXPECT_EQ(m_delegate->calls, 1);
    EXPECT_TRUE(keys().isEmpty());
}

TEST_F(ResultKeys, AreNotReportedWithoutTheServer)
{
    m_settings->setHost(q("127.0.0.1,1"));
    load(q("SELECT * FROM dbo.Orders"));
    EXPECT_EQ(m_delegate->calls, 0);
    load(q("SELECT 1"));
    EXPECT_EQ(m_delegate->calls, 0);
}

TEST_F(ResultKeys, MakeAResultEditableThatHasThem)
{
    load(q("SELECT * FROM dbo.OrderLines"));
    MSSQLEditRowHelper row(m_settings, q("dbo"), q("OrderLines"), std::nullopt);
    row.loadTableColumns();
    const auto decide = [&](const QStringList &columns, QString *reason) {
        m_helper->setColumnTypes(QList<int>(columns.size(), 56));
        return KNEditableTable::of(columns, *m_helper, q("OrderLines"), q("dbo"), row.tableColumns(), reason);
    };
    QString reason;
    const auto table =
        decide({q("quantity"), q("LineNumber"), q("OrderId"), q("LineTotal"), q("x")}, &reason);
    ASSERT_TRUE(table) << reason.toStdString();
    EXPECT_EQ(table->key, QList<int>({2, 1}));
    EXPECT_EQ(table->columns[0]->columnName, q("Quantity"));
    EXPECT_TRUE(table->writableColumn(0));
    EXPECT_FALSE(table->writableColumn(3)) << "is computed";
    EXPECT_FALSE(table->writableColumn(4)) << "is no column of the table";
    EXPECT_FALSE(table->writableColumn(5));

    EXPECT_FALSE(decide({q("OrderId"), q("Quantity")}, &reason));
    EXPECT_EQ(reason, q("LineNumber is not in the result"));
    EXPECT_FALSE(decide({q("OrderId"), q("LineNumber"), q("OrderId")}, &reason));
    EXPECT_EQ(reason, q("OrderId is in the result twice"));
    m_helper->setExecutedQuery(q("SELECT * FROM Orders -- FROM dbo.OrderLines"));
    EXPECT_FALSE(decide({q("OrderId"), q("LineNumber")}, &reason));
    EXPECT_EQ(reason, q("its table could not be found"));
}

TEST_F(ResultKeys, DoNotMakeVariantsAndClrTypesWritable)
{
    const auto helper = m_settings->createResultSetViewControllerHelper();
    helper->setColumnTypes({56, 98, 240});
    EXPECT_TRUE(helper->isWritableColumn(0));
    EXPECT_FALSE(helper->isWritableColumn(1));
    EXPECT_FALSE(helper->isWritableColumn(2));
}

} // namespace ResultKeyTests
