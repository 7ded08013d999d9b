#include "RowEditing/KNTypedValue.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

using Input = KNTypedValue::Input;

namespace {

/// The display text of the value that is read; "!" and nothing else where there is none.
std::string readAs(Input input, const char *text)
{
    QString problem;
    const auto value = KNTypedValue::read(QString::fromUtf8(text), input, &problem);
    EXPECT_EQ(problem.isEmpty(), value.has_value());
    return value ? value->displayText().toStdString() : "!";
}

KNValue::Kind kindOf(Input input, const char *text)
{
    QString problem;
    return KNTypedValue::read(QString::fromUtf8(text), input, &problem).value_or(KNValue()).kind();
}

} // namespace

TEST(KNTypedValue, KeepsTextAsItIs)
{
    EXPECT_EQ(readAs(Input::Text, " a\r\nb "), " a\r\nb ");
    EXPECT_EQ(kindOf(Input::Text, ""), KNValue::Kind::Text);
    EXPECT_EQ(readAs(Input::Text, "NULL"), "NULL");
}

TEST(KNTypedValue, ReadsNumbersToTheLastDigit)
{
    EXPECT_EQ(readAs(Input::Integer, " 9223372036854775807 "), "9223372036854775807");
    EXPECT_EQ(readAs(Input::Integer, "-9223372036854775808"), "-9223372036854775808");
    EXPECT_EQ(readAs(Input::Integer, "9223372036854775808"), "!");
    EXPECT_EQ(readAs(Input::Integer, "1.0"), "!");
    EXPECT_EQ(readAs(Input::Integer, ""), "!");
    EXPECT_EQ(readAs(Input::Number, "12345678901234567890123456789012345678"),
              "12345678901234567890123456789012345678");
    EXPECT_EQ(readAs(Input::Number, "-0.10"), "-0.10");
    EXPECT_EQ(kindOf(Input::Number, "12.50"), KNValue::Kind::Decimal);
    EXPECT_EQ(kindOf(Input::Number, "1e300"), KNValue::Kind::Double);
    for (const char *text :
         {"1,5", "nan", "inf", "0x10", "1e999", "123456789012345678901234567890123456789", "."})
        EXPECT_EQ(readAs(Input::Number, text), "!") << text;
}

TEST(KNTypedValue, ReadsDatesThatExistAsIsoText)
{
    EXPECT_EQ(readAs(Input::Date, "2024-02-29"), "2024-02-29");
    EXPECT_EQ(readAs(Input::Date, "2023-02-29"), "!");
    EXPECT_EQ(readAs(Input::Date, "29.02.2024"), "!");
    EXPECT_EQ(readAs(Input::DateAndTime, "2024-02-29 1:02"), "2024-02-29T01:02:00");
    EXPECT_EQ(readAs(Input::DateAndTime, "2024-02-29T13:45:07.1234567"), "2024-02-29T13:45:07.1234567");
    EXPECT_EQ(readAs(Input::DateAndTime, "2024-02-29 13:45:07 +02:00"), "2024-02-29T13:45:07+02:00");
    EXPECT_EQ(readAs(Input::DateAndTime, "2024-02-29"), "2024-02-29T00:00:00");
    EXPECT_EQ(readAs(Input::DateAndTime, "2024-02-29 24:00"), "!");
    EXPECT_EQ(readAs(Input::DateAndTime, "2024-02-29 13:45:07.12345678"), "!");
    EXPECT_EQ(readAs(Input::Time, "7:05"), "07:05:00");
    EXPECT_EQ(readAs(Input::Time, "13:60:00"), "!");
    EXPECT_EQ(kindOf(Input::Date, "2024-02-29"), KNValue::Kind::Text);
}

TEST(KNTypedValue, ReadsBooleansGuidsAndBytes)
{
    EXPECT_EQ(kindOf(Input::Boolean, "True"), KNValue::Kind::Bool);
    EXPECT_EQ(readAs(Input::Boolean, "0"), "0");
    EXPECT_EQ(readAs(Input::Boolean, "2"), "!");
    EXPECT_EQ(readAs(Input::Guid, "{6f9619ff-8b86-d011-b42d-00c04fc964ff}"),
              "6F9619FF-8B86-D011-B42D-00C04FC964FF");
    EXPECT_EQ(readAs(Input::Guid, "00000000-0000-0000-0000-000000000000"),
              "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(readAs(Input::Guid, "6f9619ff"), "!");
    EXPECT_EQ(readAs(Input::Guid, "6f9619ff-8b86-d011-b42d-00c04fc964ff; see note"), "!");
    EXPECT_EQ(readAs(Input::Guid, "{6f9619ff-8b86-d011-b42d-00c04fc964ff"), "!");
    EXPECT_EQ(readAs(Input::Guid, "0-0"), "!");
    EXPECT_EQ(readAs(Input::Binary, "0x0aFF"), "0x0AFF");
    EXPECT_EQ(readAs(Input::Binary, "0x"), "0x");
    EXPECT_EQ(kindOf(Input::Binary, "0x"), KNValue::Kind::Bytes);
    EXPECT_EQ(readAs(Input::Binary, "0xABC"), "!");
    EXPECT_EQ(readAs(Input::Binary, "AB"), "!");
}
