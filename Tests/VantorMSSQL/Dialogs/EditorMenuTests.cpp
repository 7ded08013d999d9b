#include "UI/MSSQLEditorMenu.h"

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Support/PrintQt.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"

#include <gtest/gtest.h>

namespace EditorMenuTests {

namespace {

/// The name at the mark ^, which is taken out.
QStringList nameAtMark(const char *marked)
{
    QString text = QString::fromUtf8(marked);
    const qsizetype position = text.indexOf(QLatin1Char('^'));
    return MSSQLEditorMenu::nameAt(text.remove(position, 1), position);
}

QStringList parts(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *const text : texts)
        list.append(QString::fromUtf8(text));
    return list;
}

} // namespace

TEST(EditorMenu, FindsTheWholeNameAtAPosition)
{
    EXPECT_EQ(nameAtMark("EXEC dbo.Pla^ce @a = 1"), parts({"dbo", "Place"}));
    EXPECT_EQ(nameAtMark("EXEC d^bo.Place"), parts({"dbo", "Place"}));
    EXPECT_EQ(nameAtMark("EXEC dbo.Place^"), parts({"dbo", "Place"}));
    EXPECT_EQ(nameAtMark("EXEC shop.[a b].[c]]d^]"), parts({"shop", "a b", "c]d"}));
    EXPECT_EQ(nameAtMark("EXEC \"a b\" . Pl^ace;"), parts({"a b", "Place"}));
    EXPECT_EQ(nameAtMark("EXEC Once^ EXEC Twice"), parts({"Once"}));
    EXPECT_EQ(nameAtMark("EXEC Once EXEC Twi^ce"), parts({"Twice"}));
}

TEST(EditorMenu, FindsNoNameInOtherText)
{
    for (const char *const text : {"^", "EX^EC Place", "'Pla^ce'", "-- Pla^ce", "/* Pl^ace */", "@Pl^ace",
                                   "1^23", "EXEC dbo.^", "a + ^ + b"})
        EXPECT_EQ(nameAtMark(text), QStringList()) << text;
}

TEST(EditorMenu, OffersToExecuteTheProcedureOfThatName)
{
    MSSQLDatabaseConnectionDetails details;
    details.setDatabase(QStringLiteral("shop"));
    const auto target = std::make_shared<KNDatabaseTreeContextHelper>();
    KNDatabaseTreeEntry::Ptr executed;
    target->addAction(QStringLiteral("executeStoredProcedure:"), [&](const KNMenuRepresentedObject &object) {
        executed = std::get<KNDatabaseTreeEntry::Ptr>(object);
    });
    const KNMenu menu = MSSQLEditorMenu::at(QStringLiteral("library.sales.Place"), 3, details, target);
    ASSERT_EQ(menu.items.size(), 1u);
    EXPECT_EQ(menu.items.front().title, QStringLiteral("Execute stored procedure"));
    EXPECT_TRUE(menu.items.front().perform());
    const auto procedure = std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryStoredProcedure>(executed);
    ASSERT_TRUE(procedure);
    EXPECT_EQ(procedure->schema(), QStringLiteral("sales"));
    EXPECT_EQ(procedure->procedureName(), QStringLiteral("Place"));
    EXPECT_EQ(procedure->databaseConnectionDetails()->database(), QStringLiteral("library"));
    EXPECT_TRUE(MSSQLEditorMenu::at(QStringLiteral("a.b.c.d"), 3, details, target).items.empty());
    EXPECT_TRUE(MSSQLEditorMenu::at(QStringLiteral("SELECT 1"), 3, details, target).items.empty());
}

} // namespace EditorMenuTests
