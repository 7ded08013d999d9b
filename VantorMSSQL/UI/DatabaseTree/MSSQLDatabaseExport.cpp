#include "UI/DatabaseTree/MSSQLDatabaseExport.h"

#include "Foundation/KNDispatch.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFileManager.h"
#include "UI/Workspace/KNProgressSheet.h"

#include <atomic>

void MSSQLDatabaseExport::run(KNWorkspace &workspace, const QString &title, const QString &path, Work work)
{
    const std::shared_ptr<KNProgressSheet> sheet = KNProgressSheet::create(workspace.sheetParent());
    const auto isCancelled = std::make_shared<std::atomic<bool>>(false);
    sheet->setLabelString(title);
    sheet->setCancelBlock([isCancelled] { *isCancelled = true; });
    sheet->begin();
    Control control;
    control.isCancelled = [isCancelled] { return isCancelled->load(); };
    control.progress = [weak = std::weak_ptr(sheet)](const QString &text, double fraction) {
        KNDispatch::mainQueue([weak, text, fraction] {
            if (const auto shown = weak.lock()) {
                shown->setLabelString(text);
                shown->setPercentage(fraction * 100);
            }
        });
    };
    KNDispatch::globalQueue([sheet, control, path, isCancelled, work = std::move(work),
                             pointer = workspace.weakPointer()]() mutable {
        const KNError error = work(control);
        KNDispatch::mainQueue([sheet = std::move(sheet), path, isCancelled, error, pointer] {
            sheet->end();
            const auto existing = pointer.lock();
            if (!existing || *isCancelled)
                return;
            if (error)
                KNAlerts::shared().showError(existing->sheetParent(), error);
            else
                KNFileManager::shared().showFolderOf(path);
        });
    });
}
