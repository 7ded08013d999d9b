#pragma once

#include "KNSharedExport.h"

#include <QString>
#include <QVariantMap>

/// What went wrong: a domain, a code, a text for the user and a dictionary of further facts.
/// A default-constructed error is no error. Copied by value, used from any thread.
class KNSHARED_EXPORT KNError
{
public:
    KNError() = default;
    KNError(QString domain, int code, QString localizedDescription, QVariantMap userInfo = {});

    /// Whether there is an error at all; an error may have an empty domain and description.
    bool isSet() const { return m_set; }
    explicit operator bool() const { return m_set; }
    void clear() { *this = KNError(); }

    const QString &domain() const { return m_domain; }
    int code() const { return m_code; }
    const QString &localizedDescription() const { return m_localizedDescription; }
    const QVariantMap &userInfo() const { return m_userInfo; }
    /// Suggests what to do about it, in whole sentences: the text under RecoverySuggestionKey in the user
    /// info; null when there is none.
    QString recoverySuggestion() const { return m_userInfo.value(RecoverySuggestionKey).toString(); }
    /// The description, and the suggestion on a line of its own where there is one.
    QString descriptionWithSuggestion() const;

    static const QString RecoverySuggestionKey;

    /// The same error, set in any case, as that of another domain.
    KNError inDomain(const QString &domain) const;

private:
    bool m_set = false;
    int m_code = 0;
    QString m_domain;
    QString m_localizedDescription;
    QVariantMap m_userInfo;
};
