#include "Import/KNImportFaults.h"

namespace {

/// An empty field for null, so that the file can be imported once it is mended.
QByteArray csvField(const QString &value)
{
    if (value.isNull())
        return {};
    QString quoted = value;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return (QLatin1Char('"') + quoted + QLatin1Char('"')).toUtf8();
}

QString shortened(const QString &value)
{
    constexpr qsizetype LongestValue = 200;
    return value.size() > LongestValue ? value.left(LongestValue) + QChar(0x2026) : value;
}

} // namespace

KNError KNImportFaults::fileError() const
{
    return KNError(QStringLiteral("com.quorvex.vantor.import"), 0,
                   tr("The file for refused rows \"%1\" cannot be written: %2.")
                       .arg(m_file.fileName(), m_file.errorString()));
}

bool KNImportFaults::openFile(const QString &path, const QStringList &fileColumns, KNError *error)
{
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        *error = m_file.exists() ? KNError(QStringLiteral("com.quorvex.vantor.import"), 0,
                                           tr("The file for refused rows \"%1\" exists already.").arg(path))
                                 : fileError();
        return false;
    }
    m_isCreated = true;
    return writeLine(QStringList{tr("Line"), tr("Column"), tr("Reason")} + fileColumns, error);
}

bool KNImportFaults::add(const KNImportFault &fault, const QStringList &values, KNError *error)
{
    ++m_count;
    if (m_first.size() < MostKept) {
        m_first.append(fault);
        m_first.last().value = shortened(fault.value);
    }
    return !m_file.isOpen() ||
           writeLine(QStringList{QString::number(fault.line), fault.column, fault.reason} + values, error);
}

bool KNImportFaults::writeLine(const QStringList &values, KNError *error)
{
    QByteArray line;
    for (const QString &value : values) {
        if (!line.isEmpty())
            line += ',';
        line += csvField(value);
    }
    line += "\r\n";
    if (m_file.write(line) == line.size())
        return true;
    *error = fileError();
    return false;
}

bool KNImportFaults::closeFile(KNError *error)
{
    if (!m_file.isOpen())
        return true;
    const bool isWritten = m_file.flush() && m_file.error() == QFile::NoError;
    if (!isWritten)
        *error = fileError();
    m_file.close();
    return isWritten;
}

void KNImportFaults::removeFile()
{
    if (!m_isCreated)
        return;
    m_file.close();
    m_file.remove();
    m_isCreated = false;
}
