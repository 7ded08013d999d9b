#include "Desktop/Query/QuerySession.h"

#include "Desktop/Query/IdleConnectionWatch.h"
#include "Foundation/KNDispatch.h"

#include <QPointer>

#include <utility>

QuerySession::QuerySession(const VantorDBC &details)
{
    replace(details);
}

QuerySession::~QuerySession()
{
    release();
}

void QuerySession::replace(const VantorDBC &details)
{
    release();
    m_connection = VantorDatabaseConnectionPool::sharedInstance()->connectionForTab(details);
    setHasOpenTransaction(false);
}

/// Closing a connection may wait for the server.
void QuerySession::release()
{
    m_watch.reset();
    if (m_connection)
        KNDispatch::globalQueue([connection = std::exchange(m_connection, nullptr)] {});
}

void QuerySession::acceptLoss()
{
    m_connection->beginNewSession();
    setHasOpenTransaction(false);
}

void QuerySession::beginUse()
{
    m_watch.reset();
}

void QuerySession::endUse()
{
    const int descriptor = m_connection->openIdleDescriptor();
    if (descriptor < 0)
        return;
    m_watch = std::make_unique<IdleConnectionWatch>(descriptor);
    connect(m_watch.get(), &IdleConnectionWatch::closed, this, &QuerySession::noteIdleLoss);
}

/// The next run opens a new connection.
void QuerySession::noteIdleLoss()
{
    m_watch.release()->deleteLater(); // it has sent the signal
    const QStringList losses = m_connection->losses();
    setHasOpenTransaction(false);
    Q_EMIT lostWhileIdle(losses);
}

void QuerySession::setHasOpenTransaction(bool hasOpenTransaction)
{
    m_hasOpenTransaction = hasOpenTransaction;
    Q_EMIT stateChanged();
}

void QuerySession::perform(const Work &work, const Finish &finish)
{
    m_isBusy = true;
    beginUse();
    Q_EMIT stateChanged();
    KNDispatch::globalQueue([session = QPointer(this), connection = m_connection, work, finish] {
        KNError error;
        connection->executeQuery(work, &error);
        KNDispatch::mainQueue([session, finish, error] {
            if (!session)
                return;
            session->m_isBusy = false;
            session->endUse();
            finish(error);
            session->endOperation(error);
        });
    });
}

void QuerySession::endOperation(const KNError &error)
{
    Q_EMIT stateChanged();
    if (const auto next = std::exchange(m_next, {}); next && !error)
        next();
}

std::shared_ptr<void> QuerySession::lease()
{
    if (m_isBusy)
        return nullptr;
    m_isBusy = true;
    beginUse();
    Q_EMIT stateChanged();
    return std::shared_ptr<void>(this, [session = QPointer(this)](void *) {
        KNDispatch::mainQueue([session] {
            if (!session)
                return;
            session->m_isBusy = false;
            session->endUse();
            session->endOperation({});
        });
    });
}

KNResultEditSession QuerySession::editSession(const QString &inDatabase)
{
    return {connectionDetails(), inDatabase, [this] { return m_connection; }, [this] { return lease(); },
            [this](bool isOpen) {
                m_connection->setHasTransaction(isOpen);
                setHasOpenTransaction(isOpen);
            }};
}

void QuerySession::changeDatabase(const QString &name)
{
    const auto database = std::make_shared<QString>();
    perform(
        [name, database](VantorDatabaseClient &client, KNError *error) {
            client.changeDatabase(name, error);
            *database = client.currentDatabase();
        },
        [this, name, database](const KNError &error) {
            if (VantorTabConnection::isSessionLost(error))
                Q_EMIT lost(error, [this, name] { changeDatabase(name); });
            else if (error)
                Q_EMIT failed(error);
            Q_EMIT databaseReached(*database);
        });
}

void QuerySession::endTransaction(bool commits)
{
    const auto isOpen = std::make_shared<bool>(false);
    perform(
        [connection = m_connection, commits, isOpen](VantorDatabaseClient &client, KNError *error) {
            if (commits)
                client.commitTransaction(error);
            else
                client.rollbackTransaction(error);
            KNError ignored;
            *isOpen = client.isConnected() && client.isInTransaction(&ignored).value_or(true);
            connection->setHasTransaction(*isOpen);
        },
        [this, commits, isOpen](const KNError &error) {
            setHasOpenTransaction(*isOpen);
            if (error)
                Q_EMIT failed(error);
            else
                Q_EMIT succeeded(commits ? tr("The transaction was committed.")
                                         : tr("The transaction was rolled back."));
            if (*isOpen)
                Q_EMIT succeeded(tr("A transaction is still open."));
        });
}

void QuerySession::reconnect()
{
    replace(*connectionDetails());
    perform([](VantorDatabaseClient &, KNError *) {},
            [this](const KNError &error) {
                if (error)
                    Q_EMIT failed(error);
                else
                    Q_EMIT succeeded(tr("A new session has begun."));
            });
}
