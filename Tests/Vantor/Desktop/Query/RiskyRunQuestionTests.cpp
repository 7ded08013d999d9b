#include "Desktop/Main/ConnectionStrip.h"
#include "Desktop/Query/QueryTab.h"
#include "Recent/KNDBCTabColorHelper.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QLabel>
#include <QSignalSpy>

namespace {

class ProductionRun : public testing::Test
{
protected:
    void open(bool isProduction, const char *text)
    {
        const VantorDBCPtr details =
            DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("library"));
        details->setAlias(QStringLiteral("the library"));
        details->setProduction(isProduction);
        m_tab = std::make_unique<QueryTab>(*details);
        m_tab->setText(QString::fromLatin1(text));
        m_finished = std::make_unique<QSignalSpy>(m_tab.get(), &QueryTab::runFinished);
    }
    void TearDown() override
    {
        EXPECT_TRUE(WindowTesting::settle());
        m_tab.reset();
    }
    bool run()
    {
        const auto before = m_finished->size();
        m_tab->run();
        EXPECT_TRUE(WindowTesting::settle());
        return m_finished->size() > before;
    }

    RecordingAlerts &m_alerts = RecordingAlerts::install();
    std::unique_ptr<QueryTab> m_tab;
    std::unique_ptr<QSignalSpy> m_finished;
};

} // namespace

TEST_F(ProductionRun, AsksBeforeRiskyStatementsAndReturnCancels)
{
    open(true, "SELECT 1\nGO\nDROP TABLE there_is_none\nGO\nDELETE FROM neither_is_this");
    m_alerts.answer = 0;
    EXPECT_FALSE(run());
    ASSERT_EQ(m_alerts.questions.size(), 1U);
    EXPECT_TRUE(m_alerts.questions[0].title.contains(QStringLiteral("the library")));
    EXPECT_TRUE(m_alerts.questions[0].text.contains(
        QStringLiteral("DROP TABLE there_is_none\nDELETE FROM neither_is_this")))
        << m_alerts.questions[0].text.toStdString();
    m_alerts.answer = 1;
    EXPECT_TRUE(run());
}

TEST_F(ProductionRun, AsksForNothingElse)
{
    open(true, "SELECT 1; DELETE FROM there_is_none WHERE id = 1");
    EXPECT_TRUE(run());
    EXPECT_TRUE(m_alerts.questions.empty());
}

TEST_F(ProductionRun, OfAnotherConnectionIsNotAskedFor)
{
    open(false, "DROP TABLE there_is_none");
    EXPECT_TRUE(run());
    EXPECT_TRUE(m_alerts.questions.empty());
}

TEST(ConnectionStrip, SaysThatAConnectionIsAProductionOne)
{
    const VantorDBCPtr details = DesktopTesting::settingsFor(SampleServerFixture::shared());
    details->setConnectionId(QStringLiteral("strip"));
    KNDBCTabColorHelper::setColorForId(QStringLiteral("#3a8a3f"), QStringLiteral("strip"));
    const ConnectionStrip plain(*details);
    EXPECT_EQ(plain.findChild<QLabel *>(), nullptr);
    EXPECT_EQ(plain.palette().color(QPalette::Window), QColor(QStringLiteral("#3a8a3f")));
    details->setProduction(true);
    const ConnectionStrip production(*details);
    ASSERT_NE(production.findChild<QLabel *>(), nullptr);
    EXPECT_EQ(production.findChild<QLabel *>()->text(), QStringLiteral("PRODUCTION"));
}
