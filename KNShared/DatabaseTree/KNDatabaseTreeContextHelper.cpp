#include "DatabaseTree/KNDatabaseTreeContextHelper.h"

KNDatabaseTreeContextHelper::~KNDatabaseTreeContextHelper() = default;

void KNDatabaseTreeContextHelper::addAction(const QString &name, Action action)
{
    m_actions.insert(name, std::move(action));
}

bool KNDatabaseTreeContextHelper::knowsAction(const QString &name) const
{
    return m_actions.contains(name);
}

bool KNDatabaseTreeContextHelper::performAction(const QString &name,
                                                const KNMenuRepresentedObject &representedObject)
{
    const Action action = m_actions.value(name);
    if (!action)
        return false;
    action(representedObject);
    return true;
}
