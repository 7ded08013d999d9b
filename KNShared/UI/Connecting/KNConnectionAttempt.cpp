#include "UI/Connecting/KNConnectionAttempt.h"

#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNDispatch.h"
#include "UI/Connecting/KNConnectionQuestions.h"

#include <QPointer>
#include <QWidget>

#include <atomic>
#include <mutex>

/// The client in use, shared by the threads of an attempt.
struct KNConnectionAttempt::Work
{
    /// Called by the thread that uses the client, with null once it has.
    void setClient(VantorDatabaseClient *used)
    {
        const std::lock_guard lock(mutex);
        client = used;
    }
    /// Waits for the server. Not for the UI thread.
    void cancel()
    {
        isCancelled = true;
        KNError ignored;
        const std::lock_guard lock(mutex);
        if (client)
            client->cancelCurrentQuery(&ignored);
    }

    std::atomic<bool> isCancelled = false;
    std::mutex mutex;
    VantorDatabaseClient *client = nullptr; ///< guarded by mutex
};

KNConnectionAttempt::KNConnectionAttempt(const VantorDBCPtr &details, QWidget *window)
    : QObject(window)
    , m_details(details)
    , m_window(window)
{
}

KNConnectionAttempt::~KNConnectionAttempt()
{
    if (m_work)
        KNDispatch::globalQueue([work = m_work] { work->cancel(); });
}

void KNConnectionAttempt::start(const Inquiry &inquiry)
{
    m_inquiry = inquiry;
    connectInBackground();
}

void KNConnectionAttempt::connectInBackground()
{
    m_work = std::make_shared<Work>();
    KNDispatch::globalQueue([self = QPointer(this), work = m_work, details = VantorDBCPtr(m_details->copy()),
                             inquiry = m_inquiry] {
        VantorDatabaseConnectionPool &pool = *VantorDatabaseConnectionPool::sharedInstance();
        KNError error;
        QString answer;
        if (work->isCancelled)
            return;
        pool.forgetRefusals(*details); // the user has asked for this attempt
        auto client = pool.connectedClient(
            *details, &error, [&](VantorDatabaseClient *connecting) { work->setClient(connecting); });
        if (client && inquiry && !work->isCancelled) {
            work->setClient(client.get());
            answer = inquiry(*client, &error);
            work->setClient(nullptr);
        }
        if (client && !error && !work->isCancelled)
            pool.keep(*details, std::move(client));
        KNDispatch::mainQueue([self, answer, error] {
            if (self)
                self->finish(answer, error);
        });
    });
}

void KNConnectionAttempt::finish(const QString &answer, const KNError &error)
{
    m_work.reset();
    if (!error) {
        Q_EMIT succeeded(answer);
        return;
    }
    KNConnectionQuestions::ask(m_window, error, m_details,
                               [self = QPointer(this), error](bool connectsAgain) {
                                   if (!self)
                                       return;
                                   if (connectsAgain)
                                       self->connectInBackground();
                                   else
                                       Q_EMIT self->failed(error);
                               });
}
