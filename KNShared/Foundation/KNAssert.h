#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <exception>

/// Thrown by KNAssert for a programming error. Programs log it, inform the user and continue.
class KNSHARED_EXPORT KNAssertionFailure : public std::exception
{
public:
    KNAssertionFailure(QString message, QString sourcePath);
    ~KNAssertionFailure() override;

    const QString &message() const { return m_message; }
    /// The path of the source file relative to its library's root, without extension.
    const QString &sourcePath() const { return m_sourcePath; }
    /// The message in UTF-8.
    const char *what() const noexcept override;

private:
    QString m_message;
    QString m_sourcePath;
    QByteArray m_what;
};

/// Logs the message with the source path and throws KNAssertionFailure.
[[noreturn]] KNSHARED_EXPORT void KNAssertionFailed(const QString &message, const QString &sourcePath);

/// Checks a condition that only a programming error can violate. Texts are QString.
inline void KNAssert(bool condition, const QString &message, const QString &sourcePath)
{
    if (!condition)
        KNAssertionFailed(message, sourcePath);
}

/// The same for literals, which cost nothing while the condition is true.
inline void KNAssert(bool condition, const char *message, const char *sourcePath)
{
    if (!condition)
        KNAssertionFailed(QString::fromUtf8(message), QString::fromUtf8(sourcePath));
}
