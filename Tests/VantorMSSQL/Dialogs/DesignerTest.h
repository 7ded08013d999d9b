#pragma once

#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNUserDefaults.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingSheets.h"
#include "Support/RecordingWorkspace.h"
#include "Support/SampleServerFixture.h"
#include "Support/WindowTesting.h"
#include "UI/TableDesigner/MSSQLDesignerListView.h"
#include "UI/TableDesigner/MSSQLTableColumnDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableDesignerViewController.h"

#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTreeWidget>

#include <algorithm>

/// A table designer over a database of its own, with corrected statements.
class DesignerTest : public testing::Test
{
protected:
    using Column = MSSQLColumnGridModel::Column;

    explicit DesignerTest(SampleServerFixture &server = SampleServerFixture::shared())
        : m_settings(settingsFor(server))
    {
        KNUserDefaults::standardUserDefaults()->setObject(MSSQLCorrectedStatements::Key, true);
        static int databases = 0;
        const QString database = KNFormat("designed_%d", ++databases);
        run(KNFormat("CREATE DATABASE %@", database));
        m_settings->setDatabase(database);
        m_workspace.window.show();
    }
    ~DesignerTest() override
    {
        m_designer.reset();
        EXPECT_TRUE(WindowTesting::settle());
        KNUserDefaults::standardUserDefaults()->removeObject(MSSQLCorrectedStatements::Key);
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }

    static std::shared_ptr<MSSQLDatabaseConnectionDetails> settingsFor(const SampleServerFixture &server)
    {
        auto details = std::make_shared<MSSQLDatabaseConnectionDetails>();
        details->setHost(QStringLiteral("127.0.0.1,%1").arg(server.port()));
        details->setUsername(QString::fromLatin1(SampleServerFixture::User));
        details->setPassword(QString::fromLatin1(SampleServerFixture::Password));
        return details;
    }

    void run(const QString &sql)
    {
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) { client.executeNonQuery(sql, failure); },
            *m_settings, &error);
        EXPECT_FALSE(error) << sql.toStdString() << ": " << error.localizedDescription().toStdString();
    }
    void run(const char *sql) { run(QString::fromUtf8(sql)); }
    /// The first column of a query, as text.
    QStringList column(const QString &sql)
    {
        QStringList texts;
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(sql, failure);
                while (rows && rows->next())
                    texts.append(rows->objectForColumnIndex(0).displayText());
            },
            *m_settings, &error);
        EXPECT_FALSE(error) << sql.toStdString() << ": " << error.localizedDescription().toStdString();
        return texts;
    }

    void open(const QString &schema, const QString &table)
    {
        m_designer =
            std::make_unique<MSSQLTableDesignerViewController>(schema, table, m_settings, m_workspace);
        m_designer->resize(900, 600);
        m_designer->show();
        finish();
    }
    /// Waits until the change has run and all tabs show what the server has.
    void finish()
    {
        EXPECT_TRUE(WindowTesting::settle());
        EXPECT_TRUE(WindowTesting::waitFor([&] {
            const auto lists = m_designer->findChildren<MSSQLDesignerListView *>();
            return !m_designer->session().isBusy() && !columns()->isLoading() &&
                   std::none_of(lists.begin(), lists.end(),
                                [](const auto *list) { return list->isLoading(); });
        }));
    }
    template <typename Page>
    Page *page()
    {
        Page *const found = m_designer->findChild<Page *>();
        m_designer->tabs()->setCurrentWidget(found);
        return found;
    }
    MSSQLTableColumnDesignerViewController *columns()
    {
        return m_designer->findChild<MSSQLTableColumnDesignerViewController *>();
    }
    QTableView *grid() { return columns()->grid(); }
    /// A column of the grid as it is shown.
    QStringList cells(Column column)
    {
        QStringList texts;
        for (int row = 0; row < grid()->model()->rowCount(); ++row)
            texts.append(grid()->model()->index(row, column).data().toString());
        return texts;
    }
    void edit(int row, Column column, const QVariant &value)
    {
        QAbstractItemModel *const model = grid()->model();
        const bool isCheck = value.metaType().id() == QMetaType::Bool;
        model->setData(model->index(row, column),
                       isCheck ? QVariant(value.toBool() ? Qt::Checked : Qt::Unchecked) : value,
                       isCheck ? Qt::CheckStateRole : Qt::EditRole);
        finish();
    }
    /// The rows of a list, cells joined by " | ".
    static QStringList rows(const QTreeWidget *list)
    {
        QStringList texts;
        for (int row = 0; row < list->topLevelItemCount(); ++row) {
            QStringList cells;
            for (int i = 0; i < list->columnCount(); ++i)
                cells.append(list->topLevelItem(row)->text(i));
            texts.append(cells.join(QStringLiteral(" | ")));
        }
        return texts;
    }
    /// Selects the row whose first cell has this text.
    static bool select(QTreeWidget *list, const QString &name)
    {
        const auto found = list->findItems(name, Qt::MatchExactly);
        if (found.size() == 1)
            list->setCurrentItem(found.first());
        return found.size() == 1;
    }
    /// The text that a tab shows in place of its rows; null if none is shown.
    static QString notice(const QWidget *page)
    {
        for (const QLabel *label : page->findChildren<QLabel *>()) {
            if (!label->isHidden() && !label->text().isEmpty())
                return label->text();
        }
        return {};
    }
    static void clickDefault(const QWidget *window)
    {
        for (QPushButton *const button : window->findChildren<QPushButton *>()) {
            if (button->isDefault())
                return button->click();
        }
        ADD_FAILURE() << "no default button";
    }
    /// Accepts the preview, and returns the statements that it showed.
    QString acceptPreview()
    {
        EXPECT_TRUE(m_previews.last);
        if (!m_previews.last ||
            !WindowTesting::waitFor([&] { return !m_previews.last->statements.isEmpty(); }))
            return {};
        QString statements = m_previews.last->statements;
        m_previews.last->accept(statements);
        EXPECT_TRUE(
            WindowTesting::waitFor([&] { return !m_previews.last || !m_previews.last->outcomes.empty(); }));
        EXPECT_TRUE(!m_previews.last)
            << m_previews.last->outcomes[0].error.localizedDescription().toStdString();
        finish();
        return statements;
    }
    /// Answers the last question.
    void answer(int button)
    {
        ASSERT_FALSE(m_alerts.pending.empty());
        const auto answered = std::move(m_alerts.pending.back());
        m_alerts.pending.pop_back();
        answered(button);
        finish();
    }

    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_settings;
    RecordingAlerts &m_alerts = RecordingAlerts::install();
    RecordingQueryPreview::Installation m_previews;
    RecordingWorkspace m_workspace{*m_settings};
    std::unique_ptr<MSSQLTableDesignerViewController> m_designer;
};
