#pragma once

#include "Database/KNStatementRun.h"
#include "QueryLoader/KNStatementPair.h"
#include "TableDesign/MSSQLDesignedTable.h"
#include "UI/Workspace/KNQueryPreview.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

class QWidget;

/// The state shared by the tabs of one table designer: the table, the settings of its connection, at most one
/// running change, and the scripts of all changes made. On the UI thread.
class MSSQLTableDesignSession : public QObject
{
    Q_OBJECT

public:
    using Settings = std::shared_ptr<const VantorDBC>;
    /// Makes the statement of a change on a background thread, where it may read the catalog. Without an
    /// exact statement nothing is run.
    using Statement = std::function<KNStatementPair(const MSSQLDesignedTable &table)>;
    using Finished = std::function<void(bool succeeded)>;

    struct Change
    {
        Statement statement;
        QString status;           ///< shown while it runs
        QString errorDomain;      ///< of the logged error
        QVariantMap details = {}; ///< logged with an error
        bool usesTransaction = false;
        /// The message after an error; filled with its description, and with the script if it has a
        /// second place.
        QString errorText = QStringLiteral("Error: %@.\r\nQuery was: %@");
        bool removes = false; ///< an object, so the Return key cancels the question about its statement
    };

    /// `window` is the parent of questions and alerts, and outlives the session.
    MSSQLTableDesignSession(const MSSQLDesignedTable &table, Settings settings, QWidget *window);
    ~MSSQLTableDesignSession() override;

    const MSSQLDesignedTable &table() const { return m_table; }
    void setTableName(const QString &name);
    const Settings &settings() const { return m_settings; }
    QWidget *window() const { return m_window; }

    bool isBusy() const { return m_isBusy; }
    /// The description of the running change; null for none.
    QString status() const { return m_status; }
    /// The scripts that succeeded, in their order.
    const QStringList &executedScripts() const { return m_executed; }

    /// Makes and runs a change, unless another one runs. Asks the user first if the statement does not do
    /// what was meant. `finished` is not called if the user declines.
    void run(const Change &change, Finished finished = {});
    /// Stops the running change; what it has changed is rolled back if it runs in a transaction.
    void cancel();
    /// Shows statements, which run in a transaction if the user accepts them. `parent` shows the sheet.
    /// `applied` is called after success.
    void preview(QWidget *parent, const KNQueryPreview::Titles &titles, const KNQueryLoaderPtr &statements,
                 const QString &errorDomain, std::function<void()> applied = {});

Q_SIGNALS:
    void busyChanged();
    /// The table's name has changed.
    void renamed();
    /// A change succeeded or failed: the server's state may be another one.
    void tableChanged();

private:
    void setBusy(bool isBusy, const QString &status = {});
    void choose(const KNStatementPair &pair, const Change &change, const Finished &finished);
    void execute(const QString &script, const Change &change, const Finished &finished);
    void finish(const KNStatementOutcome &outcome, const QString &script, const Change &change,
                const Finished &finished);

    MSSQLDesignedTable m_table;
    const Settings m_settings;
    QWidget *const m_window;
    KNStatementRun::Ptr m_run; ///< null while nothing runs
    QString m_status;
    bool m_isBusy = false;
    QStringList m_executed;
};
