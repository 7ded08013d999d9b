#pragma once

#include "Common/SampleServerProcess.h"
#include "Database/VantorDBC.h"
#include "Desktop/Options.h"

#include <QObject>
#include <QPointer>

#include <memory>

class KNConnectorPlugin;
class KNConnectorUserInterface;
class MainWindow;
class StartWindow;

/// The desktop program: creates its windows and connects them.
class Application : public QObject
{
    Q_OBJECT

public:
    explicit Application(const Options &options, QObject *parent = nullptr);

    /// Loads the connector and opens the first window; false, after an error message, if there is no
    /// connector.
    bool start();

    /// Opens a window for a connection in the foreground. The first one opens the files of the command line.
    MainWindow *openConnection(const VantorDBC &details);

public Q_SLOTS:
    void openSampleServer();
    void startProtocolTrace() const;
    void showConnections();

private:
    /// Null for a connector without a user interface.
    const KNConnectorUserInterface *connectorWindows() const;
    void sampleServerIsReady(const KNError &error);

    Options m_options;
    KNConnectorPlugin *m_connector = nullptr;
    QPointer<StartWindow> m_startWindow;
    std::shared_ptr<SampleServerProcess> m_sampleServer; ///< null if there is none
    bool m_isSampleServerReady = false;
};
