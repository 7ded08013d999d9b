#include "ActivityScreenshots.h"

#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Main/MainWindow.h"
#include "Screenshot.h"
#include "UI/Activity/KNActivityTab.h"
#include "UI/Activity/KNActivityView.h"

#include <QTest>

using Screenshot::save;
using Screenshot::waitFor;

namespace {

/// Sessions of which some wait for others; the sample server never has such ones.
class PicturedActivity : public KNServerActivity
{
public:
    KNActivitySnapshot read(KNError *) const override
    {
        const auto u = [](const char *text) { return QString::fromUtf8(text); };
        return {{{52,
                  0,
                  u("sleeping"),
                  u("anna"),
                  u("DESK-04"),
                  u("Payroll"),
                  u("hr"),
                  {},
                  {},
                  754'000,
                  1,
                  u("UPDATE hr.Salaries SET Amount = Amount * 1.02 WHERE Year = 2026")},
                 {57, 52, u("suspended"), u("report"), u("APP-01"), u("Reports"), u("hr"), u("SELECT"),
                  u("LCK_M_S"), 12'400, 0, u("SELECT Name, Amount FROM hr.Salaries ORDER BY Amount DESC")},
                 {58, 57, u("suspended"), u("sa"), u("DESK-11"), u("vantor"), u("hr"), u("ALTER TABLE"),
                  u("LCK_M_SCH_M"), 3'100, 1, u("ALTER TABLE hr.Salaries ADD Note nvarchar(50) NULL")},
                 {61,
                  0,
                  u("running"),
                  u("sa"),
                  u("DESK-11"),
                  u("vantor"),
                  u("shop"),
                  u("SELECT"),
                  {},
                  45,
                  0,
                  {},
                  true},
                 {63,
                  0,
                  u("sleeping"),
                  u("shop"),
                  u("WEB-02"),
                  u("Storefront"),
                  u("shop"),
                  {},
                  {},
                  2'000,
                  0,
                  u("SELECT 1")}}};
    }
    void kill(int, KNError *) const override {}
};

} // namespace

void showActivity(MainWindow &window, const std::shared_ptr<const VantorDBC> &settings, const QString &folder)
{
    auto document = std::make_unique<KNActivityTab>(settings, std::make_shared<PicturedActivity>());
    KNActivityTab *const tab = document.get();
    window.openDocument(std::move(document));
    waitFor("sessions", [&] { return tab->view()->topLevelItemCount() > 0; });
    tab->view()->setCurrentItem(tab->view()->topLevelItem(0)->child(0));
    QTest::qWait(100);
    save(&window, folder, "activity");
    window.tabs()->closeDocument(tab);
}
