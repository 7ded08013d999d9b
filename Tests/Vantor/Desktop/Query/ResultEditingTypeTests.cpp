#include "Foundation/KNFormat.h"
#include "Vantor/Desktop/Query/ResultEditingTest.h"

namespace {

/// A column of every type that takes text, number, date or bytes, with its extremes as a user types them and
/// as the server has them then.
struct TypedColumn
{
    const char *type;
    const char *typed;
    const char *stored; ///< as the server casts it to text or bytes; null for `typed`
};

constexpr TypedColumn typedColumns[] = {
    {"bigint", "-9223372036854775808", nullptr},
    {"bigint", "9223372036854775807", nullptr},
    {"int", "-2147483648", nullptr},
    {"smallint", "-32768", nullptr},
    {"tinyint", "255", nullptr},
    {"bit", "1", nullptr},
    {"decimal(38,10)", "-1234567890123456789012345678.0123456789", nullptr},
    {"numeric(9,2)", "-1234567.89", nullptr},
    {"money", "-922337203685477.5808", nullptr},
    {"smallmoney", "214748.3647", nullptr},
    {"float", "1.7976931348623157e308", "1.7976931348623157e+308"},
    {"float", "0.30000000000000004", nullptr},
    {"real", "3.402823e38", "3.402823e+38"},
    {"date", "0001-01-01", nullptr},
    {"datetime", "9999-12-31 23:59:59.997", nullptr},
    {"smalldatetime", "2079-06-06 23:59", "2079-06-06 23:59:00"},
    {"datetime2(7)", "9999-12-31 23:59:59.9999999", nullptr},
    {"datetimeoffset(7)", "2024-02-29 12:34:56.1234567 +05:30", nullptr},
    {"time(7)", "23:59:59.9999999", nullptr},
    {"char(10)", "O'Brien", "O'Brien   "},
    {"varchar(50)", "caf\xC3\xA9", nullptr},
    {"nvarchar(50)", "\xE2\x82\xAC \xF0\x9F\x98\x80 ''", nullptr},
    {"nvarchar(max)", "x\xC5\x81y", nullptr},
    {"uniqueidentifier", "6f9619ff-8b86-d011-b42d-00c04fc964ff", "6F9619FF-8B86-D011-B42D-00C04FC964FF"},
    {"binary(4)", "0x0AFF", "0x0AFF0000"},
    {"varbinary(20)", "0x00FF00", nullptr},
    {"varbinary(max)", "0x", nullptr},
    {"xml", "<a b=\"c\">\xC3\xA9</a>", nullptr},
};

class ResultEditingOfATypedColumn : public ResultEditingTest, public testing::WithParamInterface<TypedColumn>
{
};

} // namespace

TEST_P(ResultEditingOfATypedColumn, StoresTheTypedValueAndNullAndTheValueAgain)
{
    const TypedColumn &column = GetParam();
    execute(KNFormat("CREATE TABLE dbo.TypedRow (id int NOT NULL PRIMARY KEY, v %@ NULL)", column.type)
                .toUtf8()
                .constData());
    execute("INSERT INTO dbo.TypedRow (id) VALUES (1)");
    const QString expected = q(column.stored ? column.stored : column.typed);
    const auto readBack = [&] {
        const KNResultTableModel &model = grid().resultModel();
        return model.storedValue(0, 1).displayText();
    };
    open("SELECT id, v FROM dbo.TypedRow");
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(editing()->setText(grid().model()->index(0, 1), q(column.typed)))
            << bar().text().toStdString();
        applyAll();
        EXPECT_EQ(readBack(), expected);
        run("SELECT id, v FROM dbo.TypedRow");
        EXPECT_EQ(readBack(), expected) << "another value was stored than read back";
        open("SELECT id, v FROM dbo.TypedRow");
        select(0, 1);
        press(Qt::Key_0, Qt::ControlModifier);
        applyAll();
        EXPECT_TRUE(grid().resultModel().storedValue(0, 1).isNull());
    }
    execute("DROP TABLE dbo.TypedRow");
}

INSTANTIATE_TEST_SUITE_P(Types, ResultEditingOfATypedColumn, testing::ValuesIn(typedColumns));

namespace {

class ResultEditingOfAKey : public ResultEditingTest, public testing::WithParamInterface<TypedColumn>
{
};

} // namespace

TEST_P(ResultEditingOfAKey, FindsItsRow)
{
    execute(KNFormat("CREATE TABLE dbo.KeyedRow (k %@ NOT NULL PRIMARY KEY, v int NULL)", GetParam().type)
                .toUtf8()
                .constData());
    execute(KNFormat("INSERT INTO dbo.KeyedRow (k) VALUES (%@)", GetParam().typed).toUtf8().constData());
    open("SELECT k, v FROM dbo.KeyedRow");
    ASSERT_TRUE(editing()->setText(grid().model()->index(0, 1), q("42")));
    applyAll();
    EXPECT_EQ(stored("SELECT v FROM dbo.KeyedRow"), q("42"));
    execute("DROP TABLE dbo.KeyedRow");
}

INSTANTIATE_TEST_SUITE_P(
    Keys, ResultEditingOfAKey,
    testing::Values(TypedColumn{"float", "0.1e0 + 0.2e0", nullptr},
                    TypedColumn{"real", "CAST(0.1 AS real)", nullptr},
                    TypedColumn{"datetime", "'2024-02-29T13:45:07.123'", nullptr},
                    TypedColumn{"datetime2(7)", "'2024-02-29T13:45:07.1234567'", nullptr},
                    TypedColumn{"date", "'2024-02-29'", nullptr},
                    TypedColumn{"nvarchar(20)", "N'O''\xE2\x82\xAC'", nullptr},
                    TypedColumn{"money", "-922337203685477.5808", nullptr},
                    TypedColumn{"varbinary(8)", "0x00FF", nullptr},
                    TypedColumn{"uniqueidentifier", "'6F9619FF-8B86-D011-B42D-00C04FC964FF'", nullptr}));
