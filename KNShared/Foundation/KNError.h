#pragma once

#include "KNSharedExport.h"

#include <QString>
#include <QVariantMap>

/// An error: a domain, a code, a text for the user and a dictionary of details. A default-constructed object
/// means no error. Copied by value; usable on any thread.
class KNSHARED_EXPORT KNError
{
public:
    KNError() = default;
    KNError(QString domain, int code, QString localizedDescription, QVariantMap userInfo = {});

    /// Whether this is an error; an error may have an empty domain and description.
    bool isSet() const { return m_set; }
    explicit operator bool() const { return m_set; }
    void clear() { *this = KNError(); }

    const QString &domain() const { return m_domain; }
    int code() const { return m_code; }
    const QString &localizedDescription() const { return m_localizedDescription; }
    const QVariantMap &userInfo() const { return m_userInfo; }
    /// The suggested remedy in complete sentences: the text under RecoverySuggestionKey in the user info;
    /// null if there is none.
    QString recoverySuggestion() const { return m_userInfo.value(RecoverySuggestionKey).toString(); }
    /// The description, followed by the suggestion on a separate line if there is one.
    QString descriptionWithSuggestion() const;

    static const QString RecoverySuggestionKey;

    /// Returns the same error in another domain; the result is always set.
    KNError inDomain(const QString &domain) const;

private:
    bool m_set = false;
    int m_code = 0;
    QString m_domain;
    QString m_localizedDescription;
    QVariantMap m_userInfo;
};
