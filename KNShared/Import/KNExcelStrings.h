#pragma once

#include <QString>
#include <QTemporaryFile>

#include <vector>

class KNZipPart;

/// The texts that the cells of a workbook share. They are kept in a temporary file, because there may be
/// millions of them. Used by one thread at a time.
class KNExcelStrings
{
public:
    /// Reads xl/sharedStrings.xml; false if it is damaged or too large, or the temporary file cannot be
    /// written.
    bool read(KNZipPart *part);
    /// The text with this index; nullopt if there is none.
    std::optional<QString> at(QStringView index);

    /// Replaces each _xHHHH_ from a position on by the UTF-16 unit that it stands for. Workbooks write
    /// characters so that XML cannot contain.
    static void decodeEscapes(QString *text, qsizetype begin);

private:
    bool append(const QString &text);

    QTemporaryFile m_file;
    std::vector<qint64> m_ends; ///< of the texts in the file, as UTF-8
};
