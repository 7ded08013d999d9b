#include "UI/Dialogs/MSSQLBrowseServersWindowController/MSSQLBrowseServersWindowController.h"

#include "Support/PrintQt.h"
#include "Support/SampleServerFixture.h"
#include "Support/WindowTesting.h"
#include "UI/Dialogs/KNProgressMark.h"

#include <QPointer>
#include <QPushButton>
#include <QTableWidget>
#include <QTranslator>

using WindowTesting::settle;
using WindowTesting::waitFor;

namespace {

class BrowseServersWindow : public testing::Test
{
protected:
    void SetUp() override
    {
        search(m_server.browserPort());
        m_parent.show();
        m_window = new MSSQLBrowseServersWindowController(&m_parent);
        m_window->beginSheet([this](int code) {
            m_result = code;
            m_chosen = m_window->currentConnectionString();
        });
        m_table = m_window->findChild<QTableWidget *>();
        const auto buttons = m_window->findChildren<QPushButton *>();
        for (QPushButton *const button : buttons) {
            if (button->isDefault())
                m_accept = button;
        }
    }
    void TearDown() override
    {
        delete m_window;
        EXPECT_TRUE(settle());
        MSSQLBrowserServiceClient::setSearch({});
    }
    static void search(quint16 port)
    {
        MSSQLBrowserServiceClient::setSearch({QStringLiteral("127.255.255.255"), port,
                                              std::chrono::milliseconds(50), std::chrono::milliseconds(5)});
    }
    bool waitForServer() const
    {
        const QString port = QString::number(m_server.port());
        return waitFor([&] { return m_table->rowCount() == 1 && m_table->item(0, 3)->text() == port; });
    }

    const SampleServerFixture m_server{{{"--browser-port", "0", "--instance", "SAMPLE"}, {}}};
    QWidget m_parent;
    QPointer<MSSQLBrowseServersWindowController> m_window;
    QTableWidget *m_table = nullptr;
    QPushButton *m_accept = nullptr;
    std::optional<int> m_result;
    QString m_chosen;
};

} // namespace

TEST_F(BrowseServersWindow, ListsAnswersAndAcceptsRow)
{
    ASSERT_TRUE(waitForServer());
    EXPECT_EQ(m_table->item(0, 1)->text(), QStringLiteral("SAMPLE"));
    EXPECT_FALSE(m_accept->isEnabled());
    m_table->selectRow(0);
    EXPECT_TRUE(m_accept->isEnabled());
    m_accept->click();
    EXPECT_EQ(m_result, 1);
    EXPECT_TRUE(m_chosen.endsWith(QStringLiteral(",%1\\SAMPLE").arg(m_server.port())));
}

TEST_F(BrowseServersWindow, FillsItsColumnsInATranslatedProgram)
{
    class Translator : public QTranslator
    {
    public:
        QString translate(const char *, const char *text, const char *, int) const override
        {
            return QByteArray(text) == "Instance" ? QStringLiteral("Instanz") : QString();
        }
        bool isEmpty() const override { return false; }
    } translator;
    ASSERT_TRUE(QCoreApplication::installTranslator(&translator));
    MSSQLBrowseServersWindowController window(&m_parent);
    window.beginSheet([](int) {});
    auto *const table = window.findChild<QTableWidget *>();
    EXPECT_EQ(table->horizontalHeaderItem(1)->text(), QStringLiteral("Instanz"));
    EXPECT_TRUE(waitFor([&] { return table->rowCount() == 1; }));
    ASSERT_EQ(table->rowCount(), 1);
    EXPECT_EQ(table->item(0, 1)->text(), QStringLiteral("SAMPLE"));
    QCoreApplication::removeTranslator(&translator);
}

TEST_F(BrowseServersWindow, AcceptsARowThatIsDoubleClicked)
{
    ASSERT_TRUE(waitForServer());
    const QPoint cell = m_table->visualItemRect(m_table->item(0, 0)).center();
    QTest::mouseClick(m_table->viewport(), Qt::LeftButton, {}, cell);
    QTest::mouseDClick(m_table->viewport(), Qt::LeftButton, {}, cell);
    EXPECT_EQ(m_result, 1);
}

TEST_F(BrowseServersWindow, KeepsTheSelectionWhileTheListIsRenewed)
{
    ASSERT_TRUE(waitForServer());
    m_table->selectRow(0);
    const auto before = MSSQLBrowserServiceClient::allDatabases().value(0).lastSeen;
    ASSERT_TRUE(
        waitFor([&] { return MSSQLBrowserServiceClient::allDatabases().value(0).lastSeen > before; }));
    QApplication::sendPostedEvents();
    EXPECT_FALSE(m_window->currentConnectionString().isNull());
}

TEST_F(BrowseServersWindow, StopsTheSearchWhenItIsCancelled)
{
    ASSERT_TRUE(waitForServer());
    QTest::keyClick(m_window, Qt::Key_Escape);
    EXPECT_EQ(m_result, 0);
    EXPECT_TRUE(m_chosen.isNull());
    EXPECT_TRUE(settle()); // the search has ended
    EXPECT_FALSE(MSSQLBrowserServiceClient::IsSearching());
}

TEST_F(BrowseServersWindow, ShowsThatItSearches)
{
    auto *const mark = m_window->findChild<KNProgressMark *>();
    EXPECT_TRUE(waitFor([&] { return mark->isRunning(); }));
    EXPECT_TRUE(waitFor([&] { return !mark->isRunning(); }));
}

TEST(BrowseServersColumns, IgnoreCaseOfColumnNames)
{
    MSSQLBrowserServiceClientEntry entry;
    entry.host = QStringLiteral("A");
    entry.instance = QStringLiteral("B");
    entry.version = QStringLiteral("16.0");
    entry.port = 1433;
    const auto text = [&](const char *identifier) {
        return MSSQLBrowseServersWindowController::textForColumn(entry, QString::fromLatin1(identifier));
    };
    EXPECT_EQ(text("Host"), QStringLiteral("A"));
    EXPECT_EQ(text("INSTANCE"), QStringLiteral("B"));
    EXPECT_EQ(text("version"), QStringLiteral("16.0"));
    EXPECT_EQ(text("Port"), QStringLiteral("1433"));
    EXPECT_EQ(text("lastSeen"), QStringLiteral(""));
}
