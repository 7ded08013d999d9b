#include "Database/KNCellText.h"
#include "Database/KNRowReader.h"
#include "Foundation/KNUtf8.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLColumnValue.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sybdb.h>

namespace {

template <typename... Fixed>
QByteArray bytesOf(const Fixed &...parts)
{
    QByteArray bytes;
    (bytes.append(reinterpret_cast<const char *>(&parts), sizeof parts), ...);
    return bytes;
}

/// A store with the one value.
std::unique_ptr<KNRowStore> storeOf(int type, const QByteArray &bytes,
                                    const QString &name = QStringLiteral("c"))
{
    auto rows = std::make_unique<KNRowStore>();
    rows->setColumnCount(1);
    rows->beginRow();
    appendColumnValue(*rows, {name, type, 0, 0},
                      bytes.isNull() ? nullptr : reinterpret_cast<const unsigned char *>(bytes.constData()),
                      static_cast<int>(bytes.size()));
    rows->endRow();
    rows->publish();
    return rows;
}

KNValue convert(int type, const QByteArray &bytes, const QString &name = QStringLiteral("c"))
{
    return storeOf(type, bytes, name)->value(0, 0);
}

/// The value as copies and exports have it: as text and as what quotes it.
QString stored(int type, const QByteArray &bytes)
{
    const auto rows = storeOf(type, bytes);
    const KNRowCell cell = KNRowReader(*rows).cell(0, 0);
    KNByteBuffer text;
    KNCellText::append(text, cell);
    const QString shown = KNTextFromUtf8({text.data(), static_cast<qsizetype>(text.size())});
    EXPECT_EQ(shown, cell.storedValue().displayText());
    return shown;
}

DBDATETIMEALL record(int days, quint64 ticks, int precision)
{
    DBDATETIMEALL value = {};
    value.date = days;
    value.time = ticks;
    value.time_prec = static_cast<DBUSMALLINT>(precision & 7);
    value.has_date = 1;
    value.has_time = 1;
    return value;
}

constexpr quint64 ticksAt(int hours, int minutes, int seconds, quint64 fraction)
{
    return static_cast<quint64>((hours * 60 + minutes) * 60 + seconds) * 10'000'000 + fraction;
}

constexpr int DaysTo20200102 = 43830;

QString display(const char *type, qint64 length)
{
    return MSSQLQuoting::displayForColumnType(QString::fromLatin1(type), KNValue(length), KNValue(9),
                                              KNValue(2));
}

} // namespace

TEST(ColumnValue, NoDataIsNullForEveryType)
{
    for (int type = 0; type < 256; ++type)
        EXPECT_TRUE(convert(type, QByteArray()).isNull()) << type;
}

TEST(ColumnValue, ReadsWholeNumbers)
{
    EXPECT_EQ(convert(SYBINT1, bytesOf(quint8{255})), KNValue(255));
    EXPECT_EQ(convert(SYBINT2, bytesOf(qint16{-32768})), KNValue(-32768));
    EXPECT_EQ(convert(SYBINT4, bytesOf(qint32{-2147483648})), KNValue(qint32{-2147483648}));
    EXPECT_EQ(convert(SYBINT8, bytesOf(std::numeric_limits<qint64>::max())),
              KNValue(std::numeric_limits<qint64>::max()));
}

TEST(ColumnValue, ReadsFloatingNumbersInTheirPrecision)
{
    EXPECT_EQ(convert(SYBREAL, bytesOf(0.1F)), KNValue(0.1F));
    EXPECT_EQ(convert(SYBFLT8, bytesOf(0.1)), KNValue(0.1));
}

TEST(ColumnValue, ReadsABitFromTheFirstWord)
{
    EXPECT_EQ(convert(SYBBIT, bytesOf(qint32{1})), KNValue(true));
    EXPECT_EQ(convert(SYBBIT, bytesOf(qint32{0})), KNValue(false));
    EXPECT_EQ(convert(SYBBIT, bytesOf(quint8{1})), KNValue(true));
}

TEST(ColumnValue, ReadsAVariantAsABitDoes)
{
    EXPECT_EQ(convert(98, bytesOf(qint32{7})), KNValue(true));
    EXPECT_EQ(convert(98, bytesOf(qint32{0})), KNValue(false));
}

TEST(ColumnValue, ReadsMoneyExactly)
{
    EXPECT_EQ(convert(SYBMONEY, bytesOf(qint32{0}, quint32{12345678})).displayText(),
              QStringLiteral("1234.5678"));
    EXPECT_EQ(convert(SYBMONEY, bytesOf(qint32{-1}, quint32{0xFFFFFFFF})).displayText(),
              QStringLiteral("-0.0001"));
    EXPECT_EQ(
        convert(SYBMONEY, bytesOf(qint32{std::numeric_limits<qint32>::min()}, quint32{0})).displayText(),
        QStringLiteral("-922337203685477.5808"));
}

TEST(ColumnValue, ReadsSmallMoneyAsAFloat)
{
    EXPECT_EQ(convert(SYBMONEY4, bytesOf(qint32{12345678})), KNValue(1234.5678F));
}

TEST(ColumnValue, ReadsDecimalsOf38Digits)
{
    DBNUMERIC number = {};
    number.precision = 38;
    number.scale = 2;
    number.array[0] = 1;
    const unsigned char magnitude[] = {0x4B, 0x3B, 0x4C, 0xA8, 0x5A, 0x86, 0xC4, 0x7A,
                                       0x09, 0x8A, 0x22, 0x3F, 0xFF, 0xFF, 0xFF, 0xFF};
    std::memcpy(number.array + 1, magnitude, sizeof magnitude);
    EXPECT_EQ(convert(SYBDECIMAL, bytesOf(number)).displayText(),
              QStringLiteral("-999999999999999999999999999999999999.99"));
}

TEST(ColumnValue, ReadsDecimalsOfFewDigits)
{
    DBNUMERIC number = {};
    number.precision = 3;
    number.scale = 3;
    number.array[1] = 0;
    number.array[2] = 5;
    EXPECT_EQ(convert(SYBNUMERIC, bytesOf(number)).displayText(), QStringLiteral("0.005"));
}

TEST(ColumnValue, ReadsDateTimesToTheMillisecond)
{
    // 1900-01-01 is a date, not nothing.
    EXPECT_EQ(convert(SYBDATETIME, bytesOf(qint32{0}, qint32{0})).displayText(),
              QStringLiteral("1900-01-01 00:00:00.000"));
    EXPECT_EQ(convert(SYBDATETIME, bytesOf(qint32{DaysTo20200102}, qint32{2})).displayText(),
              QStringLiteral("2020-01-02 00:00:00.007"));
    EXPECT_EQ(convert(SYBDATETIME, bytesOf(qint32{-53690}, qint32{0})).displayText(),
              QStringLiteral("1753-01-01 00:00:00.000"));
    EXPECT_EQ(convert(SYBDATETIME4, bytesOf(quint16{65535}, quint16{1439})).displayText(),
              QStringLiteral("2079-06-06 23:59:00"));
}

TEST(ColumnValue, ShowsTheNewerDateTypesAsStored)
{
    EXPECT_EQ(
        convert(SYBMSDATETIME2, bytesOf(record(DaysTo20200102, ticksAt(3, 4, 5, 1234567), 7))).displayText(),
        QStringLiteral("2020-01-02 03:04:05.1234567"));
    auto time = record(0, ticksAt(23, 59, 59, 9999999), 7);
    time.has_date = 0;
    EXPECT_EQ(convert(SYBMSTIME, bytesOf(time)).displayText(), QStringLiteral("23:59:59.9999999"));
    auto date = record(-693595, 0, 0);
    date.has_time = 0;
    EXPECT_EQ(convert(SYBMSDATE, bytesOf(date)).displayText(), QStringLiteral("0001-01-01"));
}

TEST(ColumnValue, ADateTime2IsADateInMillisecondsToo)
{
    const KNValue value =
        convert(SYBMSDATETIME2, bytesOf(record(DaysTo20200102, ticksAt(3, 4, 5, 1239999), 7)));
    EXPECT_EQ(value.date(), QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5, 123), Qt::UTC));
}

TEST(ColumnValue, DatesThatNoServerCanHoldAreNull)
{
    for (const int day :
         {-693596, 2958464, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_TRUE(convert(SYBDATETIME, bytesOf(qint32{day}, qint32{0})).isNull()) << day;
        EXPECT_TRUE(convert(SYBMSDATETIME2, bytesOf(record(day, 0, 7))).isNull()) << day;
        EXPECT_TRUE(convert(SYBMSDATETIMEOFFSET, bytesOf(record(day, 0, 7))).isNull()) << day;
    }
    EXPECT_FALSE(convert(SYBMSDATETIME2, bytesOf(record(-693595, 0, 7))).isNull());
    EXPECT_FALSE(
        convert(SYBMSDATETIME2, bytesOf(record(2958463, ticksAt(23, 59, 59, 9'999'999), 7))).isNull());
    EXPECT_TRUE(convert(SYBMSDATETIME2, bytesOf(record(0, ticksAt(24, 0, 0, 1), 7))).isNull());
    EXPECT_TRUE(convert(SYBDATETIME, bytesOf(qint32{0}, qint32{-1})).isNull());
    EXPECT_TRUE(convert(SYBDATETIME, bytesOf(qint32{0}, qint32{24 * 60 * 60 * 300})).isNull());
}

TEST(ColumnValue, ShowsADateTimeOffsetInItsOwnTimeWithTheFractionBehindAColon)
{
    auto value = record(DaysTo20200102, ticksAt(3, 4, 5, 1234567), 7);
    value.has_offset = 1;
    value.offset = 120;
    EXPECT_EQ(convert(SYBMSDATETIMEOFFSET, bytesOf(value)),
              KNValue(QStringLiteral("2020-01-02 05:04:05:1234567 +02:00")));
    value.offset = -90;
    value.time_prec = 3;
    EXPECT_EQ(convert(SYBMSDATETIMEOFFSET, bytesOf(value)),
              KNValue(QStringLiteral("2020-01-02 01:34:05:123 -01:30")));
    value.offset = -30;
    value.time_prec = 0;
    EXPECT_EQ(convert(SYBMSDATETIMEOFFSET, bytesOf(value)),
              KNValue(QStringLiteral("2020-01-02 02:34:05:000 +00:30")));
}

TEST(ColumnValue, KeepsADateTimeOffsetAsStoredBesideItsText)
{
    auto value = record(DaysTo20200102, ticksAt(3, 4, 5, 1234567), 7);
    value.has_offset = 1;
    value.offset = 120;
    EXPECT_EQ(stored(SYBMSDATETIMEOFFSET, bytesOf(value)),
              QStringLiteral("2020-01-02 05:04:05.1234567 +02:00"));
    value.offset = -30;
    value.time_prec = 0;
    EXPECT_EQ(stored(SYBMSDATETIMEOFFSET, bytesOf(value)), QStringLiteral("2020-01-02 02:34:05 -00:30"));
    value = record(DaysTo20200102, ticksAt(0, 0, 0, 500'0000), 3);
    value.has_offset = 1;
    value.offset = -1;
    EXPECT_EQ(stored(SYBMSDATETIMEOFFSET, bytesOf(value)), QStringLiteral("2020-01-01 23:59:00.500 -00:01"));
    EXPECT_EQ(convert(SYBMSDATETIMEOFFSET, bytesOf(value)),
              KNValue(QStringLiteral("2020-01-01 23:59:00:000 +00:01")));
}

TEST(ColumnValue, KeepsSmallMoneyExactlyBesideItsFloat)
{
    EXPECT_EQ(stored(SYBMONEY4, bytesOf(qint32{2147483647})), QStringLiteral("214748.3647"));
    EXPECT_EQ(stored(SYBMONEY4, bytesOf(std::numeric_limits<qint32>::min())), QStringLiteral("-214748.3648"));
    EXPECT_EQ(stored(SYBMONEY4, bytesOf(qint32{-1})), QStringLiteral("-0.0001"));
    EXPECT_EQ(stored(SYBMONEY4, bytesOf(qint32{0})), QStringLiteral("0.0000"));
}

TEST(ColumnValue, KeepsTheBytesOfAVariantBesideItsBoolean)
{
    EXPECT_EQ(stored(98, bytesOf(qint32{7})), QStringLiteral("0x07000000"));
    EXPECT_EQ(stored(98, QByteArray("")), QStringLiteral("0x"));
    EXPECT_EQ(convert(98, QByteArray("\0\0\0\0\1", 5)), KNValue(false));
}

TEST(ColumnValue, ATimeOfNoDigitsHasNoFraction)
{
    auto time = record(0, ticksAt(12, 34, 56, 0), 0);
    time.has_date = 0;
    EXPECT_EQ(stored(SYBMSTIME, bytesOf(time)), QStringLiteral("12:34:56"));
}

TEST(ColumnValue, ATimeThatWasRoundedUpIsTheEndOfTheDay)
{
    auto time = record(0, ticksAt(24, 0, 0, 0), 3);
    time.has_date = 0;
    EXPECT_EQ(stored(SYBMSTIME, bytesOf(time)), QStringLiteral("24:00:00.000"));
    EXPECT_EQ(stored(SYBMSDATETIME2, bytesOf(record(DaysTo20200102, ticksAt(24, 0, 0, 0), 0))),
              QStringLiteral("2020-01-03 00:00:00"));
}

TEST(ColumnValue, TextThatDoesNotDecodeIsShownWithReplacements)
{
    EXPECT_EQ(stored(SYBCHAR, QByteArray("a\xff\xc3\xb1")), QStringLiteral("a\uFFFDñ"));
}

TEST(ColumnValue, OtherTypesAreStoredAsTheyRead)
{
    DBNUMERIC number = {};
    number.precision = 9;
    number.scale = 9;
    number.array[0] = 1;
    number.array[4] = 5;
    EXPECT_EQ(stored(SYBNUMERIC, bytesOf(number)), QStringLiteral("-0.000000005"));
    EXPECT_EQ(stored(SYBINT8, bytesOf(std::numeric_limits<qint64>::min())),
              QStringLiteral("-9223372036854775808"));
    EXPECT_EQ(stored(SYBREAL, bytesOf(0.1F)), QStringLiteral("0.1"));
    EXPECT_EQ(stored(SYBFLT8, bytesOf(1e300)), QStringLiteral("1e+300"));
    EXPECT_EQ(stored(SYBBIT, bytesOf(quint8{1})), QStringLiteral("1"));
    EXPECT_EQ(stored(SYBBINARY, QByteArray("\x0a\xff", 2)), QStringLiteral("0x0AFF"));
    EXPECT_EQ(stored(36, QByteArray("\x33\x22\x11\x00\x55\x44\x77\x66\x88\x99\xaa\xbb\xcc\xdd\xee\xff", 16)),
              QStringLiteral("00112233-4455-6677-8899-AABBCCDDEEFF"));
    EXPECT_EQ(stored(SYBMONEY, bytesOf(qint32{-1}, quint32{0xFFFFFFFF})), QStringLiteral("-0.0001"));
    EXPECT_EQ(stored(SYBDATETIME, bytesOf(qint32{DaysTo20200102}, qint32{2})),
              QStringLiteral("2020-01-02 00:00:00.007"));
}

TEST(ColumnValue, ReportsUnknownType)
{
    EXPECT_EQ(convert(200, bytesOf(qint32{1}), QStringLiteral("odd %@")),
              KNValue(QStringLiteral("Unknown type. 200. (Column odd %@)")));
}

TEST(ColumnValue, DataTooShortForItsTypeIsNull)
{
    for (const int type : std::initializer_list<int>{SYBINT2, SYBINT4, SYBINT8, SYBREAL, SYBFLT8, SYBMONEY,
                                                     SYBMONEY4, SYBDATETIME, SYBDATETIME4, SYBDECIMAL,
                                                     SYBMSDATETIME2, SYBMSDATETIMEOFFSET, 36})
        EXPECT_TRUE(convert(type, QByteArray(1, '\1')).isNull()) << type;
}

TEST(ColumnValue, TextAndBytesKeepTheirLength)
{
    EXPECT_EQ(convert(SYBCHAR, QByteArray("a\0b", 3)).text().size(), 3);
    EXPECT_EQ(convert(SYBTEXT, QByteArray("")), KNValue(QStringLiteral("")));
    EXPECT_EQ(convert(SYBBINARY, QByteArray("\0\1", 2)), KNValue(QByteArray("\0\1", 2)));
    EXPECT_TRUE(convert(SYBCHAR, QByteArray("\xff")).isNull());
}

TEST(ColumnValue, TextKeepsAByteOrderMarkAtItsBeginning)
{
    const QByteArray mark("\xef\xbb\xbf");
    const QString text = QChar(0xFEFF) + QStringLiteral("abc");
    EXPECT_EQ(convert(SYBCHAR, mark + "abc"), KNValue(text));
    EXPECT_EQ(stored(SYBTEXT, mark + "abc"), text);
    EXPECT_EQ(stored(SYBTEXT, mark + "abc\xff"), text + QChar(QChar::ReplacementCharacter));
    EXPECT_EQ(convert(SYBCHAR, mark), KNValue(QString(QChar(0xFEFF))));
}

TEST(ColumnValue, XmlHasNoByteOrderMark)
{
    constexpr int SYBMSXML = 241;
    EXPECT_EQ(convert(SYBMSXML, "\xef\xbb\xbf<a/>"), KNValue(QStringLiteral("<a/>")));
    EXPECT_EQ(convert(SYBMSXML, "\xef\xbb\xbf"), KNValue(QStringLiteral("")));
    EXPECT_EQ(convert(SYBMSXML, "<a>\xef\xbb\xbf</a>").text().size(), 8);
}

TEST(ColumnTypeDisplay, ShowsLengthsWhereATypeHasOne)
{
    EXPECT_EQ(display("nvarchar", 100), QStringLiteral("nvarchar(50)"));
    EXPECT_EQ(display("nvarchar", 101), QStringLiteral("nvarchar(50.5)"));
    EXPECT_EQ(display("ntext", 2147483646), QStringLiteral("ntext(1073741823)"));
    EXPECT_EQ(display("VARCHAR", -1), QStringLiteral("VARCHAR(max)"));
    EXPECT_EQ(display("varbinary", -1), QStringLiteral("varbinary(max)"));
    EXPECT_EQ(display("xml", -1), QStringLiteral("xml"));
    EXPECT_EQ(display("geography", -1), QStringLiteral("geography(-1)"));
    EXPECT_EQ(display("decimal", 9), QStringLiteral("decimal(9)"));
    EXPECT_EQ(display("Int", 4), QStringLiteral("Int"));
    EXPECT_EQ(display("hierarchyid", 892), QStringLiteral("hierarchyid"));
    EXPECT_EQ(MSSQLQuoting::displayForColumnType(QStringLiteral("varchar"), KNValue(), KNValue(), KNValue()),
              QStringLiteral("varchar"));
}
