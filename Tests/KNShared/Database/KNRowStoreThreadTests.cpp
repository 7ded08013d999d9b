#include "Database/KNResultSetHolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

TEST(KNRowStoreThreads, ReadersSeeWholeRowsWhileTheWorkerAppends)
{
    KNRowStore rows;
    rows.setColumnCount(2);
    constexpr int Count = 30'000;
    std::atomic<int> torn = 0;
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 3; ++reader) {
        readers.emplace_back([&] {
            qsizetype seen = 0;
            while (seen < Count && rows.waitForMoreThan(seen, std::chrono::seconds(30))) {
                seen = rows.rowCount();
                const qint64 last = seen - 1;
                if (rows.value(last, 0) != KNValue(last) || rows.value(last, 1).text().size() != last % 300)
                    ++torn;
            }
        });
    }
    for (qint64 i = 0; i < Count; ++i) {
        rows.beginRow();
        rows.appendInt64(i);
        const QByteArray text(i % 300, 'x');
        rows.appendText(text.constData(), static_cast<std::size_t>(text.size()));
        rows.endRow();
        if (i % 100 == 99)
            rows.publish();
    }
    rows.publish();
    rows.close();
    for (std::thread &reader : readers)
        reader.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(rows.rowCount(), Count);
}

TEST(KNResultSetHolderThreads, TheGridReadsWhileTheWorkerAppendsResults)
{
    KNResultSetHolder holder;
    std::thread worker([&] {
        for (int i = 0; i < 500; ++i) {
            auto resultSet = std::make_shared<KNDatabaseResultSet>(QString::number(i));
            resultSet->setColumns({QStringLiteral("a")}, {56});
            holder.append(resultSet);
            resultSet->addRows({{KNValue(i)}});
            holder.incrementTotalResultCount();
            resultSet->setFinished();
        }
    });
    qsizetype seen = 0;
    while (seen < 500 && holder.waitForMoreThan(seen, std::chrono::seconds(30))) {
        const auto resultSets = holder.resultSets();
        seen = resultSets.size();
        EXPECT_EQ(resultSets.last()->executedQuery(), QString::number(seen - 1));
        EXPECT_LE(resultSets.last()->columnNames().size(), 1);
    }
    worker.join();
    EXPECT_EQ(holder.totalResultCount(), 500);
}

TEST(KNResultSetHolderThreads, TheWorkerWaitsForAReaderThatTakesResults)
{
    constexpr int Count = 1000;
    constexpr qsizetype ReadAhead = 10;
    KNResultSetHolder holder;
    holder.setResultReadAhead(ReadAhead);
    std::thread worker([&] {
        for (int i = 0; i < Count; ++i)
            holder.append(std::make_shared<KNDatabaseResultSet>(QString::number(i)));
    });
    int taken = 0;
    while (taken < Count / 2 && holder.waitForMoreThan(0, std::chrono::seconds(30))) {
        const auto resultSets = holder.takeResultSets();
        EXPECT_LE(resultSets.size(), ReadAhead);
        for (const KNDatabaseResultSetPtr &resultSet : resultSets)
            EXPECT_EQ(resultSet->executedQuery(), QString::number(taken++));
    }
    holder.setResultReadAhead(0); // the reader gives up
    worker.join();
    EXPECT_EQ(holder.resultSets().size(), Count - taken);
}
