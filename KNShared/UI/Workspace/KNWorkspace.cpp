#include "UI/Workspace/KNWorkspace.h"

#include "QueryLoader/KNQueryLoading.h"
#include "UI/Alerts/KNAlerts.h"

#include <QWidget>

KNWorkspace::KNWorkspace()
    : m_self(this, [](KNWorkspace *) {})
{
}

KNWorkspace::~KNWorkspace() = default;

KNWorkspace *KNWorkspace::of(const QWidget &widget)
{
    return dynamic_cast<KNWorkspace *>(widget.window());
}

void KNWorkspace::openQuery(const KNQueryLoaderPtr &loader, const Settings &details, QueryUse use,
                            const QString &name)
{
    KNQueryLoading::load(
        loader, *details,
        [self = weakPointer(), details, use, name](const QString &text, const KNQueryReport &report) {
            const auto workspace = self.lock();
            if (!workspace)
                return;
            if (text.isNull())
                workspace->showLoadFailure(report);
            else
                workspace->openQueryText(report.guardedText(text), details,
                                         report.needsAttention() ? QueryUse::Show : use, name);
        });
}

void KNWorkspace::showLoadFailure(const KNQueryReport &report)
{
    KNAlerts::shared().showMessage(sheetParent(), tr("The script could not be created."),
                                   report.failure ? report.failure.localizedDescription()
                                                  : tr("See the log for details."));
}

KNWorkspace::Settings KNWorkspace::selectedSettings() const
{
    const TreeEntry selected = selectedTreeEntry();
    return selected ? selected->databaseConnectionDetails() : databaseConnectionDetails();
}
