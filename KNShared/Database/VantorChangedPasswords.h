#pragma once

#include "Database/VantorDBC.h"

#include <mutex>
#include <vector>

/// Passwords that were changed at a server while windows use it: work that still has the settings with the
/// old one logs in with the new one. Any thread.
class KNSHARED_EXPORT VantorChangedPasswords
{
public:
    /// The program's list, as its connection pool and tabs use it.
    static VantorChangedPasswords &shared();

    /// From now on the login of these settings has this password.
    void add(const VantorDBC &details, const QString &password);
    /// The login of these settings has succeeded with their own password.
    void remove(const VantorDBC &details);
    /// A copy of the settings with the password that is valid now; null if theirs is.
    VantorDBCPtr applied(const VantorDBC &details) const;

private:
    struct Change
    {
        VantorDBCPtr details; ///< with the old password
        QString password;
    };

    mutable std::mutex m_mutex;
    std::vector<Change> m_changes; ///< guarded by m_mutex
};
