#include "RowEditing/MSSQLEditRowHelper.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

namespace EditRowColumnsTests {

namespace {

/// The columns of a row form, as the catalog answers.
class EditRowColumns : public TreeTest
{
protected:
    QList<KNEditRowColumn> load()
    {
        MSSQLEditRowHelper row(server->settings(), QStringLiteral("dbo"), QStringLiteral("T"), std::nullopt);
        row.loadTableColumns();
        return row.tableColumns();
    }
};

} // namespace

TEST_F(EditRowColumns, AreOneForRowsOfOneName)
{
    server->answer("ColumnsForTable", {{"id", "int", nullptr, 10, 0, 0, 1, "((1))", 1},
                                       {"name", "nvarchar", 20, nullptr, nullptr, 1, 0, nullptr, 0},
                                       {"id", "int", nullptr, 10, 0, 0, 0, "((2))", 0}});
    const auto columns = load();
    ASSERT_EQ(columns.size(), 2);
    EXPECT_EQ(columns[0].columnName, QStringLiteral("id"));
    EXPECT_TRUE(columns[0].isPrimaryKey && columns[0].isIdentity) << "the first row counts";
    EXPECT_EQ(columns[0].columnDefaultValue, QStringLiteral("((1))"));
    EXPECT_EQ(columns[1].columnName, QStringLiteral("name"));
}

TEST_F(EditRowColumns, AreInTheKeyWhenTheFlagIsNotZero)
{
    server->answer("ColumnsForTable", {{"a", "int", nullptr, 10, 0, 0, 2},
                                       {"b", "int", nullptr, 10, 0, 0, 1},
                                       {"c", "int", nullptr, 10, 0, 0, 0},
                                       {"d", "int", nullptr, 10, 0, 0, nullptr}});
    const auto columns = load();
    ASSERT_EQ(columns.size(), 4);
    EXPECT_TRUE(columns[0].isPrimaryKey);
    EXPECT_TRUE(columns[1].isPrimaryKey);
    EXPECT_FALSE(columns[2].isPrimaryKey);
    EXPECT_FALSE(columns[3].isPrimaryKey);
}

TEST_F(EditRowColumns, AreNoneAfterAnErrorInTheMiddle)
{
    server->answer(QStringLiteral("ColumnsForTable"), [](const QString &, KNError *error) {
        *error = Failure;
        return FakeCatalog::Rows{{"id", "int", nullptr, 10, 0, 0, 1}};
    });
    EXPECT_TRUE(load().isEmpty());
    EXPECT_TRUE(wasLogged("No."));
}

} // namespace EditRowColumnsTests
