#include "UI/TableDesigner/MSSQLTableDesignerViewController.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Icons/KNIcon.h"
#include "UI/TableDesigner/MSSQLTableColumnDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableDetailsViewController.h"
#include "UI/TableDesigner/MSSQLTableIndexDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableListForeignKeysViewController.h"
#include "UI/TableDesigner/MSSQLTableTriggerDesignerViewController.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTabWidget>

#include <utility>

MSSQLTableDesignerViewController::MSSQLTableDesignerViewController(const QString &schema,
                                                                   const QString &tableName,
                                                                   Settings settings, KNWorkspace &workspace)
    : m_workspace(workspace)
    , m_session(new MSSQLTableDesignSession({schema, tableName}, std::move(settings), this))
    , m_tabs(new QTabWidget)
    , m_changes(new KNSQLEditor)
    , m_changePane(createChangePane())
{
    m_tabs->setDocumentMode(true);
    auto *const triggers = new MSSQLTableTriggerDesignerViewController(*m_session);
    addTab(new MSSQLTableColumnDesignerViewController(*m_session), QStringLiteral("Columns"), tr("Columns"),
           "DatabaseTree-Column");
    addTab(new MSSQLTableIndexDesignerViewController(*m_session), QStringLiteral("Indexes"), tr("Indexes"),
           "DatabaseTree-Index");
    addTab(new MSSQLTableListForeignKeysViewController(*m_session), QStringLiteral("ForeignKeys"),
           tr("Foreign Keys"), "DatabaseTree-PK");
    addTab(triggers, QStringLiteral("Triggers"), tr("Triggers"), "DatabaseTree-Trigger");
    addTab(new MSSQLTableDetailsViewController(*m_session), QStringLiteral("Details"), tr("Details"),
           "DatabaseTree-Table");
    setFocusProxy(m_tabs->currentWidget());
    connect(m_tabs, &QTabWidget::currentChanged, this, [this] { setFocusProxy(m_tabs->currentWidget()); });

    auto *const splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(m_tabs);
    splitter->addWidget(m_changePane);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter);

    connect(triggers, &MSSQLTableTriggerDesignerViewController::definitionRequested, this,
            [this](const QString &statement) {
                m_workspace.openQueryText(statement, m_session->settings(), KNWorkspace::QueryUse::Show,
                                          m_session->table().name);
            });
    connect(m_session, &MSSQLTableDesignSession::busyChanged, this, &KNDocumentTab::statusChanged);
    connect(m_session, &MSSQLTableDesignSession::renamed, this, &KNDocumentTab::titleChanged);
    connect(m_session, &MSSQLTableDesignSession::tableChanged, this,
            &MSSQLTableDesignerViewController::showChanges);
}

void MSSQLTableDesignerViewController::open(const QString &schema, const QString &tableName,
                                            const Settings &settings, KNWorkspace &workspace)
{
    if (MSSQLTableDesignerViewController *const existing = find(schema, tableName, settings, workspace))
        return workspace.showDocument(existing);
    workspace.openDocument(
        std::make_unique<MSSQLTableDesignerViewController>(schema, tableName, settings, workspace));
}

void MSSQLTableDesignerViewController::tableWasRenamed(const QString &schema, const QString &oldName,
                                                       const QString &newName, const Settings &settings,
                                                       KNWorkspace &workspace)
{
    if (MSSQLTableDesignerViewController *const existing = find(schema, oldName, settings, workspace))
        existing->m_session->setTableName(newName);
}

void MSSQLTableDesignerViewController::tableWasChanged(const QString &schema, const QString &tableName,
                                                       const Settings &settings, KNWorkspace &workspace)
{
    if (MSSQLTableDesignerViewController *const existing = find(schema, tableName, settings, workspace))
        Q_EMIT existing->m_session->tableChanged();
}

/// The open designer of a table; null if there is none.
MSSQLTableDesignerViewController *MSSQLTableDesignerViewController::find(const QString &schema,
                                                                         const QString &tableName,
                                                                         const Settings &settings,
                                                                         KNWorkspace &workspace)
{
    for (KNDocumentTab *const document : workspace.documents()) {
        auto *designer = qobject_cast<MSSQLTableDesignerViewController *>(document);
        if (designer && designer->shows(schema, tableName, *settings))
            return designer;
    }
    return nullptr;
}

bool MSSQLTableDesignerViewController::shows(const QString &schema, const QString &tableName,
                                             const VantorDBC &settings) const
{
    const auto *own = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(m_session->settings().get());
    const auto *other = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(&settings);
    return m_session->table().schema == schema && m_session->table().name == tableName && own && other &&
           own->isEqualToDatabaseConnectionDetails(other);
}

void MSSQLTableDesignerViewController::addTab(QWidget *page, const QString &identifier, const QString &title,
                                              const char *image)
{
    page->setObjectName(identifier);
    m_tabs->addTab(page, KNIcon::named(QString::fromLatin1(image)), title);
}

QWidget *MSSQLTableDesignerViewController::createChangePane()
{
    auto *const pane = new QWidget;
    auto *const title = new QLabel(tr("Changes made to the table:"));
    auto *const copy = new QPushButton(tr("&Copy as Script"));
    connect(copy, &QPushButton::clicked, this,
            [this] { QApplication::clipboard()->setText(changeScript()); });
    const VantorDBC &details = *m_session->settings();
    m_changes->setDialect(details.tokenizerOptions(), details.keywords(), details.functions(),
                          details.dataTypes());
    m_changes->setReadOnly(true);
    m_changes->setAccessibleName(tr("Changes"));
    auto *const top = new QHBoxLayout;
    top->addWidget(title, 1);
    top->addWidget(copy);
    auto *const layout = new QVBoxLayout(pane);
    layout->addLayout(top);
    layout->addWidget(m_changes, 1);
    pane->hide();
    return pane;
}

QString MSSQLTableDesignerViewController::title() const
{
    return m_session->table().name;
}

QIcon MSSQLTableDesignerViewController::icon() const
{
    return KNIcon::named(QStringLiteral("DatabaseTree-Table"));
}

KNDocumentStatus MSSQLTableDesignerViewController::status() const
{
    KNDocumentStatus status;
    status.text = m_session->status();
    status.database = m_session->settings()->database();
    status.isRunning = m_session->isBusy();
    return status;
}

void MSSQLTableDesignerViewController::prepareToClose(std::function<void()> proceed)
{
    if (!m_session->isBusy())
        return proceed();
    const KNAlerts::Question question{
        KNFormat(tr("A change of %@ is still running."), m_session->table().name),
        tr("If the tab is closed, the change runs to its end, and nobody sees whether it succeeds."),
        {tr("Keep Open"), tr("Close Tab")}};
    KNAlerts::shared().ask(this, question, [proceed = std::move(proceed)](int button) {
        if (button == 1)
            proceed();
    });
}

bool MSSQLTableDesignerViewController::canPerform(KNDocumentAction action) const
{
    return action == KNDocumentAction::Cancel && m_session->isBusy();
}

void MSSQLTableDesignerViewController::perform(KNDocumentAction action)
{
    if (action == KNDocumentAction::Cancel)
        m_session->cancel();
}

QString MSSQLTableDesignerViewController::changeScript() const
{
    QString script;
    for (const QString &change : m_session->executedScripts())
        script += change + QLatin1String("\r\nGO\r\n\r\n");
    return script;
}

void MSSQLTableDesignerViewController::showChanges()
{
    m_changes->setReadOnly(false); // a read-only editor ignores text changes
    m_changes->setWholeText(changeScript());
    m_changes->setReadOnly(true);
    m_changePane->setVisible(!m_session->executedScripts().isEmpty());
    m_changes->setCursorPosition(m_changes->lines() - 1, 0); // shows the last change
    m_changes->ensureCursorVisible();
}
