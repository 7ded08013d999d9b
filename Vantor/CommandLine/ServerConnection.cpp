#include "CommandLine/ServerConnection.h"

#include "CommandLine/InterruptWatcher.h"
#include "CommandLine/Terminal.h"
#include "Common/EnvironmentPassword.h"
#include "Foundation/KNFormat.h"

ExitStatus ServerConnection::prepare(const ConnectionOptions &options, const VantorDBCPtr &settings,
                                     KNError *error)
{
    m_settings = settings;
    // Before any child process starts, even if no password is needed.
    auto password = TakeEnvironmentPassword();
    if (options.writesTrace) {
        const QString trace = settings->startProtocolTrace();
        Terminal::printError(trace.isNull() ? QStringLiteral("The trace of the protocol cannot be written.")
                                            : KNFormat("The trace of the protocol is written to %@", trace),
                             Terminal::Colour::Yellow);
    }
    settings->setDatabase(options.database);
    QVariantMap sessionParameters = options.encryption;
    sessionParameters.insert(QStringLiteral("loginTimeout"), options.loginTimeout);
    settings->setSessionParameters(sessionParameters);
    if (options.useSampleServer) {
        if (!m_sampleServer.start(error))
            return ExitNoConnection;
        settings->setHost(m_sampleServer.host());
        settings->setUsername(m_sampleServer.userName());
        settings->setPassword(m_sampleServer.password());
        return ExitSuccess;
    }
    if (!password)
        password = Terminal::promptWithoutEcho(KNFormat("Password for %@: ", options.user));
    if (!password) {
        *error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0,
                         QStringLiteral("There is no password: set VANTOR_PASSWORD, or run in a terminal."));
        return ExitUsage;
    }
    settings->setHost(options.server);
    settings->setUsername(options.user);
    settings->setPassword(*password);
    return ExitSuccess;
}

ExitStatus ServerConnection::connect(KNError *error)
{
    m_client = m_settings->createNewClient();
    return m_client->connect(error) ? ExitSuccess : ExitNoConnection;
}

int ServerConnection::run(const ConnectionOptions &options, const VantorDBCPtr &settings, const Work &work)
{
    KNError error;
    ServerConnection connection;
    if (const ExitStatus status = connection.prepare(options, settings, &error))
        return Terminal::fail(status, error.descriptionWithSuggestion());
    InterruptWatcher interrupts(ExitCancelled);
    if (const ExitStatus status = connection.connect(&error))
        return Terminal::fail(status, error.descriptionWithSuggestion());
    return work(connection.client(), interrupts);
}
