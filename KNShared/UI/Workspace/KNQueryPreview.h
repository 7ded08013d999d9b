#pragma once

#include "Database/KNStatementRun.h"
#include "Database/KNStatementSession.h"
#include "QueryLoader/KNQueryLoader.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

#include <functional>

class QWidget;

/// Shows the statements of a change and runs them if the user accepts. This class loads and runs; derived
/// classes display. On the UI thread.
class KNSHAREDUI_EXPORT KNQueryPreview : public QObject
{
    Q_OBJECT

public:
    using Changes = KNStatementOutcome::Changes;
    using Factory = std::function<KNQueryPreview *(QWidget *parent, const VantorDBC &details)>;
    struct Titles
    {
        QString title;
        QString information;
        QString acceptTitle;
        QString progressTitle; ///< shown while the statements run
        bool removes = false;  ///< the Return key cancels then
    };

    /// Creates a preview that runs statements with a copy of these settings. The parent owns it, and its
    /// window shows the sheet; the preview deletes itself when the sheet ends.
    static KNQueryPreview *createQueryPreviewViewContoller(QWidget *parent, const VantorDBC &details);
    /// Replaces the objects that createQueryPreviewViewContoller() returns; empty restores the real preview.
    static void setFactory(Factory factory);

    ~KNQueryPreview() override;

    void setTitle(const QString &title, const QString &information, const QString &acceptTitle,
                  const QString &progressTitle);
    /// Sets whether the statements remove an object: the Return key cancels then; false by default.
    void setRemoves(bool removes) { m_titles.removes = removes; }
    /// Sets the source of the statements. Notices and the pair of its report become a caution; an incomplete
    /// text is shown but cannot be accepted.
    void setQueryLoader(const KNQueryLoaderPtr &loader) { m_loader = loader; }
    /// Sets whether the statements run in one transaction; false by default.
    void setUseTransaction(bool useTransaction) { m_usesTransaction = useTransaction; }
    /// Sets whether the user may edit the statements; false by default.
    void setEditable(bool editable) { m_isEditable = editable; }
    /// Sets the domain of errors; that of the client by default.
    void setErrorDomain(const QString &domain) { m_errorDomain = domain; }
    /// Runs the statements in this session instead of one of the pool.
    void setSession(const std::shared_ptr<KNStatementSession> &session) { m_session = session; }
    /// Called with each error of a run, whose user info contains the failing statement under "Query". The
    /// sheet shows the error in any case and stays open.
    void setReportErrorBlock(std::function<void(const KNError &error)> report);

    /// Shows the sheet and starts loading. `ended` is called once it is closed, with the changes it made on
    /// the server: All if the statements ran, mostly None otherwise. It is not called if the parent is
    /// destroyed before.
    void beginSheet(std::function<void(Changes changes)> ended);

    const Titles &titles() const { return m_titles; }
    bool isEditable() const { return m_isEditable; }
    bool usesTransaction() const { return m_usesTransaction; }
    bool isRunning() const { return m_run != nullptr; }
    /// The statements that the user accepted last; null if none. Available while `ended` is called.
    const QString &acceptedStatements() const { return m_accepted; }
    /// The outcome of the last run. Available while `ended` is called.
    const KNStatementOutcome &outcome() const { return m_outcome; }

protected:
    KNQueryPreview(QObject *parent, const VantorDBC &details);

    const VantorDBC &databaseConnectionDetails() const { return *m_details; }

    /// Runs the statements that the user accepted.
    void accept(const QString &statements);
    /// Stops the running statements, or ends the sheet if none run.
    void cancel();

    virtual void showSheet() = 0;
    virtual void closeSheet() = 0;
    /// Called when the text is loaded. Null if there is none; the report contains the reason.
    virtual void showStatements(const QString &text, const KNQueryReport &report) = 0;
    /// Called when the statements begin to run or end without success.
    virtual void showRunning(bool isRunning) = 0;
    virtual void showProgress(int done, int total) = 0;
    /// Called when the statements failed or were cancelled.
    virtual void showOutcome(const KNStatementOutcome &outcome) = 0;

private:
    void finish(const KNStatementOutcome &outcome);
    void end();

    const VantorDBCPtr m_details;
    Titles m_titles;
    KNQueryLoaderPtr m_loader;
    QString m_errorDomain;
    std::shared_ptr<KNStatementSession> m_session; ///< null for one of the pool
    QString m_accepted;
    std::function<void(const KNError &error)> m_reportError;
    std::function<void(Changes changes)> m_ended;
    KNStatementRun::Ptr m_run; ///< null while nothing runs
    KNStatementOutcome m_outcome;
    Changes m_changes = Changes::None;
    bool m_usesTransaction = false;
    bool m_isEditable = false;
};
