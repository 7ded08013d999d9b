#pragma once

#include "Implementations/MSSQLClient.h"
#include "Support/HostileServer.h"
#include "Support/PrintQt.h"
#include "Support/SampleServerFixture.h"

#include <gtest/gtest.h>

/// What the tests share that talk to a server on loopback.
namespace WireTest {

/// Settings for an account of a sample server that listens on `port`.
std::shared_ptr<MSSQLDatabaseConnectionDetails> settings(quint16 port);
/// Whether a conversation is in clear, or encrypted as a whole.
enum class Protection { Clear, Encrypted };

/// Settings that require encryption and trust the tests' authority.
std::shared_ptr<MSSQLDatabaseConnectionDetails> encryptedSettings(quint16 port);
/// Settings for a shared sample server that knows no encryption, or lets nobody in without.
std::shared_ptr<MSSQLDatabaseConnectionDetails> sharedSettings(Protection protection);
/// For the names of parametrised tests.
std::string protectionName(const testing::TestParamInfo<Protection> &info);

/// A client of the shared sample server that is connected; fails the test otherwise.
std::unique_ptr<MSSQLClient> connectedClient();
std::unique_ptr<MSSQLClient> connectedClient(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &settings,
                                             MSSQLCancellation::Patience patience = {});

/// Runs a text as one batch. `error` may be null where no error is expected.
QList<KNDatabaseResultSetPtr> run(MSSQLClient &client, const QString &sql, KNError *error = nullptr);
/// Runs a script batch by batch, as a person would; the error that stopped it, if any.
KNError runScript(VantorDatabaseClient &client, const QString &script);
/// The first value of the first row of the first result.
KNValue scalar(MSSQLClient &client, const QString &sql);
/// All texts of the server's messages of these results.
QStringList messageTexts(const QList<KNDatabaseResultSetPtr> &resultSets);
/// A hostile server's side up to the first batch behind the session's set-up, which it reads, and then
/// `steps`.
HostileServer::Script afterLogin(const HostileServer::Script &steps);
/// Waits until `condition` holds; false after half a minute.
bool waitFor(const std::function<bool()> &condition);

} // namespace WireTest
