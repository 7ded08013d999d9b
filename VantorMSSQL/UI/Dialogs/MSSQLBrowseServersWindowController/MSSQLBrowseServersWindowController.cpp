#include "UI/Dialogs/MSSQLBrowseServersWindowController/MSSQLBrowseServersWindowController.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Dialogs/KNProgressMark.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTableWidget>

#include <iterator>

namespace {

/// Of the columns, for textForColumn().
constexpr const char *EntryIdentifiers[] = {"Host", "Instance", "Version", "Port"};

QStringList entryTitles()
{
    return {
        MSSQLBrowseServersWindowController::tr("Host"), MSSQLBrowseServersWindowController::tr("Instance"),
        MSSQLBrowseServersWindowController::tr("Version"), MSSQLBrowseServersWindowController::tr("Port")};
}

} // namespace

MSSQLBrowseServersWindowController::MSSQLBrowseServersWindowController(QWidget *parent)
    : KNWindowController(parent)
    , m_table(new QTableWidget(0, static_cast<int>(std::size(EntryIdentifiers))))
    , m_searching(new QLabel(tr("Searching the local network…")))
    , m_progress(new KNProgressMark(tr("Searching")))
{
    setWindowTitle(tr("SQL Servers on the Local Network"));
    m_table->setHorizontalHeaderLabels(entryTitles());
    m_table->setAccessibleName(tr("Servers"));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->setShowGrid(false);
    m_table->setAlternatingRowColors(true);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_table->setMinimumSize(fontMetrics().averageCharWidth() * 70, fontMetrics().lineSpacing() * 14);
    m_table->setColumnWidth(1, fontMetrics().averageCharWidth() * 20);
    m_table->setColumnWidth(2, fontMetrics().averageCharWidth() * 16);
    m_table->setColumnWidth(3, fontMetrics().averageCharWidth() * 9);

    QDialogButtonBox *const buttons = makeButtons(tr("Choose"));
    m_accept = acceptButton(*buttons);
    auto *const searching = new QHBoxLayout;
    searching->addWidget(m_searching);
    searching->addWidget(m_progress);
    searching->addStretch();
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_table);
    layout->addLayout(searching);
    layout->addWidget(buttons);

    connect(m_table, &QTableWidget::itemSelectionChanged, this,
            [this] { m_accept->setEnabled(selectedEntry().has_value()); });
    connect(m_table, &QTableWidget::cellDoubleClicked, this, [this] { endSheetWithReturnCode(1); });

    m_table->setFocus();

    using Client = MSSQLBrowserServiceClient;
    m_observed = {observe(Client::MSSQLBrowserServiceClientStartedSearchingNotification,
                          &MSSQLBrowseServersWindowController::searchStarted),
                  observe(Client::MSSQLBrowserServiceClientUpdatedNotification,
                          &MSSQLBrowseServersWindowController::searchUpdated)};
    Client::beginBrowseForServers();
    m_databases = Client::allDatabases();
    reload();
    showSearching(Client::IsSearching());
}

MSSQLBrowseServersWindowController::~MSSQLBrowseServersWindowController()
{
    if (!closed())
        MSSQLBrowserServiceClient::stopBrowseForServers();
}

/// Calls a function of this window on the UI thread for every notification of that name.
KNNotificationCenter::Token
MSSQLBrowseServersWindowController::observe(const QString &name,
                                            void (MSSQLBrowseServersWindowController::*action)())
{
    return KNNotificationCenter::defaultCenter()->addObserver(
        name, [guard = QPointer(this), action](const QString &, const QVariantMap &) {
            KNDispatch::mainQueue([guard, action] {
                if (guard && !guard->closed())
                    (guard->*action)();
            });
        });
}

QString MSSQLBrowseServersWindowController::textForColumn(const MSSQLBrowserServiceClientEntry &entry,
                                                          const QString &identifier)
{
    const auto is = [&](const char *name) {
        return identifier.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    };
    if (is("Host"))
        return entry.host;
    if (is("Instance"))
        return entry.instance;
    if (is("Version"))
        return entry.version;
    if (is("Port"))
        return KNFormat("%d", entry.port);
    return QStringLiteral("");
}

std::optional<MSSQLBrowserServiceClientEntry> MSSQLBrowseServersWindowController::selectedEntry() const
{
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    if (rows.isEmpty() || rows.first().row() >= m_databases.size())
        return std::nullopt;
    return m_databases.at(rows.first().row());
}

QString MSSQLBrowseServersWindowController::currentConnectionString() const
{
    const auto entry = selectedEntry();
    return entry ? entry->connectionString() : QString();
}

void MSSQLBrowseServersWindowController::done(int code)
{
    if (!closed())
        MSSQLBrowserServiceClient::stopBrowseForServers();
    KNWindowController::done(code);
}

void MSSQLBrowseServersWindowController::searchStarted()
{
    showSearching(true);
}

void MSSQLBrowseServersWindowController::searchUpdated()
{
    showSearching(false);
    reload();
}

void MSSQLBrowseServersWindowController::showSearching(bool isSearching)
{
    m_searching->setVisible(isSearching);
    if (isSearching)
        m_progress->start();
    else
        m_progress->stop();
}

/// Keeps the selected row if its instance has answered again.
void MSSQLBrowseServersWindowController::reload()
{
    const auto selected = selectedEntry();
    m_databases = MSSQLBrowserServiceClient::allDatabases();
    m_table->setRowCount(static_cast<int>(m_databases.size()));
    m_table->clearSelection();
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const MSSQLBrowserServiceClientEntry &entry = m_databases.at(row);
        for (int column = 0; column < m_table->columnCount(); ++column)
            m_table->setItem(
                row, column,
                new QTableWidgetItem(textForColumn(entry, QString::fromLatin1(EntryIdentifiers[column]))));
        if (selected && selected->isEqualTo(entry))
            m_table->selectRow(row);
    }
    m_accept->setEnabled(selectedEntry().has_value());
}
