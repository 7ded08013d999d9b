#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

#include <QComboBox>

/// A box with the databases of a server; the user chooses one or types its name. The list is loaded in the
/// background when the box is opened for the first time. On the UI thread.
class DatabaseBox : public QComboBox
{
    Q_OBJECT

public:
    explicit DatabaseBox(QWidget *parent = nullptr);

    /// Sets the connection whose databases are listed.
    void setConnectionDetails(const VantorDBC &details) { m_details = details.copy(); }
    /// Shows the session's current database; null if that is not known.
    void showDatabase(const QString &name);
    void showPopup() override;
    bool isLoading() const { return m_isLoading; }

Q_SIGNALS:
    /// The user requested another database.
    void databaseChosen(const QString &name);
    void loadFailed(const KNError &error);
    void loaded();
    /// The user left the box without a choice.
    void left();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool leavesAt(QEvent *event);
    void load();
    void choose();

    VantorDBCPtr m_details;
    QString m_current;
    bool m_isLoading = false;
    bool m_isLoaded = false;
};
