#pragma once

#include "UI/TableDesigner/MSSQLColumnGridModel.h"
#include "UI/TableDesigner/MSSQLTableDesignSession.h"

#include <QWidget>

class MSSQLColumnFilter;
class QLabel;
class QPushButton;
class QTableView;

/// The columns of a table. Every edit of a cell runs at once as a script of its own, and afterwards the grid
/// shows what the server has. On the UI thread.
class MSSQLTableColumnDesignerViewController : public QWidget
{
    Q_OBJECT

public:
    /// The session outlives this object.
    explicit MSSQLTableColumnDesignerViewController(MSSQLTableDesignSession &session,
                                                    QWidget *parent = nullptr);

    /// Reads the columns of a table. A null name or missing settings are programming errors. Blocks on the
    /// server: any thread except the UI thread.
    static QList<MSSQLColumnRecord> loadTable(const QString &tableName, const QString &inSchema,
                                              const VantorDBC *connectionDetails, KNError *error);

    void reload();
    void addNewColumn();
    void handleDeleteColumn();
    QTableView *grid() const { return m_grid; }
    MSSQLColumnGridModel *model() const { return m_model; }
    bool isLoading() const { return m_isLoading; }

private:
    using Column = MSSQLColumnGridModel::Column;

    void setObjectValue(const QVariant &value, Column column, int row);
    void confirmType(const QString &type, int row);
    void askAboutType(const QString &type, int row, std::optional<qint64> misfits);
    void runEdit(const QVariant &value, Column column, int row);
    MSSQLTableDesignSession::Statement updateStatement(const MSSQLColumnRecord &record, Column column,
                                                       const QVariant &value) const;
    void showColumns(const QList<MSSQLColumnRecord> &columns, const KNError &error);
    void updateControls();
    void editNextCell(int row, Column column);
    void selectColumn(const QString &name, Column column, bool isEdited);

    MSSQLTableDesignSession &m_session;
    MSSQLColumnGridModel *const m_model;
    QTableView *const m_grid;
    MSSQLColumnFilter *m_filter = nullptr;
    QLabel *const m_notice;
    QPushButton *const m_add;
    QPushButton *const m_drop;
    bool m_isLoading = false;
    bool m_isOutdated = false;      ///< the table has changed since the load began
    std::function<void()> m_loaded; ///< called after the next load; empty for nothing
};
