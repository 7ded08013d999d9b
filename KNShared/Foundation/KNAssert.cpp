#include "Foundation/KNAssert.h"

#include "Foundation/KNLogHelper.h"

KNAssertionFailure::KNAssertionFailure(QString message, QString sourcePath)
    : m_message(std::move(message))
    , m_sourcePath(std::move(sourcePath))
    , m_what(m_message.toUtf8())
{
}

KNAssertionFailure::~KNAssertionFailure() = default;

const char *KNAssertionFailure::what() const noexcept
{
    return m_what.constData();
}

void KNAssertionFailed(const QString &message, const QString &sourcePath)
{
    KNLogHelper::sharedInstance()->logMessage("Assertion failed: %@ (%@)", message, sourcePath);
    throw KNAssertionFailure(message, sourcePath);
}
