#include "UI/Import/KNImportTargetPage.h"

#include "UI/Dialogs/KNCautionBar.h"
#include "UI/Import/KNImportMappingDelegate.h"
#include "UI/Import/KNImportMappingModel.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>

namespace {

QString pathText(const KNImportTableModel &table)
{
    return table.tablePath().join(QLatin1Char('.'));
}

} // namespace

KNImportTargetPage::KNImportTargetPage(KNImportSession &session, const QString &table,
                                       CreateTable createTable, QWidget *parent)
    : KNImportPage(session, parent)
    , m_wanted(table)
    , m_createTable(std::move(createTable))
    , m_tables(new QComboBox)
    , m_new(new QPushButton(tr("Ne&w Table…")))
    , m_mapping(new KNImportMappingModel(this))
    , m_grid(new QTableView)
    , m_status(new QLabel)
    , m_notes(new KNCautionBar)
{
    arrange();
    connect(m_tables, &QComboBox::currentIndexChanged, this, &KNImportTargetPage::showTable);
    connect(m_new, &QPushButton::clicked, this, &KNImportTargetPage::createTable);
    connect(m_mapping, &QAbstractItemModel::dataChanged, this, &KNImportTargetPage::showNotes);
    connect(m_mapping, &QAbstractItemModel::modelReset, this, &KNImportTargetPage::showNotes);
    connect(&session, &KNImportSession::tablesLoaded, this, &KNImportTargetPage::showTables);
    connect(&session, &KNImportSession::analysed, this, &KNImportTargetPage::showNewTableDialog);
    m_status->setText(tr("Loading the tables…"));
    session.loadTables();
}

void KNImportTargetPage::arrange()
{
    m_tables->setAccessibleName(tr("Table"));
    m_tables->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_tables->setMinimumContentsLength(30);
    m_new->setAutoDefault(false);
    m_new->setVisible(m_createTable != nullptr);
    m_grid->setModel(m_mapping);
    m_grid->setItemDelegate(new KNImportMappingDelegate(m_grid));
    m_grid->setAccessibleName(tr("Columns of the table"));
    m_grid->setEditTriggers(QAbstractItemView::AllEditTriggers);
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setTabKeyNavigation(false);
    m_grid->verticalHeader()->hide();
    m_grid->horizontalHeader()->setHighlightSections(false);
    m_grid->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_grid->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);

    auto *const label = new QLabel(tr("&Table:"));
    label->setBuddy(m_tables);
    auto *const top = new QHBoxLayout;
    top->addWidget(label);
    top->addWidget(m_tables, 1);
    top->addWidget(m_new);
    auto *const byName = new QPushButton(tr("Assign by Na&me"));
    auto *const byPosition = new QPushButton(tr("Assign by &Position"));
    auto *const bottom = new QHBoxLayout;
    for (QPushButton *const button : {byName, byPosition}) {
        button->setAutoDefault(false);
        bottom->addWidget(button);
    }
    bottom->addWidget(m_status, 1);
    connect(byName, &QPushButton::clicked, this, [this] {
        m_mapping->setSources(KNImportMapping::byName(m_mapping->fileColumns(), m_mapping->tableColumns()));
    });
    connect(byPosition, &QPushButton::clicked, this, [this] {
        m_mapping->setSources(
            KNImportMapping::byPosition(m_mapping->fileColumns(), m_mapping->tableColumns()));
    });
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addLayout(top);
    layout->addWidget(m_grid, 1);
    layout->addWidget(m_notes);
    layout->addLayout(bottom);
}

QString KNImportTargetPage::title() const
{
    return tr("Table and Columns");
}

QString KNImportTargetPage::notes() const
{
    return m_notes->text();
}

void KNImportTargetPage::enter()
{
    const KNImportFileAnalysis &analysis = session().analysis();
    const KNImportFormat *const format = KNImportFormat::of(session().plan.file);
    if (format && format->addsColumns() && !analysis.isComplete && !analysis.error) {
        m_status->setText(tr("Reading the whole file for its columns…"));
        session().analyse(session().plan.file, KNImportFileAnalysis::AllRows);
        Q_EMIT completeChanged();
    }
    if (m_mapping->fileColumns() != session().plan.fileColumns)
        showTable();
}

void KNImportTargetPage::showTables()
{
    const QString selected = m_wanted.isEmpty() ? m_tables->currentText() : m_wanted;
    m_tables->clear();
    for (const KNImportTableModelPtr &table : session().tables())
        m_tables->addItem(pathText(*table));
    m_status->setText(m_tables->count() == 0 ? tr("The database has no tables that can be filled.")
                                             : QString());
    selectTable(selected);
    m_wanted.clear();
}

void KNImportTargetPage::selectTable(const QString &name)
{
    int index = m_tables->findText(name, Qt::MatchFixedString);
    for (int i = 0; index < 0 && i < session().tables().size(); ++i) {
        if (session().tables()[i]->name().compare(name, Qt::CaseInsensitive) == 0)
            index = i;
    }
    m_tables->setCurrentIndex(index);
}

void KNImportTargetPage::showTable()
{
    const auto table = session().tables().value(m_tables->currentIndex());
    m_mapping->setColumns(session().plan.fileColumns,
                          table ? table->columns() : QList<KNImportTableColumnModel>());
    Q_EMIT completeChanged();
}

void KNImportTargetPage::createTable()
{
    if (m_isCreating)
        return;
    m_isCreating = true;
    m_new->setEnabled(false);
    m_status->setText(tr("Analysing the whole file for the types of the columns…"));
    session().analyse(session().plan.file, KNImportFileAnalysis::AllRows);
}

/// A fault of the file does not keep the user from creating a table: the import reports it.
void KNImportTargetPage::showNewTableDialog()
{
    if (!std::exchange(m_isCreating, false))
        return showAllColumns();
    m_new->setEnabled(true);
    m_status->setText(session().analysis().error.localizedDescription());
    m_createTable(session().analysis().columns, [this](const QStringList &tablePath) {
        m_wanted = tablePath.join(QLatin1Char('.'));
        session().loadTables();
    });
}

/// After the whole file was read for an existing table.
void KNImportTargetPage::showAllColumns()
{
    if (!isVisible())
        return;
    m_status->setText(session().analysis().error.localizedDescription());
    if (m_mapping->fileColumns() != session().plan.fileColumns)
        showTable();
    Q_EMIT completeChanged();
}

void KNImportTargetPage::showNotes()
{
    QStringList notes;
    const auto add = [&notes](const QString &note, const QStringList &columns) {
        if (!columns.isEmpty())
            notes.append(note.arg(columns.join(QStringLiteral(", "))));
    };
    if (m_mapping->rowCount() > 0) {
        const QList<KNImportColumnPlan> plans = m_mapping->plans();
        add(tr("Need a value, because they take no NULL and have no default: %1"),
            KNImportMapping::unfilledColumns(m_mapping->tableColumns(), plans));
        add(tr("Characters may be replaced, because the code page is not known: %1"),
            KNImportMapping::uncheckedColumns(plans, session().helper()));
        add(tr("Not imported: %1"), m_mapping->unusedColumns());
    }
    m_notes->setText(notes.join(QLatin1Char('\n')));
    Q_EMIT completeChanged();
}

bool KNImportTargetPage::isComplete() const
{
    return m_tables->currentIndex() >= 0 && !m_mapping->plans().isEmpty() && !session().isAnalysing();
}

void KNImportTargetPage::apply()
{
    session().plan.tablePath = session().tables()[m_tables->currentIndex()]->tablePath();
    session().plan.columns = m_mapping->plans();
}
