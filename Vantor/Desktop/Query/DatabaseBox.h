#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

#include <QComboBox>

/// The databases of a server, to choose one of or to type its name. The list is read when the box is opened
/// for the first time, in the background. On the UI thread.
class DatabaseBox : public QComboBox
{
    Q_OBJECT

public:
    explicit DatabaseBox(QWidget *parent = nullptr);

    /// Whose databases are offered.
    void setConnectionDetails(const VantorDBC &details) { m_details = details.copy(); }
    /// Shows where the session is; null when that is not known.
    void showDatabase(const QString &name);
    void showPopup() override;
    bool isLoading() const { return m_isLoading; }

Q_SIGNALS:
    /// The user wants to go to another database.
    void databaseChosen(const QString &name);
    void loadFailed(const KNError &error);
    void loaded();

private:
    void load();
    void choose();

    VantorDBCPtr m_details;
    QString m_current;
    bool m_isLoading = false;
    bool m_isLoaded = false;
};
