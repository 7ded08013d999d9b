#pragma once

#include "UI/Workspace/KNDocumentStatus.h"

#include <QStatusBar>

class QLabel;

/// The line at the foot of the window: server and login, and of the document in front its text, database,
/// rows, time and transaction.
class StatusLine : public QStatusBar
{
    Q_OBJECT

public:
    explicit StatusLine(QWidget *parent = nullptr);

    void setServer(const QString &server, const QString &version);
    void setLogin(const QString &login);
    void showStatus(const KNDocumentStatus &status);
    /// No document is in front.
    void clearStatus();

    /// "1,234 rows"
    static QString rowsText(qint64 count);
    /// "0:01.234", and hours in front where there are any.
    static QString durationText(qint64 milliseconds);

private:
    QLabel *addLabel(const QString &accessibleName);

    QLabel *const m_text;
    QLabel *const m_server;
    QLabel *const m_login;
    QLabel *const m_database;
    QLabel *const m_transaction;
    QLabel *const m_rows;
    QLabel *const m_time;
};
