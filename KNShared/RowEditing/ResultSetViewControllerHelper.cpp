#include "RowEditing/ResultSetViewControllerHelper.h"

namespace {

const QChar Ellipsis(0x2026);

/// The first units of a text, with an ellipsis if something is left out; never splits a surrogate pair.
QString truncated(const QString &text)
{
    qsizetype length = ResultSetViewControllerHelper::TruncatedLength;
    if (text.size() <= length)
        return text;
    if (text.at(length - 1).isHighSurrogate())
        --length;
    return text.left(length) + Ellipsis;
}

} // namespace

ResultSetViewControllerHelper::~ResultSetViewControllerHelper() = default;

int ResultSetViewControllerHelper::dataTypeForTableColumnIndex(qsizetype, const KNValue &) const
{
    return Other;
}

int ResultSetViewControllerHelper::dataTypeForTableColumn(const QVariant &identifier,
                                                          const KNValue &object) const
{
    return dataTypeForTableColumnIndex(identifier.toLongLong(), object);
}

QString ResultSetViewControllerHelper::typeNameForColumn(qsizetype) const
{
    return {};
}

QString ResultSetViewControllerHelper::remarkForColumn(qsizetype) const
{
    return {};
}

QString ResultSetViewControllerHelper::stringForValue(const KNValue &value, qsizetype,
                                                      bool allowTruncate) const
{
    const QString text = value.displayText();
    return allowTruncate ? truncated(text) : text;
}

QString ResultSetViewControllerHelper::stringValueForRowArray(const KNRow &row, qsizetype column,
                                                              bool allowTruncate) const
{
    return stringForValue(row.value(column), column, allowTruncate);
}
