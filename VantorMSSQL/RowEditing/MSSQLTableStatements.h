#pragma once

#include "RowEditing/KNTableStatements.h"
#include "RowEditing/MSSQLResultSetViewControllerHelper.h"

class MSSQLStatementCaution;

/// The statements of a result grid. Exact ones are those of the helper; the corrected ones name the table
/// with its schema and do not change QUOTED_IDENTIFIER.
class MSSQLTableStatements : public KNTableStatements
{
public:
    using Helper = std::shared_ptr<const MSSQLResultSetViewControllerHelper>;

    /// Names without quotes. `isQualified`: the query names the schema, so the UPDATE does, too; otherwise
    /// both find the table by its name alone, in the same session.
    MSSQLTableStatements(Helper helper, const QString &schema, const QString &table, bool isQualified);

    QString assignment(const KNEditRowColumn &column, const KNValue &value) const override;
    QString condition(const KNEditRowColumn &column, const KNValue &value) const override;
    KNStatementPair update(const QString &setClause, const QString &whereClause) const override;
    KNStatementPair insert(const QList<KNEditRowColumn> &columns) const override;
    KNStatementPair insertAndRead(const QList<KNEditRowColumn> &columns, const QList<KNEditRowColumn> &key,
                                  const QList<KNEditRowColumn> &read) const override;
    KNStatementPair remove(const QList<KNEditRowColumn> &key, const QList<KNValue> &values) const override;
    QString select(const QList<KNEditRowColumn> &columns, const QString &whereClause) const override;
    QString savepoint() const override;
    QString rollbackToSavepoint() const override;
    QString optionsQuery() const override;
    bool prefersCorrected() const override;

private:
    QString conditions(const QList<KNEditRowColumn> &columns, const QList<KNValue> &values) const;
    QString quotedTable() const;

    const Helper m_helper;
    const QString m_schema;
    const QString m_table;
    const bool m_isQualified;
};
