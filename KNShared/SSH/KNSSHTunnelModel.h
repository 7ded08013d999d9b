#pragma once

#include "KNSharedExport.h"

#include <QString>
#include <QVariantMap>

/// The SSH server of a connection. Contains no secrets: the login uses a key without a passphrase or the
/// user's SSH agent.
struct KNSSHTunnelModel
{
    QString host;     ///< empty for no tunnel
    quint16 port = 0; ///< 0 for the user's SSH configuration, or 22 without one
    QString username; ///< empty for the user's SSH configuration
    QString keyFile;  ///< path of a private key; empty for the agent and the default keys

    bool isUsed() const { return !host.isEmpty(); }

    /// Returns the settings to store; an empty map means no tunnel.
    KNSHARED_EXPORT QVariantMap toVariantMap() const;
    KNSHARED_EXPORT static KNSSHTunnelModel fromVariantMap(const QVariantMap &map);

    friend bool operator==(const KNSSHTunnelModel &, const KNSSHTunnelModel &) = default;
};
