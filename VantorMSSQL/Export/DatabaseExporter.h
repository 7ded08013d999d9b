#pragma once

#include "Database/KNRowStream.h"

#include <QCoreApplication>
#include <QList>
#include <QStringConverter>

#include <functional>

class QIODevice;

/// Writes every table of a database into one script file: what creates the tables, then their rows. The file
/// is replaced as a whole or stays as it was. Used once.
class DatabaseExporter
{
    Q_DECLARE_TR_FUNCTIONS(DatabaseExporter)

public:
    enum class Form {
        Exact, ///< CREATE TABLE statements of SQL Server with INSERT statements in MySQL's spelling
        MySQL, ///< statements that MySQL takes
    };
    /// Receives what is being done and the fraction of the tables that are done, from 0 to 1. On the thread
    /// of the export.
    using Progress = std::function<void(const QString &text, double fraction)>;
    /// Receives the error, if any; not set after a cancellation. On the thread of the export.
    using Finished = std::function<void(const KNError &error)>;

    /// Copies the settings, whose database is exported.
    DatabaseExporter(const QString &targetPath, const VantorDBC &databaseConnectionDetails,
                     Form form = Form::Exact);

    /// Blocks on the server: any thread except the UI thread. Both functions may be empty.
    void exportWithProgressBlock(const Progress &progress, const Finished &finished);
    /// Appends a text to an open file; false if the file did not take all of it.
    static bool appendToFile(QIODevice &file, const QString &toAppend,
                             QStringConverter::Encoding encoding = QStringConverter::Utf8);
    /// Asked several times a second whether to stop, which leaves the target as it was.
    void setIsCancelled(const KNRowStream::IsCancelled &isCancelled) { m_isCancelled = isCancelled; }

private:
    struct Table
    {
        QString schema;
        QString name;
        QString creationQuery = {};
    };

    KNError run(const Progress &progress);
    KNError listTables();
    KNError loadCreationQueries();
    KNError write(QIODevice &device, const Progress &progress);
    KNError writeTable(const Table &table, QIODevice &device) const;
    KNError writeInserts(const Table &table, QIODevice &device) const;
    KNError fileError(const QIODevice &device) const;
    QString nameInStatements(const Table &table) const;

    const QString m_targetPath;
    const VantorDBCPtr m_details;
    const Form m_form;
    QString m_defaultSchema; ///< of the login; empty if it is not known
    QList<Table> m_tables;
    KNRowStream::IsCancelled m_isCancelled = [] { return false; };
};
