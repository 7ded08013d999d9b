#include "Autocomplete/MSSQLAutocompleteEntires.h"

#include "Support/PrintQt.h"
#include "Support/TestText.h"

#include <gtest/gtest.h>

#include <malloc.h>

namespace {

QStringList namesOf(const MSSQLAutocompleteEntires::List &entries)
{
    QStringList names;
    for (const KNDatabaseAutocompleteEntry *entry : entries)
        names.append(entry->entryName());
    return names;
}

/// Two schemas with a table of the same name, and a table whose name a schema has, too.
void fill(MSSQLAutocompleteEntires *entires)
{
    entires->addColumn(q("dbo"), q("Orders"), q("OrderId"), q("int"));
    entires->addColumn(q("dbo"), q("Orders"), q("customer"), q("nvarchar(60)"));
    entires->addColumn(q("dbo"), q("sales"), q("Total"), q("money"));
    entires->addColumn(q("sales"), q("Orders"), q("OrderId"), q("bigint"));
}

} // namespace

TEST(AutocompleteEntires, KeepEntriesInTheOrderOfTheQuery)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(q("dbo"));
    EXPECT_EQ(namesOf(entires.schemas()), QStringList({q("dbo"), q("sales")}));
    EXPECT_EQ(namesOf(entires.tables()), QStringList({q("Orders"), q("sales"), q("Orders")}));
    EXPECT_EQ(namesOf(entires.columns()),
              QStringList({q("OrderId"), q("customer"), q("Total"), q("OrderId")}));
    const KNDatabaseAutocompleteEntry &column = *entires.columns()[1];
    EXPECT_EQ(column.entryCompletionType(), 8);
    EXPECT_EQ(column.entryDetails(), q("nvarchar(60)"));
    EXPECT_EQ(column.entryParentDisplay(), q("dbo.Orders"));
    EXPECT_EQ(column.entryParent(), entires.tables()[0]);
    EXPECT_EQ(column.entryParent()->entryCompletionType(), 4);
    EXPECT_EQ(column.entryParent()->entryParentDisplay(), q("dbo"));
    EXPECT_EQ(column.entryParent()->entryParent()->entryCompletionType(), 2);
}

TEST(AutocompleteEntires, ReuseSchemaAndTableWhoseNamesDifferInCaseOnly)
{
    MSSQLAutocompleteEntires entires;
    entires.addColumn(q("dbo"), q("Orders"), q("a"), {});
    entires.addColumn(q("DBO"), q("ORDERS"), q("b"), {});
    EXPECT_EQ(entires.schemas().size(), 1);
    EXPECT_EQ(entires.tables().size(), 1);
    EXPECT_EQ(entires.tables()[0]->entryChildren().size(), 2);
}

TEST(AutocompleteEntires, SortNamesWithoutRegardToCaseAndWithoutDuplicates)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(q("dbo"));
    EXPECT_EQ(entires.columnNames(), QStringList({q("customer"), q("OrderId"), q("Total")}));
    EXPECT_EQ(entires.tableNames(), QStringList({q("Orders"), q("sales")}));
    EXPECT_EQ(entires.schemaNames(), QStringList({q("dbo"), q("sales")}));
    EXPECT_EQ(entires.allPossibleNamesForAlias(), QStringList({q("dbo"), q("dbo.orders"), q("dbo.sales"),
                                                               q("orders"), q("sales"), q("sales.orders")}));
}

TEST(AutocompleteEntires, FindTablesOfTheDefaultSchemaByTheirBareNames)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(q("DBO"));
    EXPECT_EQ(namesOf(entires.columnsForTableAndOrSchema(q("dbo.ORDERS"))),
              QStringList({q("OrderId"), q("customer")}));
    EXPECT_EQ(namesOf(entires.columnsForTableAndOrSchema(q("Orders"))),
              QStringList({q("OrderId"), q("customer")}));
    EXPECT_EQ(namesOf(entires.columnsForTableAndOrSchema(q("sales.orders"))), QStringList(q("OrderId")));
}

TEST(AutocompleteEntires, FindEveryTableByItsBareNameWithoutDefaultSchema)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(QString());
    EXPECT_EQ(namesOf(entires.columnsForTableAndOrSchema(q("orders"))),
              QStringList({q("OrderId"), q("customer"), q("OrderId")}));
}

TEST(AutocompleteEntires, ShareTheKeyOfATableAndASchema)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(q("dbo"));
    EXPECT_EQ(namesOf(entires.entriesForTableAndOrSchema(q("sales"))),
              QStringList({q("Total"), q("Orders")}));
    EXPECT_EQ(namesOf(entires.columnsForTableAndOrSchema(q("sales"))), QStringList(q("Total")));
    EXPECT_TRUE(entires.columnsForTableAndOrSchema(q("nothing")).isEmpty());
}

TEST(AutocompleteEntires, AreEqualWhenTheNamesAre)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(q("dbo"));
    MSSQLAutocompleteEntires otherTypes;
    otherTypes.addColumn(q("dbo"), q("Orders"), q("OrderId"), q("smallint"));
    otherTypes.addColumn(q("dbo"), q("Orders"), q("customer"), {});
    otherTypes.addColumn(q("dbo"), q("sales"), q("Total"), {});
    otherTypes.addColumn(q("sales"), q("Orders"), q("OrderId"), {});
    otherTypes.createCache(q("dbo"));
    EXPECT_TRUE(entires.isEqualTo(otherTypes));

    MSSQLAutocompleteEntires otherDefault;
    fill(&otherDefault);
    otherDefault.createCache(q("guest"));
    EXPECT_FALSE(entires.isEqualTo(otherDefault)); // the names for aliases differ

    MSSQLAutocompleteEntires otherColumn;
    fill(&otherColumn);
    otherColumn.addColumn(q("sales"), q("Orders"), q("Extra"), {});
    otherColumn.createCache(q("dbo"));
    EXPECT_FALSE(entires.isEqualTo(otherColumn));
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VANTOR_MALLOC_IS_REPLACED
#endif

TEST(AutocompleteEntires, NeedAtMost120BytesForEachColumnBesideItsName)
{
#ifdef VANTOR_MALLOC_IS_REPLACED
    GTEST_SKIP() << "The sanitizer counts memory otherwise.";
#else
    constexpr int Tables = 13'333;
    constexpr int ColumnsOfTable = 15;
    QStringList names; // their memory is not counted
    for (int index = 0; index < Tables * ColumnsOfTable; ++index)
        names.append(QStringLiteral("Column%1").arg(index));
    QStringList tables;
    for (int index = 0; index < Tables; ++index)
        tables.append(QStringLiteral("Table%1").arg(index, 6, 10, QLatin1Char('0')));
    const auto used = [] {
        const struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
    };
    const std::size_t before = used();
    auto entires = std::make_unique<MSSQLAutocompleteEntires>();
    for (int index = 0; index < names.size(); ++index)
        entires->addColumn(q("dbo"), tables[index / ColumnsOfTable], names[index], q("nvarchar(60)"));
    entires->createCache(q("dbo"));
    const double bytes = static_cast<double>(used() - before) / static_cast<double>(names.size());
    RecordProperty("bytes", std::to_string(bytes));
    std::printf("%.1f bytes for each column\n", bytes);
    EXPECT_LE(bytes, 120.0);
    EXPECT_EQ(entires->columns().size(), names.size());
#endif
}
