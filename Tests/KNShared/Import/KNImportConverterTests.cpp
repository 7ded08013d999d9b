#include "Import/KNImportColumnAnalysis.h"
#include "Import/KNImportConverter.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"

#include <gtest/gtest.h>

namespace KNImportConverterTests {

using Kind = KNImportColumnType::Kind;

namespace {

KNImportColumnType type(Kind kind)
{
    KNImportColumnType type;
    type.kind = kind;
    return type;
}

KNImportColumnType decimal(int precision, int scale)
{
    KNImportColumnType result = type(Kind::Decimal);
    result.precision = precision;
    result.scale = scale;
    return result;
}

/// The display text of the value, "NULL", or "!" and the reason.
QString converted(const KNImportColumnType &type, const QString &text, const KNImportValueFormat &format = {},
                  bool allowsNulls = true)
{
    QString reason;
    const auto value = KNImportConverter(type, allowsNulls, format).convert(text, &reason);
    if (!value)
        return QLatin1Char('!') + reason;
    return value->isNull() ? QStringLiteral("NULL") : value->displayText();
}

QString converted(const KNImportColumnType &type, const char *text, const KNImportValueFormat &format = {})
{
    return converted(type, QString::fromUtf8(text), format);
}

KNImportColumnAnalysis analysis(std::initializer_list<const char *> values)
{
    KNImportColumnAnalysis analysis;
    for (const char *value : values)
        analysis.add(QString::fromUtf8(value));
    return analysis;
}

} // namespace

TEST(ImportConverter, ReadsWholeNumbersWithinTheRange)
{
    KNImportColumnType tiny = type(Kind::Integer);
    tiny.minimum = 0;
    tiny.maximum = 255;
    EXPECT_EQ(converted(tiny, "255"), q("255"));
    EXPECT_EQ(converted(tiny, " 7 "), q("7"));
    EXPECT_EQ(converted(tiny, "5.00"), q("5"));
    EXPECT_EQ(converted(tiny, "1e2"), q("100"));
    EXPECT_EQ(converted(tiny, "256"), q("!The column holds 0 to 255."));
    EXPECT_EQ(converted(tiny, "-1"), q("!The column holds 0 to 255."));
    EXPECT_EQ(converted(tiny, "1.5"), q("!The column holds whole numbers only."));
    EXPECT_EQ(converted(tiny, "x"), q("!This is not a number."));
    EXPECT_EQ(converted(type(Kind::Integer), "9223372036854775807"), q("9223372036854775807"));
    EXPECT_EQ(converted(type(Kind::Integer), "-9,223,372,036,854,775,808"), q("-9223372036854775808"));
    EXPECT_TRUE(converted(type(Kind::Integer), "9223372036854775808").startsWith(QLatin1Char('!')));
}

TEST(ImportConverter, KeepsEveryDigitOfDecimals)
{
    EXPECT_EQ(converted(decimal(38, 30), "12345678.123456789012345678901234567890"),
              q("12345678.12345678901234567890123456789"));
    EXPECT_EQ(converted(decimal(10, 2), "$1,234.50"), q("1234.5"));
    EXPECT_EQ(converted(decimal(10, 2), "5"), q("5.0"));
    EXPECT_EQ(converted(decimal(18, 0), "5.0"), q("5"));
    EXPECT_EQ(converted(decimal(10, 4), "1.5e-3"), q("0.0015"));
    EXPECT_EQ(converted(decimal(10, 2), "1.234"), q("!The number has 3 decimals, the column keeps 2."));
    EXPECT_EQ(converted(decimal(4, 2), "123"), q("!The column holds 2 digits before the decimal point."));
    EXPECT_EQ(converted(decimal(4, 2), "0099.10"), q("0099.1"));
}

TEST(ImportConverter, ReadsDecimalCommas)
{
    KNImportValueFormat format;
    format.decimalPoint = QLatin1Char(',');
    EXPECT_EQ(converted(decimal(10, 2), "1.234,5", format), q("1234.5"));
    EXPECT_EQ(converted(decimal(10, 2), "1.23", format), q("!This is not a number."));
    EXPECT_EQ(converted(decimal(10, 2), "1,23"), q("!This is not a number."));
}

TEST(ImportConverter, WritesFloatsAsFloats)
{
    EXPECT_EQ(converted(type(Kind::Real), "0.1"), q("0.1e0"));
    EXPECT_EQ(converted(type(Kind::Real), "-1E+300"), q("-1e300"));
    EXPECT_EQ(converted(type(Kind::Real), "1e999"), q("!The number is too large."));
    EXPECT_EQ(converted(type(Kind::Real), "nan"), q("!This is not a number."));
}

TEST(ImportConverter, KeepsDatesAndTimes)
{
    EXPECT_EQ(converted(type(Kind::Date), "2024-02-29"), q("2024-02-29"));
    EXPECT_EQ(converted(type(Kind::Date), "2024-02-29T00:00:00"), q("2024-02-29"));
    EXPECT_EQ(converted(type(Kind::Date), "2024-02-29 12:00"), q("!The column keeps no time of day."));
    EXPECT_EQ(converted(type(Kind::Date), "2023-02-29"), q("!This is not a date."));
    EXPECT_EQ(converted(type(Kind::DateAndTime), "2024-02-29"), q("2024-02-29T00:00:00"));
    EXPECT_EQ(converted(type(Kind::DateAndTime), "2024-02-29 9:05:07.1234567"),
              q("2024-02-29T09:05:07.1234567"));
    EXPECT_EQ(converted(type(Kind::DateAndTime), "2024-02-29 09:05Z"),
              q("!The column keeps no offset from UTC."));
    EXPECT_EQ(converted(type(Kind::DateTimeOffset), "2024-02-29 09:05:07 +02:00"),
              q("2024-02-29T09:05:07+02:00"));
    EXPECT_EQ(converted(type(Kind::DateTimeOffset), "2024-02-29 09:05 +15:00"), q("!This is not a date."));
    EXPECT_EQ(converted(type(Kind::Time), "23:59:59.5"), q("23:59:59.5"));
    EXPECT_EQ(converted(type(Kind::Time), "24:00"), q("!This is not a time."));
}

TEST(ImportConverter, RefusesDatesThatAServerWouldChange)
{
    KNImportColumnType datetime = type(Kind::DateAndTime);
    datetime.fractionDigits = 3;
    datetime.firstYear = 1753;
    EXPECT_EQ(converted(datetime, "1752-12-31"), q("!The column holds the years 1753 to 9999."));
    EXPECT_EQ(converted(datetime, "2024-01-01 00:00:00.1234"),
              q("!The seconds have 4 decimals, the column keeps 3."));
    EXPECT_EQ(converted(datetime, "2024-01-01 00:00:00.1230000"), q("2024-01-01T00:00:00.123"));
    datetime.fractionDigits = -1;
    EXPECT_EQ(converted(datetime, "2024-01-01 00:00:01"), q("!The column keeps no seconds."));
}

TEST(ImportConverter, RefusesMillisecondsThatAServerWouldRound)
{
    KNImportColumnType datetime = type(Kind::DateAndTime);
    datetime.fractionDigits = 3;
    datetime.keepsThirdsOfCentiseconds = true;
    EXPECT_EQ(converted(datetime, "2024-01-01 23:59:59.000"), q("2024-01-01T23:59:59"));
    EXPECT_EQ(converted(datetime, "2024-01-01 23:59:59.12"), q("2024-01-01T23:59:59.12"));
    for (const char *const kept : {"2024-01-01T23:59:59.003", "2024-01-01T23:59:59.007",
                                   "2024-01-01T23:59:59.123", "2024-01-01T23:59:59.997"})
        EXPECT_EQ(converted(datetime, kept), q(kept));
    for (const char *const rounded : {"2024-01-01 23:59:59.001", "2024-01-01 23:59:59.005",
                                      "2024-01-01 23:59:59.998", "2024-01-01 23:59:59.999"})
        EXPECT_EQ(converted(datetime, rounded), q("!The column keeps .000, .003 and .007 seconds only."));
}

TEST(ImportConverter, ReadsDatesOfOtherFormats)
{
    KNImportValueFormat format;
    format.dateFormat = QStringLiteral("d.M.yyyy");
    EXPECT_EQ(converted(type(Kind::Date), "1.2.2024", format), q("2024-02-01"));
    EXPECT_EQ(converted(type(Kind::Date), "2024-02-01", format), q("!This is not a date."));
}

TEST(ImportConverter, ReadsBooleansGuidsAndBytes)
{
    EXPECT_EQ(converted(type(Kind::Boolean), "Yes"), q("1"));
    EXPECT_EQ(converted(type(Kind::Boolean), "FALSE"), q("0"));
    EXPECT_EQ(converted(type(Kind::Boolean), "2"), q("!This is neither true nor false."));
    EXPECT_EQ(converted(type(Kind::Guid), "{6f9619ff-8b86-d011-b42d-00c04fc964ff}"),
              q("6F9619FF-8B86-D011-B42D-00C04FC964FF"));
    EXPECT_EQ(converted(type(Kind::Guid), "00000000-0000-0000-0000-000000000000"),
              q("00000000-0000-0000-0000-000000000000"));
    for (const char *const other :
         {"x", "6f9619ff", "6f9619ff-8b86-d011-b42d-00c04fc964ff; see note",
          "6f9619ff-8b86-d011-b42d-00c04fc964ff0", "{6f9619ff-8b86-d011-b42d-00c04fc964ff",
          "6f9619ff-8b86-d011-b42d-00c04fc964ff}", "000000000000000000000000000000000-0-0",
          "{00000000-0000-0000-0000-000000000000"})
        EXPECT_EQ(converted(type(Kind::Guid), other), q("!This is not a GUID.")) << other;
    EXPECT_EQ(converted(type(Kind::Binary), "0x0aFF"), q("0x0AFF"));
    EXPECT_EQ(converted(type(Kind::Binary), "0xA"), q("!This is not 0x and pairs of hexadecimal digits."));
}

TEST(ImportConverter, RefusesTextThatIsTooLongOrCannotBeSent)
{
    KNImportColumnType text = type(Kind::Text);
    text.maximumLength = 3;
    EXPECT_EQ(converted(text, "abc"), q("abc"));
    EXPECT_EQ(converted(text, "abcd"), q("!The text has 4 characters, the column holds 3."));
    EXPECT_EQ(converted(text, QString(QChar())), q("!The text contains U+0000 or half of a surrogate pair."));
    EXPECT_EQ(converted(text, QString(QChar(0xd800))),
              q("!The text contains U+0000 or half of a surrogate pair."));
}

TEST(ImportConverter, TakesEmptyValuesAsAsked)
{
    using Empty = KNImportValueFormat::Empty;
    const KNImportColumnType text = type(Kind::Text);
    EXPECT_EQ(converted(text, QString()), q("NULL"));
    EXPECT_EQ(converted(text, QStringLiteral("")), q(""));
    EXPECT_EQ(converted(text, QStringLiteral(""), {Empty::Null}), q("NULL"));
    EXPECT_EQ(converted(text, QString(), {Empty::Text}), q(""));
    EXPECT_EQ(converted(text, QString(), {}, false), q("!The column takes no NULL."));
}

TEST(ImportColumnAnalysis, FindsTypesAndExtremes)
{
    const auto numbers = analysis({"5", "", "-3", "2147483648"});
    EXPECT_EQ(numbers.dataType(), KNImportColumnAnalysis::Numeric);
    EXPECT_EQ(numbers.maxNumericValue(), 2147483648);
    EXPECT_EQ(numbers.minNumericValue(), -3);
    EXPECT_EQ(numbers.nullCount(), 1U);
    EXPECT_FALSE(numbers.isDecimal());
    EXPECT_TRUE(analysis({"1", "2.50"}).isDecimal());
    EXPECT_EQ(analysis({"1", "2.50"}).fractionDigits(), 1);
    EXPECT_EQ(analysis({"99999999999999999999"}).maxNumericValue(), std::numeric_limits<qint64>::max());
    EXPECT_EQ(analysis({"2024-02-29", "2024-03-01 12:00"}).dataType(), KNImportColumnAnalysis::Date);
}

TEST(ImportColumnAnalysis, KeepsTextsThatOnlyLookLikeNumbers)
{
    for (const char *text : {"007", "1,234", "$5", "+1", " 1", "0x10"})
        EXPECT_EQ(analysis({"1", text}).dataType(), KNImportColumnAnalysis::Text) << text;
    EXPECT_EQ(analysis({"0", "0.5"}).dataType(), KNImportColumnAnalysis::Numeric);
    EXPECT_EQ(analysis({"", ""}).dataType(), KNImportColumnAnalysis::Text);
    EXPECT_EQ(analysis({"ab", "abcde"}).maxLength(), 5U);
}

} // namespace KNImportConverterTests
