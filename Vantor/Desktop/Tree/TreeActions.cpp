#include "Desktop/Tree/TreeActions.h"

#include "Desktop/Query/TextFile.h"
#include "Foundation/KNDispatch.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"

#include <QApplication>
#include <QClipboard>
#include <QPointer>

namespace {

/// Passes a script and its report on to the UI thread. It keeps itself alive until then.
class ScriptReceiver : public KNQueryLoaderDelegate
{
public:
    using Use = std::function<void(const QString &text, const KNQueryReport &report)>;

    static void load(const KNQueryLoaderPtr &loader, const VantorDBC &details, Use use)
    {
        const auto receiver = std::make_shared<ScriptReceiver>();
        receiver->m_self = receiver;
        receiver->m_use = std::move(use);
        loader->setDelegate(receiver);
        loader->beginLoadingQuery(details);
    }

    void queryLoaderLoadedQuery(KNQueryLoader &loader, const QString &query) override
    {
        KNDispatch::mainQueue([self = std::move(m_self), text = loader.report().guardedText(query),
                               report = loader.report()] { self->m_use(text, report); });
    }

private:
    std::shared_ptr<ScriptReceiver> m_self;
    Use m_use;
};

} // namespace

TreeActions::TreeActions(KNDatabaseTreeViewController &tree)
    : QObject(&tree)
    , m_tree(tree)
    , m_helper(std::make_shared<KNDatabaseTreeContextHelper>())
{
    addAction("newQuery:", [this](const KNMenuRepresentedObject &) {
        Q_EMIT queryTabRequested({}, selectedSettings(), false);
    });
    addAction("refreshDatabaseTreeItem:", [this](const KNMenuRepresentedObject &object) {
        if (const auto *entry = std::get_if<KNDatabaseTreeEntry::Ptr>(&object))
            m_tree.refreshDatabaseTreeItem(*entry);
    });
    addAction("openConnectionDialog:",
              [this](const KNMenuRepresentedObject &) { Q_EMIT connectionsRequested(); });
    addAction("disconnect:", [this](const KNMenuRepresentedObject &) { Q_EMIT disconnectRequested(); });

    const auto open = [this](const QString &text, const Settings &details) {
        Q_EMIT queryTabRequested(text, details, false);
    };
    const auto execute = [this](const QString &text, const Settings &details) {
        Q_EMIT queryTabRequested(text, details, true);
    };
    addTextAction("addQueryTab:", open);
    addTextAction("executeQueryTab:", execute);
    addScriptAction("addQueryTabWithQueryLoader:", open);
    addScriptAction("addAndExecuteQueryTabWithQueryLoader:", execute, open);
    addScriptAction("saveQueryWithQueryLoader:",
                    [this](const QString &text, const Settings &) { saveScript(text); });
    addScriptAction("copyQueryWithQueryLoader:",
                    [](const QString &text, const Settings &) { QApplication::clipboard()->setText(text); });
}

void TreeActions::addAction(const char *name, KNDatabaseTreeContextHelper::Action action)
{
    // The tree may outlive this object.
    m_helper->addAction(QString::fromLatin1(name), [self = QPointer(this), action = std::move(action)](
                                                       const KNMenuRepresentedObject &object) {
        if (self)
            action(object);
    });
}

void TreeActions::addTextAction(const char *name, const ScriptAction &action)
{
    addAction(name, [this, action](const KNMenuRepresentedObject &object) {
        if (const auto *text = std::get_if<QString>(&object))
            action(*text, selectedSettings());
    });
}

void TreeActions::addScriptAction(const char *name, const ScriptAction &action,
                                  const ScriptAction &whenReported)
{
    addAction(name, [this, action, whenReported](const KNMenuRepresentedObject &object) {
        const auto *loader = std::get_if<KNQueryLoaderPtr>(&object);
        if (!loader || !*loader)
            return;
        const Settings details = selectedSettings();
        load(*loader, details, [action, whenReported, details](const QString &text, bool isReported) {
            (isReported && whenReported ? whenReported : action)(text, details);
        });
    });
}

void TreeActions::load(const KNQueryLoaderPtr &loader, const Settings &details, Use use)
{
    ScriptReceiver::load(
        loader, *details,
        [self = QPointer(this), use = std::move(use)](const QString &text, const KNQueryReport &report) {
            if (!self)
                return;
            if (text.isNull())
                KNAlerts::shared().showMessage(&self->m_tree, tr("The script could not be made."),
                                               report.failure ? report.failure.localizedDescription()
                                                              : tr("The log tells more."));
            else
                use(text, report.failure || !report.notices.isEmpty());
        });
}

TreeActions::Settings TreeActions::selectedSettings() const
{
    const auto selected = m_tree.currentlySelectedDatabaseTreeEntry();
    return selected ? selected->databaseConnectionDetails() : m_tree.root()->databaseConnectionDetails();
}

void TreeActions::saveScript(const QString &text)
{
    const KNFilePanels::Request request{
        tr("Save script"), QStringLiteral("script.sql"), {tr("SQL scripts (*.sql)"), tr("All files (*)")}};
    KNFilePanels::shared().chooseFileToSave(
        &m_tree, request, [self = QPointer(this), text](const QString &path) {
            KNDispatch::globalQueue([self, text, path] {
                KNError error;
                TextFile file;
                file.setPath(path);
                if (file.write(text, &error))
                    return;
                KNDispatch::mainQueue([self, error] {
                    if (self)
                        KNAlerts::shared().showError(&self->m_tree, error);
                });
            });
        });
}
