#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

/// The table of a batch that plainly is SELECT columns FROM one table: no join, subquery in its place, group,
/// set operator, alias or expression among the columns, or second statement. A value type of any thread.
class MSSQLSourceTable
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLSourceTable)

public:
    /// Reads the text with the tokens of T-SQL, so comments and literals do not count.
    static MSSQLSourceTable of(const QString &batch);

    /// Why the batch is no such SELECT, as a text that follows "Read-only: "; null if it is.
    const QString &problem() const { return m_problem; }
    /// The table's path without quotes: its name, or schema and name. Empty with a problem.
    const QStringList &path() const { return m_path; }

private:
    QString m_problem;
    QStringList m_path;
};
