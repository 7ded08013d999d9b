#include "TableDesign/MSSQLIndexCreation.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"

#include <algorithm>

namespace {

const QLatin1String separator(", ");

/// " HEAD (a, b)"; empty for an empty list.
QString clause(const char *head, const QStringList &items)
{
    return items.isEmpty() ? QStringLiteral("") : KNFormat(" %s (%@)", head, items.join(separator));
}

} // namespace

MSSQLIndexCreation::MSSQLIndexCreation(MSSQLDesignedTable table, MSSQLIndexEntry index,
                                       MSSQLIndexDefinition old, MSSQLIndexSyntax syntax)
    : m_table(std::move(table))
    , m_index(std::move(index))
    , m_old(std::move(old))
    , m_syntax(syntax)
{
}

QString MSSQLIndexCreation::statements() const
{
    const QString name = MSSQLQuoting::quotedName(m_index.indexName);
    QString text = KNFormat("CREATE %@%@INDEX %@ ON %@ (%@)%@%@%@%@;", m_index.isUnique ? "UNIQUE " : "",
                            m_index.isNonClustered ? "NONCLUSTERED " : "CLUSTERED ", name, m_table.quoted(),
                            keys(), clause("INCLUDE", included()),
                            keepsFilter() ? QLatin1String(" WHERE ") + m_old.filter : QStringLiteral(""),
                            options(), place());
    if (m_old.isDisabled)
        text += KNFormat("\r\nALTER INDEX %@ ON %@ DISABLE;", name, m_table.quoted());
    return text;
}

QString MSSQLIndexCreation::keys() const
{
    QStringList names;
    for (const MSSQLIndexColumnEntry &column : m_index.columns)
        names.append(MSSQLQuoting::quotedName(column.name) +
                     QLatin1String(m_old.descendingKeys.contains(column.name) ? " DESC" : ""));
    return names.isEmpty() ? QStringLiteral("") : names.join(separator);
}

/// Without those that became keys. A clustered index contains every column.
QStringList MSSQLIndexCreation::included() const
{
    QStringList names;
    for (const QString &name : m_old.includedColumns) {
        if (m_index.isNonClustered && !m_index.columns.contains(MSSQLIndexColumnEntry{name}))
            names.append(MSSQLQuoting::quotedName(name));
    }
    return names;
}

QString MSSQLIndexCreation::options() const
{
    const bool isOld = m_syntax == MSSQLIndexSyntax::SQL2000;
    QStringList options;
    const auto add = [&](bool isSet, const char *name, const char *value) {
        if (isSet)
            options.append(isOld ? QString::fromLatin1(name) : KNFormat("%s = %s", name, value));
    };
    if (m_old.fillFactor > 0)
        options.append(KNFormat("FILLFACTOR = %d", m_old.fillFactor));
    add(m_old.isPadded, "PAD_INDEX", "ON");
    add(ignoresDuplicates(), "IGNORE_DUP_KEY", "ON");
    add(m_old.isWithoutRecompute, "STATISTICS_NORECOMPUTE", "ON");
    add(!m_old.allowsRowLocks && keepsLocks(), "ALLOW_ROW_LOCKS", "OFF");
    add(!m_old.allowsPageLocks && keepsLocks(), "ALLOW_PAGE_LOCKS", "OFF");
    add(m_old.isSequential, "OPTIMIZE_FOR_SEQUENTIAL_KEY", "ON");
    if (!m_old.compression.isNull())
        options.append(m_old.compression);
    if (isOld)
        return options.isEmpty() ? QStringLiteral("") : QLatin1String(" WITH ") + options.join(separator);
    return clause("WITH", options);
}

QString MSSQLIndexCreation::place() const
{
    if (m_old.dataSpace.isNull())
        return QStringLiteral("");
    const QString place = QLatin1String(" ON ") + MSSQLQuoting::quotedName(m_old.dataSpace);
    return m_old.partitionColumn.isNull()
               ? place
               : KNFormat("%@(%@)", place, MSSQLQuoting::quotedName(m_old.partitionColumn));
}

QStringList MSSQLIndexCreation::lostWithoutOptions() const
{
    QStringList parts;
    const auto add = [&](bool isLost, const QString &part) {
        if (isLost)
            parts.append(part);
    };
    add(std::any_of(m_index.columns.begin(), m_index.columns.end(),
                    [&](const auto &column) { return m_old.descendingKeys.contains(column.name); }),
        tr("sort order"));
    add(!included().isEmpty(), tr("included columns"));
    add(!m_old.filter.isNull(), tr("filter"));
    add(m_old.fillFactor > 0, tr("fill factor"));
    add(m_old.isPadded, QStringLiteral("PAD_INDEX"));
    add(ignoresDuplicates(), QStringLiteral("IGNORE_DUP_KEY"));
    add(m_old.isWithoutRecompute, QStringLiteral("STATISTICS_NORECOMPUTE"));
    add(!m_old.allowsRowLocks, QStringLiteral("ALLOW_ROW_LOCKS"));
    add(!m_old.allowsPageLocks, QStringLiteral("ALLOW_PAGE_LOCKS"));
    add(m_old.isSequential, QStringLiteral("OPTIMIZE_FOR_SEQUENTIAL_KEY"));
    add(!m_old.compression.isNull(), tr("compression"));
    add(!m_old.dataSpace.isNull(), m_old.partitionColumn.isNull() ? tr("filegroup") : tr("partition scheme"));
    add(m_old.isDisabled, tr("disabled state"));
    return parts;
}

QStringList MSSQLIndexCreation::lost() const
{
    QStringList parts;
    if (!m_old.filter.isNull() && !keepsFilter())
        parts.append(tr("filter"));
    if (!m_old.allowsRowLocks && !keepsLocks())
        parts.append(QStringLiteral("ALLOW_ROW_LOCKS"));
    if (!m_old.allowsPageLocks && !keepsLocks())
        parts.append(QStringLiteral("ALLOW_PAGE_LOCKS"));
    return parts;
}

QString MSSQLIndexCreation::lossSentence(const QStringList &parts)
{
    return parts.isEmpty() ? QString() : KNFormat(tr("The index would lose: %@."), parts.join(separator));
}
