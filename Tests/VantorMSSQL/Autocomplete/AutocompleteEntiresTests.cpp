#include "Autocomplete/MSSQLAutocompleteEntires.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <malloc.h>

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

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
    entires->addColumn(text("dbo"), text("Orders"), text("OrderId"), text("int"));
    entires->addColumn(text("dbo"), text("Orders"), text("customer"), text("nvarchar(60)"));
    entires->addColumn(text("dbo"), text("sales"), text("Total"), text("money"));
    entires->addColumn(text("sales"), text("Orders"), text("OrderId"), text("bigint"));
}

} // namespace

TEST(AutocompleteEntires, KeepEntriesInTheOrderOfTheQuery)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(text("dbo"));
    EXPECT_EQ(namesOf(entires.schemas()), QStringList({text("dbo"), text("sales")}));
    EXPECT_EQ(namesOf(entires.tables()), QStringList({text("Orders"), text("sales"), text("Orders")}));
    EXPECT_EQ(namesOf(entires.columns()),
              QStringList({text("OrderId"), text("customer"), text("Total"), text("OrderId")}));
    const KNDatabaseAutocompleteEntry &column = *entires.columns()[1];
    EXPECT_EQ(column.entryCompletionType(), 8);
    EXPECT_EQ(column.entryDetails(), text("nvarchar(60)"));
    EXPECT_EQ(column.entryParentDisplay(), text("dbo.Orders"));
    EXPECT_EQ(column.entryParent(), entires.tables()[0]);
    EXPECT_EQ(column.entryParent()->entryCompletionType(), 4);
    EXPECT_EQ(column.entryParent()->entryParentDisplay(), text("dbo"));
    EXPECT_EQ(column.entryParent()->entryParent()->entryCompletionType(), 2);
}

TEST(AutocompleteEntires, ReuseSchemaAndTableWhoseNamesDifferInCaseOnly)
{
    MSSQLAutocompleteEntires entires;
    entires.addColumn(text("dbo"), text("Orders"), text("a"), {});
    entires.addColumn(text("DBO"), text("ORDERS"), text("b"), {});
    EXPECT_EQ(entires.schemas().size(), 1);
    EXPECT_EQ(entires.tables().size(), 1);
    EXPECT_EQ(entires.tables()[0]->entryChildren().size(), 2);
}

TEST(AutocompleteEntires, SortNamesWithoutRegardToCaseAndWithoutDuplicates)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(text("dbo"));
    EXPECT_EQ(entires.columnNames(), QStringList({text("customer"), text("OrderId"), text("Total")}));
    EXPECT_EQ(entires.tableNames(), QStringList({text("Orders"), text("sales")}));
    EXPECT_EQ(entires.schemaNames(), QStringList({text("dbo"), text("sales")}));
    EXPECT_EQ(entires.allPossibleNamesForAlias(),
              QStringList({text("dbo"), text("dbo.orders"), text("dbo.sales"), text("orders"), text("sales"),
                           text("sales.orders")}));
}

TEST(AutocompleteEntires, FindTablesOfTheDefaultSchemaByTheirBareNames)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(text("DBO"));
    EXPECT_EQ(namesOf(entires.columnsForTableAndOrSchema(text("dbo.ORDERS"))),
              QStringList({text("OrderId"), text("customer")}));
    EXPECT_EQ(namesOf(entires.columnsForTableAndOrSchema(text("Orders"))),
              QStringList({text("OrderId"), text("customer")}));
    EXPECT_EQ(namesOf(entires.columnsForTableAndOrSchema(text("sales.orders"))),
              QStringList(text("OrderId")));
}

TEST(AutocompleteEntires, FindEveryTableByItsBareNameWithoutDefaultSchema)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(QString());
    EXPECT_EQ(namesOf(entires.columnsForTableAndOrSchema(text("orders"))),
              QStringList({text("OrderId"), text("customer"), text("OrderId")}));
}

TEST(AutocompleteEntires, ShareTheKeyOfATableAndASchema)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(text("dbo"));
    EXPECT_EQ(namesOf(entires.entriesForTableAndOrSchema(text("sales"))),
              QStringList({text("Total"), text("Orders")}));
    EXPECT_EQ(namesOf(entires.columnsForTableAndOrSchema(text("sales"))), QStringList(text("Total")));
    EXPECT_TRUE(entires.columnsForTableAndOrSchema(text("nothing")).isEmpty());
}

TEST(AutocompleteEntires, AreEqualWhenTheNamesAre)
{
    MSSQLAutocompleteEntires entires;
    fill(&entires);
    entires.createCache(text("dbo"));
    MSSQLAutocompleteEntires otherTypes;
    otherTypes.addColumn(text("dbo"), text("Orders"), text("OrderId"), text("smallint"));
    otherTypes.addColumn(text("dbo"), text("Orders"), text("customer"), {});
    otherTypes.addColumn(text("dbo"), text("sales"), text("Total"), {});
    otherTypes.addColumn(text("sales"), text("Orders"), text("OrderId"), {});
    otherTypes.createCache(text("dbo"));
    EXPECT_TRUE(entires.isEqualTo(otherTypes));

    MSSQLAutocompleteEntires otherDefault;
    fill(&otherDefault);
    otherDefault.createCache(text("guest"));
    EXPECT_FALSE(entires.isEqualTo(otherDefault)); // the names for aliases differ

    MSSQLAutocompleteEntires otherColumn;
    fill(&otherColumn);
    otherColumn.addColumn(text("sales"), text("Orders"), text("Extra"), {});
    otherColumn.createCache(text("dbo"));
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
        entires->addColumn(text("dbo"), tables[index / ColumnsOfTable], names[index], text("nvarchar(60)"));
    entires->createCache(text("dbo"));
    const double bytes = static_cast<double>(used() - before) / static_cast<double>(names.size());
    RecordProperty("bytes", std::to_string(bytes));
    std::printf("%.1f bytes for each column\n", bytes);
    EXPECT_LE(bytes, 120.0);
    EXPECT_EQ(entires->columns().size(), names.size());
#endif
}
