#include "Import/KNImportRowConverter.h"

KNImportRowConverter::KNImportRowConverter(const KNImportPlan &plan, const KNDatabaseImportHelper &helper)
    : m_fileColumns(plan.fileColumns)
{
    for (const KNImportColumnPlan &each : plan.columns) {
        KNImportColumnType type = helper.columnType(each.column.storedType());
        type.codePage = KNCodePage(each.column.codePage);
        Column column{{type, each.column.allowsNulls, plan.values}, each.source, KNValue()};
        QString reason;
        if (each.source < 0) {
            const auto constant = column.converter.convert(each.constant.value_or(QString()), &reason);
            if (!constant && !m_error)
                m_error = KNError(
                    QStringLiteral("com.quorvex.vantor.import"), 0,
                    tr("The value for column \"%1\" cannot be used. %2").arg(each.column.name, reason));
            column.constant = constant.value_or(KNValue());
        }
        m_columns.push_back(std::move(column));
        m_names.append(each.column.name);
        m_types.append(type.literalType);
    }
    if (plan.columns.isEmpty())
        m_error = KNError(QStringLiteral("com.quorvex.vantor.import"), 0, tr("No column gets a value."));
}

bool KNImportRowConverter::convert(const KNImportRow &row, QList<KNValue> *values, KNImportFault *fault) const
{
    *fault = {row.line, {}, {}, row.problem};
    if (row.problem.isNull() && row.values.size() > m_fileColumns.size())
        fault->reason = tr("The row has values that the analysis of the file did not find.");
    if (!fault->reason.isNull())
        return false;
    values->clear();
    values->reserve(static_cast<qsizetype>(m_columns.size()));
    for (const Column &column : m_columns) {
        if (column.source < 0) {
            values->append(column.constant);
            continue;
        }
        const QString text = row.values.value(column.source);
        auto value = column.converter.convert(text, &fault->reason);
        if (!value) {
            fault->column = m_fileColumns.value(column.source);
            fault->value = text;
            return false;
        }
        values->append(std::move(*value));
    }
    return true;
}
