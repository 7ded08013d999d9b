#include "UI/Dialogs/MSSQLFederationMemberConnectionWindowController/MSSQLFederationMemberConnectionWindowController.h"

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Foundation/KNLogHelper.h"
#include "Support/FakeTree.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingWorkspace.h"
#include "Support/SampleServerFixture.h"
#include "Support/WindowTesting.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryFederation.h"
#include "UI/MSSQLUserInterface.h"

#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

using WindowTesting::settle;
using WindowTesting::waitFor;

namespace {

using Window = MSSQLFederationMemberConnectionWindowController;

class FederationMemberWindow : public testing::Test
{
protected:
    void TearDown() override
    {
        delete m_window;
        EXPECT_TRUE(settle());
    }
    void open(const char *password)
    {
        MSSQLDatabaseConnectionDetails details;
        details.setHost(QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port()));
        details.setUsername(QString::fromLatin1(SampleServerFixture::User));
        details.setPassword(QString::fromLatin1(password));
        m_parent.show();
        m_window = new Window(details, QStringLiteral("RANGE, bigint"), &m_parent);
        m_window->beginSheet([this](int code) {
            m_result = code;
            m_details = m_window->databaseConnectionDetails();
        });
        const auto fields = m_window->findChildren<QLineEdit *>();
        ASSERT_EQ(fields.size(), 3);
        fields[0]->setText(QStringLiteral("Customers"));
        fields[1]->setText(QStringLiteral("id"));
        fields[2]->setText(QStringLiteral("42"));
    }

    RecordingAlerts &m_alerts = RecordingAlerts::install();
    QWidget m_parent;
    QPointer<Window> m_window;
    std::optional<int> m_result;
    Window::Details m_details;
};

} // namespace

TEST_F(FederationMemberWindow, PointsTheSettingsAtTheMember)
{
    QString logged;
    KNLogHelper::sharedInstance()->setObserver([&](const QString &record) { logged += record; });
    open(SampleServerFixture::Password);
    m_window->onAccept();
    KNLogHelper::sharedInstance()->setObserver({});
    const auto details = m_window->databaseConnectionDetails();
    EXPECT_EQ(details->federationName(), QStringLiteral("Customers"));
    EXPECT_EQ(details->distributionName(), QStringLiteral("id"));
    EXPECT_EQ(details->distributionValue(), QStringLiteral("42"));
    EXPECT_EQ(details->federationStatement(),
              QStringLiteral("USE FEDERATION Customers(id=42) WITH RESET, FILTERING=OFF"));
    EXPECT_TRUE(logged.contains(QStringLiteral("Federation statement: USE FEDERATION Customers(id=42)")));
    ASSERT_TRUE(waitFor([this] { return m_result.has_value(); }));
    EXPECT_EQ(m_result, 1);
    EXPECT_EQ(m_details->federationName(), QStringLiteral("Customers"));
}

TEST_F(FederationMemberWindow, StaysOpenWithoutAMessageWhenItCannotConnect)
{
    open("wrong");
    m_window->onAccept();
    ASSERT_TRUE(settle());
    EXPECT_FALSE(m_result);
    EXPECT_TRUE(m_window->isVisible());
    EXPECT_TRUE(m_alerts.errors.empty());
    QTest::keyClick(m_window, Qt::Key_Escape);
    EXPECT_EQ(m_result, 0);
}

TEST_F(FederationMemberWindow, IsOpenedByTheMenuOfAFederationAndLeadsToAWindowOnItsMember)
{
    MSSQLDatabaseConnectionDetails details;
    details.setHost(QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port()));
    details.setUsername(QString::fromLatin1(SampleServerFixture::User));
    details.setPassword(QString::fromLatin1(SampleServerFixture::Password));
    const auto root = std::make_shared<FakeTree::Root>([](KNError *) { return QStringList(); });
    root->setDatabaseConnectionDetails(&details);
    const auto federation = std::make_shared<MSSQLDatabaseTreeEntryFederation>(
        QStringLiteral("id"), QStringLiteral("bigint"), QStringLiteral("RANGE"));
    federation->setDisplayName(QStringLiteral("Customers"));
    root->adopt(*federation);
    root->setChildEntries(KNDatabaseTreeEntry::List{federation});
    const auto helper = std::make_shared<KNDatabaseTreeContextHelper>();
    root->setContextHelper(helper);
    RecordingWorkspace workspace(details);
    MSSQLUserInterface().addTreeActions(*helper, workspace);

    const KNMenuItem connectItem = federation->menu().items.front();
    EXPECT_TRUE(connectItem.isEnabled());
    workspace.selected = root;
    EXPECT_TRUE(connectItem.perform());
    EXPECT_EQ(workspace.window.findChild<Window *>(), nullptr) << "the root is no federation";

    workspace.selected = federation;
    EXPECT_TRUE(connectItem.perform());
    auto *const window = workspace.window.findChild<Window *>();
    ASSERT_NE(window, nullptr);
    const auto fields = window->findChildren<QLineEdit *>();
    EXPECT_EQ(fields[0]->text(), QStringLiteral("Customers"));
    EXPECT_EQ(fields[1]->text(), QStringLiteral("id"));
    fields[2]->setText(QStringLiteral("42"));
    window->onAccept();
    ASSERT_TRUE(waitFor([&] { return !workspace.connections.empty(); }));
    const auto &member = static_cast<const MSSQLDatabaseConnectionDetails &>(*workspace.connections.front());
    EXPECT_EQ(member.federationStatement(),
              QStringLiteral("USE FEDERATION Customers(id=42) WITH RESET, FILTERING=OFF"));
}
