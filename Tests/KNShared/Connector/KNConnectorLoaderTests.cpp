#include "Connector/KNConnectorLoader.h"

#include "Connector/KNConnectorPlugin.h"
#include "Support/PrintQt.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using KNConnectorLoader::Problem;

QString plugin(const char *name)
{
    return QStringLiteral(VANTOR_TEST_PLUGINS "/") + QString::fromLatin1(name) + QStringLiteral(".so");
}

/// The error of a module that must not load.
KNError refusal(const QString &path)
{
    KNError error;
    EXPECT_EQ(KNConnectorLoader::load(path, &error), nullptr);
    EXPECT_TRUE(error.isSet());
    EXPECT_EQ(error.domain(), QStringLiteral("com.quorvex.vantor.connector"));
    EXPECT_TRUE(error.localizedDescription().contains(path)) << error.localizedDescription().toStdString();
    return error;
}

void expectRefusal(const QString &path, Problem problem, const char *reason)
{
    const KNError error = refusal(path);
    EXPECT_EQ(error.code(), static_cast<int>(problem)) << error.localizedDescription().toStdString();
    EXPECT_TRUE(error.localizedDescription().contains(QString::fromUtf8(reason)))
        << error.localizedDescription().toStdString();
}

QString writeFile(const QTemporaryDir &folder, const QByteArray &contents)
{
    QFile file(folder.filePath(QStringLiteral("broken.so")));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
    return file.fileName();
}

} // namespace

TEST(KNConnectorLoader, LoadsAModuleThatKeepsTheContract)
{
    KNError error(QStringLiteral("left over"), 1, QStringLiteral("from before"));
    const KNConnectorPlugin *connector = KNConnectorLoader::load(plugin("GoodConnector"), &error);
    ASSERT_NE(connector, nullptr) << error.localizedDescription().toStdString();
    EXPECT_FALSE(error.isSet());
    EXPECT_EQ(connector->name(), QStringLiteral("Test server"));
}

TEST(KNConnectorLoader, ReturnsSameConnectorForSameModule)
{
    KNError error;
    EXPECT_EQ(KNConnectorLoader::load(plugin("GoodConnector"), &error),
              KNConnectorLoader::load(plugin("GoodConnector"), &error));
}

TEST(KNConnectorLoader, RefusesAMissingFile)
{
    expectRefusal(QStringLiteral("/nowhere/connector.so"), Problem::Missing, "There is no connector");
}

TEST(KNConnectorLoader, RefusesAFileThatIsNoLibrary)
{
    const QTemporaryDir folder;
    expectRefusal(writeFile(folder, "#!/bin/sh\nexit 0\n"), Problem::NoLibrary, "not a whole shared library");
    expectRefusal(writeFile(folder, ""), Problem::NoLibrary, "not a whole shared library");
    expectRefusal(folder.path(), Problem::NoLibrary, "not a whole shared library");
}

TEST(KNConnectorLoader, RefusesALibraryThatIsCutShort)
{
    QFile good(plugin("GoodConnector"));
    ASSERT_TRUE(good.open(QIODevice::ReadOnly));
    const QTemporaryDir folder;
    for (qint64 length = 4; length < good.size(); length += 4096) {
        good.seek(0);
        expectRefusal(writeFile(folder, good.read(length)), Problem::NoLibrary, "not a whole shared library");
    }
}

TEST(KNConnectorLoader, RefusesALibraryWithoutMetadata)
{
    expectRefusal(plugin("NoMetadata"), Problem::NoMetadata, "holds no plug-in metadata");
}

TEST(KNConnectorLoader, RefusesAPluginForSomethingElse)
{
    expectRefusal(plugin("WrongInterface"), Problem::WrongInterface, "com.quorvex.vantor.theme/1");
}

TEST(KNConnectorLoader, RefusesAnotherVersionOfTheContract)
{
    expectRefusal(plugin("NewerContract"), Problem::WrongContract,
                  "keeps version 9 of the connector contract");
    expectRefusal(plugin("NoContract"), Problem::WrongContract, "needs version 8");
}

TEST(KNConnectorLoader, RefusesAConnectorWithoutAName)
{
    expectRefusal(plugin("NoName"), Problem::NoName, "does not name");
}

TEST(KNConnectorLoader, RefusesAModuleWhoseSymbolsAreMissing)
{
    expectRefusal(plugin("UnresolvedSymbol"), Problem::CannotBeLinked, "nameFromALibraryThatIsNotThere");
}

TEST(KNConnectorLoader, RefusesAModuleThatThrowsWhileItIsLoaded)
{
    expectRefusal(plugin("ThrowsWhileLoading"), Problem::FailedWhileLoading, "out of sorts");
    expectRefusal(plugin("ThrowsAnything"), Problem::FailedWhileLoading, "unknown exception");
    // Still refused, and still no crash, when it is tried again.
    expectRefusal(plugin("ThrowsWhileLoading"), Problem::FailedWhileLoading, "out of sorts");
}

TEST(KNConnectorLoader, RefusesAModuleWhoseRootObjectIsNoConnector)
{
    expectRefusal(plugin("NotAConnector"), Problem::NoConnector, "is not a connector");
}

TEST(KNConnectorLoader, StillLoadsAGoodModuleAfterAllTheBadOnes)
{
    for (const char *bad : {"NoMetadata", "WrongInterface", "NewerContract", "UnresolvedSymbol",
                            "ThrowsWhileLoading", "NotAConnector"})
        refusal(plugin(bad));
    KNError error;
    EXPECT_NE(KNConnectorLoader::load(plugin("GoodConnector"), &error), nullptr);
}
