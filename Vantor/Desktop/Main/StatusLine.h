#pragma once

#include "UI/Workspace/KNDocumentStatus.h"

#include <QStatusBar>

class EncryptionMark;
class QLabel;

/// The status bar of the window: server and login, and the current document's text, selection, database,
/// transaction, cursor, file, rows and time. An open transaction colours it.
class StatusLine : public QStatusBar
{
    Q_OBJECT

public:
    explicit StatusLine(QWidget *parent = nullptr);

    void setServer(const QString &server, const QString &version);
    void setLogin(const QString &login);
    /// The mark that shows how the connection is protected.
    EncryptionMark *encryption() const { return m_encryption; }
    void showStatus(const KNDocumentStatus &status);
    /// Clears the parts of a document when none is current.
    void clearStatus();

    /// "1,234 rows"
    static QString rowsText(qint64 count);
    /// "0:01.234", with hours in front if there are any.
    static QString durationText(qint64 milliseconds);

protected:
    void changeEvent(QEvent *event) override;

private:
    void setHasTransaction(bool hasTransaction);
    QLabel *addLabel(const QString &accessibleName, int fewestCharacters = 0);
    QLabel *newLabel(const QString &accessibleName, int fewestCharacters = 0);

    QLabel *const m_selection;
    QLabel *const m_text;
    QLabel *const m_server;
    EncryptionMark *const m_encryption;
    QLabel *const m_login;
    QLabel *const m_database;
    QLabel *const m_transaction;
    QLabel *const m_position;
    QLabel *const m_encoding;
    QLabel *const m_lineEnds;
    QLabel *const m_rows;
    QLabel *const m_time;
    bool m_hasTransaction = false;
};
