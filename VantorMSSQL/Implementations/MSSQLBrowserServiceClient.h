#pragma once

#include "Implementations/MSSQLBrowserServiceClientEntry.h"

#include <QList>

#include <chrono>

/// Finds the instances of SQL Server on the local network: asks their Browser services with a broadcast
/// (MC-SQLR, CLNT_BCAST_EX), again and again. One search for the whole process; any thread. Failures are
/// logged only.
class MSSQLBrowserServiceClient
{
public:
    using Entries = QList<MSSQLBrowserServiceClientEntry>;

    /// Posted, on the searching thread, after a pass that has replaced the list.
    static const QString MSSQLBrowserServiceClientUpdatedNotification;
    /// Posted, on the searching thread, at the start of every pass.
    static const QString MSSQLBrowserServiceClientStartedSearchingNotification;

    /// Whom passes ask and for how long, and how long the search rests between them.
    struct Search
    {
        QString address = QStringLiteral("255.255.255.255");
        quint16 port = 1434;
        std::chrono::milliseconds timeout = std::chrono::seconds(5); ///< of silence
        std::chrono::milliseconds pause = std::chrono::seconds(10);
    };
    /// For all passes that begin later. For tests.
    static void setSearch(const Search &search);

    /// What answered the last pass that anything answered.
    static Entries allDatabases();
    /// Whether a pass is going on.
    static bool IsSearching();
    /// Begins to search in the background until stopBrowseForServers().
    static void beginBrowseForServers();
    /// Ends the search after the pass that is going on.
    static void stopBrowseForServers();
    /// One pass; blocks until the network has been silent for the time-out.
    static void doBrowseForServers();
    /// Collects and decodes the answers that come to a socket, until it has been silent for its time-out. The
    /// text of the first answer is taken for each of them, in the length of each. Null when nothing came, or
    /// something that is no answer.
    static QString reciveBroadcastRespondFromSocket(int socket, quint16 usingPort);
    /// The instances in such a text.
    static Entries entriesInText(const QString &text, const QDateTime &lastSeen);
};
