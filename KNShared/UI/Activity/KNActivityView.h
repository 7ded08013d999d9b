#pragma once

#include "Activity/KNServerActivity.h"
#include "UI/KNSharedUIExport.h"

#include <QTreeWidget>

#include <optional>

/// Sessions as a tree: each one below the session that it waits for. On the UI thread.
class KNSHAREDUI_EXPORT KNActivityView : public QTreeWidget
{
    Q_OBJECT

public:
    enum Column {
        Session,
        Status,
        Duration,
        Database,
        Login,
        Host,
        Program,
        Transactions,
        Wait,
        ColumnCount
    };

    explicit KNActivityView(QWidget *parent = nullptr);

    /// Shows these sessions; the selected one stays selected, and collapsed ones stay collapsed.
    void setSessions(const QList<KNActivitySession> &sessions);
    std::optional<KNActivitySession> currentSession() const;
    /// "12 sessions, 3 running, 1 blocked".
    QString summary() const;
    /// "1:02:03", "12.3 s", or "45 ms".
    static QString durationText(qint64 milliseconds);

Q_SIGNALS:
    void currentSessionChanged();

private:
    QTreeWidgetItem *itemOf(const KNActivitySession &session) const;
    void showIdle(QTreeWidgetItem *item) const;
    static bool isRunning(const KNActivitySession &session);

    QList<KNActivitySession> m_sessions;
    bool m_wereColumnsFitted = false;
};
