#include "TableDesign/MSSQLTableDesign.h"

#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "TableDesign/MSSQLColumnScript.h"
#include "TableDesign/MSSQLMisfitCount.h"
#include "TableDesign/MSSQLTypeChange.h"

#include <algorithm>
#include <optional>

namespace {

MSSQLColumnEdit::Cell cellOf(KNColumnEdit::Property property)
{
    switch (property) {
    case KNColumnEdit::Property::Primary:
        return MSSQLColumnEdit::Primary;
    case KNColumnEdit::Property::Name:
        return MSSQLColumnEdit::Field;
    case KNColumnEdit::Property::Type:
        return MSSQLColumnEdit::Type;
    case KNColumnEdit::Property::Default:
        return MSSQLColumnEdit::Default;
    case KNColumnEdit::Property::Nullable:
        return MSSQLColumnEdit::Nullable;
    default:
        return MSSQLColumnEdit::AutoIncrement;
    }
}

qsizetype positionOf(const QList<MSSQLColumnRecord> &columns, const QString &name)
{
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const MSSQLColumnRecord &column) {
        return column.columnName == name;
    });
    return found == columns.end() ? -1 : found - columns.begin();
}

MSSQLColumnRecord newColumn(const QString &name)
{
    MSSQLColumnRecord column;
    column.columnName = name;
    column.typeName = QStringLiteral("int");
    return column;
}

} // namespace

/// Collects the steps of one edit; keeps the columns as they are after each of them.
class MSSQLTableDesign::Steps
{
public:
    Steps(MSSQLDesignedTable table, std::shared_ptr<const VantorDBC> settings, bool prefersCorrected)
        : m_table(std::move(table))
        , m_settings(std::move(settings))
        , m_prefersCorrected(prefersCorrected || MSSQLCorrectedStatements::areUsed())
    {
    }

    QList<KNDesignStep> make(const KNColumnEdit &edit, QList<MSSQLColumnRecord> columns)
    {
        m_columns = std::move(columns);
        const qsizetype position = positionOf(m_columns, edit.column);
        if (edit.kind == KNColumnEdit::Kind::Add)
            add(edit, position);
        else if (position < 0)
            refuse(KNFormat(tr("Table %@ has no column '%@'."), path(), edit.column));
        else if (edit.kind == KNColumnEdit::Kind::Drop)
            drop(edit.column);
        else
            change(edit, position, m_columns[position]);
        return m_error ? QList<KNDesignStep>() : m_steps;
    }

    /// Why there are no steps: a refusal or an error of the server.
    const KNError &error() const { return m_error; }

private:
    QString path() const { return MSSQLObjectPath::readable({m_table.schema, m_table.name}); }
    void refuse(const QString &reason) { m_error = refused(reason); }

    void add(const KNColumnEdit &edit, qsizetype position)
    {
        if (position >= 0)
            return refuse(KNFormat(tr("Table %@ already has a column '%@'."), path(), edit.column));
        append(MSSQLColumnScript(m_table).addColumn(edit.column));
        m_columns.append(newColumn(edit.column));
        change(edit, m_columns.size() - 1, {});
    }

    void drop(const QString &name)
    {
        const KNStatementPair pair = MSSQLColumnScript(m_table).dropColumn(name, m_columns);
        if (pair.exact.isNull())
            return refuse(tr("The last column cannot be removed from a table. Please remove the table "
                             "instead."));
        append(pair);
    }

    /// `stored` is the column as the server has it; nothing for one that is not there yet.
    void change(const KNColumnEdit &edit, qsizetype position, const std::optional<MSSQLColumnRecord> &stored)
    {
        for (const auto &[property, value] : edit.values) {
            const MSSQLColumnEdit step(m_columns[position], cellOf(property), value);
            if (const QString reason = step.refusal(); !reason.isNull())
                return refuse(reason);
            const KNStatementPair pair = step.script(m_table, m_columns, *m_settings, &m_error);
            if (m_error)
                return;
            if (pair.exact.isNull())
                continue;
            append(pair);
            if (m_error)
                return;
            if (stored && property == KNColumnEdit::Property::Type)
                m_steps.last().loss = lossOf(*stored, value.toString());
            m_columns[position] = step.after();
        }
    }

    void append(const KNStatementPair &pair)
    {
        KNDesignStep step{pair.preferred(m_prefersCorrected), {}, {}};
        if (step.script.isNull())
            return refuse(noStatement() + QLatin1Char(' ') + pair.difference);
        if (!m_prefersCorrected && (pair.corrected.isNull() || pair.differs()))
            step.caution = pair.difference;
        m_steps.append(step);
    }

    QString lossOf(const MSSQLColumnRecord &stored, const QString &type) const
    {
        if (!MSSQLTypeChange::mayLoseValues(stored.displayType(), type))
            return {};
        const std::optional<qint64> rows = MSSQLMisfitCount::count(
            m_settings, MSSQLTypeChange::countQuery(m_table, stored.columnName, stored.displayType(), type));
        if (rows == 0)
            return {};
        return KNFormat(tr("Change of the type of '%@' from %@ to %@: %@"), stored.columnName,
                        stored.displayType(), type, MSSQLMisfitCount::sentence(rows));
    }

    const MSSQLDesignedTable m_table;
    const std::shared_ptr<const VantorDBC> m_settings;
    const bool m_prefersCorrected;
    QList<MSSQLColumnRecord> m_columns;
    QList<KNDesignStep> m_steps;
    KNError m_error;
};

std::unique_ptr<MSSQLTableDesign> MSSQLTableDesign::create(const QString &path, const VantorDBC &settings,
                                                           KNError *error)
{
    const std::optional<QStringList> parts = MSSQLObjectPath::entered(path);
    if (!parts || parts->size() > 2) {
        *error = refused(KNFormat(tr("\"%@\" is no path of a table. Write SCHEMA.TABLE or TABLE; names with "
                                     "a dot need brackets."),
                                  path));
        return nullptr;
    }
    return std::make_unique<MSSQLTableDesign>(
        MSSQLDesignedTable{parts->size() > 1 ? parts->first() : QString(), parts->last()}, settings.copy());
}

MSSQLDesignedTable MSSQLTableDesign::withDefaultSchema(MSSQLDesignedTable table, const VantorDBC &settings)
{
    if (const auto *details = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(&settings))
        table.defaultSchema = MSSQLDefaultSchemaHelper::sharedInstance()->schemaForDBC(*details);
    return table;
}

MSSQLTableDesign::MSSQLTableDesign(MSSQLDesignedTable table, std::shared_ptr<const VantorDBC> settings)
    : m_table(std::move(table))
    , m_settings(std::move(settings))
{
}

MSSQLDesignedTable MSSQLTableDesign::tableInSchema() const
{
    MSSQLDesignedTable table = withDefaultSchema(m_table, *m_settings);
    if (table.schema.isNull())
        table.schema = table.defaultSchema;
    return table;
}

QList<KNDesignStep> MSSQLTableDesign::steps(const KNColumnEdit &edit, bool prefersCorrected, KNError *error)
{
    const MSSQLDesignedTable table = tableInSchema();
    const auto columns = MSSQLCatalogReader::records<MSSQLColumnRecord>(
        *m_settings, table.schema, table.name,
        {"mssql.tabledesigner.loadTable", {{QStringLiteral("tableName"), table.name}}}, error);
    if (*error)
        return {};
    if (columns.isEmpty()) {
        *error = refused(KNFormat(tr("Table %@ was not found, or you have no right to see its columns."),
                                  MSSQLObjectPath::readable({table.schema, table.name})));
        return {};
    }
    Steps steps(table, m_settings, prefersCorrected);
    const QList<KNDesignStep> made = steps.make(edit, columns);
    *error = steps.error();
    return made;
}
