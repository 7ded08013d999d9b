#include "Foundation/KNError.h"

const QString KNError::RecoverySuggestionKey = QStringLiteral("com.quorvex.vantor.recoverySuggestion");

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

QString KNError::descriptionWithSuggestion() const
{
    const QString suggestion = recoverySuggestion();
    return suggestion.isEmpty() ? m_localizedDescription : m_localizedDescription + u'\n' + suggestion;
}
