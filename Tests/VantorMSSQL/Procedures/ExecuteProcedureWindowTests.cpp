#include "Support/DialogTesting.h"
#include "Support/RecordingStore.h"
#include "UI/Dialogs/MSSQLExecuteStoredProcedureWindowController/MSSQLExecuteStoredProcedureWindowController.h"
#include "UI/Dialogs/MSSQLExecuteStoredProcedureWindowController/MSSQLStoredProcedureModel.h"
#include "UI/RowEditing/KNEditRowDelegate.h"
#include "VantorMSSQL/DatabaseTree/ActionTest.h"

#include <QTableView>

namespace ExecuteProcedureWindowTests {

namespace {

using Dialog = MSSQLExecuteStoredProcedureWindowController;
using Model = MSSQLStoredProcedureModel;

/// The dialog of a procedure of the sample server.
class ExecuteProcedure : public ActionTest
{
protected:
    ExecuteProcedure()
        : ActionTest("shop")
    {
    }
    ~ExecuteProcedure() override { KNKeyValueStore::setShared(nullptr); }

    /// Opens the dialog from the tree and waits for its parameters.
    Dialog &open(const char *procedure)
    {
        m_workspace.selected = entry({"shop", "Programmability", "Stored Procedures", procedure});
        perform("executeStoredProcedure:", QStringLiteral("ignored"));
        auto *const dialog = m_workspace.window.findChild<Dialog *>();
        if (!dialog)
            throw std::runtime_error("no dialog");
        EXPECT_TRUE(WindowTesting::waitFor([&] { return dialog->model()->rowCount() > 0; }));
        return *dialog;
    }
    static bool enter(Dialog &dialog, int row, const char *text)
    {
        return dialog.model()->setData(dialog.model()->index(row, Model::Value), QString::fromUtf8(text),
                                       Qt::EditRole);
    }
    static bool chooseNull(Dialog &dialog, int row)
    {
        return dialog.model()->setData(dialog.model()->index(row, Model::PassNull), Qt::Checked,
                                       Qt::CheckStateRole);
    }
    static QString shown(Dialog &dialog, int row, int column)
    {
        return dialog.model()->index(row, column).data().toString();
    }
    /// The first row of the batch's last result, joined by commas.
    QString outcomeOf(const QString &batch)
    {
        QStringList values;
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                KNResultSetHolder holder;
                client.executeQueryDetails({{batch, {0, batch.size()}, 0}}, holder, {}, failure);
                for (const KNDatabaseResultSetPtr &result : holder.resultSets()) {
                    if (result->columnNames().value(0) == QLatin1String("Return Value")) {
                        for (const KNValue &value : result->rows().row(0))
                            values.append(value.isNull() ? QStringLiteral("NULL") : value.displayText());
                    }
                }
                if (!*failure)
                    *failure = holder.failure();
            },
            *settings("shop"), &error);
        return error ? error.localizedDescription() : values.join(QLatin1Char(','));
    }

    const std::shared_ptr<RecordingStore> m_store = RecordingStore::install();
};

} // namespace

TEST_F(ExecuteProcedure, ShowsTheParametersInTheOrderOfTheirDeclaration)
{
    Dialog &dialog = open("sales.PlaceOrder");
    EXPECT_TRUE(wasLogged(QStringLiteral("DatabaseTreeViewController-ExecuteStoredProcedure")));
    EXPECT_EQ(dialog.heading(), QStringLiteral("Execute sales.PlaceOrder with the following parameters:"));
    EXPECT_EQ(dialog.model()->rowCount(), 6);
    EXPECT_EQ(shown(dialog, 3, Model::Name), QStringLiteral("@Remark"));
    EXPECT_EQ(shown(dialog, 3, Model::DataType), QStringLiteral("nvarchar(200)"));
    EXPECT_EQ(shown(dialog, 3, Model::Output), QStringLiteral("No"));
    EXPECT_EQ(shown(dialog, 4, Model::Output), QStringLiteral("Yes"));
    for (int column = 0; column < Model::ColumnCount; ++column)
        EXPECT_EQ(bool(dialog.model()->flags(dialog.model()->index(0, column)) & Qt::ItemIsEditable),
                  column == Model::Value);
    EXPECT_EQ(shown(dialog, 4, Model::Value), QStringLiteral("default"));
    EXPECT_EQ(dialog.model()->index(0, Model::Value).data(KNEditRowDelegate::InputRole).toInt(),
              static_cast<int>(KNTypedValue::Input::Integer));
    dialog.onCancel();
    EXPECT_TRUE(m_workspace.queries.empty());
}

TEST(ProcedureColumns, HaveTextsByIdentifier)
{
    MSSQLStoredProcedureParameter parameter;
    parameter.parameterName = QStringLiteral("@Id");
    parameter.parameterType = QStringLiteral("nvarchar(50)");
    parameter.parameterIsOutput = true;
    parameter.parameterValue = QStringLiteral("5");
    const auto text = [&](const char *identifier) {
        return Model::textForColumn(parameter, QString::fromLatin1(identifier));
    };
    EXPECT_EQ(text("Parameter name"), QStringLiteral("@Id"));
    EXPECT_EQ(text("Parameter data type"), QStringLiteral("nvarchar(50)"));
    EXPECT_EQ(text("Parameter output"), QStringLiteral("Yes"));
    EXPECT_EQ(text("Parameter pass null"), QStringLiteral("No"));
    EXPECT_EQ(text("Parameter value"), QStringLiteral("5"));
    EXPECT_EQ(text("Parameter"), QStringLiteral("unknown"));
    parameter.parameterIsOutput = false;
    EXPECT_EQ(text("Parameter output"), QStringLiteral("No"));
}

TEST_F(ExecuteProcedure, RunsTheCorrectedBatchInAQueryAndShowsItsOutputs)
{
    KNUserDefaults::standardUserDefaults()->setObject(QStringLiteral("MSSQLUseCorrectedStatements"), true);
    Dialog &dialog = open("sales.PlaceOrder");
    EXPECT_TRUE(enter(dialog, 0, "1"));
    EXPECT_TRUE(enter(dialog, 1, "1"));
    EXPECT_TRUE(enter(dialog, 2, "2"));
    EXPECT_TRUE(enter(dialog, 3,
                      "it's Gr\xc3\xb6\xc3\x9f"
                      "e"));
    for (const int output : {4, 5})
        EXPECT_TRUE(chooseNull(dialog, output));
    dialog.onAccept();
    EXPECT_TRUE(m_alerts.questions.empty());
    ASSERT_EQ(m_workspace.queries.size(), 1u);
    const RecordingWorkspace::Query &query = m_workspace.queries.front();
    EXPECT_EQ(query.use, KNWorkspace::QueryUse::Execute);
    EXPECT_TRUE(query.text.contains(QString::fromUtf8("SELECT @Remark = N'it''s Gr\xc3\xb6\xc3\x9f"
                                                      "e'")));
    const QStringList values = outcomeOf(query.text).split(QLatin1Char(','));
    ASSERT_EQ(values.size(), 3) << outcomeOf(query.text).toStdString();
    EXPECT_GT(values[1].toInt(), 0) << "the number of the order is an output";
    EXPECT_GT(values[2].toDouble(), 0);
}

TEST_F(ExecuteProcedure, AsksBeforeItRunsTheExactBatchThatDiffers)
{
    Dialog &dialog = open("sales.PlaceOrder");
    EXPECT_TRUE(enter(dialog, 0, "1"));
    EXPECT_TRUE(chooseNull(dialog, 4));
    m_alerts.answer = 1; // run unchanged
    dialog.onAccept();
    ASSERT_EQ(m_alerts.questions.size(), 1u);
    EXPECT_TRUE(m_alerts.questions.front().title.contains(QStringLiteral("OUTPUT")));
    ASSERT_EQ(m_workspace.queries.size(), 1u);
    EXPECT_FALSE(m_workspace.queries.front().text.contains(QStringLiteral("OUTPUT")));
}

TEST_F(ExecuteProcedure, TheServerReportsAnUnbalancedLiteralOfTheExactBatch)
{
    Dialog &dialog = open("sales.PlaceOrder");
    EXPECT_TRUE(enter(dialog, 3, "it's"));
    const QString exact = dialog.generatedQuery().exact;
    EXPECT_TRUE(exact.contains(QStringLiteral("SELECT @Remark = 'it's'")));
    EXPECT_FALSE(outcomeOf(exact).isEmpty());
    EXPECT_FALSE(outcomeOf(exact).contains(QStringLiteral(",")) &&
                 outcomeOf(exact).startsWith(QLatin1Char('0')));
    dialog.onCancel();
}

TEST_F(ExecuteProcedure, TakesOnlyValuesOfTheType)
{
    Dialog &dialog = open("sales.PlaceOrder");
    EXPECT_FALSE(enter(dialog, 0, "x"));
    EXPECT_TRUE(dialog.status().startsWith(QStringLiteral("@CustomerId: "))) << dialog.status().toStdString();
    EXPECT_EQ(shown(dialog, 0, Model::Value), QStringLiteral("default"));
    const QModelIndex null = dialog.model()->index(0, Model::PassNull);
    EXPECT_TRUE(dialog.model()->setData(null, Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(shown(dialog, 0, Model::Value), QStringLiteral("NULL"));
    EXPECT_TRUE(enter(dialog, 0, "5"));
    EXPECT_EQ(null.data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
    dialog.onCancel();
}

TEST_F(ExecuteProcedure, RemembersTheValuesOfTheLastExecution)
{
    m_alerts.answer = 1;
    Dialog &first = open("sales.PlaceOrder");
    EXPECT_TRUE(enter(first, 0, "42"));
    first.onAccept();
    EXPECT_TRUE(WindowTesting::settle()); // the dialog deletes itself
    Dialog &second = open("sales.PlaceOrder");
    EXPECT_EQ(shown(second, 0, Model::Value), QStringLiteral("42"));
    EXPECT_EQ(shown(second, 1, Model::Value), QStringLiteral("default"));
    second.onCancel();
}

TEST_F(ExecuteProcedure, ExplainsThatATableCannotBeSet)
{
    Dialog &dialog = open("sales.AddLines");
    const QModelIndex value = dialog.model()->index(1, Model::Value);
    EXPECT_EQ(value.data().toString(), QStringLiteral("cannot be set here"));
    EXPECT_FALSE(value.flags() & Qt::ItemIsEditable);
    EXPECT_TRUE(value.data(Qt::ToolTipRole).toString().contains(QStringLiteral("takes a table")));
    dialog.onCancel();
}

TEST_F(ExecuteProcedure, SaysWhyTheParametersAreMissing)
{
    const auto details = settings("NoSuchDatabase");
    auto *const dialog = new Dialog(details, QStringLiteral("dbo"), QStringLiteral("P"), &m_workspace.window);
    dialog->beginSheet({});
    EXPECT_TRUE(WindowTesting::waitFor(
        [&] { return dialog->status().startsWith(QStringLiteral("The parameters could not be read.")); }));
    dialog->onAccept(); // disabled
    EXPECT_FALSE(dialog->closed());
    dialog->onCancel();
}

TEST_F(ExecuteProcedure, CanBeUsedByKeyboard)
{
    Dialog &dialog = open("sales.PlaceOrder");
    m_workspace.window.show();
    DialogTesting::expectNamesAndTabOrder(dialog);
    DialogTesting::expectMnemonics(dialog);
    DialogTesting::pressEscape(dialog);
    EXPECT_TRUE(dialog.closed());
}

} // namespace ExecuteProcedureWindowTests
