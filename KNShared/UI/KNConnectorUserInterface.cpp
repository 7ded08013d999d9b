#include "UI/KNConnectorUserInterface.h"

#include "UI/Workspace/KNDocumentTab.h"

KNConnectorUserInterface::~KNConnectorUserInterface() = default;

std::unique_ptr<KNDocumentTab> KNConnectorUserInterface::restoreDocument(const KNDocumentState &,
                                                                         KNWorkspace &) const
{
    return nullptr;
}

KNConnectorPreferences KNConnectorUserInterface::preferences() const
{
    return {};
}
