#include "Database/VantorDBC.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Activity/KNActivityTab.h"
#include "UI/Activity/KNActivityView.h"

#include <QComboBox>
#include <QPushButton>

#include <atomic>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

using WindowTesting::waitFor;

namespace {

/// A server whose sessions the test sets.
class FakeActivity : public KNServerActivity
{
public:
    KNActivitySnapshot read(KNError *error) const override
    {
        const int now = ++reading;
        most = std::max(most.load(), now);
        ++readings;
        while (isHeld)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        const std::lock_guard lock(mutex);
        *error = failure;
        --reading;
        return snapshot;
    }
    void kill(int session, KNError *error) const override
    {
        const std::lock_guard lock(mutex);
        killed.append(session);
        *error = failure;
    }
    void set(const KNActivitySnapshot &sessions, const KNError &error = {})
    {
        const std::lock_guard lock(mutex);
        snapshot = sessions;
        failure = error;
    }
    QList<int> killedSessions() const
    {
        const std::lock_guard lock(mutex);
        return killed;
    }

    mutable std::mutex mutex;
    KNActivitySnapshot snapshot; ///< guarded by mutex
    KNError failure;             ///< guarded by mutex
    mutable QList<int> killed;   ///< guarded by mutex
    mutable std::atomic<int> reading = 0;
    mutable std::atomic<int> most = 0; ///< readings at a time
    mutable std::atomic<int> readings = 0;
    std::atomic<bool> isHeld = false;
};

KNActivitySession sessionOf(int id, int blockedBy = 0, const char *command = "")
{
    KNActivitySession session;
    session.id = id;
    session.blockedBy = blockedBy;
    session.status = QStringLiteral("sleeping");
    session.login = QStringLiteral("ann");
    session.program = QStringLiteral("<b>payroll</b>");
    session.command = QString::fromLatin1(command);
    session.statement = QStringLiteral("SELECT %1").arg(id);
    return session;
}

class ActivityTab : public testing::Test
{
protected:
    ~ActivityTab() override
    {
        activity->isHeld = false;
        tab.reset();
        EXPECT_TRUE(WindowTesting::settle());
    }
    void show(const KNActivitySnapshot &snapshot)
    {
        activity->set(snapshot);
        tab->show();
        ASSERT_TRUE(waitFor([&] { return activity->readings > 0 && !tab->isReading(); }));
    }
    void select(int row) { tab->view()->setCurrentItem(tab->view()->topLevelItem(row)); }

    RecordingAlerts &alerts = RecordingAlerts::install();
    const std::shared_ptr<FakeActivity> activity = std::make_shared<FakeActivity>();
    std::unique_ptr<KNActivityTab> tab = std::make_unique<KNActivityTab>(nullptr, activity);
};

} // namespace

TEST(ActivityBlockers, PutASessionBelowTheOneThatItWaitsFor)
{
    EXPECT_EQ(KNServerActivity::blockers({sessionOf(51), sessionOf(52, 51), sessionOf(53, 52)}),
              (QList<qsizetype>{-1, 0, 1}));
    EXPECT_EQ(KNServerActivity::blockers({sessionOf(60, 60), sessionOf(61, 99), sessionOf(62, -2)}),
              (QList<qsizetype>{-1, -1, -1}))
        << "itself, a session that is gone, and no session";
    EXPECT_TRUE(KNServerActivity::blockers({}).isEmpty());
}

TEST(ActivityBlockers, CutACircle)
{
    EXPECT_EQ(
        KNServerActivity::blockers({sessionOf(1, 3), sessionOf(2, 1), sessionOf(3, 2), sessionOf(4, 2)}),
        (QList<qsizetype>{-1, 0, 1, 1}));
}

TEST(ActivityView, ShowsTimesWithTheDigitsThatMatter)
{
    EXPECT_EQ(KNActivityView::durationText(0), QStringLiteral("0 ms"));
    EXPECT_EQ(KNActivityView::durationText(999), QStringLiteral("999 ms"));
    EXPECT_EQ(KNActivityView::durationText(12'345), QStringLiteral("12.3 s"));
    EXPECT_EQ(KNActivityView::durationText(3'723'000), QStringLiteral("1:02:03"));
    EXPECT_EQ(KNActivityView::durationText(-5), QStringLiteral("0 ms")) << "clocks differ";
}

TEST_F(ActivityTab, ShowsWhoWaitsForWhomAndTheStatement)
{
    show({{sessionOf(51), sessionOf(52, 51, "UPDATE"), sessionOf(53, 0, "SELECT")}});
    KNActivityView &view = *tab->view();
    ASSERT_EQ(view.topLevelItemCount(), 2);
    QTreeWidgetItem *const blocker = view.topLevelItem(0);
    ASSERT_EQ(blocker->childCount(), 1);
    EXPECT_TRUE(blocker->isExpanded());
    EXPECT_EQ(blocker->child(0)->text(KNActivityView::Session), QStringLiteral("52"));
    EXPECT_EQ(blocker->child(0)->text(KNActivityView::Status), QStringLiteral("blocked by 51"));
    EXPECT_EQ(view.summary(), QStringLiteral("3 sessions, 2 running, 1 blocked"));
    EXPECT_EQ(tab->statement(), QString());
    view.setCurrentItem(blocker->child(0));
    EXPECT_EQ(tab->statement(), QStringLiteral("SELECT 52"));
    EXPECT_TRUE(tab->remark().isEmpty());
}

TEST_F(ActivityTab, KeepsTheSelectionWhenItRefreshes)
{
    show({{sessionOf(51), sessionOf(52)}});
    select(1);
    activity->set({{sessionOf(50), sessionOf(51), sessionOf(52)}});
    tab->refresh();
    ASSERT_TRUE(waitFor([&] { return tab->view()->topLevelItemCount() == 3; }));
    EXPECT_EQ(tab->view()->currentSession()->id, 52);
    activity->set({{sessionOf(50)}});
    tab->refresh();
    ASSERT_TRUE(waitFor([&] { return tab->view()->topLevelItemCount() == 1; }));
    EXPECT_FALSE(tab->view()->currentSession());
    EXPECT_FALSE(tab->killButton()->isEnabled());
    EXPECT_EQ(tab->statement(), QString());
}

TEST_F(ActivityTab, ReadsAgainByItselfButNeverTwiceAtATime)
{
    show({{sessionOf(51)}});
    tab->interval()->setCurrentIndex(tab->interval()->findData(2));
    const int before = activity->readings;
    ASSERT_TRUE(waitFor([&] { return activity->readings > before; }));
    ASSERT_TRUE(waitFor([&] { return !tab->isReading(); }));
    activity->isHeld = true;
    const int held = activity->readings;
    for (int i = 0; i < 5; ++i)
        tab->refresh();
    ASSERT_TRUE(waitFor([&] { return activity->readings > held; }));
    tab->refresh();
    QTest::qWait(50);
    EXPECT_EQ(activity->readings, held + 1);
    activity->isHeld = false;
    ASSERT_TRUE(waitFor([&] { return !tab->isReading(); }));
    EXPECT_EQ(activity->most, 1);
}

TEST_F(ActivityTab, ReadsNothingWhileItIsHidden)
{
    show({{sessionOf(51)}});
    tab->interval()->setCurrentIndex(tab->interval()->findData(2));
    tab->hide();
    const int before = activity->readings;
    QTest::qWait(2300);
    EXPECT_EQ(activity->readings, before);
    tab->show();
    EXPECT_TRUE(waitFor([&] { return activity->readings > before; }));
}

TEST_F(ActivityTab, KillsAfterAQuestion)
{
    show({{sessionOf(51), sessionOf(52)}});
    select(1);
    ASSERT_TRUE(tab->killButton()->isEnabled());
    tab->killButton()->click();
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_EQ(alerts.questions[0].title, QStringLiteral("Kill session 52?"));
    EXPECT_EQ(alerts.questions[0].buttons.first(), QStringLiteral("Cancel")) << "what Return does";
    alerts.pending[0](0);
    EXPECT_TRUE(activity->killedSessions().isEmpty());
    tab->killSession();
    const int before = activity->readings;
    alerts.pending[1](1);
    ASSERT_TRUE(waitFor([&] { return activity->readings > before; })) << "the list is read again";
    EXPECT_EQ(activity->killedSessions(), QList<int>{52});
}

TEST_F(ActivityTab, DoesNotKillItsOwnSession)
{
    KNActivitySession own = sessionOf(51);
    own.isOwn = true;
    show({{own}});
    select(0);
    EXPECT_FALSE(tab->killButton()->isEnabled());
    tab->killSession();
    EXPECT_TRUE(alerts.questions.empty());
}

TEST_F(ActivityTab, SaysWhyAReadingFailedAndKeepsTheSessions)
{
    show({{sessionOf(51)}, QStringLiteral("Only your own session is shown.")});
    EXPECT_EQ(tab->remark(), QStringLiteral("Only your own session is shown."));
    activity->set({}, KNError(QStringLiteral("test"), 1, QStringLiteral("The connection was lost.")));
    tab->refresh();
    ASSERT_TRUE(waitFor([&] { return tab->remark() == QStringLiteral("The connection was lost."); }));
    EXPECT_EQ(tab->view()->topLevelItemCount(), 1);
    select(0);
    tab->killSession();
    alerts.pending[0](1);
    ASSERT_TRUE(waitFor([&] { return !alerts.errors.empty(); }));
    EXPECT_EQ(alerts.errors[0].localizedDescription(), QStringLiteral("The connection was lost."));
}
