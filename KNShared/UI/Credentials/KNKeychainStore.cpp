#include "UI/Credentials/KNKeychainStore.h"

#include "Foundation/KNFormat.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <qt6keychain/keychain.h>

namespace {

using Decided = std::function<void(KNKeyValueStore::Problem)>;

/// Whether an error that says little comes from a keyring that does not work, or from there being none.
void decide(Decided decided)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        decided(KNKeyValueStore::NoService);
        return;
    }
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("NameHasOwner"));
    question << QStringLiteral("org.freedesktop.secrets");
    auto *const watcher = new QDBusPendingCallWatcher(bus.asyncCall(question));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, decided] {
        const QDBusPendingReply<bool> hasOwner = *watcher;
        watcher->deleteLater();
        decided(hasOwner.isValid() && hasOwner.value() ? KNKeyValueStore::Refused
                                                       : KNKeyValueStore::NoService);
    });
}

void report(const QKeychain::Job &job, KNKeyValueStore::Problem refused, const KNKeyValueStore::Done &done)
{
    const auto fail = [done, text = job.errorString()](KNKeyValueStore::Problem problem) {
        const char *const what = problem == KNKeyValueStore::NoService ? "No keyring is running: %@."
                                 : problem == KNKeyValueStore::NotWritten
                                     ? "The keyring did not keep the text: %@."
                                     : "The keyring is locked or refused access: %@.";
        done(KNError(KNKeyValueStore::ErrorDomain, problem, KNFormat(what, text)));
    };
    switch (job.error()) {
    case QKeychain::NoError:
    case QKeychain::EntryNotFound:
        done({});
        break;
    case QKeychain::NoBackendAvailable:
    case QKeychain::NotImplemented:
        fail(KNKeyValueStore::NoService);
        break;
    case QKeychain::OtherError:
        decide([fail, refused](KNKeyValueStore::Problem problem) {
            fail(problem == KNKeyValueStore::Refused ? refused : problem);
        });
        break;
    default:
        fail(refused);
    }
}

} // namespace

KNKeychainStore::KNKeychainStore(const QString &service)
    : m_service(service)
{
}

QString KNKeychainStore::name() const
{
    return QStringLiteral("the desktop's keyring");
}

// Jobs delete themselves when they are finished.

void KNKeychainStore::textForKey(const QString &key, Read read)
{
    auto *const job = new QKeychain::ReadPasswordJob(m_service);
    job->setKey(key);
    QObject::connect(job, &QKeychain::Job::finished, job, [job, read = std::move(read)] {
        const bool isThere = job->error() == QKeychain::NoError;
        report(*job, Refused, [read, text = isThere ? job->textData() : QString()](const KNError &error) {
            read(text, error);
        });
    });
    job->start();
}

void KNKeychainStore::setText(const QString &key, const QString &text, Done done)
{
    auto *const job = new QKeychain::WritePasswordJob(m_service);
    job->setKey(key);
    job->setTextData(text);
    QObject::connect(job, &QKeychain::Job::finished, job,
                     [job, done = std::move(done)] { report(*job, NotWritten, done); });
    job->start();
}

void KNKeychainStore::removeKey(const QString &key, Done done)
{
    auto *const job = new QKeychain::DeletePasswordJob(m_service);
    job->setKey(key);
    QObject::connect(job, &QKeychain::Job::finished, job,
                     [job, done = std::move(done)] { report(*job, NotWritten, done); });
    job->start();
}
