#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

/// Runs the tests with the user's XDG folders replaced, so that the shared log and preferences stay out of
/// the real ones.
int main(int argumentCount, char **arguments)
{
    // Qt takes the first thread that asks for itself for the main one, and does not clean up behind the
    // others.
    QThread::currentThread();
    const QTemporaryDir folder;
    if (!folder.isValid())
        return EXIT_FAILURE;
    qputenv("XDG_STATE_HOME", folder.filePath(QStringLiteral("state")).toUtf8());
    qputenv("XDG_DATA_HOME", folder.filePath(QStringLiteral("data")).toUtf8());
    qputenv("XDG_CONFIG_HOME", folder.filePath(QStringLiteral("config")).toUtf8());
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
