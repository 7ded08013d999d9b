#include "Implementations/MSSQLDatabaseResultSet.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"

#include <QLocale>

namespace {

const QString SourcePath = QStringLiteral("Implementations/MSSQLDatabaseResultSet");

KNValue numberFromText(const QString &text)
{
    const QString trimmed = text.trimmed();
    const QLocale locale;
    bool isNumber = false;
    if (const qlonglong whole = locale.toLongLong(trimmed, &isNumber); isNumber)
        return KNValue(static_cast<qint64>(whole));
    if (const double number = locale.toDouble(trimmed, &isNumber); isNumber)
        return KNValue(number);
    return KNValue();
}

} // namespace

MSSQLDatabaseResultSet::MSSQLDatabaseResultSet(KNDatabaseResultSetPtr resultSet)
    : m_internalResultSet(std::move(resultSet))
{
}

QStringList MSSQLDatabaseResultSet::columnNames() const
{
    return m_internalResultSet ? m_internalResultSet->columnNames() : QStringList();
}

qsizetype MSSQLDatabaseResultSet::columnCount() const
{
    return columnNames().size();
}

qsizetype MSSQLDatabaseResultSet::rowCount() const
{
    return rows() ? rows()->rowCount() : 0;
}

const KNRowStore *MSSQLDatabaseResultSet::rows() const
{
    return m_internalResultSet ? &m_internalResultSet->rows() : nullptr;
}

bool MSSQLDatabaseResultSet::next()
{
    if (m_currentPosition + 1 >= rowCount())
        return false;
    ++m_currentPosition;
    m_currentRow = rows()->row(m_currentPosition);
    return true;
}

qsizetype MSSQLDatabaseResultSet::indexOfColumn(const QString &name) const
{
    const qsizetype index = columnNames().indexOf(name);
    KNAssert(index >= 0, KNFormat("Column %@ could not be found.", name), SourcePath);
    return index;
}

KNValue MSSQLDatabaseResultSet::objectForColumnIndex(qsizetype index) const
{
    return m_currentRow.value(index);
}

KNValue MSSQLDatabaseResultSet::objectForColumn(const QString &name) const
{
    return objectForColumnIndex(indexOfColumn(name));
}

QString MSSQLDatabaseResultSet::stringForColumnIndex(qsizetype index) const
{
    return objectForColumnIndex(index).displayText();
}

QString MSSQLDatabaseResultSet::stringForColumn(const QString &name) const
{
    return stringForColumnIndex(indexOfColumn(name));
}

KNValue MSSQLDatabaseResultSet::trimmedStringForColumnIndex(qsizetype index) const
{
    const KNValue value = objectForColumnIndex(index);
    return value.isText() ? KNValue(value.text().trimmed()) : value;
}

std::optional<bool> MSSQLDatabaseResultSet::boolForColumnIndex(qsizetype index) const
{
    const KNValue value = objectForColumnIndex(index);
    if (value.isNull())
        return std::nullopt;
    KNAssert(value.isText() || value.isNumber(), QStringLiteral("Column should be an NSNumber object."),
             SourcePath);
    return value.toBool();
}

std::optional<bool> MSSQLDatabaseResultSet::boolForColumn(const QString &name) const
{
    return boolForColumnIndex(indexOfColumn(name));
}

KNValue MSSQLDatabaseResultSet::numberForColumnIndex(qsizetype index) const
{
    const KNValue value = objectForColumnIndex(index);
    return value.isText() ? numberFromText(value.text()) : value;
}

KNValue MSSQLDatabaseResultSet::numberForColumn(const QString &name) const
{
    return numberForColumnIndex(indexOfColumn(name));
}
