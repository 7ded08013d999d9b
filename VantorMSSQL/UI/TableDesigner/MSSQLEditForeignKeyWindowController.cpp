#include "UI/TableDesigner/MSSQLEditForeignKeyWindowController.h"

#include "Catalog/MSSQLVersionHelper.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "TableDesign/MSSQLForeignKeyScript.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/TableDesigner/MSSQLTableColumnDesignerViewController.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTableWidget>

#include <algorithm>

namespace {

constexpr QSize InitialKeyEditorSize(620, 460);
constexpr int LongestKeyName = 128; // in characters
constexpr int RulesOf2000 = 2;      // no action and cascade
enum PairColumn { Local, Referenced };

QList<QStringList> tablesOf(const VantorDBC &settings, KNError *error)
{
    QList<QStringList> tables;
    const auto add = [&](const DatabaseResultSet &row) {
        const QStringList table{row.stringForColumnIndex(1), row.stringForColumnIndex(2)};
        if (!table[1].isEmpty()) // a broken server may answer NULL
            tables.append(table);
    };
    *error = MSSQLCatalogReader::read(settings, QStringLiteral("DatabaseTree_ListTables"), {},
                                      "mssql.tabledesigner.loadTables", add);
    return tables;
}

QComboBox *newRuleBox(qint64 rule, const QString &name)
{
    auto *const box = new QComboBox;
    MSSQLForeignKeyEntry key;
    for (key.deleteRule = 0; !key.deleteRuleDisplay().isEmpty(); ++key.deleteRule)
        box->addItem(key.deleteRuleDisplay());
    box->setCurrentIndex(static_cast<int>(rule));
    box->setAccessibleName(name);
    return box;
}

QString typeOf(const QList<MSSQLColumnRecord> &columns, const QString &name)
{
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const auto &column) { return column.columnName == name; });
    return found == columns.end() ? QString() : found->displayType();
}

} // namespace

MSSQLEditForeignKeyWindowController::MSSQLEditForeignKeyWindowController(MSSQLTableDesignSession &session,
                                                                         const MSSQLForeignKeyEntry &key)
    : KNWindowController(session.window())
    , m_session(session)
    , m_unedited(key)
    , m_name(new QLineEdit(key.keyName))
    , m_table(new QComboBox)
    , m_pairs(new QTableWidget(0, 2))
    , m_updateRule(newRuleBox(key.updateRule, tr("On update")))
    , m_deleteRule(newRuleBox(key.deleteRule, tr("On delete")))
    , m_enabled(new QCheckBox(tr("&Enabled")))
    , m_trusted(new QCheckBox(tr("&Check the rows of the table")))
    , m_problem(new QLabel)
{
    setWindowTitle(isNewKey() ? tr("New Foreign Key") : tr("Edit Foreign Key"));
    m_name->setMaxLength(LongestKeyName);
    m_enabled->setChecked(key.isEnabled);
    m_trusted->setChecked(key.isTrusted);
    m_trusted->setToolTip(tr("Otherwise the server does not trust the key, and plans queries without it."));
    arrange();
    connect(m_table, &QComboBox::currentIndexChanged, this,
            &MSSQLEditForeignKeyWindowController::loadReferencedColumns);
    loadTables();
}

void MSSQLEditForeignKeyWindowController::arrange()
{
    m_table->setEditable(true);
    m_table->setInsertPolicy(QComboBox::NoInsert);
    m_table->completer()->setFilterMode(Qt::MatchContains);
    m_table->completer()->setCompletionMode(QCompleter::PopupCompletion);
    m_pairs->setHorizontalHeaderLabels({tr("Column"), tr("Referenced Column")});
    m_pairs->setAccessibleName(tr("Pairs of columns"));
    m_pairs->setTabKeyNavigation(false);
    m_pairs->verticalHeader()->hide();
    m_pairs->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setWordWrap(true);
    auto *const add = new QPushButton(tr("&Add Pair"));
    add->setAutoDefault(false);
    connect(add, &QPushButton::clicked, this, [this] { addPair(); });
    auto *const addRow = new QHBoxLayout;
    addRow->addWidget(add);
    addRow->addStretch(1);
    QDialogButtonBox *const buttons = makeButtons(tr("Apply…"));
    disconnect(buttons, &QDialogButtonBox::accepted, nullptr, nullptr);
    connect(buttons, &QDialogButtonBox::accepted, this, &MSSQLEditForeignKeyWindowController::onAccept);
    auto *const layout = new QFormLayout(this);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    layout->addRow(tr("&Name:"), m_name);
    layout->addRow(tr("Referenced &table:"), m_table);
    layout->addRow(m_pairs);
    layout->addRow(addRow);
    layout->addRow(m_problem);
    layout->addRow(tr("On &update:"), m_updateRule);
    layout->addRow(tr("On &delete:"), m_deleteRule);
    layout->addRow(QString(), m_enabled);
    layout->addRow(QString(), m_trusted);
    layout->addRow(buttons);
    resize(InitialKeyEditorSize);
}

void MSSQLEditForeignKeyWindowController::loadTables()
{
    KNDispatch::globalQueue([self = QPointer(this), settings = m_session.settings()] {
        KNError error;
        const QList<QStringList> tables = tablesOf(*settings, &error);
        KNDispatch::mainQueue(
            [self, tables, error, isOld = MSSQLVersionHelper::sharedInstance()->isSQL2000(*settings)] {
                if (!self)
                    return;
                if (error)
                    KNAlerts::shared().showError(self, error);
                if (isOld)
                    self->limitRules();
                self->showTables(tables);
            });
    });
}

void MSSQLEditForeignKeyWindowController::showTables(const QList<QStringList> &tables)
{
    const QSignalBlocker blocker(m_table);
    for (const QStringList &table : tables)
        m_table->addItem(table.join(QLatin1Char('.')), table);
    m_table->setCurrentIndex(
        m_table->findData(QStringList{m_unedited.targetTableSchema, m_unedited.targetTable}));
    loadReferencedColumns();
}

/// Offers the rules of SQL Server 2000 only.
void MSSQLEditForeignKeyWindowController::limitRules()
{
    for (QComboBox *const box : {m_updateRule, m_deleteRule}) {
        while (box->count() > RulesOf2000)
            box->removeItem(box->count() - 1);
    }
}

void MSSQLEditForeignKeyWindowController::loadReferencedColumns()
{
    const QStringList target = m_table->currentData().toStringList();
    const QPointer self(this);
    KNDispatch::globalQueue(
        [self, target, load = ++m_load, table = m_session.table(), settings = m_session.settings()] {
            using Designer = MSSQLTableColumnDesignerViewController;
            KNError error;
            const Columns own = Designer::loadTable(table.name, table.schema, settings.get(), &error);
            const Columns referenced = target.size() == 2 && !error
                                           ? Designer::loadTable(target[1], target[0], settings.get(), &error)
                                           : Columns();
            KNDispatch::mainQueue([self, own, referenced, load, error] {
                if (!self || self->m_load != load)
                    return;
                if (error)
                    KNAlerts::shared().showError(self, error);
                self->showColumns(own, referenced);
            });
        });
}

void MSSQLEditForeignKeyWindowController::showColumns(const Columns &own, const Columns &referenced)
{
    m_ownColumns = own;
    m_referencedColumns = referenced;
    m_pairs->setRowCount(0);
    const bool isOriginal = m_table->currentData().toStringList() ==
                            QStringList{m_unedited.targetTableSchema, m_unedited.targetTable};
    for (qsizetype i = 0; isOriginal && i < m_unedited.localColumns.size(); ++i)
        addPair(m_unedited.localColumns[i], m_unedited.targetColumns.value(i));
    if (m_pairs->rowCount() == 0) {
        // Keys mostly refer to the primary key.
        for (const MSSQLColumnRecord &column : referenced) {
            if (column.isPrimaryKey)
                addPair({}, column.columnName);
        }
    }
    m_isLoaded = true;
    updateProblem();
}

QComboBox *MSSQLEditForeignKeyWindowController::cell(int row, int column) const
{
    return qobject_cast<QComboBox *>(m_pairs->cellWidget(row, column));
}

void MSSQLEditForeignKeyWindowController::addPair(const QString &local, const QString &referenced)
{
    const int row = m_pairs->rowCount();
    m_pairs->insertRow(row);
    const auto fill = [this, row](int column, const Columns &columns, const QString &name) {
        auto *const box = new QComboBox;
        box->addItem(QString());
        for (const MSSQLColumnRecord &record : columns)
            box->addItem(record.columnName);
        box->setCurrentIndex(std::max(0, box->findText(name)));
        box->setAccessibleName(m_pairs->horizontalHeaderItem(column)->text());
        connect(box, &QComboBox::currentIndexChanged, this,
                &MSSQLEditForeignKeyWindowController::updateProblem);
        m_pairs->setCellWidget(row, column, box);
    };
    fill(Local, m_ownColumns, local);
    fill(Referenced, m_referencedColumns, referenced);
}

MSSQLForeignKeyEntry MSSQLEditForeignKeyWindowController::editedKey() const
{
    MSSQLForeignKeyEntry key;
    key.keyName = m_name->text().trimmed();
    const QStringList target = m_table->currentData().toStringList();
    key.targetTableSchema = target.value(0);
    key.targetTable = target.value(1);
    for (int row = 0; row < m_pairs->rowCount(); ++row) {
        const QString local = cell(row, Local)->currentText();
        const QString referenced = cell(row, Referenced)->currentText();
        if (local.isEmpty() || referenced.isEmpty())
            continue;
        key.localColumns.append(local);
        key.targetColumns.append(referenced);
    }
    key.updateRule = m_updateRule->currentIndex();
    key.deleteRule = m_deleteRule->currentIndex();
    key.isEnabled = m_enabled->isChecked();
    key.isTrusted = m_trusted->isChecked();
    return key;
}

QString MSSQLEditForeignKeyWindowController::typeProblem() const
{
    const MSSQLForeignKeyEntry key = editedKey();
    QStringList problems;
    for (qsizetype i = 0; i < key.localColumns.size(); ++i) {
        const QString own = typeOf(m_ownColumns, key.localColumns[i]);
        const QString other = typeOf(m_referencedColumns, key.targetColumns[i]);
        if (own != other)
            problems.append(KNFormat(tr("%@ is %@, but %@ is %@."), key.localColumns[i], own,
                                     key.targetColumns[i], other));
    }
    return problems.isEmpty() ? QString() : problems.join(QLatin1Char(' '));
}

void MSSQLEditForeignKeyWindowController::updateProblem()
{
    const QString problem = typeProblem();
    m_problem->setText(problem);
    m_problem->setVisible(!problem.isEmpty());
}

void MSSQLEditForeignKeyWindowController::onAccept()
{
    const MSSQLForeignKeyEntry key = editedKey();
    if (key.keyName.isEmpty())
        return KNAlerts::shared().showMessage(this, tr("You must specify a name."),
                                              tr("The name of the foreign key is required."));
    if (key.targetTable.isEmpty() || key.localColumns.isEmpty())
        return KNAlerts::shared().showMessage(
            this, tr("The foreign key is not complete."),
            tr("Choose the table that it references, and at least one pair of columns."));
    const QString script = isNewKey() ? MSSQLForeignKeyScript::create(m_session.table(), key)
                                      : MSSQLForeignKeyScript::change(m_session.table(), m_unedited, key);
    if (script.isNull())
        return endSheetWithReturnCode(0);
    const KNQueryPreview::Titles titles{isNewKey() ? tr("Add foreign key") : tr("Alter foreign key"),
                                        tr("The foreign key will be made using the following statements."),
                                        tr("Apply"), tr("Performing changes")};
    m_session.preview(this, titles, std::make_shared<StaticQueryLoader>(script),
                      QStringLiteral("mssql.tabledesigner.alterForeignKey"), [self = QPointer(this)] {
                          if (self)
                              self->endSheetWithReturnCode(1);
                      });
}
