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

/// The desktop program: which windows there are, and how one leads to the other.
class Application : public QObject
{
    Q_OBJECT

public:
    explicit Application(const Options &options, QObject *parent = nullptr);

    /// Loads the connector and opens the first window; false when there is no connector, which is told then.
    bool start();

    /// A window on a server, in front. The files of the command line are opened in the first one.
    MainWindow *openConnection(const VantorDBC &details);

public Q_SLOTS:
    void openSampleServer();
    void startProtocolTrace() const;
    void showConnections();

private:
    /// Null for a connector that has none.
    const KNConnectorUserInterface *connectorWindows() const;
    void sampleServerIsReady(const KNError &error);

    Options m_options;
    KNConnectorPlugin *m_connector = nullptr;
    QPointer<StartWindow> m_startWindow;
    std::shared_ptr<SampleServerProcess> m_sampleServer; ///< null while there is none
    bool m_isSampleServerReady = false;
};
