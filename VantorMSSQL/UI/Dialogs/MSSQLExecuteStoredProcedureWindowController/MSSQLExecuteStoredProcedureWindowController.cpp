#include "UI/Dialogs/MSSQLExecuteStoredProcedureWindowController/MSSQLExecuteStoredProcedureWindowController.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"
#include "Procedures/MSSQLProcedureValues.h"
#include "UI/Dialogs/MSSQLExecuteStoredProcedureWindowController/MSSQLStoredProcedureModel.h"
#include "UI/RowEditing/KNEditRowDelegate.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>

#include <algorithm>

namespace {

constexpr QSize InitialExecuteSize(640, 380);
constexpr int WidestParameterCharacters = 28;

bool hasOnlyParameterNames(const QList<MSSQLParameterRecord> &records)
{
    return std::all_of(records.begin(), records.end(), [](const MSSQLParameterRecord &record) {
        return MSSQLProcedureBatch::isParameterName(record.parameterName);
    });
}

} // namespace

using Model = MSSQLStoredProcedureModel;

MSSQLExecuteStoredProcedureWindowController::MSSQLExecuteStoredProcedureWindowController(
    const Settings &databaseConnectionDetails, const QString &schema, const QString &procedureName,
    QWidget *parent)
    : KNWindowController(parent)
    , m_details(databaseConnectionDetails)
    , m_schema(schema)
    , m_procedureName(procedureName)
    , m_model(new Model(this))
    , m_table(new QTableView)
    , m_heading(new QLabel)
    , m_status(new QLabel)
{
    setWindowTitle(tr("Execute Stored Procedure"));
    m_heading->setTextFormat(Qt::PlainText);
    m_heading->setWordWrap(true);
    m_heading->setText(KNFormat(tr("Execute %@.%@ with the following parameters:"),
                                MSSQLQuoting::escapeTableNameIfRequired(m_schema),
                                MSSQLQuoting::escapeTableNameIfRequired(m_procedureName)));
    arrange();
    connect(m_model, &Model::edited, this, [this] { setStatus(QString()); });
    connect(m_model, &Model::rejected, this, [this](const QString &problem) {
        m_wasRejected = true;
        setStatus(problem);
    });
    loadParameters();
}

MSSQLExecuteStoredProcedureWindowController::~MSSQLExecuteStoredProcedureWindowController() = default;

void MSSQLExecuteStoredProcedureWindowController::arrange()
{
    m_table->setModel(m_model);
    m_table->setItemDelegateForColumn(Model::Value, new KNEditRowDelegate(m_table));
    m_table->setAccessibleName(tr("Parameters"));
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                             QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    m_table->setTabKeyNavigation(false);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    connect(m_table, &QTableView::activated, m_table, qOverload<const QModelIndex &>(&QTableView::edit));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);

    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    m_execute = buttons->addButton(tr("&Execute"), QDialogButtonBox::ActionRole);
    m_execute->setToolTip(tr("Open the batch in a query and run it (Ctrl+Return)"));
    // Return edits the current value.
    m_execute->setAutoDefault(false);
    m_execute->setEnabled(false);
    buttons->button(QDialogButtonBox::Cancel)->setAutoDefault(false);
    using Controller = MSSQLExecuteStoredProcedureWindowController;
    connect(m_execute, &QPushButton::clicked, this, &Controller::onAccept);
    connect(new QShortcut(Qt::CTRL | Qt::Key_Return, this), &QShortcut::activated, this,
            &Controller::onAccept);
    connect(buttons, &QDialogButtonBox::rejected, this, &Controller::onCancel);

    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_heading);
    layout->addWidget(m_table, 1);
    layout->addWidget(m_status);
    layout->addWidget(buttons);
    resize(InitialExecuteSize);
    m_table->setFocus();
}

void MSSQLExecuteStoredProcedureWindowController::loadParameters()
{
    setStatus(tr("Reading the parameters…"));
    KNDispatch::globalQueue(
        [self = QPointer(this), details = m_details, schema = m_schema, name = m_procedureName] {
            KNError error;
            const auto records = MSSQLCatalogReader::records<MSSQLParameterRecord>(
                *details, schema, name, "mssql.executeStoredProcedure", &error);
            KNDispatch::mainQueue([self, records, error] {
                if (self && !self->closed())
                    self->showParameters(records, error);
            });
        });
}

void MSSQLExecuteStoredProcedureWindowController::showParameters(const QList<MSSQLParameterRecord> &records,
                                                                 const KNError &error)
{
    if (error)
        return setStatus(
            KNFormat(tr("The parameters could not be read. %@"), error.descriptionWithSuggestion()));
    if (!hasOnlyParameterNames(records))
        return setStatus(
            tr("A parameter has a name that no batch can hold. The procedure cannot be executed here."));
    MSSQLProcedureValues::Parameters parameters;
    for (const MSSQLParameterRecord &record : records)
        parameters.append(MSSQLStoredProcedureParameter::of(record));
    MSSQLProcedureValues(*m_details, m_schema, m_procedureName)
        .restore(parameters, [self = QPointer(this)](const MSSQLProcedureValues::Parameters &restored) {
            if (!self || self->closed())
                return;
            self->m_model->setParameters(restored);
            self->setStatus(restored.isEmpty() ? tr("The procedure has no parameters.") : QString());
            const int widest = self->fontMetrics().averageCharWidth() * WidestParameterCharacters;
            for (int column = Model::Name; column < Model::Value; ++column) {
                self->m_table->resizeColumnToContents(column);
                self->m_table->setColumnWidth(column, qMin(self->m_table->columnWidth(column) + 8, widest));
            }
            self->m_table->setCurrentIndex(self->m_model->index(0, Model::Value));
            self->m_execute->setEnabled(true);
        });
}

QString MSSQLExecuteStoredProcedureWindowController::heading() const
{
    return m_heading->text();
}

QString MSSQLExecuteStoredProcedureWindowController::status() const
{
    return m_status->text();
}

void MSSQLExecuteStoredProcedureWindowController::setStatus(const QString &status)
{
    m_status->setText(status);
    m_status->setAccessibleName(status);
}

KNStatementPair MSSQLExecuteStoredProcedureWindowController::generatedQuery() const
{
    return MSSQLProcedureBatch(m_schema, m_procedureName, m_model->parameters()).generatedQuery();
}

void MSSQLExecuteStoredProcedureWindowController::onAccept()
{
    m_wasRejected = false;
    m_table->setFocus(); // ends an editor, whose text may be no value
    if (m_wasRejected || !m_execute->isEnabled())
        return;
    MSSQLProcedureValues(*m_details, m_schema, m_procedureName).keep(m_model->parameters());
    endSheetWithReturnCode(1);
}

void MSSQLExecuteStoredProcedureWindowController::onCancel()
{
    endSheetWithReturnCode(0);
}
