#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "RowEditing/MSSQLEditRowHelper.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <gtest/gtest.h>

namespace EditRowHelperTests {

using ReadBack = KNEditRowHelper::ReadBack;
using Values = KNEditRowHelper::Values;

namespace {

/// Rows of row.Edited; dbo.Edited beside it must not be touched.
class EditRowHelper : public testing::Test
{
protected:
    EditRowHelper()
    {
        m_settings->setDatabase(q("shop"));
        m_settings->setConnectionId(q("edit-row-tests"));
        m_client = WireTest::connectedClient(m_settings);
        WireTest::run(*m_client, q("IF SCHEMA_ID('row') IS NULL EXEC('CREATE SCHEMA row')"));
        for (const char *schema : {"dbo", "row"})
            WireTest::run(
                *m_client,
                KNFormat(
                    "CREATE TABLE %@.Edited (id int NOT NULL PRIMARY KEY, name nvarchar(40) NULL "
                    "DEFAULT 'new', amount decimal(38,10) NULL, half float NULL, stamp datetime2(7) NULL, "
                    "raw varbinary(20) NULL, double_id AS id * 2); INSERT INTO %@.Edited (id) VALUES (1)",
                    schema, schema));
    }
    ~EditRowHelper() override
    {
        EXPECT_EQ(WireTest::scalar(*m_client, q("SELECT COUNT(*) FROM dbo.Edited WHERE id = 1 AND "
                                                "name = 'new' AND amount IS NULL")),
                  KNValue(1))
            << "the other table was changed";
        WireTest::run(*m_client, q("DROP TABLE dbo.Edited; DROP TABLE row.Edited"));
    }

    MSSQLEditRowHelper rowWith(const std::optional<Values> &initial) const
    {
        return MSSQLEditRowHelper(m_settings, q("row"), q("Edited"), initial);
    }
    static void set(KNEditRowHelper &row, const char *column, const KNValue &value)
    {
        for (qsizetype i = 0; i < row.tableColumns().size(); ++i) {
            if (row.tableColumns()[i].columnName == q(column))
                return row.setColumnValue(i, value);
        }
        ADD_FAILURE() << column;
    }
    static KNValue valueOf(const KNEditRowHelper &row, const char *column)
    {
        for (const KNEditRowColumn &each : row.tableColumns()) {
            if (each.columnName == q(column))
                return each.columnCurrentValue;
        }
        ADD_FAILURE() << column;
        return {};
    }

    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_settings =
        WireTest::settings(SampleServerFixture::shared().port());
    std::unique_ptr<MSSQLClient> m_client;
};

} // namespace

TEST_F(EditRowHelper, LoadsTheColumnsInTheOrderOfTheTable)
{
    MSSQLEditRowHelper row = rowWith(Values{{q("name"), KNValue(q("x"))}});
    row.loadTableColumns();
    QStringList names;
    for (const KNEditRowColumn &column : row.tableColumns())
        names.append(column.columnName);
    EXPECT_EQ(names, QStringList(
                         {q("id"), q("name"), q("amount"), q("half"), q("stamp"), q("raw"), q("double_id")}));
    EXPECT_TRUE(row.tableColumns()[0].isPrimaryKey);
    EXPECT_FALSE(row.tableColumns()[0].isNullable);
    EXPECT_EQ(row.tableColumns()[1].columnCurrentValue, KNValue(q("x")));
    EXPECT_EQ(row.tableColumns()[1].columnDefaultValue, q("('new')"));
    EXPECT_EQ(row.tableColumns()[1].typeName, q("nvarchar(40)"));
    EXPECT_EQ(row.tableColumns()[2].input, KNTypedValue::Input::Number);
    EXPECT_TRUE(row.tableColumns()[6].isReadOnly);
    EXPECT_FALSE(row.hasModifications());
}

TEST_F(EditRowHelper, ShowsNoColumnsOfATableThatDoesNotExist)
{
    MSSQLEditRowHelper row(m_settings, q("row"), q("Missing"), std::nullopt);
    row.loadTableColumns();
    EXPECT_TRUE(row.tableColumns().isEmpty());
}

TEST_F(EditRowHelper, AddsARowAndReadsWhatTheServerStored)
{
    for (const bool corrected : {false, true}) {
        MSSQLEditRowHelper row = rowWith(std::nullopt);
        row.loadTableColumns();
        set(row, "id", KNValue(corrected ? 3 : 2));
        set(row, "amount", KNValue(*KNDecimal::fromString(q("1234567890123456789012345678.0123456789"))));
        set(row, "half", KNValue(0.1));
        set(row, "stamp", KNValue(q("2024-02-29T23:59:59.1234567")));
        set(row, "raw", KNValue(QByteArray("\x00\xff", 2)));
        KNError error;
        ASSERT_TRUE(row.applyChanges(corrected, &error)) << error.localizedDescription().toStdString();
        EXPECT_EQ(row.readBack(), ReadBack::Made);
        EXPECT_EQ(valueOf(row, "name"), KNValue(q("new")));
        EXPECT_EQ(valueOf(row, "amount").displayText(), q("1234567890123456789012345678.0123456789"));
        EXPECT_EQ(valueOf(row, "half"), KNValue(0.1));
        EXPECT_EQ(valueOf(row, "stamp").displayText(), q("2024-02-29 23:59:59.1234567"));
        EXPECT_EQ(valueOf(row, "raw").bytes(), QByteArray("\x00\xff", 2));
        EXPECT_EQ(valueOf(row, "double_id").toInt64(), corrected ? 6 : 4);
    }
}

TEST_F(EditRowHelper, ChangesARowInBothForms)
{
    for (const bool corrected : {false, true}) {
        MSSQLEditRowHelper row = rowWith(Values{{q("id"), KNValue(1)}});
        row.loadTableColumns();
        const QString text = q("O'Brien \xE2\x82\xAC \xF0\x9F\x98\x80");
        set(row, "name", KNValue(text));
        set(row, "half", KNValue());
        KNError error;
        ASSERT_TRUE(row.applyChanges(corrected, &error)) << error.localizedDescription().toStdString();
        EXPECT_EQ(row.readBack(), ReadBack::Made);
        EXPECT_EQ(valueOf(row, "name"), KNValue(text));
        EXPECT_EQ(WireTest::scalar(*m_client, q("SELECT name FROM row.Edited WHERE id = 1")), KNValue(text));
        WireTest::run(*m_client, q("UPDATE row.Edited SET name = NULL"));
    }
}

TEST_F(EditRowHelper, FindsNoRowByAnEditedKey)
{
    MSSQLEditRowHelper row = rowWith(Values{{q("id"), KNValue(1)}});
    row.loadTableColumns();
    set(row, "id", KNValue(77));
    set(row, "half", KNValue(0.5));
    KNError error;
    EXPECT_TRUE(row.applyChanges(false, &error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(row.readBack(), ReadBack::NotFound);
    EXPECT_TRUE(row.hasModifications());
    EXPECT_EQ(WireTest::scalar(*m_client, q("SELECT COUNT(*) FROM row.Edited WHERE half IS NOT NULL")),
              KNValue(0));
}

TEST_F(EditRowHelper, ReportsTheServersErrorAndKeepsTheValues)
{
    const struct
    {
        std::optional<Values> initial;
        const char *column;
        KNValue value;
    } cases[] = {
        {std::nullopt, nullptr, {}},                  // an INSERT with empty lists
        {Values{{q("id"), KNValue(1)}}, nullptr, {}}, // an UPDATE without changes
        {std::nullopt, "id", KNValue(1)},             // the key exists
        {std::nullopt, "amount", KNValue(q("abc"))},  // no number
    };
    for (const auto &one : cases) {
        MSSQLEditRowHelper row = rowWith(one.initial);
        row.loadTableColumns();
        if (one.column)
            set(row, one.column, one.value);
        KNError error;
        EXPECT_FALSE(row.applyChanges(false, &error));
        EXPECT_TRUE(error);
        EXPECT_EQ(row.readBack(), ReadBack::NotMade);
        if (one.column) {
            EXPECT_EQ(valueOf(row, one.column), one.value);
        }
    }
}

TEST_F(EditRowHelper, HasNoReadBackWithoutTheKey)
{
    WireTest::run(*m_client, q("CREATE TABLE row.Numbered (id int IDENTITY PRIMARY KEY, name nvarchar(10))"));
    MSSQLEditRowHelper row(m_settings, q("row"), q("Numbered"), std::nullopt);
    row.loadTableColumns();
    set(row, "name", KNValue(q("a")));
    KNError error;
    EXPECT_TRUE(row.applyChanges(false, &error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(row.readBack(), ReadBack::NotMade);
    EXPECT_EQ(WireTest::scalar(*m_client, q("SELECT COUNT(*) FROM row.Numbered")), KNValue(1));
    WireTest::run(*m_client, q("DROP TABLE row.Numbered"));
}

TEST_F(EditRowHelper, WritesTheRowAndCannotReadItWhereANameIsNotQuoted)
{
    WireTest::run(*m_client,
                  q("CREATE TABLE row.Spaced ([the id] int PRIMARY KEY, [the ]] name] nvarchar(10))"));
    for (const bool corrected : {false, true}) {
        MSSQLEditRowHelper row(m_settings, q("row"), q("Spaced"), std::nullopt);
        row.loadTableColumns();
        set(row, "the id", KNValue(corrected ? 2 : 1));
        EXPECT_EQ(row.generateQuery().difference,
                  q("Reading the row again afterwards would fail, or read another row."));
        KNError error;
        EXPECT_EQ(row.applyChanges(corrected, &error), corrected);
        EXPECT_EQ(row.readBack(), corrected ? ReadBack::Made : ReadBack::Failed);
        EXPECT_EQ(WireTest::scalar(*m_client, q("SELECT COUNT(*) FROM row.Spaced")),
                  KNValue(corrected ? 2 : 1));
    }
    WireTest::run(*m_client, q("DROP TABLE row.Spaced"));
}

TEST_F(EditRowHelper, AssertsThatAnErrorIsAskedFor)
{
    MSSQLEditRowHelper row = rowWith(std::nullopt);
    try {
        row.applyChanges(false, nullptr);
        FAIL();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), q("Error must be specified."));
        EXPECT_EQ(failure.sourcePath(), q("Implementations/MSSQLEditRowHelper"));
    }
}

} // namespace EditRowHelperTests
