#include "Import/KNImportPlan.h"

#include <algorithm>

KNImportMapping::Sources KNImportMapping::byName(const QStringList &fileColumns,
                                                 const QList<KNImportTableColumnModel> &columns)
{
    Sources sources;
    for (const KNImportTableColumnModel &column : columns) {
        sources.append(fileColumns.indexOf(column.name));
        for (qsizetype i = 0; i < fileColumns.size() && sources.last() < 0; ++i) {
            if (fileColumns[i].compare(column.name, Qt::CaseInsensitive) == 0)
                sources.last() = i;
        }
    }
    return sources;
}

KNImportMapping::Sources KNImportMapping::byPosition(const QStringList &fileColumns,
                                                     const QList<KNImportTableColumnModel> &columns)
{
    Sources sources;
    for (qsizetype i = 0; i < columns.size(); ++i)
        sources.append(i < fileColumns.size() ? i : -1);
    return sources;
}

QStringList KNImportMapping::unusedColumns(const QStringList &fileColumns, const Sources &sources)
{
    QStringList unused;
    for (qsizetype i = 0; i < fileColumns.size(); ++i) {
        if (!sources.contains(i))
            unused.append(fileColumns[i]);
    }
    return unused;
}

QStringList KNImportMapping::unfilledColumns(const QList<KNImportTableColumnModel> &columns,
                                             const QList<KNImportColumnPlan> &plans)
{
    QStringList unfilled;
    for (const KNImportTableColumnModel &column : columns) {
        const bool isFilled = std::any_of(plans.begin(), plans.end(), [&](const KNImportColumnPlan &plan) {
            return plan.column.name == column.name;
        });
        if (!isFilled && !column.allowsNulls && !column.hasDefault)
            unfilled.append(column.name);
    }
    return unfilled;
}

QStringList KNImportMapping::uncheckedColumns(const QList<KNImportColumnPlan> &plans,
                                              const KNDatabaseImportHelper &helper)
{
    QStringList unchecked;
    for (const KNImportColumnPlan &plan : plans) {
        const bool isUnicode = helper.columnType(plan.column.storedType()).isUnicode;
        if (!isUnicode && !KNCodePage(plan.column.codePage).isKnown())
            unchecked.append(plan.column.name);
    }
    return unchecked;
}

QList<KNImportTableColumnModel> KNImportMapping::newColumns(const QList<KNImportColumnAnalysis> &analyses,
                                                            const KNDatabaseImportHelper &helper,
                                                            bool usesHints)
{
    const QStringList types = helper.mapDataTypes(analyses);
    QList<KNImportTableColumnModel> columns;
    for (qsizetype i = 0; i < analyses.size(); ++i) {
        const KNImportTypeHint hint =
            usesHints ? helper.hintForType(types[i], analyses[i]) : KNImportTypeHint();
        columns.append({analyses[i].name, hint.text.isNull() ? types[i] : hint.type, true});
    }
    return columns;
}
