#include "VantorMSSQL/Scripts/ScriptTest.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"

namespace ScriptTest {

void Receiver::queryLoaderLoadedQuery(KNQueryLoader &loader, const QString &query)
{
    m_sender = &loader;
    m_cameOnAnotherThread = std::this_thread::get_id() != m_starter;
    const std::lock_guard lock(m_mutex);
    m_texts.append(query);
    m_arrived.notify_all();
}

std::shared_ptr<Receiver> Receiver::load(const KNQueryLoaderPtr &loader, const VantorDBC &details)
{
    const auto receiver = std::make_shared<Receiver>();
    loader->setDelegate(receiver);
    loader->beginLoadingQuery(details);
    std::unique_lock lock(receiver->m_mutex);
    EXPECT_TRUE(receiver->m_arrived.wait_for(lock, std::chrono::seconds(30),
                                             [&] { return !receiver->m_texts.isEmpty(); }));
    lock.unlock();
    EXPECT_TRUE(KNDispatch::waitUntilIdle(30000));
    return receiver;
}

QStringList Receiver::texts() const
{
    const std::lock_guard lock(m_mutex);
    return m_texts;
}

QString textOf(const KNQueryLoaderPtr &loader, const VantorDBC &details)
{
    const auto receiver = Receiver::load(loader, details);
    EXPECT_EQ(receiver->texts().size(), 1);
    EXPECT_EQ(receiver->sender(), loader.get());
    return receiver->texts().value(0);
}

std::unique_ptr<DatabaseResultSet> rows(const QList<QList<KNValue>> &rows)
{
    const qsizetype columns = rows.isEmpty() ? 1 : rows.first().size();
    QStringList names;
    for (qsizetype i = 0; i < columns; ++i)
        names.append(KNFormat("c%lld", i));
    const auto resultSet = std::make_shared<KNDatabaseResultSet>();
    resultSet->setColumns(names, QList<int>(columns, 47));
    for (const QList<KNValue> &row : rows)
        resultSet->addRows({row});
    return std::make_unique<MSSQLDatabaseResultSet>(resultSet);
}

KNValue text(const char *utf8)
{
    return KNValue(QString::fromUtf8(utf8));
}

} // namespace ScriptTest
