#include "Autocomplete/KNCompletionCatalog.h"
#include "Autocomplete/MSSQLAutocompleteHelper.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <algorithm>

using namespace WireTest;

TEST(AutocompleteOverTheWire, KnowsTheSampleDatabase)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setDatabase(QStringLiteral("shop"));
    MSSQLAutocompleteHelper helper;
    helper.doLoadAutocompleteDetails(*details);
    const auto columns =
        helper.columnsForDatabaseConnectionDetailsInTable(*details, QStringLiteral("[Orders]"));
    ASSERT_TRUE(columns);
    QStringList shown;
    for (const KNDatabaseAutocompleteEntry *column : *columns)
        shown.append(column->entryName() + u' ' + column->entryDetails());
    EXPECT_EQ(shown.mid(0, 3), QStringList({QStringLiteral("OrderId int"), QStringLiteral("CustomerId int"),
                                            QStringLiteral("OrderedAt datetime")}));
    EXPECT_TRUE(shown.contains(QStringLiteral("Remark nvarchar(200)")));
    // A view of another schema needs its schema.
    EXPECT_TRUE(helper.columnsForDatabaseConnectionDetailsInTable(*details, QStringLiteral("CustomerOrders"))
                    ->isEmpty());
    EXPECT_FALSE(
        helper.columnsForDatabaseConnectionDetailsInTable(*details, QStringLiteral("sales.CustomerOrders"))
            ->isEmpty());
}

TEST(AutocompleteOverTheWire, RefusedDatabaseLeavesNothingBehind)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setDatabase(QStringLiteral("missing"));
    MSSQLAutocompleteHelper helper;
    helper.doLoadAutocompleteDetails(*details);
    EXPECT_FALSE(helper.schemasForDatabaseConnectionDetails(*details));
}

namespace {

QStringList membersOf(const KNCompletionCatalog &catalog, const QStringList &path)
{
    QStringList members;
    const auto *const object = catalog.find(path);
    if (!object || !object->entry)
        return members;
    for (const KNDatabaseAutocompleteEntry *member : object->entry->entryChildren())
        members.append(member->entryName() + u' ' + member->entryDetails());
    return members;
}

KNCompletionCatalog::Kind kindOf(const KNCompletionCatalog &catalog, const char *schema, const char *name)
{
    const auto *const object = catalog.find({QString::fromLatin1(schema), QString::fromLatin1(name)});
    EXPECT_TRUE(object) << name;
    return object ? object->kind : KNCompletionCatalog::Kind::Table;
}

} // namespace

TEST(AutocompleteOverTheWire, CatalogKnowsRoutinesTypesAndKeys)
{
    using Kind = KNCompletionCatalog::Kind;
    const auto details = settings(SampleServerFixture::shared().port());
    details->setDatabase(QStringLiteral("shop"));
    MSSQLAutocompleteHelper helper;
    const auto catalog = helper.loadCatalog(*details);
    ASSERT_TRUE(catalog);
    EXPECT_EQ(catalog->defaultSchema, QStringLiteral("dbo"));
    EXPECT_EQ(kindOf(*catalog, "dbo", "Orders"), Kind::Table);
    EXPECT_EQ(kindOf(*catalog, "sales", "CustomerOrders"), Kind::View);
    EXPECT_EQ(kindOf(*catalog, "sales", "PlaceOrder"), Kind::Procedure);
    EXPECT_EQ(kindOf(*catalog, "sales", "OrderTotal"), Kind::ScalarFunction);
    EXPECT_EQ(kindOf(*catalog, "sales", "OrdersOf"), Kind::TableFunction);
    EXPECT_EQ(kindOf(*catalog, "dbo", "Clients"), Kind::Synonym);
    EXPECT_EQ(kindOf(*catalog, "dbo", "Flag"), Kind::Type);
    EXPECT_EQ(membersOf(*catalog, {QStringLiteral("hr"), QStringLiteral("RaiseSalaries")}),
              QStringList({QStringLiteral("@Percentage decimal(5,2)"), QStringLiteral("@Year smallint"),
                           QStringLiteral("@Raised int")}));
    EXPECT_TRUE(membersOf(*catalog, {QStringLiteral("sales"), QStringLiteral("OrdersOf")})
                    .contains(QStringLiteral("@CustomerId int")));
    EXPECT_TRUE(catalog->schemas.contains(QStringLiteral("hr")));
    EXPECT_TRUE(catalog->databases.contains(QStringLiteral("library")));
    const bool hasKey =
        std::any_of(catalog->foreignKeys.begin(), catalog->foreignKeys.end(), [](const auto &key) {
            return key.table.last() == QStringLiteral("Orders") &&
                   key.referencedTable == QStringList({QStringLiteral("dbo"), QStringLiteral("Customers")}) &&
                   key.columns == QStringList(QStringLiteral("CustomerId"));
        });
    EXPECT_TRUE(hasKey);
}

TEST(AutocompleteOverTheWire, OtherDatabasesAreLoadedOnFirstNeed)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setDatabase(QStringLiteral("shop"));
    static MSSQLAutocompleteHelper helper; // outlives its loads
    const auto catalog = helper.loadCatalog(*details);
    ASSERT_TRUE(catalog);
    EXPECT_FALSE(catalog->otherDatabase(QStringLiteral("nowhere")));
    std::shared_ptr<const KNCompletionCatalog> library;
    EXPECT_TRUE(waitFor([&] {
        library = catalog->otherDatabase(QStringLiteral("LIBRARY"));
        return library && library->find({QStringLiteral("dbo"), QStringLiteral("ReturnBook")});
    }));
}
