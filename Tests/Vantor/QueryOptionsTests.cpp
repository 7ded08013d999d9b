#include "CommandLine/QueryOptions.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

std::optional<QueryOptions> parse(const QStringList &arguments, KNError *error)
{
    return QueryOptions::parse(arguments, error);
}

QStringList list(std::initializer_list<const char *> arguments)
{
    QStringList texts;
    for (const char *argument : arguments)
        texts.append(QString::fromUtf8(argument));
    return texts;
}

} // namespace

TEST(QueryOptions, AreReadFromTheArguments)
{
    KNError error;
    const auto options = parse(list({"--server", "srv,1500", "--user", "CORP\\alice", "--database", "shop",
                                     "--format", "csv", "--login-timeout", "3", "SELECT 1"}),
                               &error);
    ASSERT_TRUE(options) << error.localizedDescription().toStdString();
    EXPECT_EQ(options->connection.server, QStringLiteral("srv,1500"));
    EXPECT_EQ(options->connection.user, QStringLiteral("CORP\\alice"));
    EXPECT_EQ(options->connection.database, QStringLiteral("shop"));
    EXPECT_EQ(options->format, QStringLiteral("csv"));
    EXPECT_EQ(options->connection.loginTimeout, 3);
    EXPECT_EQ(options->sql, QStringLiteral("SELECT 1"));
    EXPECT_FALSE(options->connection.useSampleServer);
}

TEST(QueryOptions, AboutEncryptionBecomeSessionParameters)
{
    const auto parametersOf = [](std::initializer_list<const char *> arguments) {
        KNError error;
        const auto options = parse(list({"--sample"}) + list(arguments), &error);
        return options ? options->connection.encryption : QVariantMap{{error.localizedDescription(), false}};
    };
    const auto mode = [](const char *name) {
        return QVariantMap{{QStringLiteral("encryption"), QString::fromLatin1(name)}};
    };
    EXPECT_EQ(parametersOf({}), QVariantMap());
    for (const char *name : {"off", "request", "require"})
        EXPECT_EQ(parametersOf({"--encrypt", name}), mode(name));

    QVariantMap expected = mode("require");
    expected.insert(QStringLiteral("trustServerCertificate"), true);
    EXPECT_EQ(parametersOf({"--trust-server-certificate"}), expected);
    // A certificate that is named must not be skipped.
    expected = mode("require");
    expected.insert(QStringLiteral("trustedCertificateFile"), QStringLiteral("ca.pem"));
    expected.insert(QStringLiteral("checkHostName"), false);
    EXPECT_EQ(parametersOf({"--encrypt", "request", "--trust", "ca.pem", "--no-host-check"}), expected);
}

TEST(QueryOptions, ThatDoNotFitTogetherAreRefusedWithAReason)
{
    const QList<QStringList> wrong = {
        list({"SELECT 1"}),
        list({"--sample", "--server", "srv", "--user", "u"}),
        list({"--server", "srv"}),
        list({"--sample", "--format", "xml"}),
        list({"--sample", "SELECT", "1"}),
        list({"--sample", "--file", "f", "SELECT 1"}),
        list({"--sample", "--login-timeout", "0"}),
        list({"--sample", "--password", "secret"}),
        list({"--sample", "--encrypt", "perhaps"}),
        list({"--sample", "--encrypt", "off", "--trust", "ca.pem"}),
        list({"--sample", "--encrypt", "off", "--no-host-check"}),
        list({"--sample", "--trust", "ca.pem", "--trust-server-certificate"}),
    };
    for (const QStringList &arguments : wrong) {
        KNError error;
        EXPECT_FALSE(parse(arguments, &error)) << arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_FALSE(error.localizedDescription().isEmpty());
        EXPECT_FALSE(error.localizedDescription().contains(QStringLiteral("secret")));
    }
}

TEST(QueryOptions, ReadFilesInUtf8AndUtf16)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("query.sql"));
    const auto readBack = [&](const QByteArray &bytes, KNError *error) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        QueryOptions options;
        options.file = path;
        return options.readText(error);
    };
    KNError error;
    EXPECT_EQ(readBack("SELECT 'naïve'", &error), QStringLiteral("SELECT 'naïve'"));
    EXPECT_EQ(readBack("\xEF\xBB\xBFSELECT 1", &error), QStringLiteral("SELECT 1"));
    EXPECT_EQ(readBack(QByteArray("\xFF\xFES\0E\0", 6), &error), QStringLiteral("SE"));
    EXPECT_EQ(readBack("", &error), QStringLiteral(""));
    EXPECT_FALSE(error);
    EXPECT_FALSE(readBack("SELECT '\xFF'", &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("UTF-8")));
}

TEST(QueryOptions, ReportUnreadableFile)
{
    QueryOptions options;
    options.file = QStringLiteral("/nowhere/query.sql");
    KNError error;
    EXPECT_FALSE(options.readText(&error));
    EXPECT_TRUE(error.localizedDescription().contains(options.file));
}
