#include "UI/Credentials/KNKeychainStore.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNPrivateFolder.h"
#include "Foundation/KNStoreLock.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <qt6keychain/keychain.h>

namespace {

/// Calls a bus method that returns a boolean; no answer means false. `answered` is called later, or
/// immediately if there is no bus.
void ask(QDBusMessage question, const QVariantList &arguments, std::function<void(bool)> answered)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        answered(false);
        return;
    }
    question.setArguments(arguments);
    auto *const watcher = new QDBusPendingCallWatcher(bus.asyncCall(question));
    QObject::connect(
        watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, answered = std::move(answered)] {
            const QVariant answer = watcher->reply().arguments().value(0);
            watcher->deleteLater();
            answered(answer.canConvert<QDBusVariant>() ? answer.value<QDBusVariant>().variant().toBool()
                                                       : answer.toBool());
        });
}

/// Determines whether a keyring service runs, for errors that do not show whether it failed or does not
/// exist.
void askForService(std::function<void(bool isThere)> answered)
{
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    ask(QDBusMessage::createMethodCall(bus, QStringLiteral("/"), bus, QStringLiteral("NameHasOwner")),
        {QStringLiteral("org.freedesktop.secrets")}, std::move(answered));
}

/// Determines whether the keyring is locked. A locked keyring only reports that it did not find an entry.
void askForLock(std::function<void(bool isLocked)> answered)
{
    ask(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.secrets"),
                                       QStringLiteral("/org/freedesktop/secrets/aliases/default"),
                                       QStringLiteral("org.freedesktop.DBus.Properties"),
                                       QStringLiteral("Get")),
        {QStringLiteral("org.freedesktop.Secret.Collection"), QStringLiteral("Locked")}, std::move(answered));
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
        askForService(
            [fail, refused](bool isThere) { fail(isThere ? refused : KNKeyValueStore::NoService); });
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
    return QCoreApplication::translate("KNKeychainStore", "the desktop's keyring");
}

// Jobs delete themselves when they finish.

void KNKeychainStore::textForKey(const QString &key, Read read)
{
    auto *const job = new QKeychain::ReadPasswordJob(m_service);
    job->setKey(key);
    QObject::connect(job, &QKeychain::Job::finished, job, [job, read = std::move(read)] {
        if (job->error() == QKeychain::EntryNotFound) {
            askForLock([read](bool isLocked) {
                read(QString(), isLocked ? KNError(ErrorDomain, Refused,
                                                   QCoreApplication::translate("KNKeychainStore",
                                                                               "The keyring is locked."))
                                         : KNError());
            });
            return;
        }
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

/// The keyring itself has no lock: programs exclude each other with a file.
void KNKeychainStore::changeText(const QString &key, Change change, Read changed)
{
    KNDispatch::globalQueue(
        [self = shared_from_this(), key, change = std::move(change), changed = std::move(changed)] {
            const auto lock =
                std::make_shared<KNStoreLock>(KNStateFolder() + QStringLiteral("/vantor/keyring.lock"));
            KNDispatch::mainQueue([self, key, change, changed, lock] {
                if (!lock->isHeld()) {
                    changed(QString(), lock->error());
                    return;
                }
                self->KNKeyValueStore::changeText(
                    key, change,
                    [changed, lock](const QString &text, const KNError &error) { changed(text, error); });
            });
        });
}

void KNKeychainStore::removeKey(const QString &key, Done done)
{
    auto *const job = new QKeychain::DeletePasswordJob(m_service);
    job->setKey(key);
    QObject::connect(job, &QKeychain::Job::finished, job,
                     [job, done = std::move(done)] { report(*job, NotWritten, done); });
    job->start();
}
