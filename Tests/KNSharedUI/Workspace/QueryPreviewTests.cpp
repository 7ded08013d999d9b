#include "Database/VantorDatabaseConnectionPool.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingSheets.h"
#include "Support/WindowTesting.h"
#include "UI/Dialogs/KNCautionBar.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Workspace/KNQueryPreviewDialog.h"
#include "UI/Workspace/KNStatementChoice.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

using Changes = KNQueryPreview::Changes;
using WindowTesting::waitFor;

namespace {

const KNStatementPair DropOrders = {
    QStringLiteral("DROP TABLE Orders"), QStringLiteral("DROP TABLE sales.Orders"),
    QStringLiteral("This names the table without its schema and would change dbo.Orders.")};

/// A preview on the screen.
class QueryPreviews : public testing::Test
{
protected:
    QueryPreviews()
    {
        details.setHost(QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name()));
        server.answer = [this](const QString &sql, KNError *error) {
            const std::lock_guard lock(m_mutex);
            m_sent.append(sql);
            if (sql.contains(QLatin1String("FAIL")))
                *error = KNError(QStringLiteral("SQLClient"), 3701, QStringLiteral("It does not exist."));
            return nullptr;
        };
        window.resize(900, 600);
        window.show();
    }
    ~QueryPreviews() override
    {
        EXPECT_TRUE(WindowTesting::settle());
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }
    KNQueryPreview *open(const KNQueryLoaderPtr &loader, bool editable = false)
    {
        preview = KNQueryPreview::createQueryPreviewViewContoller(&window, details);
        preview->setTitle(QStringLiteral("Do you really want to drop the table 'Orders'?"),
                          QStringLiteral("Once a table has been removed, it cannot be recovered."),
                          QStringLiteral("Drop"), QStringLiteral("Dropping Table 'Orders'"));
        preview->setQueryLoader(loader);
        preview->setErrorDomain(QStringLiteral("MSSQL::dropTable"));
        preview->setEditable(editable);
        preview->setRemoves(removes);
        preview->setReportErrorBlock([this](const KNError &error) { errors.push_back(error); });
        preview->beginSheet([this](Changes changes) { ended.append(changes); });
        return preview;
    }
    KNQueryPreview *open(const char *text, bool editable = false)
    {
        return open(std::make_shared<StaticQueryLoader>(QString::fromLatin1(text)), editable);
    }
    KNQueryPreviewDialog *dialog() const { return window.findChild<KNQueryPreviewDialog *>(); }
    QPushButton *button(const char *title) const
    {
        for (QPushButton *const each : dialog()->findChildren<QPushButton *>()) {
            if (each->text() == QLatin1String(title))
                return each;
        }
        return nullptr;
    }
    KNCautionBar *caution() const { return dialog()->findChild<KNCautionBar *>(); }
    QString visibleTexts() const
    {
        QStringList texts;
        for (const QLabel *const label : dialog()->findChildren<QLabel *>()) {
            if (label->isVisible())
                texts.append(label->text());
        }
        return texts.join(u'|');
    }
    QStringList sent()
    {
        const std::lock_guard lock(m_mutex);
        return m_sent;
    }

    FakeDatabase::Server server;
    FakeDatabase::Settings details{server};
    QWidget window;
    bool removes = false; ///< of the next preview
    QPointer<KNQueryPreview> preview;
    std::vector<KNError> errors;
    QList<Changes> ended;

private:
    std::mutex m_mutex;
    QStringList m_sent;
};

} // namespace

TEST_F(QueryPreviews, ShowTheStatementsAndRunThemOnAccept)
{
    open("DROP TABLE sales.Orders");
    ASSERT_NE(dialog(), nullptr);
    EXPECT_TRUE(dialog()->isVisible());
    EXPECT_EQ(dialog()->statements(), QStringLiteral("DROP TABLE sales.Orders"));
    EXPECT_TRUE(
        visibleTexts().contains(QStringLiteral("Once a table has been removed, it cannot be recovered.")));
    EXPECT_TRUE(dialog()->findChild<KNSQLEditor *>()->isReadOnly());
    EXPECT_FALSE(caution()->isVisible());
    EXPECT_EQ(sent(), QStringList()) << "before the user has accepted";
    button("Drop")->click();
    EXPECT_TRUE(preview->isRunning());
    EXPECT_TRUE(visibleTexts().contains(QStringLiteral("Dropping Table 'Orders'")));
    EXPECT_FALSE(button("Drop")->isEnabled());
    ASSERT_TRUE(waitFor([&] { return !ended.isEmpty(); }));
    EXPECT_EQ(ended, QList<Changes>{Changes::All});
    EXPECT_EQ(sent(), QStringList{QStringLiteral("DROP TABLE sales.Orders")});
    EXPECT_TRUE(waitFor([&] { return !preview && !dialog(); }));
}

TEST_F(QueryPreviews, RunNothingOnCancel)
{
    open("DROP TABLE sales.Orders");
    button("Cancel")->click();
    EXPECT_EQ(ended, QList<Changes>{Changes::None});
    EXPECT_TRUE(waitFor([&] { return !preview && !dialog(); }));
    EXPECT_EQ(sent(), QStringList());
}

TEST_F(QueryPreviews, RunNothingOnEscape)
{
    open("DROP TABLE sales.Orders");
    QTest::keyClick(dialog(), Qt::Key_Escape);
    EXPECT_EQ(ended, QList<Changes>{Changes::None});
    EXPECT_EQ(sent(), QStringList());
}

TEST_F(QueryPreviews, StayOpenAfterAFailureAndMarkTheStatement)
{
    open("SELECT 1\nGO\nDROP TABLE FAIL");
    button("Drop")->click();
    ASSERT_TRUE(waitFor([&] { return !errors.empty(); }));
    EXPECT_EQ(errors.front().domain(), QStringLiteral("MSSQL::dropTable"));
    EXPECT_EQ(errors.front().code(), 3701);
    EXPECT_EQ(errors.front().userInfo().value(QStringLiteral("Query")).toString(),
              QStringLiteral("DROP TABLE FAIL"));
    EXPECT_TRUE(dialog()->isVisible());
    EXPECT_TRUE(visibleTexts().contains(
        QStringLiteral("It does not exist.\nStatements before this one may have changed something.")))
        << visibleTexts().toStdString();
    EXPECT_EQ(dialog()->findChild<KNSQLEditor *>()->errorMarks(), QList<KNRange>{(KNRange{12, 15})});
    EXPECT_TRUE(button("Drop")->isEnabled());
    EXPECT_TRUE(ended.isEmpty());
    button("Cancel")->click();
    EXPECT_EQ(ended, QList<Changes>{Changes::Some});
}

TEST_F(QueryPreviews, SayThatARolledBackTransactionHasChangedNothing)
{
    open("DROP TABLE FAIL")->setUseTransaction(true);
    button("Drop")->click();
    ASSERT_TRUE(waitFor([&] { return !errors.empty(); }));
    EXPECT_TRUE(visibleTexts().contains(QStringLiteral("It does not exist.\nNothing was changed.")));
}

TEST_F(QueryPreviews, RunTheEditedStatements)
{
    open("DROP TABLE FAIL", true);
    auto *const editor = dialog()->findChild<KNSQLEditor *>();
    EXPECT_FALSE(editor->isReadOnly());
    button("Drop")->click();
    ASSERT_TRUE(waitFor([&] { return !errors.empty(); }));
    editor->setWholeText(QStringLiteral("DROP TABLE sales.Orders"));
    button("Drop")->click();
    ASSERT_TRUE(waitFor([&] { return !ended.isEmpty(); }));
    EXPECT_EQ(ended, QList<Changes>{Changes::All});
    EXPECT_EQ(sent().last(), QStringLiteral("DROP TABLE sales.Orders"));
}

TEST_F(QueryPreviews, CancelTheRunningStatementsAndStayOpen)
{
    std::atomic<bool> isReleased = false;
    server.answer = [&](const QString &, KNError *) {
        while (!isReleased)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return nullptr;
    };
    open("WAITFOR DELAY '1:00'")->setUseTransaction(true);
    button("Drop")->click();
    ASSERT_TRUE(waitFor([&] { return server.logins > 0; }));
    button("Cancel")->click();
    EXPECT_TRUE(dialog()->isVisible());
    isReleased = true;
    ASSERT_TRUE(waitFor([&] { return !preview->isRunning(); }));
    EXPECT_TRUE(
        visibleTexts().contains(QStringLiteral("The statements were cancelled.\nNothing was changed.")));
    EXPECT_TRUE(errors.empty());
    EXPECT_TRUE(ended.isEmpty());
}

TEST_F(QueryPreviews, CannotAcceptStatementsThatAreIncomplete)
{
    KNQueryReport report;
    report.failure = KNError(QStringLiteral("x"), 1, QStringLiteral("The view is encrypted."));
    report.unsafeLength = 11;
    open(std::make_shared<StaticQueryLoader>(QStringLiteral("DROP VIEW a"), report));
    EXPECT_FALSE(button("Drop")->isEnabled());
    EXPECT_EQ(caution()->text(), QStringLiteral("The statements are incomplete: The view is encrypted."));
    EXPECT_TRUE(dialog()->statements().contains(QStringLiteral("-- DROP VIEW a")));
}

TEST_F(QueryPreviews, CannotAcceptStatementsThatCouldNotBeCreated)
{
    open(std::make_shared<StaticQueryLoader>(QString()));
    EXPECT_FALSE(button("Drop")->isEnabled());
    EXPECT_EQ(caution()->text(), QStringLiteral("The statements could not be created."));
}

TEST_F(QueryPreviews, WarnOfAnExactStatementAndOfferTheCorrectedOne)
{
    open(DropOrders.loader(false));
    EXPECT_EQ(dialog()->statements(), QStringLiteral("DROP TABLE Orders"));
    EXPECT_TRUE(caution()->isVisible());
    EXPECT_EQ(caution()->text(),
              QStringLiteral("This names the table without its schema and would change dbo.Orders."));
    button("Use Corrected Statement")->click();
    EXPECT_EQ(dialog()->statements(), QStringLiteral("DROP TABLE sales.Orders"));
    EXPECT_FALSE(caution()->isVisible());
    button("Drop")->click();
    ASSERT_TRUE(waitFor([&] { return !ended.isEmpty(); }));
    EXPECT_EQ(sent(), QStringList{QStringLiteral("DROP TABLE sales.Orders")});
}

TEST_F(QueryPreviews, CancelWithTheReturnKeyIfTheStatementsRemoveSomething)
{
    removes = true;
    open(DropOrders.loader(false));
    EXPECT_TRUE(button("Cancel")->isDefault());
    EXPECT_FALSE(button("Use Corrected Statement")->isDefault());
    QTest::keyClick(dialog()->focusWidget(), Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !ended.isEmpty(); }));
    EXPECT_EQ(ended, QList<Changes>{Changes::None});
    EXPECT_TRUE(sent().isEmpty());
}

TEST_F(QueryPreviews, RunNothingWithTheReturnKeyBeforeTheCorrectedStatementIsShown)
{
    open(DropOrders.loader(false));
    EXPECT_TRUE(button("Use Corrected Statement")->isDefault());
    QTest::keyClick(dialog()->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(dialog()->statements(), QStringLiteral("DROP TABLE sales.Orders"));
    EXPECT_TRUE(sent().isEmpty());
    EXPECT_TRUE(button("Drop")->isDefault());
}

TEST_F(QueryPreviews, RunTheExactStatementIfTheUserInsists)
{
    open(DropOrders.loader(false));
    button("Drop")->click();
    ASSERT_TRUE(waitFor([&] { return !ended.isEmpty(); }));
    EXPECT_EQ(sent(), QStringList{QStringLiteral("DROP TABLE Orders")});
}

TEST_F(QueryPreviews, ShowThePreferredCorrectedStatementWithoutACaution)
{
    open(DropOrders.loader(true));
    EXPECT_EQ(dialog()->statements(), QStringLiteral("DROP TABLE sales.Orders"));
    EXPECT_FALSE(caution()->isVisible());
}

TEST_F(QueryPreviews, NameEverythingThatCanHaveTheFocus)
{
    open(DropOrders.loader(false));
    EXPECT_EQ(WindowTesting::namelessWidgets(*dialog()), QStringList());
}

TEST_F(QueryPreviews, AreReplacedInTests)
{
    RecordingQueryPreview::Installation previews;
    open("DROP TABLE sales.Orders");
    ASSERT_TRUE(previews.last);
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_TRUE(previews.last->isShown);
    EXPECT_EQ(previews.last->titles().acceptTitle, QStringLiteral("Drop"));
    EXPECT_EQ(previews.last->statements, QStringLiteral("DROP TABLE sales.Orders"));
    previews.last->accept(previews.last->statements);
    ASSERT_TRUE(waitFor([&] { return !ended.isEmpty(); }));
    EXPECT_EQ(ended, QList<Changes>{Changes::All});
    EXPECT_EQ(sent(), QStringList{QStringLiteral("DROP TABLE sales.Orders")});
}

TEST(StatementChoice, AsksBeforeAnExactStatementIsUsed)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    QStringList used;
    const auto choose = [&](bool prefersCorrected) {
        KNChooseStatement(nullptr, DropOrders, prefersCorrected,
                          [&](const QString &text) { used.append(text); });
    };
    choose(true);
    EXPECT_EQ(used, QStringList{DropOrders.corrected});
    EXPECT_TRUE(alerts.questions.empty());

    choose(false);
    ASSERT_EQ(alerts.questions.size(), 1u);
    EXPECT_EQ(alerts.questions.front().title,
              QStringLiteral("This names the table without its schema and would change dbo.Orders."));
    EXPECT_EQ(alerts.questions.front().buttons,
              (QStringList{QStringLiteral("Use Corrected Statement"), QStringLiteral("Run Unchanged"),
                           QStringLiteral("Cancel")}));
    EXPECT_EQ(used.size(), 1);
    alerts.pending.front()(1);
    EXPECT_EQ(used.last(), QStringLiteral("DROP TABLE Orders"));
    alerts.pending.front()(0);
    EXPECT_EQ(used.last(), QStringLiteral("DROP TABLE sales.Orders"));
    alerts.pending.front()(2);
    alerts.pending.front()(-1);
    EXPECT_EQ(used.size(), 3);
}

TEST(StatementChoice, CancelsWithTheFirstButtonIfTheStatementRemovesSomething)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    QStringList used;
    KNChooseStatement(
        nullptr, DropOrders, false, [&](const QString &text) { used.append(text); }, true);
    ASSERT_EQ(alerts.questions.size(), 1u);
    EXPECT_EQ(alerts.questions.front().buttons,
              (QStringList{QStringLiteral("Cancel"), QStringLiteral("Use Corrected Statement"),
                           QStringLiteral("Run Unchanged")}));
    alerts.pending.front()(-1);
    alerts.pending.front()(0);
    EXPECT_TRUE(used.isEmpty());
    alerts.pending.front()(1);
    alerts.pending.front()(2);
    EXPECT_EQ(used,
              (QStringList{QStringLiteral("DROP TABLE sales.Orders"), QStringLiteral("DROP TABLE Orders")}));
}

TEST(StatementChoice, AsksNothingWhereBothHaveTheSameEffect)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    KNStatementPair same = DropOrders;
    same.difference.clear();
    QStringList used;
    KNChooseStatement(nullptr, same, false, [&](const QString &text) { used.append(text); });
    EXPECT_EQ(used, QStringList{QStringLiteral("DROP TABLE Orders")});
    EXPECT_TRUE(alerts.questions.empty());
}

TEST(StatementPair, BecomesACommentBeforeAScriptThatIsOpenedAsAQuery)
{
    KNQueryReport report;
    report.pair = DropOrders;
    EXPECT_TRUE(report.needsAttention());
    EXPECT_EQ(report.guardedText(DropOrders.exact),
              QStringLiteral("-- This names the table without its schema and would change dbo.Orders.\r\n"
                             "DROP TABLE Orders"));
    EXPECT_FALSE(KNQueryReport().needsAttention());
}

TEST(ProgressSheet, ShowsLabelAndPercentageAndCancelsOnce)
{
    QWidget window;
    window.show();
    int cancels = 0;
    const auto sheet = KNProgressSheet::create(&window);
    sheet->setLabelString(QStringLiteral("Renaming <b>Table</b>"));
    sheet->setCancelBlock([&] { ++cancels; });
    sheet->begin();
    auto *const dialog = window.findChild<QDialog *>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->findChild<QLabel *>()->text(), QStringLiteral("Renaming <b>Table</b>"));
    EXPECT_EQ(dialog->findChild<QLabel *>()->textFormat(), Qt::PlainText);
    auto *const bar = dialog->findChild<QProgressBar *>();
    EXPECT_EQ(bar->maximum(), 0) << "busy while the percentage is not known";
    sheet->setPercentage(42.5);
    EXPECT_EQ(bar->value(), 42);
    QTest::keyClick(dialog, Qt::Key_Escape);
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_EQ(cancels, 1);
    EXPECT_TRUE(dialog->isVisible()) << "until the work has stopped";
    EXPECT_FALSE(dialog->findChild<QPushButton *>()->isEnabled());
    sheet->end();
    EXPECT_FALSE(dialog->isVisible());
}

TEST(ProgressSheet, CannotBeClosedWithoutACancelButton)
{
    QWidget window;
    window.show();
    auto sheet = KNProgressSheet::create(&window);
    sheet->begin();
    auto *const dialog = window.findChild<QDialog *>();
    EXPECT_FALSE(dialog->findChild<QPushButton *>()->isVisible());
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_TRUE(dialog->isVisible());
    dialog->close();
    EXPECT_TRUE(dialog->isVisible());
    sheet.reset();
    EXPECT_EQ(window.findChild<QDialog *>(), nullptr);
}

TEST(ProgressSheet, MayOutliveItsWindow)
{
    auto window = std::make_unique<QWidget>();
    const auto sheet = KNProgressSheet::create(window.get());
    sheet->begin();
    window.reset();
    sheet->setLabelString(QStringLiteral("later"));
    sheet->setPercentage(100);
    sheet->end();
    SUCCEED();
}

TEST(ProgressSheet, IsReplacedInTests)
{
    RecordingProgressSheets sheets;
    {
        const auto sheet = KNProgressSheet::create(nullptr);
        sheet->setLabelString(QStringLiteral("Renaming Table"));
        sheet->begin();
        EXPECT_TRUE(sheets.all.front()->isShown);
    }
    EXPECT_FALSE(sheets.all.front()->isShown);
    EXPECT_EQ(sheets.all.front()->labels, QStringList{QStringLiteral("Renaming Table")});
}
