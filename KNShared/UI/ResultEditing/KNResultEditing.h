#pragma once

#include "RowEditing/KNEditableTable.h"
#include "RowEditing/KNRowEdits.h"
#include "RowEditing/KNTableStatements.h"
#include "UI/KNSharedUIExport.h"
#include "UI/ResultEditing/KNResultEditSession.h"

#include <QModelIndex>
#include <QObject>

class KNResultTableModel;
class ResultSetViewControllerHelper;

/// Edits the rows of one finished result: finds out whether that is possible, keeps the changes that were not
/// applied yet, and makes them visible in the result's model. On the UI thread.
class KNSHAREDUI_EXPORT KNResultEditing : public QObject
{
    Q_OBJECT

public:
    using RowId = KNRowEdits::RowId;

    /// Longest text that is pasted, in cells.
    static constexpr qsizetype MostPastedCells = 100'000;

    /// Begins to read the key of the result's table in the background. The model must outlive this object.
    KNResultEditing(KNResultTableModel &model, const KNResultEditSession &session, QObject *parent = nullptr);
    ~KNResultEditing() override;

    const KNResultEditSession &session() const { return m_session; }
    KNResultTableModel &model() const { return m_model; }
    bool isEditable() const { return m_table && !m_isApplying; }
    /// Why the result cannot be edited, as a text that follows "Read-only: "; empty if it can.
    const QString &readOnlyReason() const { return m_reason; }
    /// Set once the result is editable.
    const std::optional<KNEditableTable> &table() const { return m_table; }
    const std::shared_ptr<const KNTableStatements> &statements() const { return m_statements; }
    const ResultSetViewControllerHelper &helper() const { return *m_helper; }
    const KNRowEdits &edits() const { return m_edits; }

    /// Whether a cell of the model takes a value.
    bool canEdit(const QModelIndex &cell) const;
    KNTypedValue::Input inputOf(int column) const;
    /// The current value of a cell, edited or stored.
    KNValue value(const QModelIndex &cell) const;
    /// Reads a text that the user has typed. False, after rejected(), if it is no value of the column.
    bool setText(const QModelIndex &cell, const QString &text);
    bool setValue(const QModelIndex &cell, const KNValue &value);
    void setNull(const QModelIndexList &cells);
    /// Writes tab-separated text into the cells from this one on, and the rest into new rows: everything or,
    /// after rejected(), nothing.
    void paste(const QModelIndex &first, const QString &text);
    void addRow();
    void removeRows(const QList<int> &rows);
    void undo();
    void discard();

    /// While changes are applied nothing can be edited.
    void setApplying(bool isApplying);
    /// Shows a result in which the changes are applied.
    void finishApplying(const KNDatabaseResultSetPtr &revised);

Q_SIGNALS:
    /// The edits, or whether there can be any, have changed.
    void changed();
    /// The model is about to show another result, in which the changes are applied.
    void replacingResult();
    /// The model shows it.
    void resultReplaced();
    /// The user entered what is no value of the column.
    void rejected(const QString &problem);

private:
    class KeysDelegate;

    void loadColumns(const QString &table, const QString &schema);
    void showTable(const QString &table, const QString &schema, const QList<KNEditRowColumn> &columns);
    void showEdits();
    std::optional<KNValue> read(int column, const QString &text);
    std::optional<KNValue> readPasted(int column, const QString &text);
    bool rejectNull(int column);

    KNResultTableModel &m_model;
    const KNResultEditSession m_session;
    std::shared_ptr<ResultSetViewControllerHelper> m_helper;
    std::shared_ptr<KeysDelegate> m_keys;
    std::shared_ptr<const KNTableStatements> m_statements;
    std::optional<KNEditableTable> m_table;
    KNRowEdits m_edits;
    QString m_reason;
    bool m_isApplying = false;
};
