#include "UI/TableDesigner/MSSQLCreateTableWindowController.h"

#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "TableDesign/MSSQLColumnScript.h"
#include "TableDesign/MSSQLTableScript.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Dialogs/KNCautionBar.h"
#include "UI/TableDesigner/MSSQLColumnGridDelegate.h"
#include "UI/Workspace/KNProgressSheet.h"
#include "UI/Workspace/KNStatementChoice.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>

#include <algorithm>

namespace {

constexpr QSize InitialDialogSize(680, 420);
constexpr int LongestCreatedName = 128; // of a table, in characters

MSSQLColumnRecord column(const QString &name, const char *type)
{
    MSSQLColumnRecord record;
    record.columnName = name;
    record.typeName = QString::fromLatin1(type);
    return record;
}

/// The columns that most tables begin with.
QList<MSSQLColumnRecord> proposedColumns()
{
    MSSQLColumnRecord id = column(QStringLiteral("Id"), "int");
    id.isPrimaryKey = true;
    id.isIdentity = true;
    id.isNullable = false;
    return {id, column(QStringLiteral("Name"), "nvarchar(100)")};
}

struct Schemas
{
    QStringList names;
    QString defaultName;
};

Schemas schemasOf(const VantorDBC &settings)
{
    Schemas schemas;
    MSSQLCatalogReader::read(
        settings, QStringLiteral("List_Schemas"), {}, "mssql.tabledesigner.loadSchemas",
        [&](const DatabaseResultSet &row) { schemas.names.append(row.stringForColumnIndex(0)); });
    if (const auto *details = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(&settings))
        schemas.defaultName = MSSQLDefaultSchemaHelper::sharedInstance()->schemaForDBC(*details);
    return schemas;
}

} // namespace

MSSQLCreateTableWindowController::MSSQLCreateTableWindowController(Settings settings, QWidget *parent)
    : KNCreateTableWindowController(parent)
    , m_settings(std::move(settings))
    , m_name(new QLineEdit)
    , m_schema(new QComboBox)
    , m_columns(new MSSQLColumnGridModel(this))
    , m_grid(new QTableView)
    , m_hints(new KNCautionBar)
{
    setWindowTitle(tr("New Table"));
    m_hints->setButtonTitle(tr("Use S&uggested Types"));
    connect(m_hints->button(), &QPushButton::clicked, this,
            &MSSQLCreateTableWindowController::useSuggestedTypes);
    m_name->setMaxLength(LongestCreatedName);
    m_schema->setEditable(true);
    m_schema->setEditText(QStringLiteral("dbo"));
    m_columns->setColumns(proposedColumns());
    m_grid->setModel(m_columns);
    m_grid->setItemDelegate(new MSSQLColumnGridDelegate(m_settings, m_grid));
    m_grid->setAccessibleName(tr("Columns"));
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setTabKeyNavigation(false);
    m_grid->verticalHeader()->hide();
    m_grid->horizontalHeader()->setSectionResizeMode(MSSQLColumnGridModel::Field, QHeaderView::Stretch);
    m_grid->horizontalHeader()->setSectionResizeMode(MSSQLColumnGridModel::Default, QHeaderView::Stretch);
    m_grid->resizeColumnsToContents();
    // Return edits the current cell. Without a shortcut the key would also create the table.
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(key, m_grid, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated, this,
                [this] {
                    if (m_grid->currentIndex().flags() & Qt::ItemIsEditable)
                        m_grid->edit(m_grid->currentIndex());
                });
    connect(m_columns, &MSSQLColumnGridModel::edited, this, &MSSQLCreateTableWindowController::edit);

    auto *const columnButtons = new QHBoxLayout;
    columnButtons->addWidget(newButton(tr("&Add Column"), &MSSQLCreateTableWindowController::addColumn));
    columnButtons->addWidget(
        newButton(tr("&Remove Column"), &MSSQLCreateTableWindowController::removeColumn));
    columnButtons->addStretch(1);
    QDialogButtonBox *const buttons = makeButtons(tr("Create"));
    disconnect(buttons, &QDialogButtonBox::accepted, nullptr, nullptr);
    connect(buttons, &QDialogButtonBox::accepted, this, &MSSQLCreateTableWindowController::onAccept);
    auto *const layout = new QFormLayout(this);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    layout->addRow(tr("&Name:"), m_name);
    layout->addRow(tr("&Schema:"), m_schema);
    layout->addRow(columnButtons);
    layout->addRow(m_grid);
    layout->addRow(m_hints);
    layout->addRow(buttons);
    resize(InitialDialogSize);
    loadSchemas();
}

MSSQLCreateTableWindowController::MSSQLCreateTableWindowController(
    Settings settings, const QList<KNImportColumnAnalysis> &defaultColumns, QWidget *parent)
    : MSSQLCreateTableWindowController(std::move(settings), parent)
{
    m_analyses = defaultColumns;
    const QStringList types = m_settings->createDatabaseImportHelper()->mapDataTypes(defaultColumns);
    QList<MSSQLColumnRecord> columns;
    for (qsizetype i = 0; i < types.size(); ++i) {
        MSSQLColumnRecord proposed;
        proposed.columnName = defaultColumns[i].name;
        proposed.typeName = types[i];
        columns.append(proposed);
    }
    setColumns(columns);
}

MSSQLCreateTableWindowController::~MSSQLCreateTableWindowController() = default;

QPushButton *MSSQLCreateTableWindowController::newButton(const QString &title,
                                                         void (MSSQLCreateTableWindowController::*clicked)())
{
    auto *const button = new QPushButton(title);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, clicked);
    return button;
}

void MSSQLCreateTableWindowController::loadSchemas()
{
    KNDispatch::globalQueue([self = QPointer(this), settings = m_settings] {
        const Schemas schemas = schemasOf(*settings);
        KNDispatch::mainQueue([self, schemas] {
            if (!self)
                return;
            const QString entered = self->m_schema->currentText();
            self->m_schema->addItems(schemas.names);
            self->m_schema->setEditText(schemas.defaultName.isEmpty() ? entered : schemas.defaultName);
        });
    });
}

void MSSQLCreateTableWindowController::edit(int row, MSSQLColumnGridModel::Column edited,
                                            const QVariant &value)
{
    m_columns->setColumn(row, MSSQLColumnEdit(m_columns->columns()[row], edited, value).after());
    showHints();
}

void MSSQLCreateTableWindowController::addColumn()
{
    QList<MSSQLColumnRecord> columns = m_columns->columns();
    columns.append(column(MSSQLColumnScript::nameForNewColumn(columns), "int"));
    m_columns->setColumns(columns);
    m_grid->setCurrentIndex(
        m_columns->index(static_cast<int>(columns.size()) - 1, MSSQLColumnGridModel::Field));
    m_grid->setFocus();
    m_grid->edit(m_grid->currentIndex());
}

void MSSQLCreateTableWindowController::removeColumn()
{
    QList<MSSQLColumnRecord> columns = m_columns->columns();
    const int row = m_grid->currentIndex().row();
    if (row < 0 || row >= columns.size())
        return;
    columns.removeAt(row);
    setColumns(columns);
}

void MSSQLCreateTableWindowController::setColumns(const QList<MSSQLColumnRecord> &columns)
{
    const QModelIndex current = m_grid->currentIndex();
    m_columns->setColumns(columns);
    const int last = static_cast<int>(columns.size()) - 1;
    if (current.isValid() && last >= 0)
        m_grid->setCurrentIndex(m_columns->index(std::min(current.row(), last), current.column()));
    showHints();
}

KNImportTypeHint MSSQLCreateTableWindowController::hintFor(const MSSQLColumnRecord &column) const
{
    const auto helper = m_settings->createDatabaseImportHelper();
    for (const KNImportColumnAnalysis &analysis : m_analyses) {
        if (analysis.name == column.columnName)
            return helper->hintForType(column.displayType(), analysis);
    }
    return {};
}

void MSSQLCreateTableWindowController::showHints()
{
    QStringList lines;
    for (const MSSQLColumnRecord &column : m_columns->columns()) {
        if (const KNImportTypeHint hint = hintFor(column); !hint.text.isNull())
            lines.append(KNFormat(tr("%@ (%@): %@"), column.columnName, column.displayType(), hint.text));
    }
    constexpr qsizetype MostLines = 6;
    const qsizetype more = lines.size() - MostLines;
    if (more > 0)
        lines = lines.mid(0, MostLines) + QStringList{KNFormat(tr("and %ld more columns"), more)};
    m_hints->setText(lines.isEmpty() ? QString() : lines.join(QLatin1Char('\n')));
}

QString MSSQLCreateTableWindowController::hints() const
{
    return m_hints->text();
}

void MSSQLCreateTableWindowController::useSuggestedTypes()
{
    QList<MSSQLColumnRecord> columns = m_columns->columns();
    for (MSSQLColumnRecord &column : columns) {
        if (const KNImportTypeHint hint = hintFor(column); !hint.text.isNull())
            column = MSSQLColumnEdit(column, MSSQLColumnGridModel::Type, hint.type).after();
    }
    setColumns(columns);
}

QString MSSQLCreateTableWindowController::creationQueryForColumns(const QStringList &columns,
                                                                  const QString &targetTableName,
                                                                  const QString &inSchema)
{
    return MSSQLTableScript::creationQueryForColumns(columns, {inSchema, targetTableName}).exact;
}

void MSSQLCreateTableWindowController::onAccept()
{
    const QString tableName =
        MSSQLTableScript::acceptedName(m_name->text(), MSSQLTableScript::Dialog::Create);
    if (tableName.isNull()) {
        m_name->setFocus();
        KNAlerts::shared().showError(this, KNError(QString(), 0, tr("The specified table name is invalid.")));
        return;
    }
    const KNStatementPair pair =
        MSSQLTableScript::creationQueryForColumns(MSSQLTableScript::columnDefinitions(m_columns->columns()),
                                                  {m_schema->currentText().trimmed(), tableName});
    KNChooseStatement(this, pair, MSSQLCorrectedStatements::areUsed(),
                      [self = QPointer(this), tableName](const QString &statement) {
                          if (self)
                              self->create(tableName, statement);
                      });
}

void MSSQLCreateTableWindowController::create(const QString &tableName, const QString &statement)
{
    m_progress = KNProgressSheet::create(this);
    m_progress->setLabelString(tr("Creating table. Please wait."));
    m_progress->setCancelBlock([this] {
        if (m_run)
            m_run->cancel();
    });
    m_progress->begin();
    m_run = KNStatementRun::start(
        {statement, false, QStringLiteral("MSSQL::createTable")}, *m_settings, this,
        [this, tableName](const KNStatementOutcome &outcome) { finish(tableName, outcome); });
}

void MSSQLCreateTableWindowController::finish(const QString &tableName, const KNStatementOutcome &outcome)
{
    m_run.reset();
    m_progress.reset();
    if (!outcome.succeeded()) {
        if (!outcome.wasCancelled)
            KNAlerts::shared().showError(this, outcome.error);
        return;
    }
    endWithTable(m_schema->currentText().trimmed(), tableName);
}
