#include "Desktop/Tree/TreeActions.h"

#include "Desktop/Query/TextFile.h"
#include "Foundation/KNDispatch.h"
#include "QueryLoader/KNQueryLoading.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/DatabaseTree/KNPropertiesDialog.h"

#include <QApplication>
#include <QClipboard>
#include <QPointer>

using QueryUse = KNWorkspace::QueryUse;

TreeActions::TreeActions(KNWorkspace &workspace, QObject *parent)
    : QObject(parent)
    , m_workspace(workspace)
    , m_helper(std::make_shared<KNDatabaseTreeContextHelper>())
{
    addAction("newQuery:", [this](const KNMenuRepresentedObject &) {
        m_workspace.openQueryText({}, m_workspace.selectedSettings(), QueryUse::Show, {});
    });
    addAction("refreshDatabaseTreeItem:", [this](const KNMenuRepresentedObject &object) {
        if (const auto *entry = std::get_if<KNDatabaseTreeEntry::Ptr>(&object))
            m_workspace.refreshTreeEntry(*entry);
    });
    addAction("openConnectionDialog:",
              [this](const KNMenuRepresentedObject &) { Q_EMIT connectionsRequested(); });
    addAction("disconnect:", [this](const KNMenuRepresentedObject &) { Q_EMIT disconnectRequested(); });

    addTextAction("addQueryTab:", QueryUse::Show);
    addTextAction("executeQueryTab:", QueryUse::Execute);
    addQueryAction("addQueryTabWithQueryLoader:", QueryUse::Show);
    addQueryAction("addAndExecuteQueryTabWithQueryLoader:", QueryUse::Execute);
    addScriptAction("saveQueryWithQueryLoader:", [this](const QString &text) { saveScript(text); });
    addScriptAction("copyQueryWithQueryLoader:",
                    [](const QString &text) { QApplication::clipboard()->setText(text); });
    addAction("copyName:", [](const KNMenuRepresentedObject &object) {
        if (const auto *name = std::get_if<QString>(&object))
            QApplication::clipboard()->setText(*name);
    });
    addAction("showProperties:", [this](const KNMenuRepresentedObject &object) {
        const auto *entry = std::get_if<KNDatabaseTreeEntry::Ptr>(&object);
        if (const auto loader = entry && *entry ? (*entry)->propertiesLoader() : nullptr)
            (new KNPropertiesDialog((*entry)->displayName(), loader, m_workspace.sheetParent()))->show();
    });
}

void TreeActions::addAction(const char *name, KNDatabaseTreeContextHelper::Action action)
{
    // The tree, and with it the helper, may outlive this object.
    m_helper->addAction(QString::fromLatin1(name), [self = QPointer(this), action = std::move(action)](
                                                       const KNMenuRepresentedObject &object) {
        if (self)
            action(object);
    });
}

void TreeActions::addTextAction(const char *name, QueryUse use)
{
    addAction(name, [this, use](const KNMenuRepresentedObject &object) {
        if (const auto *text = std::get_if<QString>(&object))
            m_workspace.openQueryText(*text, m_workspace.selectedSettings(), use, selectedName());
    });
}

void TreeActions::addQueryAction(const char *name, QueryUse use)
{
    addAction(name, [this, use](const KNMenuRepresentedObject &object) {
        if (const auto *loader = std::get_if<KNQueryLoaderPtr>(&object); loader && *loader)
            m_workspace.openQuery(*loader, m_workspace.selectedSettings(), use, selectedName());
    });
}

/// The name of the object that the action applies to; null if none is selected.
QString TreeActions::selectedName() const
{
    const KNWorkspace::TreeEntry entry = m_workspace.selectedTreeEntry();
    return entry ? entry->displayName() : QString();
}

void TreeActions::addScriptAction(const char *name, const Use &use)
{
    addAction(name, [this, use](const KNMenuRepresentedObject &object) {
        const auto *loader = std::get_if<KNQueryLoaderPtr>(&object);
        if (!loader || !*loader)
            return;
        KNQueryLoading::load(*loader, *m_workspace.selectedSettings(),
                             [self = QPointer(this), use](const QString &text, const KNQueryReport &report) {
                                 if (self && text.isNull())
                                     self->m_workspace.showLoadFailure(report);
                                 else if (self)
                                     use(report.guardedText(text));
                             });
    });
}

void TreeActions::saveScript(const QString &text)
{
    const KNFilePanels::Request request{
        tr("Save script"), QStringLiteral("script.sql"), {tr("SQL scripts (*.sql)"), tr("All files (*)")}};
    KNFilePanels::shared().chooseFileToSave(
        m_workspace.sheetParent(), request, [self = QPointer(this), text](const QString &path) {
            KNDispatch::globalQueue([self, text, path] {
                KNError error;
                TextFile file;
                file.setPath(path);
                if (file.write(text, &error))
                    return;
                KNDispatch::mainQueue([self, error] {
                    if (self)
                        KNAlerts::shared().showError(self->m_workspace.sheetParent(), error);
                });
            });
        });
}
