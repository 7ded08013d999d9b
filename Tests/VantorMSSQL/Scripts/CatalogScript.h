#pragma once

#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "VantorMSSQL/Scripts/ScriptTest.h"

inline QString utf8(const char *text)
{
    return QString::fromUtf8(text);
}

/// A server whose catalog queries give what a test says.
class CatalogScript : public testing::Test
{
protected:
    CatalogScript()
    {
        m_server.queries = {
            {utf8("Table_CreationQuery"), utf8("table {TABLE_SCHEMA} {TABLE_NAME}")},
            {utf8("View_AlterQuery"), utf8("view {VIEW_NAME}")},
            {utf8("INDEX_CREATION_QUERY"), utf8("index {INDEX_SRC} {INDEX_CLAUSE} {VIEW_NAME}")},
            {utf8("StoredProcedure_ScriptCreateQuery"), utf8("create {SCHEMA} {PROCEDURE_NAME} {DATABASE}")},
            {utf8("StoredProcedure_AlterQuery"), utf8("alter {SCHEMA} {PROCEDURE_NAME} {DATABASE}")},
            {utf8("Function_AlterQuery"), utf8("function {SCHEMA} {FUNCTION_NAME} {DATABASE}")},
            {utf8("UserDefinedDataType_CreationQuery"), utf8("type {SCHEMA} {TYPE}")},
            {utf8("TableType_CreationQuery"), utf8("table type {TABLE_SCHEMA} {TABLE_NAME}")},
        };
        m_server.answer = [this](const QString &sql, KNError *error) -> std::unique_ptr<DatabaseResultSet> {
            const std::lock_guard lock(m_mutex);
            m_asked.append(sql);
            if (m_failing.contains(sql)) {
                *error = KNError(utf8("server"), 208, utf8("Invalid object name 'x'."));
                return nullptr;
            }
            return ScriptTest::rows(m_answers.value(sql));
        };
        // The pool remembers the settings of hosts, and with these the server that is gone after the test.
        static int tests = 0;
        m_settings.setHost(KNFormat("catalog script %d", ++tests));
        m_settings.setDatabase(utf8("shop"));
        KNLogHelper::sharedInstance()->setObserver([this](const QString &record) {
            const std::lock_guard lock(m_mutex);
            m_log += record + QLatin1Char('\n');
        });
    }
    ~CatalogScript() override
    {
        KNLogHelper::sharedInstance()->setObserver({});
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }

    void answer(const char *sql, const QList<QList<KNValue>> &with) { m_answers.insert(utf8(sql), with); }
    void fail(const char *sql) { m_failing.append(utf8(sql)); }

    template <typename Loader, typename... Arguments>
    QString script(const Arguments &...arguments)
    {
        return ScriptTest::textOf(std::make_shared<Loader>(arguments...), m_settings);
    }

    /// Whether a failure was reported in this domain, with the query.
    bool wasReported(const char *domain, const char *sql)
    {
        const std::lock_guard lock(m_mutex);
        return m_log.contains(utf8(domain)) && m_log.contains(KNFormat("Query: %@", utf8(sql)));
    }

    FakeDatabase::Server m_server;
    FakeDatabase::Settings m_settings{m_server};
    std::mutex m_mutex;
    QStringList m_asked; ///< guarded by m_mutex
    QString m_log;       ///< guarded by m_mutex
    QMap<QString, QList<QList<KNValue>>> m_answers;
    QStringList m_failing;
};
