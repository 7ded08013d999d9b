#include "Desktop/Application.h"

#include "Common/ConnectorFolder.h"
#include "Connector/KNConnectorPlugin.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Start/StartWindow.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/KNConnectorUserInterface.h"
#include "UI/KNPreferences.h"
#include "UI/Workspace/KNDocumentTab.h"

namespace {

/// The connection id under which data of the sample server is stored.
const QString SampleConnectionId = QStringLiteral("sample-server");

} // namespace

Application::Application(const Options &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
{
}

bool Application::start()
{
    QStringList problems;
    m_connector = ConnectorFolder::loadConnector(&problems);
    if (!m_connector) {
        for (const QString &problem : std::as_const(problems))
            std::fprintf(stderr, "%s\n", problem.toLocal8Bit().constData());
        return false;
    }
    if (m_options.writesTrace || KNPreferences::current().tracesProtocol)
        startProtocolTrace();
    if (m_options.useSampleServer)
        openSampleServer();
    else
        showConnections();
    return true;
}

void Application::startProtocolTrace() const
{
    const QString path = m_connector->createConnectionDetails()->startProtocolTrace();
    const QString text = path.isNull() ? tr("The trace of the protocol cannot be written.")
                                       : KNFormat(tr("The trace of the protocol is written to %@"), path);
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

MainWindow *Application::openConnection(const VantorDBC &details)
{
    auto *const window = new MainWindow(details, connectorWindows());
    connect(window, &MainWindow::connectionsRequested, this, &Application::showConnections);
    connect(window, &MainWindow::connectionRequested, this,
            [this](const VantorDBCPtr &requested) { openConnection(*requested); });
    connect(window, &MainWindow::newWindowRequested, this, [this, window](KNDocumentTab *document) {
        MainWindow *const other = openConnection(*window->databaseConnectionDetails());
        other->adoptDocument(document);
        other->activateWindow();
    });
    window->show();
    window->openFiles(m_options.files);
    m_options.files.clear();
    if (m_startWindow)
        m_startWindow->close();
    return window;
}

const KNConnectorUserInterface *Application::connectorWindows() const
{
    // Found by the interface's name, which includes its version: a module may be older than the program.
    return qobject_cast<KNConnectorUserInterface *>(dynamic_cast<QObject *>(m_connector));
}

void Application::openSampleServer()
{
    if (m_sampleServer) {
        // A server that is still starting opens its window when it is ready.
        if (m_isSampleServerReady)
            sampleServerIsReady({});
        return;
    }
    KNError error;
    m_sampleServer = std::make_shared<SampleServerProcess>();
    if (!m_sampleServer->launch(&error)) {
        sampleServerIsReady(error);
        return;
    }
    KNDispatch::globalQueue([self = QPointer(this), server = m_sampleServer] {
        KNError failure;
        server->waitUntilReady(&failure);
        KNDispatch::mainQueue([self, failure] {
            if (self)
                self->sampleServerIsReady(failure);
        });
    });
}

void Application::sampleServerIsReady(const KNError &error)
{
    if (error) {
        m_sampleServer.reset();
        KNAlerts::shared().showError(nullptr, error);
        showConnections();
        return;
    }
    m_isSampleServerReady = true;
    const VantorDBCPtr details = m_connector->createConnectionDetails();
    details->setConnectionId(SampleConnectionId);
    details->setAlias(tr("Sample server"));
    details->setHost(m_sampleServer->host());
    details->setUsername(m_sampleServer->userName());
    details->setPassword(m_sampleServer->password());
    openConnection(*details);
}

void Application::showConnections()
{
    if (!m_startWindow) {
        const KNConnectorUserInterface *const windows = connectorWindows();
        if (!windows)
            return; // a connector for the terminal only
        m_startWindow = new StartWindow(*windows);
        m_startWindow->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_startWindow, &StartWindow::sampleServerRequested, this, &Application::openSampleServer);
        connect(m_startWindow, &StartWindow::connectionRequested, this,
                [this](const VantorDBCPtr &details) { openConnection(*details); });
    }
    m_startWindow->show();
    m_startWindow->raise();
    m_startWindow->activateWindow();
}
