#include "Common/EnvironmentPassword.h"
#include "Desktop/Application.h"
#include "Desktop/Main/Theme.h"
#include "Foundation/KNAssert.h"
#include "Foundation/KNFallbackStore.h"
#include "Foundation/KNLogHelper.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Credentials/KNKeychainStore.h"

#include <QApplication>

#include <cstdio>

namespace {

/// Continues when a programming error reaches the event loop: it is logged and shown.
class DesktopApplication : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override
    {
        try {
            return QApplication::notify(receiver, event);
        } catch (const KNAssertionFailure &failure) {
            KNLogHelper::sharedInstance()->logMessage("Internal error: %@ (%@)", failure.message(),
                                                      failure.sourcePath());
            KNAlerts::shared().showMessage(
                activeWindow(),
                QCoreApplication::translate("DesktopApplication", "Something went wrong in the program."),
                failure.message());
            return false;
        }
    }
};

bool hasDisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

} // namespace

int main(int argc, char **argv)
{
    TakeEnvironmentPassword(); // not used here; ssh and the sample server must not inherit it
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    int exitStatus = 0;
    const auto options = Options::parse(arguments, &exitStatus);
    if (!options)
        return exitStatus;
    if (!hasDisplay()) {
        std::fputs("There is no display. vantor-cli works in a terminal.\n", stderr);
        return 1;
    }
    const DesktopApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vantor"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vantor"));
    QApplication::setApplicationVersion(QStringLiteral(VANTOR_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("com.quorvex.vantor"));
    // Passwords are stored in the desktop's secret service if there is one, otherwise in a private file.
    KNKeyValueStore::setShared(std::make_shared<KNFallbackStore>(
        std::make_shared<KNKeychainStore>(QStringLiteral("vantor")), KNKeyValueStore::shared()));
    new Theme(qApp);
    Application program(*options);
    return program.start() ? QApplication::exec() : 3;
}
