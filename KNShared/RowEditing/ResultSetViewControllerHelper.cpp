#include "RowEditing/ResultSetViewControllerHelper.h"

#include "RowEditing/KNEditRowHelper.h"
#include "RowEditing/KNTableStatements.h"

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

ResultSetViewControllerHelperDelegate::~ResultSetViewControllerHelperDelegate() = default;

ResultSetViewControllerHelper::ResultSetViewControllerHelper() = default;
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

QString ResultSetViewControllerHelper::readOnlyReason() const
{
    return QStringLiteral("results of this server cannot be edited");
}

QString ResultSetViewControllerHelper::readOnlyReasonForTable(const QString &, const QString &) const
{
    return readOnlyReason();
}

void ResultSetViewControllerHelper::beginLoadingPrimaryKeys() {}

QStringList ResultSetViewControllerHelper::primaryKeyColumnNames() const
{
    return {};
}

bool ResultSetViewControllerHelper::isWritableColumn(qsizetype) const
{
    return false;
}

QString ResultSetViewControllerHelper::updateQueryForTable(const QString &, const QString &, const QString &,
                                                           const QString &) const
{
    return {};
}

std::shared_ptr<KNQueryLoader> ResultSetViewControllerHelper::createQueryLoaderForDeleteFromTablePath(
    const QStringList &, const QStringList &, const QList<QList<KNValue>> &) const
{
    return nullptr;
}

std::shared_ptr<const KNTableStatements>
ResultSetViewControllerHelper::createTableStatements(const QString &, const QString &) const
{
    return nullptr;
}

std::shared_ptr<KNEditRowHelper>
ResultSetViewControllerHelper::createEditRowHelper(const QString &, const QString &,
                                                   const std::optional<QMap<QString, KNValue>> &) const
{
    return nullptr;
}
