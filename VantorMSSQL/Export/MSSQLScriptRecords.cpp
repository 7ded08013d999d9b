#include "Export/MSSQLScriptRecords.h"

#include "Foundation/KNFormat.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDir>

namespace {

constexpr auto RecordVersion = QDataStream::Qt_6_0;

} // namespace

qint64 MSSQLScriptRecords::append(const QStringList &record, KNError *error)
{
    const bool isOpen = m_file.isOpen() || m_file.open();
    const qint64 position = m_file.size();
    const bool isReady = isOpen && m_file.seek(position);
    QDataStream stream(&m_file);
    stream.setVersion(RecordVersion);
    stream << record;
    const bool isStored = isReady && stream.status() == QDataStream::Ok && m_file.flush();
    *error = isStored ? KNError() : fileError();
    return position;
}

QStringList MSSQLScriptRecords::record(qint64 position, KNError *error)
{
    QStringList record;
    const bool isReady = m_file.seek(position);
    QDataStream stream(&m_file);
    stream.setVersion(RecordVersion);
    stream >> record;
    const bool isRead = isReady && stream.status() == QDataStream::Ok;
    *error = isRead ? KNError() : fileError();
    return isRead ? record : QStringList();
}

KNError MSSQLScriptRecords::fileError() const
{
    return KNError(QStringLiteral("mssql.export.scripts"), 0,
                   KNFormat(QCoreApplication::translate("MSSQLScriptRecords",
                                                        "The script could not be kept in a temporary file in "
                                                        "%@. %@"),
                            QDir::tempPath(), m_file.errorString()));
}
