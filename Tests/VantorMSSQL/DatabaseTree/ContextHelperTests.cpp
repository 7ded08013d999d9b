#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"

#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"
#include "Support/RecordingWorkspace.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryFederation.h"
#include "UI/MSSQLUserInterface.h"

#include <gtest/gtest.h>

namespace {

std::shared_ptr<MSSQLDatabaseTreeEntryFederation> federation(const char *name)
{
    const auto entry = std::make_shared<MSSQLDatabaseTreeEntryFederation>(
        QStringLiteral("id"), QStringLiteral("bigint"), QStringLiteral("RANGE"));
    entry->setDisplayName(QString::fromLatin1(name));
    return entry;
}

/// An action on federations that records the names of those it is performed on.
class TreeContextHelper : public testing::Test
{
protected:
    TreeContextHelper()
    {
        MSSQLDatabaseTreeContextHelper(helper, *workspace)
            .addEntryAction<MSSQLDatabaseTreeEntryFederation>(
                Name, [this](KNWorkspace &, const std::shared_ptr<MSSQLDatabaseTreeEntryFederation> &entry) {
                    names.append(entry->displayName());
                });
    }

    const QString Name = QStringLiteral("actionOfTheTest:");
    FakeDatabase::Server server;
    std::unique_ptr<RecordingWorkspace> workspace =
        std::make_unique<RecordingWorkspace>(FakeDatabase::Settings(server));
    KNDatabaseTreeContextHelper helper;
    QStringList names;
};

} // namespace

TEST_F(TreeContextHelper, PerformsAnActionOnTheSelectedEntry)
{
    workspace->selected = federation("selected");
    EXPECT_TRUE(helper.performAction(Name, {}));
    EXPECT_EQ(names, QStringList{QStringLiteral("selected")});
}

TEST_F(TreeContextHelper, PrefersTheEntryOfTheMenuItem)
{
    workspace->selected = federation("selected");
    EXPECT_TRUE(helper.performAction(Name, KNDatabaseTreeEntry::Ptr(federation("represented"))));
    EXPECT_EQ(names, QStringList{QStringLiteral("represented")});
}

TEST_F(TreeContextHelper, DoesNothingForAnEntryOfAnotherKind)
{
    EXPECT_TRUE(helper.performAction(Name, {})) << "nothing is selected";
    workspace->selected = std::make_shared<KNDatabaseTreeEntry>();
    EXPECT_TRUE(helper.performAction(Name, {}));
    workspace->selected = federation("selected");
    EXPECT_TRUE(helper.performAction(Name, std::make_shared<KNDatabaseTreeEntry>()));
    EXPECT_EQ(names, QStringList());
}

TEST_F(TreeContextHelper, DoesNothingWithoutItsWorkspace)
{
    const auto entry = federation("represented");
    workspace.reset();
    EXPECT_TRUE(helper.performAction(Name, KNDatabaseTreeEntry::Ptr(entry)));
    EXPECT_EQ(names, QStringList());
}

TEST_F(TreeContextHelper, HasFederationActions)
{
    EXPECT_FALSE(helper.knowsAction(QStringLiteral("connectToFederatedMember:")));
    MSSQLUserInterface().addTreeActions(helper, *workspace);
    EXPECT_TRUE(helper.knowsAction(QStringLiteral("connectToFederatedMember:")));
}
