#include "UI/RowEditing/KNEditRowWindowController.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/RowEditing/KNEditRowDelegate.h"
#include "UI/RowEditing/KNEditRowModel.h"
#include "UI/Workspace/KNStatementChoice.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>

namespace {

constexpr QSize InitialDialogSize(640, 460);
constexpr int WidestCharacters = 28; // of a name or a type
constexpr int MeasuredRows = 100;

QString titleOf(const KNEditRowHelper &row)
{
    const QString path = row.tableSchema().isEmpty() ? row.tableName()
                                                     : row.tableSchema() + QLatin1Char('.') + row.tableName();
    return row.isNewRow() ? KNFormat(KNEditRowWindowController::tr("New Row in %@"), path)
                          : KNFormat(KNEditRowWindowController::tr("Edit Row of %@"), path);
}

QString savedText(bool wasNew, KNEditRowHelper::ReadBack readBack)
{
    if (readBack == KNEditRowHelper::ReadBack::Made)
        return wasNew
                   ? KNEditRowWindowController::tr("The row was added. These are the values of the server.")
                   : KNEditRowWindowController::tr("The row was saved. These are the values of the server.");
    return wasNew ? KNEditRowWindowController::tr("The row was added, but could not be read again.")
                  : KNEditRowWindowController::tr("The row was saved, but could not be read again.");
}

} // namespace

KNEditRowWindowController::KNEditRowWindowController(std::shared_ptr<KNEditRowHelper> row,
                                                     bool prefersCorrected, QWidget *parent)
    : KNWindowController(parent)
    , m_row(std::move(row))
    , m_prefersCorrected(prefersCorrected)
    , m_model(new KNEditRowModel(*m_row, this))
    , m_table(new QTableView)
    , m_status(new QLabel)
    , m_null(new QPushButton(tr("Set &NULL")))
{
    setWindowTitle(titleOf(*m_row));
    arrange();
    connect(m_model, &KNEditRowModel::edited, this, [this] {
        setStatus(QString());
        update();
    });
    connect(m_model, &KNEditRowModel::rejected, this, [this](const QString &problem) {
        m_wasRejected = true;
        setStatus(problem);
    });
    connect(m_table->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &KNEditRowWindowController::update);
    useRow(
        tr("Reading the columns…"), [](KNEditRowHelper &read) { read.loadTableColumns(); },
        [this] { showColumns(); });
}

KNEditRowWindowController::~KNEditRowWindowController() = default;

void KNEditRowWindowController::arrange()
{
    m_table->setModel(m_model);
    m_table->setItemDelegate(new KNEditRowDelegate(m_table));
    m_table->setAccessibleName(tr("Columns of the row"));
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                             QAbstractItemView::AnyKeyPressed);
    m_table->setTabKeyNavigation(false);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setResizeContentsPrecision(MeasuredRows);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);
    m_null->setAutoDefault(false);
    m_null->setToolTip(tr("Set the current value to NULL (Ctrl+0)"));
    connect(m_table, &QTableView::activated, m_table, qOverload<const QModelIndex &>(&QTableView::edit));
    connect(m_null, &QPushButton::clicked, this, &KNEditRowWindowController::setCurrentToNull);
    connect(new QShortcut(Qt::CTRL | Qt::Key_0, this), &QShortcut::activated, this,
            &KNEditRowWindowController::setCurrentToNull);
    connect(new QShortcut(Qt::CTRL | Qt::Key_Return, this), &QShortcut::activated, this,
            &KNEditRowWindowController::apply);

    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    m_apply = buttons->addButton(m_row->isNewRow() ? tr("&Add Row") : tr("&Save Row"),
                                 QDialogButtonBox::ActionRole);
    m_apply->setToolTip(tr("Run the statement of the changes (Ctrl+Return)"));
    // Return edits the current value.
    m_apply->setAutoDefault(false);
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);
    connect(m_apply, &QPushButton::clicked, this, &KNEditRowWindowController::apply);
    connect(buttons, &QDialogButtonBox::rejected, this, &KNEditRowWindowController::reject);
    auto *const below = new QHBoxLayout;
    below->addWidget(m_null);
    below->addWidget(m_status, 1);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_table, 1);
    layout->addLayout(below);
    layout->addWidget(buttons);
    resize(InitialDialogSize);
    m_table->setFocus();
}

void KNEditRowWindowController::useRow(const QString &status, std::function<void(KNEditRowHelper &row)> work,
                                       std::function<void()> done)
{
    setStatus(status);
    m_model->setLocked(true);
    update();
    KNDispatch::globalQueue(
        [self = QPointer(this), row = m_row, work = std::move(work), done = std::move(done)] {
            work(*row);
            KNDispatch::mainQueue([self, done] {
                if (!self || self->closed())
                    return;
                self->m_model->setLocked(false);
                self->setStatus(QString());
                done();
                self->update();
            });
        });
}

void KNEditRowWindowController::showColumns()
{
    if (m_row->tableColumns().isEmpty())
        return setStatus(tr("The columns of this table could not be read. The log says why."));
    const int widest = fontMetrics().averageCharWidth() * WidestCharacters;
    for (const int field : {KNEditRowModel::Name, KNEditRowModel::Type}) {
        m_table->resizeColumnToContents(field);
        m_table->setColumnWidth(field, qMin(m_table->columnWidth(field) + 8, widest));
    }
    for (int line = 0; line < m_model->rowCount(); ++line) {
        const QModelIndex value = m_model->index(line, KNEditRowModel::Value);
        if (m_model->flags(value) & Qt::ItemIsEditable)
            return m_table->setCurrentIndex(value);
    }
}

QString KNEditRowWindowController::status() const
{
    return m_status->text();
}

void KNEditRowWindowController::setStatus(const QString &status)
{
    m_status->setText(status);
    m_status->setAccessibleName(status);
}

void KNEditRowWindowController::update()
{
    const QModelIndex current = m_table->currentIndex().siblingAtColumn(KNEditRowModel::Value);
    m_null->setEnabled(current.isValid() && (m_model->flags(current) & Qt::ItemIsEditable));
    m_apply->setEnabled(!m_model->isLocked() && (m_row->isNewRow() || m_row->hasModifications()));
}

void KNEditRowWindowController::setCurrentToNull()
{
    m_model->setNull(m_table->currentIndex().row());
}

void KNEditRowWindowController::apply()
{
    m_wasRejected = false;
    m_table->setFocus(); // ends an editor, whose text may be no value
    if (m_wasRejected || !m_apply->isEnabled())
        return;
    const KNStatementPair pair = m_row->generateQuery();
    KNChooseStatement(this, pair, m_prefersCorrected,
                      [self = QPointer(this), exact = pair.exact](const QString &statement) {
                          if (self)
                              self->run(statement != exact);
                      });
}

void KNEditRowWindowController::run(bool corrected)
{
    const auto error = std::make_shared<KNError>();
    useRow(
        tr("Saving the row…"),
        [corrected, error](KNEditRowHelper &row) { row.applyChanges(corrected, error.get()); },
        [this, error] { showResult(*error); });
}

void KNEditRowWindowController::showResult(const KNError &error)
{
    if (error)
        KNAlerts::shared().showError(this, error);
    const bool wasWritten = !error || m_row->readBack() == KNEditRowHelper::ReadBack::Failed;
    if (!wasWritten)
        return;
    m_wasApplied = true;
    if (m_row->readBack() == KNEditRowHelper::ReadBack::NotFound)
        return setStatus(
            tr("The statement ran, but no row has this key now: nothing was changed, or somebody else did."));
    showSaved();
}

void KNEditRowWindowController::showSaved()
{
    const bool wasNew = m_row->isNewRow();
    const KNEditRowHelper::ReadBack readBack = m_row->readBack();
    if (readBack == KNEditRowHelper::ReadBack::NotMade && wasNew) {
        m_row->beginNewRow();
        setStatus(tr("The row was added. The server made its key. You can add another one."));
    } else {
        m_row->editCurrentRow();
        m_apply->setText(tr("&Save Row"));
        setWindowTitle(titleOf(*m_row));
        setStatus(savedText(wasNew, readBack));
    }
    m_model->refresh();
    showColumns();
}

void KNEditRowWindowController::reject()
{
    const bool hasChanges = !m_model->isLocked() && m_row->hasModifications();
    if (!hasChanges)
        return endSheetWithReturnCode(m_wasApplied ? 1 : 0);
    KNAlerts::shared().ask(this,
                           {tr("Discard the changes of this row?"),
                            tr("They were not saved."),
                            {tr("Keep Editing"), tr("Discard")}},
                           [this](int button) {
                               if (button == 1)
                                   endSheetWithReturnCode(m_wasApplied ? 1 : 0);
                           });
}
