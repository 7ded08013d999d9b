#include "UI/Scripts/KNScriptRun.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Results/KNCountText.h"
#include "UI/Workspace/KNProgressSheet.h"

#include <QElapsedTimer>

#include <atomic>

namespace {

/// Shows states of an export, a few of them in a second.
class ScriptProgressReport
{
public:
    explicit ScriptProgressReport(const std::shared_ptr<KNProgressSheet> &sheet)
        : m_sheet(sheet)
    {
    }

    void show(const KNScriptProgress &progress)
    {
        constexpr qint64 Interval = 100; // ms
        if (m_timer.isValid() && m_timer.elapsed() < Interval)
            return;
        m_timer.start();
        KNDispatch::mainQueue([weak = m_sheet, progress] {
            if (const auto sheet = weak.lock()) {
                sheet->setLabelString(KNScriptRun::labelFor(progress));
                sheet->setPercentage(100.0 * double(progress.done) /
                                     double(std::max<qsizetype>(progress.count, 1)));
            }
        });
    }

private:
    const std::weak_ptr<KNProgressSheet> m_sheet;
    QElapsedTimer m_timer;
};

} // namespace

QString KNScriptRun::labelFor(const KNScriptProgress &progress)
{
    if (!progress.isWriting)
        return KNFormat(tr("Reading %@ (%@ of %@ objects)"), progress.title, KNCountText(progress.done + 1),
                        KNCountText(progress.count));
    const QString rows =
        progress.rows == 1 ? tr("1 row") : KNFormat(tr("%@ rows"), KNCountText(progress.rows));
    return KNFormat(tr("Writing %@ (%@ of %@ parts, %@)"), progress.title, KNCountText(progress.done + 1),
                    KNCountText(progress.count), rows);
}

void KNScriptRun::start(QWidget *parent, const std::shared_ptr<const VantorDBC> &settings,
                        const KNScriptExport &scripts, Finished finished)
{
    std::shared_ptr<KNProgressSheet> sheet = KNProgressSheet::create(parent);
    const auto isCancelled = std::make_shared<std::atomic<bool>>(false);
    sheet->setLabelString(tr("Reading the objects"));
    sheet->setCancelBlock([isCancelled] { *isCancelled = true; });
    sheet->begin();
    const auto report = std::make_shared<ScriptProgressReport>(sheet);
    KNDispatch::globalQueue([sheet = std::move(sheet), report, isCancelled, settings, scripts,
                             finished = std::move(finished)]() mutable {
        const auto scripter = settings->createDatabaseScripter();
        const KNError error = scripts.run(
            *scripter, [&](const KNScriptProgress &progress) { report->show(progress); },
            [&] { return isCancelled->load(); });
        KNDispatch::mainQueue([sheet = std::move(sheet), isCancelled, error, finished = std::move(finished)] {
            sheet->end();
            finished(error, *isCancelled);
        });
    });
}
