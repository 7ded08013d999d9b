#pragma once

#include "Foundation/KNError.h"

#include <QVariantMap>

#include <optional>

class QCommandLineParser;

/// How a command reaches its server.
struct ConnectionOptions
{
    bool useSampleServer = false;
    QString server; ///< HOST[,PORT][\INSTANCE]
    QString user;
    QString database;         ///< null when not given
    int loginTimeout = 15;    ///< seconds
    bool writesTrace = false; ///< of the protocol
    QVariantMap encryption;   ///< session parameters for the connection; empty for its defaults

    bool namesServer() const { return useSampleServer || !server.isEmpty(); }

    static void addTo(QCommandLineParser &parser);
    /// Reads what was parsed; empty, with an error that says what is wrong, when it does not fit together.
    /// Whether a server is named at all is left to the caller.
    static std::optional<ConnectionOptions> from(const QCommandLineParser &parser, KNError *error);
    /// What a command's help says about passwords and exit statuses.
    static QString helpText();
};
