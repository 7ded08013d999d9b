#include "UI/ResultEditing/KNEditedRowForm.h"

#include "Database/KNResultSetHolder.h"
#include "Database/KNRowReader.h"
#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "RowEditing/KNEditRowHelper.h"
#include "RowEditing/ResultSetViewControllerHelper.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/ResultEditing/KNResultEditing.h"
#include "UI/Results/KNResultTableModel.h"
#include "UI/RowEditing/KNEditRowWindowController.h"

#include <QPointer>

namespace {

class RowFormTexts
{
    Q_DECLARE_TR_FUNCTIONS(KNEditedRowForm)
};

/// The row's key as it was read.
struct Key
{
    QList<KNEditRowColumn> columns;
    QList<KNValue> values;
};

Key keyOf(const KNResultEditing &editing, int row)
{
    Key key;
    for (const int column : editing.table()->key) {
        key.columns.append(*editing.table()->columns[column]);
        key.values.append(editing.model().storedValue(row, column));
    }
    return key;
}

/// Reads the values of all columns of the table; waits for the server.
std::optional<KNEditRowHelper::Values> read(const QList<KNEditRowColumn> &columns, const Key &key,
                                            const KNTableStatements &statements, const VantorDBC &details,
                                            KNError *error)
{
    QStringList conditions;
    for (qsizetype i = 0; i < key.columns.size(); ++i)
        conditions.append(statements.condition(key.columns[i], key.values[i]));
    const QString sql = statements.select(columns, conditions.join(QLatin1String(" AND ")));
    KNResultSetHolder results;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            client.executeQueryDetails({{sql, {0, sql.size()}, 0}}, results, {}, failure);
        },
        details, error);
    const auto resultSets = results.resultSets();
    if (*error || resultSets.isEmpty() || resultSets.first()->rows().rowCount() == 0)
        return std::nullopt;
    KNEditRowHelper::Values values;
    KNRowReader reader(resultSets.first()->rows());
    for (qsizetype i = 0; i < columns.size(); ++i)
        values.insert(columns[i].columnName, reader.cell(0, i).storedValue());
    return values;
}

void openForm(QWidget *parent, KNResultEditing &editing, const KNEditRowHelper::Values &values)
{
    const auto row =
        editing.helper().createEditRowHelper(editing.table()->name, editing.table()->schema, values);
    auto *const form = new KNEditRowWindowController(row, editing.statements()->prefersCorrected(), parent);
    form->beginSheet([self = QPointer(&editing)](int code) {
        if (self && code == 1)
            Q_EMIT self->rejected(RowFormTexts::tr(
                "The row was saved by the form. Run the query again to see its values here."));
    });
}

} // namespace

void KNOpenEditedRow(QWidget *parent, KNResultEditing &editing, int row)
{
    if (!editing.isEditable() || row < 0 || row >= editing.model().storedRowCount())
        return;
    if (editing.edits().row(editing.model().rowId(row)))
        return KNAlerts::shared().showMessage(
            parent, RowFormTexts::tr("This row has changes that are not applied."),
            RowFormTexts::tr("Apply them or discard them before you open the form."));
    KNDispatch::globalQueue([self = QPointer(&editing), window = QPointer(parent), key = keyOf(editing, row),
                             table = editing.statements(),
                             form = editing.helper().createEditRowHelper(
                                 editing.table()->name, editing.table()->schema, std::nullopt),
                             details = editing.session().details] {
        form->loadTableColumns();
        KNError error;
        const auto values = read(form->tableColumns(), key, *table, *details, &error);
        KNDispatch::mainQueue([self, window, values, error] {
            if (!self || !window || !self->isEditable())
                return;
            if (values)
                openForm(window, *self, *values);
            else if (error)
                KNAlerts::shared().showError(window, error);
            else
                KNAlerts::shared().showMessage(
                    window, RowFormTexts::tr("The row was not found."),
                    RowFormTexts::tr("It was changed or deleted by somebody else. Run the query again."));
        });
    });
}
