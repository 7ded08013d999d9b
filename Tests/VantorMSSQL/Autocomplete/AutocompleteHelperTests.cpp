#include "Autocomplete/MSSQLAutocompleteHelper.h"

#include "Autocomplete/KNCompletionCatalog.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNNotificationCenter.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

namespace {

const QStringList Columns{QStringLiteral("schemaName"), QStringLiteral("tableName"),
                          QStringLiteral("columnName"), QStringLiteral("columnType"),
                          QStringLiteral("dataSize"),   QStringLiteral("precision"),
                          QStringLiteral("scale")};

class AutocompleteHelper : public TreeTest
{
protected:
    AutocompleteHelper()
    {
        settings->setDatabase(QStringLiteral("shop"));
        answer({{"dbo", "Orders", "OrderId", "int", nullptr, 10, 0},
                {"dbo", "Orders", "Remark", "nvarchar", 400, 0, 0},
                {"sales", "Orders", "Id", "int", nullptr, 10, 0}});
    }

    void answer(const FakeCatalog::Rows &rows)
    {
        server->answer("List_EntriesForAutocomplete", Columns, rows);
    }

    /// Waits for the loads and the notifications that they post.
    void settle() { ASSERT_TRUE(TreeTesting::settle()); }

    static QStringList names(const std::optional<MSSQLAutocompleteHelper::List> &entries)
    {
        QStringList found;
        for (const KNDatabaseAutocompleteEntry *entry : entries.value_or(MSSQLAutocompleteHelper::List()))
            found.append(entry->entryName());
        return found;
    }

    const std::shared_ptr<MSSQLDatabaseConnectionDetails> settings = server->settings();
    MSSQLAutocompleteHelper helper;
    QStringList updated; ///< the objects of the notifications
    const KNNotificationCenter::Token token = KNNotificationCenter::defaultCenter()->addObserver(
        KNAutocompleteHelper::AutoCompleteUpdatedNotificationName,
        [this](const QString &, const QVariantMap &info) {
            EXPECT_TRUE(KNDispatch::isMainThread());
            updated.append(info.value(KNAutocompleteHelper::ObjectKey).toString());
        });
};

} // namespace

TEST_F(AutocompleteHelper, DoesNothingWithoutDatabase)
{
    settings->setDatabase(QString());
    helper.requestEntriesForDatabaseConnectionDetails(*settings);
    helper.requestEntriesForDatabaseConnectionDetails(*settings, true);
    settle();
    EXPECT_TRUE(updated.isEmpty());
    EXPECT_TRUE(server->titles().isEmpty());
    EXPECT_FALSE(helper.schemasForDatabaseConnectionDetails(*settings));
}

TEST_F(AutocompleteHelper, LoadsAndNotifiesOnTheMainQueue)
{
    EXPECT_FALSE(helper.tablesForDatabaseConnectionDetails(*settings));
    EXPECT_FALSE(helper.possibleNamesForAlias(*settings));
    helper.requestEntriesForDatabaseConnectionDetails(*settings);
    settle();
    EXPECT_EQ(updated, QStringList(settings->description()));
    EXPECT_EQ(names(helper.schemasForDatabaseConnectionDetails(*settings)),
              TreeTesting::list({"dbo", "sales"}));
    EXPECT_EQ(names(helper.tablesForDatabaseConnectionDetails(*settings)),
              TreeTesting::list({"Orders", "Orders"}));
    EXPECT_EQ(names(helper.columnsForDatabaseConnectionDetails(*settings)),
              TreeTesting::list({"OrderId", "Remark", "Id"}));
    EXPECT_EQ(helper.columnsForDatabaseConnectionDetails(*settings)->at(1)->entryDetails(),
              QStringLiteral("nvarchar(200)"));
    EXPECT_EQ(*helper.possibleNamesForAlias(*settings),
              TreeTesting::list({"dbo", "dbo.orders", "orders", "sales", "sales.orders"}));
    EXPECT_TRUE(wasLogged("Finished autocomplete query block."));
}

TEST_F(AutocompleteHelper, ReadsResultsWithoutPrecisionAndScale)
{
    server->answer("List_EntriesForAutocomplete", Columns.mid(0, 5), {{"dbo", "T", "c", "varchar", -1}});
    helper.doLoadAutocompleteDetails(*settings);
    ASSERT_EQ(names(helper.columnsForDatabaseConnectionDetails(*settings)), TreeTesting::list({"c"}));
    EXPECT_EQ(helper.columnsForDatabaseConnectionDetails(*settings)->first()->entryDetails(),
              QStringLiteral("varchar(max)"));
}

TEST_F(AutocompleteHelper, ReadsKeysAndNullability)
{
    using Entry = KNDatabaseAutocompleteEntry;
    server->answer("List_EntriesForAutocomplete",
                   Columns + QStringList{QStringLiteral("isNullable"), QStringLiteral("isPrimaryKey")},
                   {{"dbo", "T", "Id", "int", nullptr, 10, 0, 0, 1},
                    {"dbo", "T", "Remark", "int", nullptr, 10, 0, 1, 0}});
    helper.doLoadAutocompleteDetails(*settings);
    const auto columns = helper.columnsForDatabaseConnectionDetails(*settings);
    ASSERT_TRUE(columns);
    ASSERT_EQ(columns->size(), 2);
    EXPECT_TRUE(columns->at(0)->hasTrait(Entry::PrimaryKey));
    EXPECT_TRUE(columns->at(0)->hasTrait(Entry::NotNull));
    EXPECT_FALSE(columns->at(0)->hasTrait(Entry::Nullable));
    EXPECT_FALSE(columns->at(1)->hasTrait(Entry::PrimaryKey));
    EXPECT_TRUE(columns->at(1)->hasTrait(Entry::Nullable));
}

TEST_F(AutocompleteHelper, ReloadShowsChangedTypesInTheCatalogOnly)
{
    const auto typeIn = [&](const KNCompletionCatalog &catalog) {
        const auto *const table = catalog.find({QStringLiteral("dbo"), QStringLiteral("T")});
        return table ? table->entry->entryChildren().first()->entryDetails() : QString();
    };
    server->answer("List_EntriesForAutocomplete", Columns, {{"dbo", "T", "Id", "int", nullptr, 10, 0}});
    EXPECT_EQ(typeIn(*helper.loadCatalog(*settings)), QStringLiteral("int"));
    server->answer("List_EntriesForAutocomplete", Columns, {{"dbo", "T", "Id", "bigint", nullptr, 19, 0}});
    helper.doLoadAutocompleteDetails(*settings);
    EXPECT_EQ(typeIn(*helper.loadCatalog(*settings)), QStringLiteral("bigint"));
    // The cached entries are compared by their names.
    EXPECT_EQ(helper.columnsForDatabaseConnectionDetails(*settings)->first()->entryDetails(),
              QStringLiteral("int"));
    EXPECT_EQ(server->count("List_EntriesForAutocomplete"), 2);
}

TEST_F(AutocompleteHelper, LookupsAcceptBracketsAndAnyCase)
{
    helper.doLoadAutocompleteDetails(*settings);
    const auto columns = [&](const char *name) {
        return names(helper.columnsForDatabaseConnectionDetailsInTable(*settings, QString::fromLatin1(name)));
    };
    EXPECT_EQ(columns("[dbo].[Orders]"), TreeTesting::list({"OrderId", "Remark"}));
    EXPECT_EQ(columns("ORDERS"), TreeTesting::list({"OrderId", "Remark"}));
    EXPECT_EQ(columns("[SALES].orders"), TreeTesting::list({"Id"}));
    EXPECT_EQ(
        names(helper.entriesForDatabaseConnectionDetailsWithParent(*settings, QStringLiteral("[Sales]"))),
        TreeTesting::list({"Orders"}));
    EXPECT_TRUE(
        helper.columnsForDatabaseConnectionDetailsInTable(*settings, QStringLiteral("none"))->isEmpty());
}

TEST_F(AutocompleteHelper, KnownEntriesAreReportedWithoutQuery)
{
    helper.doLoadAutocompleteDetails(*settings);
    settle();
    updated.clear();
    helper.requestEntriesForDatabaseConnectionDetails(*settings);
    settle();
    EXPECT_EQ(updated, QStringList(settings->description()));
    EXPECT_EQ(server->count("List_EntriesForAutocomplete"), 1);
    EXPECT_TRUE(wasLogged("Autocomplete already exists. Nothing to do."));
}

TEST_F(AutocompleteHelper, ReloadWithTheSameNamesKeepsTheOldEntriesSilently)
{
    helper.doLoadAutocompleteDetails(*settings);
    settle();
    const auto before = helper.entriesForDatabaseConnectionDetails(*settings);
    updated.clear();
    answer({{"dbo", "Orders", "OrderId", "bigint", nullptr, 19, 0},
            {"dbo", "Orders", "Remark", "nvarchar", 400, 0, 0},
            {"sales", "Orders", "Id", "int", nullptr, 10, 0}});
    helper.requestEntriesForDatabaseConnectionDetails(*settings, true);
    settle();
    EXPECT_TRUE(updated.isEmpty());
    EXPECT_EQ(server->count("List_EntriesForAutocomplete"), 2);
    EXPECT_EQ(helper.entriesForDatabaseConnectionDetails(*settings), before);
    EXPECT_EQ(timesLogged("Finished autocomplete query block."), 2);
}

TEST_F(AutocompleteHelper, ReloadWithOtherNamesReplacesTheEntries)
{
    helper.doLoadAutocompleteDetails(*settings);
    settle();
    updated.clear();
    answer({{"dbo", "Clients", "Id", "int", nullptr, 10, 0}});
    helper.requestEntriesForDatabaseConnectionDetails(*settings, true);
    settle();
    EXPECT_EQ(updated, QStringList(settings->description()));
    EXPECT_EQ(names(helper.tablesForDatabaseConnectionDetails(*settings)), TreeTesting::list({"Clients"}));
}

TEST_F(AutocompleteHelper, FailureKeepsTheEntriesAndIsLogged)
{
    helper.doLoadAutocompleteDetails(*settings);
    settle();
    updated.clear();
    server->fail("List_EntriesForAutocomplete", Failure);
    helper.requestEntriesForDatabaseConnectionDetails(*settings, true);
    settle();
    EXPECT_TRUE(updated.isEmpty());
    EXPECT_EQ(names(helper.schemasForDatabaseConnectionDetails(*settings)),
              TreeTesting::list({"dbo", "sales"}));
    EXPECT_TRUE(wasLogged("mssql.autocomplete.load"));
    EXPECT_TRUE(wasLogged("911"));
    EXPECT_TRUE(wasLogged("dbc"));
}

TEST_F(AutocompleteHelper, LostConnectionIsReplacedOnce)
{
    server->loseConnection("List_EntriesForAutocomplete");
    helper.doLoadAutocompleteDetails(*settings);
    EXPECT_EQ(names(helper.schemasForDatabaseConnectionDetails(*settings)),
              TreeTesting::list({"dbo", "sales"}));
}

TEST_F(AutocompleteHelper, UnknownDefaultSchemaFindsEveryTableByItsBareName)
{
    server->fail("General_FindDefaultUserSchema", Failure);
    helper.doLoadAutocompleteDetails(*settings);
    EXPECT_EQ(names(helper.columnsForDatabaseConnectionDetailsInTable(*settings, QStringLiteral("orders"))),
              TreeTesting::list({"OrderId", "Remark", "Id"}));
}

TEST_F(AutocompleteHelper, KeepsDatabasesApart)
{
    helper.doLoadAutocompleteDetails(*settings);
    const auto other = std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(settings->copy());
    other->setDatabase(QStringLiteral("library"));
    EXPECT_FALSE(helper.tablesForDatabaseConnectionDetails(*other));
    answer({{"dbo", "Books", "Id", "int", nullptr, 10, 0}});
    helper.doLoadAutocompleteDetails(*other);
    EXPECT_EQ(names(helper.tablesForDatabaseConnectionDetails(*other)), TreeTesting::list({"Books"}));
    EXPECT_EQ(names(helper.tablesForDatabaseConnectionDetails(*settings)),
              TreeTesting::list({"Orders", "Orders"}));
}
