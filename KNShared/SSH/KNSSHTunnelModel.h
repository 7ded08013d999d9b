#pragma once

#include "KNSharedExport.h"

#include <QString>
#include <QVariantMap>

/// Through which SSH server a connection goes. Holds no secret: the account is known by a key without a
/// passphrase, or by the user's SSH agent.
struct KNSSHTunnelModel
{
    QString host;     ///< empty for no tunnel
    quint16 port = 0; ///< 0 for what the user's SSH configuration says, 22 where it says nothing
    QString username; ///< empty for what the user's SSH configuration says
    QString keyFile;  ///< path of a private key; empty for the agent and the usual keys

    bool isUsed() const { return !host.isEmpty(); }

    /// For storing; an empty map is no tunnel.
    KNSHARED_EXPORT QVariantMap toVariantMap() const;
    KNSHARED_EXPORT static KNSSHTunnelModel fromVariantMap(const QVariantMap &map);

    friend bool operator==(const KNSSHTunnelModel &, const KNSSHTunnelModel &) = default;
};
