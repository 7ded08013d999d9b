#pragma once

#include "Scripts/MSSQLScriptSubject.h"

struct MSSQLModuleHeader;
struct SQLToken;

/// Parses a generated script from its beginning: an optional DROP, settings, and the statement that creates
/// or alters the object. Used by one thread.
class MSSQLScriptReview
{
public:
    /// All arguments outlive the review. The first `unsafeLength` units of the script must not run; mend()
    /// adjusts that number to its changes.
    MSSQLScriptReview(const MSSQLScriptSubject &subject, QString *script, qsizetype *unsafeLength)
        : m_subject(subject)
        , m_script(*script)
        , m_unsafeLength(*unsafeLength)
    {
    }

    /// Replaces names that a server would not parse as the subject's. False if the script has a statement
    /// that no generator writes: the script must not run then.
    bool mend();
    /// The other name in the object's definition that mend() has replaced by its current one; null if there
    /// was none. Case does not matter: in most databases it makes no other name.
    QString replacedName() const { return m_replacedName; }

private:
    QStringList spellings() const;
    bool mendDrop();
    bool mendDefinition();
    bool mendHeader(const SQLToken &verb);
    void rename(const MSSQLModuleHeader &header);
    bool mendName(QLatin1String statement, QLatin1String follower);
    void replace(qsizetype start, qsizetype length, const QString &text);

    const MSSQLScriptSubject &m_subject;
    QString &m_script;
    qsizetype &m_unsafeLength;
    qsizetype m_position = 0; ///< end of the parsed part
    QString m_replacedName;
};
