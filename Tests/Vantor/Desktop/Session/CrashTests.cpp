#include "Desktop/Main/MainWindow.h"
#include "Foundation/KNFormat.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>
#include <optional>
#include <sys/resource.h>

namespace {

using WindowTesting::waitFor;

constexpr char StateVariable[] = "VANTOR_CRASH_TEST_STATE";
constexpr char PortVariable[] = "VANTOR_CRASH_TEST_PORT";

QString unsavedText()
{
    return QStringLiteral("SELECT 'not saved'");
}

std::unique_ptr<MainWindow> newWindow(quint16 port)
{
    const VantorDBCPtr details = DesktopTesting::settingsFor(port, QStringLiteral("shop"));
    details->setConnectionId(QStringLiteral("crashed"));
    auto window = std::make_unique<MainWindow>(*details);
    window->setAttribute(Qt::WA_DeleteOnClose, false);
    window->show();
    return window;
}

bool isTextOnDisk(const QString &folder)
{
    for (QDirIterator files(folder, {QStringLiteral("*.json")}, QDir::Files, QDirIterator::Subdirectories);
         files.hasNext();) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly) && file.readAll().contains(unsavedText().toUtf8()))
            return true;
    }
    return false;
}

/// What the process that crashes does: a window whose tab holds text that was never saved.
void typeAndCrash(int signal)
{
    // The folders of this process stay empty when it is killed, so they go first.
    QDir(qEnvironmentVariable("XDG_CONFIG_HOME")).removeRecursively();
    const QString state = qEnvironmentVariable(StateVariable);
    for (const char *const variable :
         {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"})
        qputenv(variable, QFile::encodeName(state));
    const auto window = newWindow(static_cast<quint16>(qEnvironmentVariableIntValue(PortVariable)));
    window->currentDocument()->insertText(unsavedText());
    if (!waitFor([&] { return isTextOnDisk(state); }))
        _exit(1);
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

class CrashOfTheProgram : public testing::TestWithParam<int>
{
};

} // namespace

TEST_P(CrashOfTheProgram, CostsNoUnsavedText)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // a process of its own, from its start
    // The process that crashes runs this test, too, and must leave no folder behind.
    std::optional<QTemporaryDir> state;
    if (!qEnvironmentVariableIsSet(StateVariable)) {
        state.emplace();
        qputenv(StateVariable, QFile::encodeName(state->path()));
        qputenv(PortVariable, QByteArray::number(SampleServerFixture::shared().port()));
    }
    EXPECT_EXIT(typeAndCrash(GetParam()), testing::KilledBySignal(GetParam()), "");
    qunsetenv(StateVariable);
    qunsetenv(PortVariable);
    ASSERT_TRUE(state);

    const QByteArray before = qgetenv("XDG_STATE_HOME");
    qputenv("XDG_STATE_HOME", QFile::encodeName(state->path()));
    {
        const auto window = newWindow(SampleServerFixture::shared().port());
        EXPECT_TRUE(waitFor([&] { return DesktopTesting::currentQuery(*window)->text() == unsavedText(); }));
        EXPECT_EQ(window->documents().size(), 1);
        EXPECT_TRUE(window->currentDocument()->isModified());
    }
    EXPECT_TRUE(WindowTesting::settle());
    qputenv("XDG_STATE_HOME", before);
}

INSTANTIATE_TEST_SUITE_P(Signals, CrashOfTheProgram, testing::Values(SIGSEGV, SIGKILL));
