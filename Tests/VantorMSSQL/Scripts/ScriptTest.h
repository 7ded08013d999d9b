#pragma once

#include "Implementations/MSSQLDatabaseResultSet.h"
#include "QueryLoader/KNQueryLoader.h"
#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <thread>

/// What the tests of generators share.
namespace ScriptTest {

/// Waits for the text of a loader, and remembers on which thread it came.
class Receiver : public KNQueryLoaderDelegate
{
public:
    void queryLoaderLoadedQuery(KNQueryLoader &loader, const QString &query) override;

    /// Starts the loader and waits for its text, at most half a minute.
    static std::shared_ptr<Receiver> load(const KNQueryLoaderPtr &loader, const VantorDBC &details);

    QStringList texts() const;
    KNQueryLoader *sender() const { return m_sender; }
    bool cameOnAnotherThread() const { return m_cameOnAnotherThread; }

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_arrived;
    QStringList m_texts; ///< guarded by m_mutex
    std::atomic<KNQueryLoader *> m_sender = nullptr;
    std::atomic<bool> m_cameOnAnotherThread = false;
    const std::thread::id m_starter = std::this_thread::get_id();
};

/// The text that a loader delivers, exactly once; the test fails otherwise.
QString textOf(const KNQueryLoaderPtr &loader, const VantorDBC &details);

/// Rows as a server sends them; columns are called c0, c1, ...
std::unique_ptr<DatabaseResultSet> rows(const QList<QList<KNValue>> &rows);
/// Text as a value.
KNValue text(const char *utf8);

} // namespace ScriptTest
