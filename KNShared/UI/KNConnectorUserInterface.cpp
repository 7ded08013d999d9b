#include "UI/KNConnectorUserInterface.h"

#include "UI/Workspace/KNDocumentTab.h"

KNConnectorUserInterface::~KNConnectorUserInterface() = default;

KNMenu KNConnectorUserInterface::editorMenu(const QString &, qsizetype, const VantorDBC &,
                                            const std::shared_ptr<KNDatabaseTreeContextHelper> &) const
{
    return {};
}

std::unique_ptr<KNDocumentTab> KNConnectorUserInterface::restoreDocument(const KNDocumentState &,
                                                                         KNWorkspace &) const
{
    return nullptr;
}

KNConnectorPreferences KNConnectorUserInterface::preferences() const
{
    return {};
}

KNCreateTableWindowController *KNConnectorUserInterface::createTableWindowController(
    const QList<KNImportColumnAnalysis> &, const std::shared_ptr<const VantorDBC> &, QWidget *) const
{
    return nullptr;
}
