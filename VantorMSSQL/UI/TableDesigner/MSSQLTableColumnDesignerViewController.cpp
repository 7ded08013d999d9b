#include "UI/TableDesigner/MSSQLTableColumnDesignerViewController.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "TableDesign/MSSQLColumnScript.h"
#include "TableDesign/MSSQLMisfitCount.h"
#include "TableDesign/MSSQLTypeChange.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/TableDesigner/MSSQLColumnFilter.h"
#include "UI/TableDesigner/MSSQLColumnGridDelegate.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTableView>

namespace {

constexpr int MeasuredRows = 100; // for the widths of the grid's columns
constexpr auto LoadDomain = "mssql.tabledesigner.loadTable";

} // namespace

MSSQLTableColumnDesignerViewController::MSSQLTableColumnDesignerViewController(
    MSSQLTableDesignSession &session, QWidget *parent)
    : QWidget(parent)
    , m_session(session)
    , m_model(new MSSQLColumnGridModel(this))
    , m_grid(new QTableView)
    , m_notice(new QLabel)
    , m_add(new QPushButton(tr("&Add Column")))
    , m_drop(new QPushButton(tr("&Drop Column")))
{
    setFocusProxy(m_grid);
    m_grid->setAccessibleName(tr("Columns"));
    m_grid->setModel(m_model);
    m_grid->setItemDelegate(new MSSQLColumnGridDelegate(m_session.settings(), this));
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
    m_grid->setTabKeyNavigation(false);
    m_grid->verticalHeader()->hide();
    m_grid->horizontalHeader()->setSectionResizeMode(MSSQLColumnGridModel::Field, QHeaderView::Stretch);
    m_grid->horizontalHeader()->setSectionResizeMode(MSSQLColumnGridModel::Default, QHeaderView::Stretch);
    m_grid->horizontalHeader()->setResizeContentsPrecision(MeasuredRows);
    m_notice->setTextFormat(Qt::PlainText);
    m_notice->setWordWrap(true);
    m_notice->hide();

    auto *const buttons = new QHBoxLayout;
    buttons->addWidget(m_add);
    buttons->addWidget(m_drop);
    buttons->addStretch(1);
    m_filter = new MSSQLColumnFilter(m_grid);
    buttons->addWidget(m_filter);
    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addWidget(m_notice);
    layout->addWidget(m_grid, 1);

    connect(m_add, &QPushButton::clicked, this, &MSSQLTableColumnDesignerViewController::addNewColumn);
    connect(m_drop, &QPushButton::clicked, this, &MSSQLTableColumnDesignerViewController::handleDeleteColumn);
    connect(m_model, &MSSQLColumnGridModel::edited, this,
            [this](int row, Column column, const QVariant &value) { setObjectValue(value, column, row); });
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &MSSQLTableColumnDesignerViewController::updateControls);
    connect(&m_session, &MSSQLTableDesignSession::busyChanged, this,
            &MSSQLTableColumnDesignerViewController::updateControls);
    connect(&m_session, &MSSQLTableDesignSession::tableChanged, this,
            &MSSQLTableColumnDesignerViewController::reload);
    reload();
}

QList<MSSQLColumnRecord> MSSQLTableColumnDesignerViewController::loadTable(const QString &tableName,
                                                                           const QString &inSchema,
                                                                           const VantorDBC *connectionDetails,
                                                                           KNError *error)
{
    const QString path = QStringLiteral("UI/TableDesigner/MSSQLTableColumnDesignerViewController");
    KNAssert(!tableName.isNull(), QStringLiteral("tableName cannot be nil."), path);
    KNAssert(connectionDetails != nullptr, QStringLiteral("connectionDetails cannot be nil."), path);
    return MSSQLCatalogReader::records<MSSQLColumnRecord>(
        *connectionDetails, inSchema, tableName, {LoadDomain, {{QStringLiteral("tableName"), tableName}}},
        error);
}

void MSSQLTableColumnDesignerViewController::reload()
{
    m_isOutdated = m_isLoading;
    if (m_isLoading)
        return;
    m_isLoading = true;
    updateControls();
    KNDispatch::globalQueue(
        [self = QPointer(this), table = m_session.table(), settings = m_session.settings()] {
            KNError error;
            const auto columns = loadTable(table.name, table.schema, settings.get(), &error);
            KNDispatch::mainQueue([self, columns, error] {
                if (self)
                    self->showColumns(columns, error);
            });
        });
}

void MSSQLTableColumnDesignerViewController::showColumns(const QList<MSSQLColumnRecord> &columns,
                                                         const KNError &error)
{
    m_isLoading = false;
    if (m_isOutdated)
        return reload();
    const QModelIndex current = m_grid->currentIndex();
    m_model->setColumns(columns);
    m_grid->resizeColumnsToContents();
    if (m_model->rowCount() > 0)
        m_grid->setCurrentIndex(
            current.isValid()
                ? m_model->index(std::min(current.row(), m_model->rowCount() - 1), current.column())
                : m_model->index(0, Column::Field));
    if (error)
        m_notice->setText(error.localizedDescription());
    else
        m_notice->setText(tr("The table was not found, or you have no right to see its columns."));
    m_notice->setVisible(columns.isEmpty());
    updateControls();
    KNLogHelper::sharedInstance()->logMessage("Finished loading");
    if (const auto loaded = std::exchange(m_loaded, {}))
        loaded();
}

void MSSQLTableColumnDesignerViewController::updateControls()
{
    const bool isReady = !m_session.isBusy() && !m_isLoading;
    m_model->setEditable(isReady);
    m_add->setEnabled(isReady && m_model->rowCount() > 0);
    m_drop->setEnabled(isReady && m_grid->currentIndex().isValid());
}

void MSSQLTableColumnDesignerViewController::setObjectValue(const QVariant &value, Column column, int row)
{
    KNLogHelper::sharedInstance()->logMessage("Want to setObjectValue: %@ to be: %@ (row %ld).",
                                              MSSQLColumnGridModel::identifier(column), value.toString(),
                                              static_cast<long>(row));
    const MSSQLColumnEdit edit(m_model->columns().value(row), column, value);
    if (const QString refusal = edit.refusal(); !refusal.isNull())
        return KNAlerts::shared().showError(m_session.window(), KNError(QString(), 0, refusal));
    if (edit.isTypeThatMayLoseValues())
        return confirmType(value.toString(), row);
    runEdit(value, column, row);
}

/// Counts the rows that the type does not hold, and asks the user.
void MSSQLTableColumnDesignerViewController::confirmType(const QString &type, int row)
{
    const MSSQLColumnRecord record = m_model->columns().value(row);
    const QString query =
        MSSQLTypeChange::countQuery(m_session.table(), record.columnName, record.displayType(), type);
    KNDispatch::globalQueue([self = QPointer(this), settings = m_session.settings(), query, type, row] {
        const std::optional<qint64> misfits = MSSQLMisfitCount::count(settings, query);
        KNDispatch::mainQueue([self, type, row, misfits] {
            if (self)
                self->askAboutType(type, row, misfits);
        });
    });
}

void MSSQLTableColumnDesignerViewController::askAboutType(const QString &type, int row,
                                                          std::optional<qint64> misfits)
{
    const MSSQLColumnRecord record = m_model->columns().value(row);
    const KNAlerts::Question question{
        KNFormat(tr("Change the type of '%@' from %@ to %@?"), record.columnName, record.displayType(), type),
        MSSQLMisfitCount::sentence(misfits),
        {tr("Cancel"), tr("Change Type")}};
    KNAlerts::shared().ask(m_session.window(), question, [self = QPointer(this), type, row](int button) {
        if (self && button == 1)
            self->runEdit(type, Column::Type, row);
    });
}

void MSSQLTableColumnDesignerViewController::runEdit(const QVariant &value, Column column, int row)
{
    const MSSQLColumnRecord record = m_model->columns().value(row);
    m_session.run({updateStatement(record, column, value),
                   KNFormat(tr("Changing column '%@'"), record.columnName),
                   QStringLiteral("mssql.tabledesigner.alterTable"),
                   {{QStringLiteral("setObject"), record.columnName},
                    {QStringLiteral("tableColumn.identifier"), MSSQLColumnGridModel::identifier(column)},
                    {QStringLiteral("toValue"), value}}},
                  [self = QPointer(this), row, column](bool succeeded) {
                      if (self && succeeded)
                          self->m_loaded = [self, row, column] { self->editNextCell(row, column); };
                  });
}

MSSQLTableDesignSession::Statement
MSSQLTableColumnDesignerViewController::updateStatement(const MSSQLColumnRecord &record, Column column,
                                                        const QVariant &value) const
{
    return [edit = MSSQLColumnEdit(record, column, value), columns = m_model->columns(),
            settings = m_session.settings(),
            window = QPointer(m_session.window())](const MSSQLDesignedTable &table) {
        KNError error;
        const KNStatementPair pair = edit.script(table, columns, *settings, &error);
        if (error)
            KNDispatch::mainQueue([window, error] {
                if (window)
                    KNAlerts::shared().showError(window, error);
            });
        return pair;
    };
}

void MSSQLTableColumnDesignerViewController::addNewColumn()
{
    const QString name = MSSQLColumnScript::nameForNewColumn(m_model->columns());
    m_session.run(
        {[name](const MSSQLDesignedTable &table) { return MSSQLColumnScript(table).addColumn(name); },
         tr("Adding column"), QStringLiteral("mssql.tabledesigner.alterTable")},
        [self = QPointer(this), name](bool succeeded) {
            if (!self || !succeeded)
                return;
            self->m_filter->clear(); // shows the new column
            self->m_loaded = [self, name] { self->selectColumn(name, Column::Field, true); };
        });
}

void MSSQLTableColumnDesignerViewController::handleDeleteColumn()
{
    const QList<MSSQLColumnRecord> columns = m_model->columns();
    const QString name = columns.value(m_grid->currentIndex().row()).columnName;
    if (name.isEmpty())
        return;
    if (columns.size() == 1)
        return KNAlerts::shared().showMessage(
            m_session.window(), tr("Unable to remove column"),
            tr("The last column cannot be removed from a table. Please remove the table instead."));
    const KNAlerts::Question question{KNFormat(tr("Drop column '%@'?"), name),
                                      tr("Dropping a column cannot be recovered."),
                                      {tr("Cancel"), tr("Drop")}};
    KNAlerts::shared().ask(m_session.window(), question, [self = QPointer(this), name, columns](int button) {
        if (!self || button != 1)
            return;
        MSSQLTableDesignSession::Change change{[name, columns](const MSSQLDesignedTable &table) {
                                                   return MSSQLColumnScript(table).dropColumn(name, columns);
                                               },
                                               tr("Dropping column"), QStringLiteral("MSSQLAlterIndex")};
        change.removes = true;
        self->m_session.run(change);
    });
}

void MSSQLTableColumnDesignerViewController::selectColumn(const QString &name, Column column, bool isEdited)
{
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (m_model->columns()[row].columnName != name)
            continue;
        m_grid->setCurrentIndex(m_model->index(row, column));
        m_grid->setFocus();
        if (isEdited)
            m_grid->edit(m_grid->currentIndex());
    }
}

/// Goes on to the next cell, or to the first one of the next row.
void MSSQLTableColumnDesignerViewController::editNextCell(int row, Column column)
{
    const bool isLast = column == Column::AutoIncrement;
    const QModelIndex next = m_model->index(isLast ? row + 1 : row, isLast ? 0 : column + 1);
    if (next.isValid())
        m_grid->setCurrentIndex(next);
}
