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
/// holds nothing secret, and is removed with the object. Its folder is locked until then, so that other
/// processes recognise a folder whose process was killed. No other configuration file is looked at beside it.
class MSSQLLoginFile
{
public:
    /// Writes the file. path() is empty when that failed.
    MSSQLLoginFile(const MSSQLServerAddress &server, const MSSQLEncryption &encryption);
    ~MSSQLLoginFile();
    MSSQLLoginFile(const MSSQLLoginFile &) = delete;
    MSSQLLoginFile &operator=(const MSSQLLoginFile &) = delete;

    /// Removes the folders of this user's processes that were killed during a login. Follows no links, and
    /// removes nothing that a login did not write. Any thread.
    static void removeAbandoned();

    QByteArray path() const { return m_path; }
    /// Under what name db-lib finds the server in the file. Errors show it. It is no host's name: should
    /// db-lib not find it, it must not connect anywhere without what the file says.
    QByteArray entry() const { return m_entry; }

private:
    QTemporaryDir m_folder;
    const QByteArray m_entry;
    QByteArray m_path;
    int m_lock = -1; ///< descriptor of the folder, locked
};
