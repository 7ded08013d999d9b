#include "Database/VantorChangedPasswords.h"

VantorChangedPasswords &VantorChangedPasswords::shared()
{
    // Never destroyed: tasks of the global queue may outlive main().
    static auto *const changes = new VantorChangedPasswords;
    return *changes;
}

void VantorChangedPasswords::add(const VantorDBC &details, const QString &password)
{
    if (password == details.password())
        return remove(details);
    const VantorDBCPtr valid = details.copy();
    valid->setPassword(password);
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_changes, [&](const Change &change) {
        return change.details->usesSameLogin(details) || change.details->usesSameLogin(*valid);
    });
    m_changes.push_back({details.copy(), password});
}

void VantorChangedPasswords::remove(const VantorDBC &details)
{
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_changes, [&](const Change &change) { return change.details->usesSameLogin(details); });
}

VantorDBCPtr VantorChangedPasswords::applied(const VantorDBC &details) const
{
    const std::lock_guard lock(m_mutex);
    for (const Change &change : m_changes) {
        if (!change.details->usesSameLogin(details))
            continue;
        VantorDBCPtr current = details.copy();
        current->setPassword(change.password);
        return current;
    }
    return nullptr;
}
