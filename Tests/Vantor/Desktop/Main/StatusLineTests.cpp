#include "Desktop/Main/StatusLine.h"

#include "Desktop/Main/EncryptionMark.h"
#include "Support/PrintQt.h"

#include <QAccessible>
#include <QLabel>

#include <gtest/gtest.h>

namespace {

/// The texts that are shown, by the names under which they are read out.
QString shown(const StatusLine &line, const char *name)
{
    for (const QLabel *const label : line.findChildren<QLabel *>()) {
        if (label->accessibleName() == QLatin1String(name))
            return label->text();
    }
    return {};
}

} // namespace

TEST(StatusLine, ShowsServerLoginAndTheTabInFront)
{
    StatusLine line;
    line.setServer(QStringLiteral("db1"),
                   QStringLiteral("Microsoft SQL Server 2022 (RTM) - 16.0.1000.6 (X64)\n\tOct 8"));
    line.setLogin(QStringLiteral("alice"));
    line.showStatus({.text = QStringLiteral("Dropping column"),
                     .database = QStringLiteral("shop"),
                     .rowCount = 1234567,
                     .elapsedMilliseconds = 61'005,
                     .isRunning = true,
                     .hasOpenTransaction = true});
    EXPECT_EQ(shown(line, "Server"), QStringLiteral("db1 · Microsoft SQL Server 2022"));
    EXPECT_EQ(shown(line, "Login"), QStringLiteral("alice"));
    EXPECT_EQ(shown(line, "Activity"), QStringLiteral("Dropping column"));
    EXPECT_EQ(shown(line, "Database"), QStringLiteral("shop"));
    EXPECT_EQ(shown(line, "Rows"), QStringLiteral("1,234,567 rows"));
    EXPECT_EQ(shown(line, "Time"), QStringLiteral("1:01.005"));
    EXPECT_EQ(shown(line, "Transaction"), QStringLiteral("Transaction open"));
    line.clearStatus();
    EXPECT_EQ(shown(line, "Rows"), QString());
    EXPECT_EQ(shown(line, "Login"), QStringLiteral("alice"));
}

TEST(StatusLine, ReadsOutTheValuesOfItsLabels)
{
    StatusLine line;
    line.setLogin(QStringLiteral("alice"));
    KNDocumentStatus status;
    status.database = QStringLiteral("shop");
    status.rowCount = 12;
    line.showStatus(status);
    QStringList names;
    for (QLabel *const label : line.findChildren<QLabel *>())
        names.append(QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name));
    EXPECT_TRUE(names.contains(QStringLiteral("Login: alice")));
    EXPECT_TRUE(names.contains(QStringLiteral("Database: shop")));
    EXPECT_TRUE(names.contains(QStringLiteral("Rows: 12 rows")));
    EXPECT_TRUE(names.contains(QStringLiteral("Time"))) << "it is empty";
}

TEST(StatusLine, CountsHoursOnlyWhereThereAreAny)
{
    EXPECT_EQ(StatusLine::durationText(0), QStringLiteral("0:00.000"));
    EXPECT_EQ(StatusLine::durationText(59'999), QStringLiteral("0:59.999"));
    EXPECT_EQ(StatusLine::durationText(3'600'000 + 62'001), QStringLiteral("1:01:02.001"));
}

TEST(StatusLine, SaysHowTheConnectionIsProtected)
{
    StatusLine line;
    line.show();
    EncryptionMark &mark = *line.encryption();
    EXPECT_FALSE(mark.isVisible()); // nothing is known
    const std::pair<VantorEncryption, const char *> texts[] = {
        {VantorEncryption::None, "Not encrypted"},
        {VantorEncryption::LoginOnly, "Only login encrypted"},
        {VantorEncryption::Unverified, "Encrypted, not verified"},
        {VantorEncryption::Verified, "Encrypted, verified"}};
    for (const auto &[encryption, text] : texts) {
        mark.setEncryption(encryption, {});
        EXPECT_TRUE(mark.isVisible());
        EXPECT_EQ(mark.text(), QString::fromLatin1(text));
    }
    mark.setEncryption(VantorEncryption::None, QStringLiteral("gate"));
    EXPECT_TRUE(mark.toolTip().contains(QStringLiteral("gate")));
}

TEST(StatusLine, ShowsTheSelectionWithoutWideningTheWindow)
{
    StatusLine line;
    const int before = line.minimumSizeHint().width();
    KNDocumentStatus status;
    status.selection = QStringLiteral("Count: 2 · Sum: ") + QString(2000, QLatin1Char('9'));
    line.showStatus(status);
    line.show();
    EXPECT_EQ(shown(line, "Selection"), status.selection);
    EXPECT_EQ(line.minimumSizeHint().width(), before);
    line.clearStatus();
    EXPECT_EQ(shown(line, "Selection"), QString());
}

TEST(StatusLine, LetsTheWindowBeNarrowWithLongNames)
{
    constexpr int LongestName = 128;
    StatusLine line;
    line.setServer(QString(LongestName, u's'), QStringLiteral("Microsoft SQL Server 2022 (RTM)"));
    line.setLogin(QString(LongestName, u'l'));
    KNDocumentStatus status;
    status.database = QString(LongestName, u'd');
    status.line = status.column = 1000;
    status.encoding = QStringLiteral("UTF-8");
    status.lineEnds = QStringLiteral("CR LF");
    status.rowCount = 1000000;
    status.elapsedMilliseconds = 1234;
    line.showStatus(status);
    EXPECT_LT(line.minimumSizeHint().width(), 100 * line.fontMetrics().averageCharWidth());
    EXPECT_EQ(shown(line, "Database"), status.database);
}
