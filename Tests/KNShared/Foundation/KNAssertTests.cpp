#include "Foundation/KNAssert.h"

#include "Foundation/KNLogHelper.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

TEST(KNAssert, LetsATrueConditionPass)
{
    EXPECT_NO_THROW(KNAssert(true, "never", "Foundation/Nowhere"));
    EXPECT_NO_THROW(KNAssert(true, QStringLiteral("never"), QStringLiteral("Foundation/Nowhere")));
}

TEST(KNAssert, ThrowsMessageAndSourcePath)
{
    try {
        KNAssert(false, "details cannot be nil", "UI/Dialogs/Connection");
        FAIL() << "nothing was thrown";
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("details cannot be nil"));
        EXPECT_EQ(failure.sourcePath(), QStringLiteral("UI/Dialogs/Connection"));
        EXPECT_STREQ(failure.what(), "details cannot be nil");
    }
}

TEST(KNAssert, LogsTheFailureWithItsSourcePath)
{
    QString logged;
    KNLogHelper::sharedInstance()->setObserver([&](const QString &record) { logged += record; });
    EXPECT_THROW(KNAssert(false, QStringLiteral("grün"), QStringLiteral("SQL/Source")), KNAssertionFailure);
    KNLogHelper::sharedInstance()->setObserver({});
    EXPECT_TRUE(logged.contains(QStringLiteral("grün"))) << logged.toStdString();
    EXPECT_TRUE(logged.contains(QStringLiteral("SQL/Source"))) << logged.toStdString();
}
