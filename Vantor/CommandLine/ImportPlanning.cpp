#include "CommandLine/ImportPlanning.h"

#include "Foundation/KNFormat.h"

#include <algorithm>

namespace {

using Columns = QList<KNImportTableColumnModel>;

bool complain(KNError *error, const QString &text)
{
    *error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0, text);
    return false;
}

qsizetype positionOf(const QString &name, const Columns &columns)
{
    const auto found =
        std::find_if(columns.begin(), columns.end(), [&](const KNImportTableColumnModel &column) {
            return column.name.compare(name, Qt::CaseInsensitive) == 0;
        });
    return found == columns.end() ? -1 : found - columns.begin();
}

qsizetype positionOf(const QString &name, const QStringList &fileColumns)
{
    if (const qsizetype exact = fileColumns.indexOf(name); exact >= 0)
        return exact;
    for (qsizetype i = 0; i < fileColumns.size(); ++i) {
        if (fileColumns[i].compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

/// The options' assignments, checked one after the other.
class Assigner
{
public:
    Assigner(const ImportOptions &options, const QStringList &fileColumns, const Columns &columns)
        : m_options(options)
        , m_fileColumns(fileColumns)
        , m_columns(columns)
        , m_sources(options.mapsByPosition ? KNImportMapping::byPosition(fileColumns, columns)
                                           : KNImportMapping::byName(fileColumns, columns))
        , m_constants(columns.size())
    {
    }

    bool assign(KNError *error)
    {
        return skip(error) && map(error) && setConstants(error) && checkUnused(error);
    }

    QList<KNImportColumnPlan> plans() const
    {
        QList<KNImportColumnPlan> plans;
        for (qsizetype i = 0; i < m_columns.size(); ++i) {
            if (m_sources[i] >= 0 || !m_constants[i].isNull())
                plans.append({m_columns[i], m_sources[i],
                              m_constants[i].isNull() ? std::nullopt : std::optional(m_constants[i])});
        }
        return plans;
    }

private:
    bool skip(KNError *error)
    {
        for (const QString &name : m_options.skipped) {
            const qsizetype position = positionOf(name, m_fileColumns);
            if (position < 0)
                return complain(error, KNFormat("The file has no column \"%@\".", name));
            m_skipped.append(position);
            std::replace(m_sources.begin(), m_sources.end(), position, qsizetype(-1));
        }
        return true;
    }

    bool map(KNError *error)
    {
        for (const auto &[column, field] : m_options.mapped) {
            const qsizetype target = positionOf(column, m_columns);
            const qsizetype source = positionOf(field, m_fileColumns);
            if (target < 0)
                return complain(error, KNFormat("The table has no column \"%@\" that takes values.", column));
            if (source < 0)
                return complain(error, KNFormat("The file has no column \"%@\".", field));
            m_sources[target] = source;
        }
        return true;
    }

    bool setConstants(KNError *error)
    {
        for (const auto &[column, value] : m_options.constants) {
            const qsizetype target = positionOf(column, m_columns);
            if (target < 0)
                return complain(error, KNFormat("The table has no column \"%@\" that takes values.", column));
            m_sources[target] = -1;
            m_constants[target] = value;
        }
        return true;
    }

    bool checkUnused(KNError *error) const
    {
        QStringList unused;
        for (qsizetype i = 0; i < m_fileColumns.size(); ++i) {
            if (!m_sources.contains(i) && !m_skipped.contains(i))
                unused.append(m_fileColumns[i]);
        }
        return unused.isEmpty() ||
               complain(
                   error,
                   KNFormat("No column of the table gets \"%@\". Use --map COLUMN=FIELD or --skip FIELD.",
                            unused.join(QStringLiteral("\", \""))));
    }

    const ImportOptions &m_options;
    const QStringList &m_fileColumns;
    const Columns &m_columns;
    KNImportMapping::Sources m_sources;
    QStringList m_constants; ///< by column of the table; null without one
    QList<qsizetype> m_skipped;
};

} // namespace

std::optional<KNImportPlan> ImportPlanning::plan(const ImportOptions &options, const QStringList &fileColumns,
                                                 const QStringList &tablePath, const Columns &tableColumns,
                                                 KNError *error)
{
    error->clear();
    Assigner assigner(options, fileColumns, tableColumns);
    if (!assigner.assign(error))
        return std::nullopt;
    KNImportPlan plan;
    plan.file = options.file;
    plan.fileColumns = fileColumns;
    plan.tablePath = tablePath;
    plan.columns = assigner.plans();
    plan.values = options.values;
    plan.writesIdentity = options.writesIdentity;
    plan.truncatesFirst = options.truncatesFirst;
    plan.batchRows = options.batchRows;
    plan.faultFile = options.faultFile;
    return plan;
}
