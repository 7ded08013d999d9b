#include "Vantor/Desktop/Query/ResultEditingTest.h"

#include <cfloat>
#include <cstring>

namespace {

/// New rows of a table whose key the server makes.
class NewRow : public ResultEditingTest
{
protected:
    ~NewRow() override
    {
        execute("IF OBJECT_ID('dbo.NewRows') IS NOT NULL DROP TABLE dbo.NewRows");
        execute("IF OBJECT_ID('dbo.OtherRows') IS NOT NULL DROP TABLE dbo.OtherRows");
    }

    /// Adds a row with a name, in column 1 of the shown table.
    void add(const char *name)
    {
        press(Qt::Key_Insert, Qt::ControlModifier);
        type(grid().model()->rowCount() - 1, 1, q(name));
    }
    KNValue storedValue(int row, int column) const { return grid().resultModel().storedValue(row, column); }
};

} // namespace

TEST_F(NewRow, ShowsItsIdentityAndDefaults)
{
    execute("CREATE TABLE dbo.NewRows (id int IDENTITY(10, 5) NOT NULL PRIMARY KEY, name nvarchar(20) NULL, "
            "state varchar(10) NOT NULL DEFAULT 'fresh', twice AS id * 2)");
    open("SELECT id, name, state, twice FROM dbo.NewRows");
    add("first");
    add("second");
    applyAll();
    EXPECT_TRUE(alerts.messages.empty());
    ASSERT_EQ(grid().model()->rowCount(), 2);
    EXPECT_EQ(shown(0, 0), q("10"));
    EXPECT_EQ(shown(0, 1), q("first"));
    EXPECT_EQ(shown(0, 2), q("fresh"));
    EXPECT_EQ(shown(0, 3), q("20"));
    EXPECT_EQ(shown(1, 0), q("15"));
    EXPECT_EQ(shown(1, 1), q("second"));
}

TEST_F(NewRow, ShowsItsOwnIdentityAndNotThatOfATrigger)
{
    execute("CREATE TABLE dbo.OtherRows (id int IDENTITY(900, 1) NOT NULL PRIMARY KEY, what nvarchar(20))");
    execute("CREATE TABLE dbo.NewRows (id int IDENTITY(1, 1) NOT NULL PRIMARY KEY, name nvarchar(20) NULL)");
    execute("CREATE TRIGGER dbo.NewRowsLog ON dbo.NewRows AFTER INSERT AS INSERT INTO dbo.OtherRows (what) "
            "SELECT name FROM inserted");
    open("SELECT id, name FROM dbo.NewRows");
    add("logged");
    applyAll();
    EXPECT_EQ(shown(0, 0), q("1"));
    EXPECT_EQ(shown(0, 1), q("logged"));
    EXPECT_EQ(stored("SELECT what FROM dbo.OtherRows"), q("logged"));
}

TEST_F(NewRow, ShowsAKeyThatIsADefault)
{
    execute("CREATE TABLE dbo.NewRows (id uniqueidentifier NOT NULL PRIMARY KEY DEFAULT newid(), name "
            "nvarchar(20) NULL)");
    open("SELECT id, name FROM dbo.NewRows");
    add("anything");
    applyAll();
    EXPECT_TRUE(alerts.messages.empty());
    EXPECT_EQ(shown(0, 0), stored("SELECT id FROM dbo.NewRows"));
    EXPECT_EQ(shown(0, 0).size(), 36);
    EXPECT_EQ(shown(0, 1), q("anything"));
}

TEST_F(NewRow, SaysThatAKeyCannotBeKnown)
{
    execute("CREATE TABLE dbo.NewRows (id decimal(5, 2) NOT NULL PRIMARY KEY DEFAULT 1.25, name "
            "nvarchar(20) NULL)");
    open("SELECT id, name FROM dbo.NewRows");
    add("anything");
    applyAll();
    ASSERT_EQ(alerts.messages.size(), 1U);
    EXPECT_EQ(shown(0, 1), q("anything"));
    EXPECT_EQ(stored("SELECT id FROM dbo.NewRows"), q("1.25"));
}

TEST_F(NewRow, KeepsEveryBitOfAFloat)
{
    const double extremes[] = {0.1,
                               1.0 / 3.0,
                               DBL_MAX,
                               -DBL_MAX,
                               DBL_MIN,
                               123456789.12345679,
                               9007199254740993.0,
                               0.30000000000000004};
    execute("CREATE TABLE dbo.NewRows (id int NOT NULL PRIMARY KEY, f float NULL, r real NULL)");
    open("SELECT id, f, r FROM dbo.NewRows");
    int row = 0;
    for (const double number : extremes) {
        press(Qt::Key_Insert, Qt::ControlModifier);
        const auto cell = [&](int column) { return grid().model()->index(row, column); };
        ASSERT_TRUE(editing()->setText(cell(0), QString::number(row)));
        ASSERT_TRUE(editing()->setText(cell(1), QString::number(number, 'g', 17)));
        if (std::abs(number) < FLT_MAX && std::abs(number) > FLT_MIN) {
            ASSERT_TRUE(editing()->setText(cell(2), QString::number(number, 'g', 17)));
        }
        ++row;
    }
    applyAll();
    open("SELECT id, f, r FROM dbo.NewRows ORDER BY id");
    row = 0;
    for (const double number : extremes) {
        const double stored = storedValue(row, 1).toDouble();
        EXPECT_EQ(std::memcmp(&stored, &number, sizeof stored), 0) << number << " became " << stored;
        if (std::abs(number) < FLT_MAX && std::abs(number) > FLT_MIN) {
            EXPECT_EQ(storedValue(row, 2).toDouble(), static_cast<double>(static_cast<float>(number)))
                << number;
        }
        ++row;
    }
}
