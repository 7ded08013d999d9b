#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

using namespace WireTest;
using namespace HostileServerBytes;

namespace {

/// A row of an nvarchar column with any UTF-16 units.
Bytes rowOfUnits(std::u16string_view units)
{
    Bytes row{0xD1, static_cast<std::uint8_t>(units.size() * 2),
              static_cast<std::uint8_t>(units.size() * 2 >> 8)};
    for (const char16_t unit : units) {
        row.push_back(static_cast<std::uint8_t>(unit));
        row.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
    return row;
}

} // namespace

TEST(LoneSurrogates, CostNoMoreThanThemselvesAndAreAWarning)
{
    const std::u16string_view values[] = {u"\xD83D", u"a\xD83D",      u"\xDE00", u"a\xDE00z",
                                          u"",       u"\xD83D\xDC18", u"next"};
    Bytes answer = textColumn("a");
    for (const std::u16string_view value : values)
        answer = joined({answer, rowOfUnits(value)});
    answer = joined({answer, done(DoneCount, std::size(values))});
    const HostileServer::Script queried = {
        HostileServer::expect(BatchPacket), HostileServer::send(packet(done())),
        HostileServer::expect(BatchPacket), HostileServer::send(packet(answer))};
    HostileServer server(HostileServer::joined(HostileServer::acceptedLogin(), queried));
    const auto details = settings(server.port());
    details->setTdsVersion(8);
    details->setUseNTLMv2(false);
    MSSQLClient client(details);
    KNError error;
    ASSERT_TRUE(client.connect(&error)) << error.localizedDescription().toStdString();
    KNResultSetHolder holder;
    const QString sql = QStringLiteral("SELECT a FROM t");
    EXPECT_TRUE(client.executeQueryDetails({{sql, {0, sql.size()}, 0}}, holder, {}, &error));
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();

    ASSERT_EQ(holder.resultSets().size(), 1);
    const KNDatabaseResultSet &result = *holder.resultSets().first();
    QStringList shown;
    for (qsizetype row = 0; row < result.rows().rowCount(); ++row)
        shown.append(result.rows().value(row, 0).text());
    EXPECT_EQ(shown, (QStringList{QStringLiteral(""), QStringLiteral("a"), QStringLiteral("?"),
                                  QStringLiteral("a?z"), QStringLiteral(""), QStringLiteral("🐘"),
                                  QStringLiteral("next")}));
    QList<int> numbers;
    for (const DatabaseMessage &message : result.serverMessages()) {
        EXPECT_TRUE(message.isValueWarning());
        EXPECT_FALSE(message.msgtext.contains(QStringLiteral("(null)")));
        numbers.append(message.msgno);
    }
    EXPECT_EQ(numbers, (QList<int>{2401, 2403})) << "each said once";
}
