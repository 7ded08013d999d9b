#pragma once

#include "Implementations/MSSQLEncryption.h"

#include <QTemporaryDir>

/// The address that a login connects to.
struct MSSQLServerAddress
{
    QString host; ///< a name or an address, in ASCII; the certificate must be issued for it
    quint16 port = 0;
    QString name = {}; ///< of which `host` is one of the addresses; null for a host that db-lib looks up
};

/// The configuration file from which db-lib reads the address and encryption of one login. Only the user can
/// read it; it contains no secrets and is removed with the object. Its folder is locked until then, so that
/// other processes can recognise the folder of a killed process. db-lib reads no other configuration file.
class MSSQLLoginFile
{
public:
    /// Writes the file. path() is empty if that failed.
    MSSQLLoginFile(const MSSQLServerAddress &server, const MSSQLEncryption &encryption);
    ~MSSQLLoginFile();
    MSSQLLoginFile(const MSSQLLoginFile &) = delete;
    MSSQLLoginFile &operator=(const MSSQLLoginFile &) = delete;

    /// Removes the folders of this user's processes that were killed during a login. Follows no links, and
    /// removes only files that a login writes. Any thread.
    static void removeAbandoned();

    QByteArray path() const { return m_path; }
    /// The server's name in the file, which errors show. It is not a host name: if db-lib did not find the
    /// entry, it must not connect anywhere without the file's settings.
    QByteArray entry() const { return m_entry; }

private:
    QTemporaryDir m_folder;
    const QByteArray m_entry;
    QByteArray m_path;
    int m_lock = -1; ///< descriptor of the folder, locked
};
