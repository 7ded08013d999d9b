#pragma once

#include "Implementations/MSSQLBrowserServiceClientEntry.h"

#include <QList>

#include <chrono>

/// Finds the instances of SQL Server on the local network by repeated broadcasts to their Browser services
/// (MC-SQLR, CLNT_BCAST_EX). One search for the whole process; any thread. Failures are only logged.
class MSSQLBrowserServiceClient
{
public:
    using Entries = QList<MSSQLBrowserServiceClientEntry>;

    /// Posted, on the searching thread, after a pass that has replaced the list.
    static const QString MSSQLBrowserServiceClientUpdatedNotification;
    /// Posted, on the searching thread, at the start of every pass.
    static const QString MSSQLBrowserServiceClientStartedSearchingNotification;

    /// Address and port that a pass queries, its time-outs, and the pause between passes.
    struct Search
    {
        QString address = QStringLiteral("255.255.255.255");
        quint16 port = 1434;
        std::chrono::milliseconds timeout = std::chrono::seconds(5); ///< without an answer
        std::chrono::milliseconds pause = std::chrono::seconds(10);
        /// Ends a pass in which datagrams still arrive.
        std::chrono::milliseconds longestPass = std::chrono::seconds(30);
    };
    /// Applies to passes that begin later. For tests.
    static void setSearch(const Search &search);

    /// The instances of the last pass that received an answer.
    static Entries allDatabases();
    /// Whether a pass is running.
    static bool IsSearching();
    /// Searches in the background until stopBrowseForServers().
    static void beginBrowseForServers();
    /// Ends the search after the current pass, which ends with the next datagram or its time-out.
    static void stopBrowseForServers();
    /// Runs one pass; blocks until no answer has arrived for the time-out, or for the longest pass.
    static void doBrowseForServers();
    /// Collects and decodes the answers that a socket receives until none arrives within its time-out, the
    /// longest pass is over or the search that it belongs to is stopped. The result repeats the first
    /// answer's text for each answer, cut to that answer's length. Null if no answer or an invalid one
    /// arrived.
    static QString reciveBroadcastRespondFromSocket(int socket, quint16 usingPort);
    /// Parses the text that reciveBroadcastRespondFromSocket() returns.
    static Entries entriesInText(const QString &text, const QDateTime &lastSeen);
};
