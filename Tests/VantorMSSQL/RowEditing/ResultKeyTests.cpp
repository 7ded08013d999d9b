#include "Foundation/KNDispatch.h"
#include "Foundation/KNLogHelper.h"
#include "RowEditing/KNEditableTable.h"
#include "RowEditing/MSSQLEditRowHelper.h"
#include "RowEditing/MSSQLResultSetViewControllerHelper.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <mutex>

namespace ResultKeyTests {

namespace {

QString u(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

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
        m_settings->setDatabase(u("shop"));
        KNLogHelper::sharedInstance()->setObserver([this](const QString &record) {
            const std::lock_guard lock(m_mutex);
            if (record.contains(u("Matched table is: ")))
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
    load(u("SELECT * FROM dbo.OrderLines"));
    EXPECT_EQ(keys(), QStringList({u("OrderId"), u("LineNumber")}));
    EXPECT_EQ(m_delegate->table, u("OrderLines"));
    EXPECT_EQ(m_delegate->schema, u("dbo"));
    EXPECT_EQ(m_delegate->calls, 1);
    ASSERT_EQ(records().size(), 1);
    EXPECT_TRUE(records().first().endsWith(u("Matched table is: dbo.OrderLines")));
}

TEST_F(ResultKeys, AreFoundInTheDefaultSchema)
{
    load(u("SELECT * FROM [Orders]"));
    EXPECT_EQ(keys(), QStringList{u("OrderId")});
    EXPECT_EQ(m_delegate->table, u("Orders"));
    EXPECT_EQ(m_delegate->schema, u("dbo"));
}

TEST_F(ResultKeys, AreNotLoadedForJoins)
{
    load(u("SELECT * FROM dbo.Orders o\nJoin\tdbo.OrderLines l ON l.OrderId = o.OrderId"));
    EXPECT_EQ(m_delegate->calls, 0);
    EXPECT_TRUE(keys().isEmpty());
    EXPECT_TRUE(records().isEmpty());
}

TEST_F(ResultKeys, AreLoadedForUpTo10000Characters)
{
    const QString query = u("SELECT * FROM dbo.Orders ");
    load(query + QString(10000 - query.size(), u' '));
    EXPECT_EQ(m_delegate->calls, 1);
    load(query + QString(10001 - query.size(), u' '));
    EXPECT_EQ(m_delegate->calls, 0);
}

TEST_F(ResultKeys, AreNoneOfAView)
{
    load(u("SELECT * FROM sys.objects"));
    EXPECT_EQ(m_delegate->calls, 1);
    EXPECT_TRUE(keys().isEmpty());
}

TEST_F(ResultKeys, AreNotReportedWithoutTheServer)
{
    m_settings->setHost(u("127.0.0.1,1"));
    load(u("SELECT * FROM dbo.Orders"));
    EXPECT_EQ(m_delegate->calls, 0);
    load(u("SELECT 1"));
    EXPECT_EQ(m_delegate->calls, 0);
}

TEST_F(ResultKeys, MakeAResultEditableThatHasThem)
{
    load(u("SELECT * FROM dbo.OrderLines"));
    MSSQLEditRowHelper row(m_settings, u("dbo"), u("OrderLines"), std::nullopt);
    row.loadTableColumns();
    const auto decide = [&](const QStringList &columns, QString *reason) {
        m_helper->setColumnTypes(QList<int>(columns.size(), 56));
        return KNEditableTable::of(columns, *m_helper, u("OrderLines"), u("dbo"), row.tableColumns(), reason);
    };
    QString reason;
    const auto table =
        decide({u("quantity"), u("LineNumber"), u("OrderId"), u("LineTotal"), u("x")}, &reason);
    ASSERT_TRUE(table) << reason.toStdString();
    EXPECT_EQ(table->key, QList<int>({2, 1}));
    EXPECT_EQ(table->columns[0]->columnName, u("Quantity"));
    EXPECT_TRUE(table->writableColumn(0));
    EXPECT_FALSE(table->writableColumn(3)) << "is computed";
    EXPECT_FALSE(table->writableColumn(4)) << "is no column of the table";
    EXPECT_FALSE(table->writableColumn(5));

    EXPECT_FALSE(decide({u("OrderId"), u("Quantity")}, &reason));
    EXPECT_EQ(reason, u("LineNumber is not in the result"));
    EXPECT_FALSE(decide({u("OrderId"), u("LineNumber"), u("OrderId")}, &reason));
    EXPECT_EQ(reason, u("OrderId is in the result twice"));
    m_helper->setExecutedQuery(u("SELECT * FROM Orders -- FROM dbo.OrderLines"));
    EXPECT_FALSE(decide({u("OrderId"), u("LineNumber")}, &reason));
    EXPECT_EQ(reason, u("its table could not be found"));
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
