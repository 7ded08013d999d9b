#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNNotificationCenter.h"
#include "Recent/SQLRecentConnection.h"

#include <QWidget>

class KNConnectionStoreLabel;
class KNConnectorUserInterface;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QSortFilterProxyModel;
class RecentConnectionsModel;

/// The first window: lists the remembered connections, logs in to them and offers to create new ones. On the
/// UI thread.
class StartWindow : public QWidget
{
    Q_OBJECT

public:
    explicit StartWindow(const KNConnectorUserInterface &connector, QWidget *parent = nullptr);
    ~StartWindow() override;

public Q_SLOTS:
    void newConnection();
    /// Logs in to the selected connection; asks for its password if that is not known or is wrong.
    void connectToSelected();
    void editSelected();
    void duplicateSelected();
    /// Removes the selected connection after confirmation.
    void removeSelected();

Q_SIGNALS:
    /// The login of a connection that the user has chosen has succeeded.
    void connectionRequested(const VantorDBCPtr &details);
    void sampleServerRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void layOut();
    void makeContextMenu();
    SQLRecentConnectionPtr selected() const;
    void edit(const SQLRecentConnectionPtr &connection);
    void loggedIn(const SQLRecentConnectionPtr &connection, const VantorDBCPtr &details);
    void showList();
    void showState();
    void select(const QString &connectionId);

    const KNConnectorUserInterface &m_connector;
    RecentConnectionsModel *const m_model;
    QSortFilterProxyModel *const m_filtered;
    QLineEdit *const m_filter;
    QListView *const m_view;
    QLabel *const m_hint;
    KNConnectionStoreLabel *const m_state;
    QPushButton *const m_tryAgain;
    QPushButton *const m_connect;
    const KNNotificationCenter::Token m_listChanged;
};
