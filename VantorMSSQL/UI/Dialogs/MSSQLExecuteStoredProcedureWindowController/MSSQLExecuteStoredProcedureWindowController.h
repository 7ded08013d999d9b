#pragma once

#include "Database/VantorDBC.h"
#include "Procedures/MSSQLProcedureBatch.h"
#include "UI/Dialogs/KNWindowController.h"

#include <memory>

class MSSQLStoredProcedureModel;
class QLabel;
class QPushButton;
class QTableView;

/// Lists the parameters of a procedure and lets the user enter their values. Ends with 1 to execute
/// generatedQuery(). On the UI thread.
class MSSQLExecuteStoredProcedureWindowController : public KNWindowController
{
    Q_OBJECT

public:
    using Settings = std::shared_ptr<const VantorDBC>;

    /// Starts to read the parameters. Names without quotes.
    MSSQLExecuteStoredProcedureWindowController(const Settings &databaseConnectionDetails,
                                                const QString &schema, const QString &procedureName,
                                                QWidget *parent);
    ~MSSQLExecuteStoredProcedureWindowController() override;

    KNStatementPair generatedQuery() const;

    MSSQLStoredProcedureModel *model() const { return m_model; }
    QTableView *table() const { return m_table; }
    QString heading() const;
    QString status() const;

public Q_SLOTS:
    /// Ends with 1 and keeps the values for the next execution; stays open while a text is no value.
    void onAccept();
    void onCancel();

private:
    void arrange();
    void loadParameters();
    void showParameters(const QList<MSSQLParameterRecord> &records, const KNError &error);
    void setStatus(const QString &status);

    const Settings m_details;
    const QString m_schema;
    const QString m_procedureName;
    MSSQLStoredProcedureModel *const m_model;
    QTableView *const m_table;
    QLabel *const m_heading;
    QLabel *const m_status;
    QPushButton *m_execute = nullptr;
    bool m_wasRejected = false; ///< a text, by the last onAccept()
};
