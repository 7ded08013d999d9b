#include "Foundation/KNError.h"

KNError::KNError(QString domain, int code, QString localizedDescription, QVariantMap userInfo)
    : m_set(true)
    , m_code(code)
    , m_domain(std::move(domain))
    , m_localizedDescription(std::move(localizedDescription))
    , m_userInfo(std::move(userInfo))
{
}

KNError KNError::inDomain(const QString &domain) const
{
    return KNError(domain, m_code, m_localizedDescription, m_userInfo);
}
