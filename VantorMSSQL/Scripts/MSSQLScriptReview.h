#pragma once

#include "Scripts/MSSQLScriptSubject.h"

struct SQLToken;

/// Reads a generated script back, from its beginning on: an optional DROP, settings, and the statement that
/// creates or alters the object. Used by one thread.
class MSSQLScriptReview
{
public:
    /// All outlive the review. The first `unsafeLength` units of the script will not run; mending keeps that
    /// number right.
    MSSQLScriptReview(const MSSQLScriptSubject &subject, QString *script, qsizetype *unsafeLength)
        : m_subject(subject)
        , m_script(*script)
        , m_unsafeLength(*unsafeLength)
    {
    }

    /// Replaces names that a server would not read as the subject's. False when there is a statement that no
    /// generator writes: then the script must not run.
    bool mend();

private:
    QStringList spellings() const;
    bool mendDrop();
    bool mendDefinition();
    bool mendHeader(const SQLToken &verb);
    bool mendName(QLatin1String statement, QLatin1String follower);
    void replace(qsizetype start, qsizetype length, const QString &text);

    const MSSQLScriptSubject &m_subject;
    QString &m_script;
    qsizetype &m_unsafeLength;
    qsizetype m_position = 0; ///< how far the script has been read
};
