#pragma once

#include "Database/KNStatementRun.h"
#include "QueryLoader/KNQueryLoader.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

#include <functional>

class QWidget;

/// Shows the statements of a change and runs them if the user accepts. This class loads and runs; how that is
/// shown is up to a derived class. On the UI thread.
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
    };

    /// A new preview that runs statements with a copy of these settings. It belongs to the parent, whose
    /// window gets the sheet, and deletes itself when the sheet has ended.
    static KNQueryPreview *createQueryPreviewViewContoller(QWidget *parent, const VantorDBC &details);
    /// Replaces what createQueryPreviewViewContoller() returns; empty restores the real preview.
    static void setFactory(Factory factory);

    ~KNQueryPreview() override;

    void setTitle(const QString &title, const QString &information, const QString &acceptTitle,
                  const QString &progressTitle);
    /// The source of the statements. Notices and a pair of its report become a caution; a text that is
    /// incomplete is shown but cannot be accepted.
    void setQueryLoader(const KNQueryLoaderPtr &loader) { m_loader = loader; }
    /// Whether the statements run in one transaction; they do not by default.
    void setUseTransaction(bool useTransaction) { m_usesTransaction = useTransaction; }
    /// Whether the user may change the statements; not by default.
    void setEditable(bool editable) { m_isEditable = editable; }
    /// The domain of errors; those of the client by default.
    void setErrorDomain(const QString &domain) { m_errorDomain = domain; }
    /// Called with each error of a run, whose user info holds the failing statement under "Query". The sheet
    /// shows the error in any case and stays open.
    void setReportErrorBlock(std::function<void(const KNError &error)> report);

    /// Shows the sheet and starts loading. `ended` is called once it is closed, with what it has changed on
    /// the server: everything if the statements have run, mostly nothing otherwise. It is not called when the
    /// parent is destroyed before.
    void beginSheet(std::function<void(Changes changes)> ended);

    const Titles &titles() const { return m_titles; }
    bool isEditable() const { return m_isEditable; }
    bool usesTransaction() const { return m_usesTransaction; }
    bool isRunning() const { return m_run != nullptr; }

protected:
    KNQueryPreview(QObject *parent, const VantorDBC &details);

    const VantorDBC &databaseConnectionDetails() const { return *m_details; }

    /// Runs these statements: the user has accepted.
    void accept(const QString &statements);
    /// Stops the statements while they run, or else ends the sheet.
    void cancel();

    virtual void showSheet() = 0;
    virtual void closeSheet() = 0;
    /// The text is there. Null if there is none; the report says why.
    virtual void showStatements(const QString &text, const KNQueryReport &report) = 0;
    /// The statements have begun to run, or ended without success.
    virtual void showRunning(bool isRunning) = 0;
    virtual void showProgress(int done, int total) = 0;
    /// The statements have failed or were cancelled.
    virtual void showOutcome(const KNStatementOutcome &outcome) = 0;

private:
    void finish(const KNStatementOutcome &outcome);
    void end();

    const VantorDBCPtr m_details;
    Titles m_titles;
    KNQueryLoaderPtr m_loader;
    QString m_errorDomain;
    std::function<void(const KNError &error)> m_reportError;
    std::function<void(Changes changes)> m_ended;
    KNStatementRun::Ptr m_run; ///< null while nothing runs
    Changes m_changes = Changes::None;
    bool m_usesTransaction = false;
    bool m_isEditable = false;
};
