#include "ScriptScreenshots.h"

#include "Screenshot.h"
#include "UI/Scripts/KNGenerateScriptsWindowController.h"

#include <QPointer>

using Screenshot::save;
using Screenshot::waitFor;

void showScripts(MainWindow &window, const QString &folder)
{
    constexpr int DrawingTime = 100; // ms
    const VantorDBCPtr settings = window.databaseConnectionDetails()->copy();
    settings->setDatabase(QStringLiteral("shop"));
    const auto isOrders = [](const KNScriptObject &object) {
        return object.name.startsWith(QStringLiteral("Order"));
    };
    const QPointer scripts = new KNGenerateScriptsWindowController(settings, isOrders, &window);
    scripts->beginSheet({});
    waitFor("scripts", [&] { return scripts->model()->objectCount() > 0; });
    QTest::qWait(DrawingTime);
    save(scripts, folder, "generate-scripts");
    delete scripts;
}
