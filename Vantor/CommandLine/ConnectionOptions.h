#pragma once

#include "Foundation/KNError.h"

#include <QVariantMap>

#include <optional>

class QCommandLineParser;

/// Sets the error of arguments that are invalid or contradictory.
std::nullopt_t usageError(KNError *error, const QString &text);

/// The options with which a command connects to its server.
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
    /// Reads the parsed arguments; nullopt, with an error, if they are invalid or contradictory. The caller
    /// checks whether a server is given.
    static std::optional<ConnectionOptions> from(const QCommandLineParser &parser, KNError *error);
    /// The part of a command's help about passwords and exit statuses.
    static QString helpText();
};
