#include "Desktop/Import/ImportActions.h"

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Import/KNImportFormat.h"
#include "UI/Dialogs/KNCreateTableWindowController.h"
#include "UI/KNConnectorUserInterface.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>

namespace {

/// The one file of a drop that can be imported; null if there is none.
QString importableFile(const QDropEvent &drop)
{
    const QList<QUrl> urls = drop.mimeData()->urls();
    const QString path = urls.size() == 1 ? urls.first().toLocalFile() : QString();
    return !path.isEmpty() && KNImportFormat::of({path}) ? path : QString();
}

} // namespace

ImportActions::ImportActions(QWidget &window, KNWorkspace &workspace, KNDatabaseTreeContextHelper &helper,
                             const KNConnectorUserInterface *connector, CurrentDocument currentDocument)
    : QObject(&window)
    , m_window(window)
    , m_workspace(workspace)
    , m_connector(connector)
    , m_currentDocument(std::move(currentDocument))
{
    // The tree, and with it the helper, may outlive this object.
    helper.addAction(QStringLiteral("importIntoDatabase:"),
                     [self = QPointer(this)](const KNMenuRepresentedObject &object) {
                         const auto *entry = std::get_if<KNDatabaseTreeEntry::Ptr>(&object);
                         if (self && entry && *entry)
                             self->open(*entry, (*entry)->databaseConnectionDetails(), {});
                     });
    // Editors and lists take drops before their window.
    window.setAcceptDrops(true);
    qApp->installEventFilter(this);
}

void ImportActions::import(const QString &path)
{
    const KNWorkspace::Settings selected = m_workspace.selectedSettings();
    const KNDocumentTab *const document = m_currentDocument();
    if (selected->database().isEmpty() && document)
        open(nullptr, document->databaseConnectionDetails(), path);
    else
        open(m_workspace.selectedTreeEntry(), selected, path);
}

void ImportActions::open(const KNWorkspace::TreeEntry &entry, const KNWorkspace::Settings &settings,
                         const QString &path)
{
    if (m_wizard || !settings->createDatabaseImportHelper())
        return;
    m_wizard = new KNImportWindowController(settings, {path, entry ? entry->displayName() : QString()},
                                            tableCreator(settings), &m_window);
    m_wizard->beginSheet([this, entry](int code) {
        if (code != 1)
            return;
        if (entry)
            m_workspace.refreshTreeEntry(entry);
        m_workspace.notifyUser(tr("Import finished"), tr("The rows were imported."));
    });
}

KNImportTargetPage::CreateTable ImportActions::tableCreator(const KNWorkspace::Settings &settings)
{
    if (!m_connector)
        return {};
    return [this, settings](const QList<KNImportColumnAnalysis> &columns,
                            const KNImportTargetPage::Created &created) {
        KNCreateTableWindowController *const dialog =
            m_wizard ? m_connector->createTableWindowController(columns, settings, m_wizard) : nullptr;
        if (!dialog)
            return;
        dialog->beginSheet([dialog, created](int code) {
            if (code == 1)
                created({dialog->createdTableSchemaName(), dialog->createdTableName()});
        });
    };
}

bool ImportActions::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
        return false;
    const auto *const widget = qobject_cast<QWidget *>(watched);
    auto *const drop = static_cast<QDropEvent *>(event);
    const QString path = widget && widget->window() == &m_window ? importableFile(*drop) : QString();
    if (path.isNull())
        return false;
    drop->setDropAction(Qt::CopyAction);
    drop->accept();
    if (type == QEvent::Drop)
        import(path);
    return true;
}
