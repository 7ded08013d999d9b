#include "Export/DatabaseExporter.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Database/KNRowReader.h"
#include "Export/KNTargetFile.h"
#include "Export/MSSQL2MySQLExporter.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuoting.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"

#include <QStringEncoder>
#include <QTemporaryFile>

namespace {

constexpr qsizetype RowsPerStatement = 500;

KNError exporterError(const QString &text)
{
    return KNError(QStringLiteral("com.quorvex.vantor.export"), 0, text);
}

/// The rows of a table as statements, which wait in a temporary file: the text before them counts them.
class BufferedInserts
{
public:
    BufferedInserts(const QString &table, bool hasIdentity)
        : m_table(table)
        , m_hasIdentity(hasIdentity)
    {
    }

    KNError read(const VantorDBC &details, const KNRowStream::IsCancelled &isCancelled)
    {
        bool isStored = m_rows.open();
        KNRowStream::Reader reader;
        reader.columns = [&](const QStringList &names) {
            QStringList escaped;
            for (const QString &name : names)
                escaped.append(MSSQLQuoting::quotedName(name));
            m_columnCount = names.size();
            m_inserts =
                std::make_unique<MSSQL2MySQLExporter>(m_table, escaped, m_hasIdentity, RowsPerStatement);
        };
        reader.rows = [&](const KNRowStore &rows, qsizetype first, qsizetype end) {
            KNRowReader cells(rows);
            for (qsizetype row = first; row < end && isStored; ++row) {
                cells.seek(row);
                isStored = DatabaseExporter::appendToFile(m_rows, m_inserts->add(nextRow(cells)));
            }
        };
        reader.isCancelled = [&] { return !isStored || isCancelled(); };
        KNError error = KNRowStream::read(details, KNFormat("SELECT * FROM %@", m_table), reader);
        if (!isStored || !m_rows.flush())
            error = exporterError(
                KNFormat(DatabaseExporter::tr("The rows could not be written to a temporary file. %@"),
                         m_rows.errorString()));
        return error;
    }

    /// False if the device or the temporary file failed.
    bool writeTo(QIODevice &device)
    {
        if (!m_inserts)
            return true;
        return DatabaseExporter::appendToFile(device, m_inserts->head()) && copyTo(device) &&
               DatabaseExporter::appendToFile(device, m_inserts->tail());
    }

private:
    KNRow nextRow(KNRowReader &cells) const
    {
        KNRow row;
        row.reserve(m_columnCount);
        for (qsizetype column = 0; column < m_columnCount; ++column)
            row.append(cells.next().storedValue());
        return row;
    }
    bool copyTo(QIODevice &device)
    {
        constexpr qint64 PieceSize = 1024 * 1024;
        if (!m_rows.seek(0))
            return false;
        for (QByteArray piece = m_rows.read(PieceSize); !piece.isEmpty(); piece = m_rows.read(PieceSize)) {
            if (device.write(piece) != piece.size())
                return false;
        }
        return m_rows.atEnd() && m_rows.error() == QFileDevice::NoError;
    }

    const QString m_table;
    const bool m_hasIdentity;
    QTemporaryFile m_rows;
    qsizetype m_columnCount = 0;
    std::unique_ptr<MSSQL2MySQLExporter> m_inserts; ///< null before the columns are known
};

} // namespace

DatabaseExporter::DatabaseExporter(const QString &targetPath, const VantorDBC &databaseConnectionDetails,
                                   Form form)
    : m_targetPath(targetPath)
    , m_details(databaseConnectionDetails.copy())
    , m_form(form)
{
}

bool DatabaseExporter::appendToFile(QIODevice &file, const QString &toAppend,
                                    QStringConverter::Encoding encoding)
{
    QStringEncoder encoder(encoding);
    const QByteArray bytes = encoder(toAppend);
    return file.write(bytes) == bytes.size();
}

void DatabaseExporter::exportWithProgressBlock(const Progress &progress, const Finished &finished)
{
    const KNError error = run(progress);
    if (finished)
        finished(m_isCancelled() ? KNError() : error);
}

KNError DatabaseExporter::run(const Progress &progress)
{
    if (KNError error = listTables(); error || m_isCancelled())
        return error;
    KNLogHelper::sharedInstance()->logMessage(QStringLiteral("Finished initial block"));
    if (m_form == Form::Exact) {
        if (KNError error = loadCreationQueries(); error || m_isCancelled())
            return error;
    }
    KNTargetFile target(m_targetPath);
    KNError error;
    if (!target.open(&error))
        return error;
    error = write(target.device(), progress);
    if (!error && !m_isCancelled())
        target.commit(&error);
    return error;
}

KNError DatabaseExporter::listTables()
{
    const QString list = MSSQLCatalogReader::tableList(
        *m_details,
        QStringLiteral(
            "SELECT SCHEMA_NAME(schema_id) + '.' + name, SCHEMA_NAME(schema_id), name AS SchemaTable FROM "
            "sys.tables ORDER BY SCHEMA_NAME(schema_id) asc, name ASC"));
    if (const auto *details = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(m_details.get()))
        m_defaultSchema = MSSQLDefaultSchemaHelper::sharedInstance()->schemaForDBC(*details);
    return KNRowStream::eachRow(
        *m_details, list,
        [this](const KNRow &row) {
            m_tables.append({row.value(1).text(), row.value(2).text()});
        },
        m_isCancelled);
}

KNError DatabaseExporter::loadCreationQueries()
{
    for (Table &table : m_tables) {
        if (m_isCancelled())
            return {};
        KNQueryReport report;
        table.creationQuery = MSSQLScriptCreateTableQueryLoader::creationQueryForTable(
            table.name, table.schema, *m_details, &report);
        if (report.failure)
            return report.failure;
    }
    return {};
}

KNError DatabaseExporter::write(QIODevice &device, const Progress &progress)
{
    for (const Table &table : std::as_const(m_tables)) {
        if (!table.creationQuery.isNull() &&
            !appendToFile(device, table.creationQuery + QLatin1String("\r\n\r\n")))
            return fileError(device);
    }
    for (qsizetype i = 0; i < m_tables.size() && !m_isCancelled(); ++i) {
        if (progress)
            progress(KNFormat(tr("Generating inserts for %@. Please wait."), m_tables[i].name),
                     static_cast<double>(i) / static_cast<double>(m_tables.size()));
        if (const KNError error = writeTable(m_tables[i], device))
            return error;
    }
    return {};
}

KNError DatabaseExporter::fileError(const QIODevice &device) const
{
    return exporterError(
        KNFormat(tr("The file %@ could not be written. %@"), m_targetPath, device.errorString()));
}

KNError DatabaseExporter::writeTable(const Table &table, QIODevice &device) const
{
    if (m_form == Form::Exact)
        return writeInserts(table, device);
    KNQueryReport report;
    MSSQLScriptTableAsMySQLQueryLoader::writeCreationQueryForTable(
        table.name, table.schema, true, true, true, *m_details, device, &report, {m_isCancelled});
    if (!report.failure && !appendToFile(device, QStringLiteral("\r\n\r\n")))
        return fileError(device);
    return report.failure;
}

KNError DatabaseExporter::writeInserts(const Table &table, QIODevice &device) const
{
    const bool hasIdentity = table.creationQuery.contains(QLatin1String("IDENTITY"), Qt::CaseInsensitive);
    BufferedInserts inserts(nameInStatements(table), hasIdentity);
    const KNError error = inserts.read(*m_details, m_isCancelled);
    if (error || m_isCancelled() || inserts.writeTo(device))
        return error;
    return fileError(device);
}

/// The bare name where a server reads it as this table, otherwise the name with its schema.
QString DatabaseExporter::nameInStatements(const Table &table) const
{
    const QString bare = MSSQLQuoting::escapeTableNameIfRequired(table.name);
    const bool isFound = !m_defaultSchema.isEmpty() && table.schema == m_defaultSchema;
    return isFound && MSSQLObjectPath::reads(bare, {table.name})
               ? bare
               : MSSQLObjectPath::quoted({table.schema, table.name});
}
