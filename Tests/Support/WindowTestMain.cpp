#include "Foundation/KNDispatch.h"
#include "Support/RecordingAlerts.h"
#include "Support/WatchedApplication.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

/// Windows without a display, and folders of their own for what the program writes.
int main(int argc, char **argv)
{
    const QTemporaryDir home;
    for (const char *const variable :
         {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
        qputenv(variable, home.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // No secret service: a test's secrets stay in its folders.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    const WatchedApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vantor"));
    RecordingAlerts::install();
    RecordingFilePanels::install();
    testing::InitGoogleTest(&argc, argv);
    const int status = RUN_ALL_TESTS();
    KNDispatch::waitUntilIdle(60000);
#ifdef __SANITIZE_ADDRESS__
    // The leak check fails itself when a thread ends meanwhile: those of the queue end after five idle
    // seconds.
    std::this_thread::sleep_for(std::chrono::seconds(6));
#endif
    return status;
}
