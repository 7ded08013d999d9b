#include "UI/DatabaseTree/MSSQLTableOrder.h"

#include "Support/TreeTesting.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"

#include <random>

using namespace TreeTesting;
using List = KNDatabaseTreeEntry::List;

namespace {

Ptr table(const char *schema, const char *name)
{
    const QString inSchema = schema ? QString::fromLatin1(schema) : QString();
    const QString tableName = QString::fromLatin1(name);
    return std::make_shared<MSSQLDatabaseTreeEntryDatabaseTable>(
        QString::fromLatin1(schema ? schema : "nil") + QLatin1Char('.') + tableName, inSchema, tableName);
}

QStringList namesOf(const List &entries)
{
    QStringList texts;
    for (const Ptr &entry : entries)
        texts.append(entry->displayName());
    return texts;
}

const MSSQLTableOrder Order(QStringLiteral("dbo"));

} // namespace

TEST(TableOrder, PutsTheDefaultSchemaFirstThenTheOthersWithoutRegardToCase)
{
    EXPECT_EQ(namesOf(Order.sorted({table("Zoo", "a"), table("abc", "a"), table("dbo", "z"),
                                    table("dbo", "B"), table("Mid", "a")})),
              list({"dbo.B", "dbo.z", "abc.a", "Mid.a", "Zoo.a"}));
}

TEST(TableOrder, SchemasThatDifferInCaseOnlyAreOne)
{
    EXPECT_EQ(namesOf(Order.sorted({table("SALES", "b"), table("sales", "c"), table("Sales", "a")})),
              list({"Sales.a", "SALES.b", "sales.c"}));
    EXPECT_EQ(namesOf(Order.sorted({table("abc", "x"), table("dbo", "b"), table("DBO", "a")})),
              list({"DBO.a", "dbo.b", "abc.x"}));
}

TEST(TableOrder, AnotherCaseOfTheDefaultSchemaAloneIsNotPreferred)
{
    EXPECT_EQ(namesOf(Order.sorted({table("DBO", "a"), table("abc", "x")})), list({"abc.x", "DBO.a"}));
}

TEST(TableOrder, WithoutADefaultSchemaNoneIsPreferred)
{
    const List entries = {table("dbo", "a"), table("abc", "x"), table(nullptr, "n")};
    EXPECT_EQ(namesOf(MSSQLTableOrder(QString()).sorted(entries)), list({"nil.n", "abc.x", "dbo.a"}));
    EXPECT_EQ(namesOf(MSSQLTableOrder(QStringLiteral("")).sorted(entries)),
              list({"nil.n", "abc.x", "dbo.a"}));
}

TEST(TableOrder, AnErrorEntryComesFirst)
{
    const auto error = std::make_shared<KNDatabaseTreeEntry>();
    EXPECT_EQ(Order.sorted({table("dbo", "a"), error}).front(), error);
    EXPECT_EQ(Order.inserted({error}, table("dbo", "a")).front(), error);
}

TEST(TableOrder, InsertingEqualsSorting)
{
    std::mt19937 random(7);
    const char *const schemas[] = {"dbo", "DBO", "sales", "Sales", "abc", "zoo", nullptr};
    for (int round = 0; round < 200; ++round) {
        List entries;
        for (unsigned count = random() % 8; count > 0; --count)
            entries.push_back(
                table(schemas[random() % 7], std::to_string(random() % 100 + count * 1000).c_str()));
        const Ptr added = table(schemas[random() % 7], std::to_string(random() % 9000).c_str());
        const List inserted = Order.inserted(Order.sorted(entries), added);
        entries.push_back(added);
        EXPECT_EQ(namesOf(inserted), namesOf(Order.sorted(entries)));
    }
}
