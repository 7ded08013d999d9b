#pragma once

#include "Implementations/MSSQLEncryption.h"

#include <QTemporaryDir>

/// Where a login connects to.
struct MSSQLServerAddress
{
    QString host; ///< a name or an address, in ASCII; its certificate must be for it
    quint16 port = 0;
};

/// The configuration file from which db-lib takes where and how one login connects. It is the user's alone,
/// holds nothing secret, and goes when the object does. No other configuration file is looked at beside it.
class MSSQLLoginFile
{
public:
    /// Writes the file. path() is empty when that failed.
    MSSQLLoginFile(const MSSQLServerAddress &server, const MSSQLEncryption &encryption);

    QByteArray path() const { return m_path; }
    /// Under what name db-lib finds the server in the file. Errors show it. It is no host's name: should
    /// db-lib not find it, it must not connect anywhere without what the file says.
    QByteArray entry() const { return m_entry; }

private:
    QTemporaryDir m_folder;
    const QByteArray m_entry;
    QByteArray m_path;
};
