#include "Foundation/KNLogHelper.h"
#include "Support/HostileServerRelay.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <thread>

using namespace WireTest;

namespace {

KNValue text(const char *value)
{
    return KNValue(QString::fromUtf8(value));
}

QStringList list(std::initializer_list<const char *> texts)
{
    QStringList result;
    for (const char *text : texts)
        result.append(QString::fromUtf8(text));
    return result;
}

/// The records of the log from construction to destruction.
class LogRecords
{
public:
    LogRecords()
    {
        KNLogHelper::sharedInstance()->setObserver([this](const QString &record) {
            const std::lock_guard lock(m_mutex);
            m_records.append(record);
        });
    }
    ~LogRecords() { KNLogHelper::sharedInstance()->setObserver({}); }

    QStringList containing(const char *text) const
    {
        const std::lock_guard lock(m_mutex);
        return m_records.filter(QString::fromUtf8(text));
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_records; ///< guarded by m_mutex
};

/// Whether a batch on the wire holds this text, in UTF-16 as the protocol sends it.
bool holdsUtf16(const std::string &bytes, const char *text)
{
    const QString wide = QString::fromUtf8(text);
    return bytes.find(std::string(reinterpret_cast<const char *>(wide.utf16()),
                                  static_cast<std::size_t>(wide.size()) * 2)) != std::string::npos;
}

class BulkInsert : public testing::Test
{
protected:
    std::unique_ptr<MSSQLClient> client = connectedClient();

    void createTable(const char *columns)
    {
        run(*client, KNFormat("USE tempdb CREATE TABLE #t (%@)", columns));
    }
    bool insert(const QList<QList<KNValue>> &rows, const QStringList &names, const QStringList &types,
                KNError *error, const MSSQLClient::Progress &progress = {})
    {
        return client->bulkInsert(rows, list({"#t"}), names, types, progress, error);
    }
    qint64 count() { return scalar(*client, QStringLiteral("SELECT COUNT(*) FROM #t")).toInt64(); }
};

QList<QList<KNValue>> numbers(int count)
{
    QList<QList<KNValue>> rows;
    for (int number = 0; number < count; ++number)
        rows.append({KNValue(QString::number(number))});
    return rows;
}

} // namespace

TEST_F(BulkInsert, SendsFiveHundredRowsInAStatement)
{
    createTable("id int");
    const LogRecords log;
    KNError error;
    EXPECT_TRUE(insert(numbers(1001), list({"id"}), list({"int"}), &error))
        << error.localizedDescription().toStdString();
    EXPECT_EQ(count(), 1001);
    EXPECT_EQ(log.containing("bulkInsert started with 1001 rows. Column types: int.").size(), 1);
    EXPECT_EQ(log.containing("Started importing 500 rows.").size(), 2);
    EXPECT_EQ(log.containing("Started importing 1 rows.").size(), 1);
    EXPECT_EQ(log.containing("Finised importing 500 rows in").size(), 2);
}

TEST_F(BulkInsert, ReportsProgress)
{
    createTable("id int");
    KNError error;
    QList<double> told;
    EXPECT_TRUE(
        insert(numbers(8), list({"id"}), list({"int"}), &error, [&](double percentage, const void *rest) {
            told.append(percentage);
            EXPECT_EQ(rest, nullptr);
        }));
    EXPECT_EQ(told, (QList<double>{0, 12.5, 25, 37.5, 50, 62.5, 75, 87.5}));
}

TEST_F(BulkInsert, AnEmptyLoadIsNoError)
{
    createTable("id int");
    KNError error;
    EXPECT_TRUE(insert({}, list({"id"}), list({"int"}), &error));
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT @@TRANCOUNT")), KNValue(0));
}

TEST_F(BulkInsert, WritesNumbersWithoutQuotesCommasAndDollars)
{
    createTable("m money, d decimal(20,4), b bigint, i int, f float");
    KNError error;
    EXPECT_TRUE(insert(
        {{text("$1,234.50"), text("-1,000.25"), text("9,007,199,254,740,993"), text("5"), text("1e3")}},
        list({"m", "d", "b", "i", "f"}), list({"money", "decimal(20,4)", "bigint", "int", "float"}), &error))
        << error.localizedDescription().toStdString();
    EXPECT_EQ(scalar(*client,
                     QStringLiteral("SELECT CONVERT(varchar(50), m) + '|' + CONVERT(varchar(50), d) + '|' + "
                                    "CONVERT(varchar(50), b) + '|' + CONVERT(varchar(50), i) + '|' + "
                                    "CONVERT(varchar(50), f) FROM #t")),
              text("1234.50|-1000.2500|9007199254740993|5|1000"));
}

/// A failed load: what went over the wire, and what the log holds of it.
TEST_F(BulkInsert, FormatsValuesByColumnTypeAndLogsNone)
{
    const HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    const auto relayed = connectedClient(settings(relay.port()));
    KNError error;
    const LogRecords log;
    EXPECT_FALSE(relayed->bulkInsert(
        {{text("$1,234.50"), text("5"), text(""), text("O'Brien"), KNValue(), KNValue(QByteArray("\x0a\xff")),
          KNValue(7)},
         {text("NULL"), text("6"), text("1); DROP TABLE x --"), text("null"), KNValue(), KNValue(),
          KNValue(true)}},
        list({"dbo", "no such table"}), list({"m", "i", "e", "Last Name", "select", "b", "n"}),
        list({"money", "int", "numeric", "nvarchar(10)", "varchar(5)", "varbinary(2)", "bigint"}), {},
        &error));
    EXPECT_TRUE(error);
    const std::string sent = relay.saidByClient();
    EXPECT_TRUE(holdsUtf16(sent, "INSERT INTO dbo.[no such table] (m,i,e,[Last Name],[select],b,n) VALUES "
                                 "(1234.50,'5','','O''Brien',NULL,0x0aff,7),\r\n"
                                 "(NULL,'6','1); DROP TABLE x --','null',NULL,NULL,1);"));
    const QStringList logged = log.containing("Bulk insert failed. Insert string was:");
    ASSERT_EQ(logged.size(), 1);
    EXPECT_TRUE(logged.first().endsWith(
        QString::fromUtf8("\n    INSERT INTO dbo.[no such table] (m,i,e,[Last Name],[select],b,n) VALUES "
                          "(2 rows);")))
        << logged.first().toStdString();
    EXPECT_EQ(log.containing("com.quorvex.vantor.import").size(), 1);
    EXPECT_EQ(log.containing("insertString: INSERT INTO dbo.[no such table]").size(), 1);
    for (const char *value : {"1234.50", "Brien", "DROP TABLE", "0x0aff"})
        EXPECT_TRUE(log.containing(value).isEmpty()) << value;
}

TEST_F(BulkInsert, FailureRollsBack)
{
    createTable("id int PRIMARY KEY");
    QList<QList<KNValue>> rows = numbers(1200);
    rows[1100] = rows[3];
    KNError error;
    EXPECT_FALSE(insert(rows, list({"id"}), list({"int"}), &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("2627")))
        << error.localizedDescription().toStdString();
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT @@TRANCOUNT")), KNValue(0));
    EXPECT_TRUE(insert(numbers(3), list({"id"}), list({"int"}), &error));
    EXPECT_FALSE(error);
    EXPECT_EQ(count(), 3);
}

TEST_F(BulkInsert, ALostConnectionCannotBeginATransaction)
{
    client->disconnect();
    const LogRecords log;
    KNError error;
    EXPECT_FALSE(insert(numbers(1), list({"id"}), list({"int"}), &error));
    EXPECT_EQ(error.domain(), QStringLiteral(""));
    EXPECT_TRUE(
        error.localizedDescription().startsWith(QStringLiteral("Failed to create import transaction. ")));
    EXPECT_EQ(log.containing("ColumnCount").size(), 1);
}

TEST_F(BulkInsert, CancelRollsBackAndKeepsSession)
{
    createTable("id int");
    run(*client, QStringLiteral("INSERT #t VALUES (-1)"));
    KNError error;
    std::atomic<bool> begun = false;
    std::thread canceller([&] {
        EXPECT_TRUE(waitFor([&] { return begun.load(); }));
        KNError ignored;
        EXPECT_TRUE(client->cancelCurrentQuery(&ignored));
    });
    const bool inserted = insert(numbers(100000), list({"id"}), list({"int"}), &error,
                                 [&](double percentage, const void *) { begun = begun || percentage > 1; });
    canceller.join();
    EXPECT_FALSE(inserted);
    EXPECT_TRUE(error);
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT @@TRANCOUNT")), KNValue(0));
}
